#include "CommonDialog.h"
#include "QtPrinters.h"

#include <QWidget>
#include <gtest/gtest.h>

using namespace ql;

namespace {
class AnsweringDialogs : public FileDialogs {
public:
    std::optional<OpenFileAnswer> getOpenFileName(const OpenFileRequest& r) override {
        request = r;
        return answer;
    }
    OpenFileRequest request;
    std::optional<OpenFileAnswer> answer; // none: Cancel
};
} // namespace

// What a call writes back, as "ok|file|title|filter|index|flags in hex|ro", a zero character as "\0".
// The caller's flags carry the hook and template bits, which are cleared, and one of its own, 0x8.
TEST(CommonDialogTest, ChoiceAndCancelAreWrittenBack) {
    const struct {
        const char* name;
        std::optional<OpenFileAnswer> answer;
        bool multi;
        const char* result;
    } cases[] = {
        {"one file", OpenFileAnswer{{"/atari/Games/Star Raiders.atr"}, 2, false}, false,
         "ok|/atari/Games/Star Raiders.atr|Star Raiders.atr|All (*.*)\\0 *.*|2|1008|rw"},
        {"several, read-only", OpenFileAnswer{{"/atari/a.atr", "/atari/b.atr"}, 1, true}, true,
         "ok|/atari/\\0a.atr\\0b.atr|a.atr|Disks\\0*.atr|1|209|ro"},
        {"filter out of range", OpenFileAnswer{{"/a.atr"}, 3, false}, false, "ok|/a.atr|a.atr||3|1008|rw"},
        {"cancel", std::nullopt, false, "no||||-1|0|rw"},
        {"no file", OpenFileAnswer{{}, 1, true}, false, "no||||-1|0|rw"},
    };
    for (const auto& c : cases) {
        AnsweringDialogs dialogs;
        dialogs.answer = c.answer;
        cCommonDialog d(dialogs);
        QWidget owner;
        QString filename = "proposed", title = "title",
                filter = "Disks|*.atr:All (*.*)| *.*"; // ":" separates
        bool readOnly = false;
        int index = 1, flags = ofn::EnableHook | ofn::EnableTemplate | 0x8;
        const bool ok = d.VBGetOpenFileName(filename, title, !c.multi, c.multi, readOnly, false, filter,
                                            index, "", "", "", &owner, flags);
        EXPECT_EQ(ok, d.APIReturn() == 1) << c.name;
        EXPECT_EQ(dialogs.request.owner, &owner) << c.name;
        EXPECT_EQ(QStringList({ok ? "ok" : "no", filename, title, filter, QString::number(index),
                               QString::number(flags, 16), readOnly ? "ro" : "rw"})
                      .join('|')
                      .replace(QChar(0), "\\0"),
                  c.result)
            << c.name;
    }
}
