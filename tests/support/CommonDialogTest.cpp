#include "CommonDialog.h"

#include <QWidget>
#include <deque>
#include <gtest/gtest.h>

using namespace ql;

namespace {

class AnsweringDialogs : public FileDialogs {
public:
    std::optional<OpenFileAnswer> getOpenFileName(const OpenFileRequest& request) override {
        requests.push_back(request);
        if (answers.empty()) return std::nullopt;
        OpenFileAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::vector<OpenFileRequest> requests;
    std::deque<OpenFileAnswer> answers; // none left: Cancel
};

struct Call {
    QString filename = "proposed", fileTitle = "title";
    bool readOnly = false;
    QString filter = "All (*.*)| *.*";
    int filterIndex = 1;
    int flags = 0;
    bool result = false;
    bool run(cCommonDialog& d, bool mustExist = true, bool multi = false, QWidget* owner = nullptr) {
        result = d.VBGetOpenFileName(filename, fileTitle, mustExist, multi, readOnly, false, filter,
                                     filterIndex, "", "", "", owner, flags);
        return result;
    }
};

} // namespace

TEST(CommonDialogTest, RequestCarriesFlagsFilterAndOwner) {
    AnsweringDialogs dialogs;
    cCommonDialog d(dialogs);
    Call call;
    call.filter = "Disks (*.atr)|*.atr:All| *.*";
    call.filterIndex = 2;
    call.flags = ofn::EnableHook | ofn::EnableTemplate | 0x8;
    call.run(d);
    ASSERT_EQ(dialogs.requests.size(), 1u);
    const OpenFileRequest& r = dialogs.requests[0];
    EXPECT_EQ(r.flags, ofn::FileMustExist | 0x8) << "hook and template bits are cleared";
    EXPECT_EQ(r.filterIndex, 2);
    using Pairs = std::vector<std::pair<QString, QString>>;
    EXPECT_EQ(r.filters, (Pairs{{"Disks (*.atr)", "*.atr"}, {"All", " *.*"}}))
        << "\":\" separates like \"|\"";
    EXPECT_EQ(cCommonDialog::buildFilter("All (*.*)| *.*"),
              QString("All (*.*)") + QChar(0) + " *.*" + QChar(0) + QChar(0));

    Call multi;
    QWidget owner;
    multi.readOnly = true;
    multi.run(d, false, true, &owner);
    EXPECT_EQ(dialogs.requests[1].flags, ofn::AllowMultiSelect | ofn::ReadOnly);
    EXPECT_EQ(dialogs.requests[1].owner, &owner);
}

TEST(CommonDialogTest, ChoiceGivesPathTitleAndChosenFilterAndCancelEmptiesThem) {
    AnsweringDialogs dialogs;
    dialogs.answers.push_back(OpenFileAnswer{{"/atari/Games/Star Raiders.atr"}, 2, false});
    dialogs.answers.push_back(OpenFileAnswer{{"/atari/a.atr", "/atari/b.atr"}, 1, true});
    cCommonDialog d(dialogs);
    Call call;
    call.filter = "Disks|*.atr|All (*.*)| *.*";
    EXPECT_TRUE(call.run(d));
    EXPECT_EQ(call.filename, "/atari/Games/Star Raiders.atr");
    EXPECT_EQ(call.fileTitle, "Star Raiders.atr");
    EXPECT_EQ(call.filterIndex, 2);
    EXPECT_EQ(call.filter, QString("All (*.*)") + QChar(0) + " *.*");
    EXPECT_EQ(call.flags, ofn::FileMustExist);
    EXPECT_EQ(d.APIReturn(), 1);

    Call multi;
    EXPECT_TRUE(multi.run(d, true, true));
    EXPECT_EQ(multi.filename, QString("/atari/") + QChar(0) + "a.atr" + QChar(0) + "b.atr");
    EXPECT_TRUE(multi.readOnly);

    Call cancel; // no answer left
    cancel.flags = ofn::ReadOnly;
    EXPECT_FALSE(cancel.run(d));
    EXPECT_EQ(cancel.filename, "");
    EXPECT_EQ(cancel.fileTitle, "");
    EXPECT_EQ(cancel.filter, "");
    EXPECT_EQ(cancel.filterIndex, -1);
    EXPECT_EQ(cancel.flags, 0);
    EXPECT_EQ(d.APIReturn(), 0);
    EXPECT_EQ(d.ExtendedError(), 0);
}
