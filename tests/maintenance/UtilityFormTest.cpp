#include "TestWorld.h"
#include "frmUtility.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTest>
#include <deque>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

class FakeMainForm : public MainFormOps {
public:
    explicit FakeMainForm(QString path) : path_(std::move(path)) {}
    void loadTabs() override { calls.push_back("loadTabs"); }
    void GeneralInit() override { calls.push_back("GeneralInit"); }
    void CategoryTabs_TabActivate(int tab) override {
        calls.push_back(QStringLiteral("TabActivate %1").arg(tab));
    }
    QString cataloguePath() const override { return path_; }
    std::vector<QString> calls;

private:
    QString path_;
};

class FakeFileDialogs : public FileDialogs {
public:
    std::optional<OpenFileAnswer> getOpenFileName(const OpenFileRequest& request) override {
        requests.push_back(request);
        if (answers.empty()) return std::nullopt;
        OpenFileAnswer answer{{answers.front()}, 1, false};
        answers.pop_front();
        return answer;
    }
    std::vector<OpenFileRequest> requests;
    std::deque<QString> answers; // none left: Cancel
};

class UtilityFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        path = world.makeCatalogue();
        mainForm = std::make_unique<FakeMainForm>(path);
        form = std::make_unique<frmUtility>(world.fake().host(), *mainForm, dialogs);
    }
    void choose(int row, const QString& folder) {
        form->txtTabSource[row]->setText(world.path(folder));
        form->chkSelected[row]->setChecked(true);
    }
    std::vector<QString>& messages() { return world.fake().dialogs.messages; }
    TestWorld world;
    QString path;
    FakeFileDialogs dialogs;
    std::unique_ptr<FakeMainForm> mainForm;
    std::unique_ptr<frmUtility> form;
};

} // namespace

TEST_F(UtilityFormTest, LoadAndSaveKeepTextsAsTyped) {
    EXPECT_FALSE(form->chkRebuildEverything->isChecked());
    {
        auto c = world.open();
        c->updateTab(3, "Utilities", "/atari/Utilities/");
        QSqlQuery q(c->database());
        ASSERT_TRUE(q.exec("UPDATE Tabs SET TabSource = NULL WHERE TabCode = 1"));
        ASSERT_TRUE(q.exec("DELETE FROM Tabs WHERE TabCode = 25"));
    }
    form->Form_Load();
    EXPECT_EQ(form->txtTabSource[2]->text(), "/atari/Utilities/");
    EXPECT_EQ(form->txtTabName[0]->text(), "Games");
    EXPECT_EQ(form->txtTabSource[0]->text(), "");
    EXPECT_EQ(form->txtTabName[24]->text(), "Resident Cartridges")
        << "a row without a record keeps its default";

    form->txtTabName[1]->setText("Demo's");
    form->txtTabSource[1]->setText("/atari/O'Neil's demos/");
    form->txtTabName[2]->setText("");
    QTest::mouseClick(form->findChild<QPushButton*>("cmdSaveTabInfo"), Qt::LeftButton);
    const auto tabs = world.open()->tabs();
    EXPECT_EQ(tabs[1].tabName, "Demo's");
    EXPECT_EQ(tabs[1].tabSource, "/atari/O'Neil's demos/");
    EXPECT_EQ(tabs[2].tabName, "");
    EXPECT_EQ(tabs[0].tabSource, "") << "a null source is saved as the empty text";
    EXPECT_TRUE(messages().empty());
}

TEST_F(UtilityFormTest, DoubleClickOnTheSquareTurnsOverTheSelection) {
    form->chkSelected[0]->setChecked(true);
    form->chkSelected[1]->setChecked(true);
    for (const bool firstTwo : {false, true}) {
        QTest::mouseDClick(form->lblAll, Qt::LeftButton);
        for (int i = 0; i < kFormRows; ++i)
            EXPECT_EQ(form->chkSelected[i]->isChecked(), (i < 2) == firstTwo) << i;
    }
}

TEST_F(UtilityFormTest, FolderIsPickedThroughAFileInIt) {
    form->txtTabName[4]->setText("Music");
    dialogs.answers.push_back("/atari/Music/Chip Tunes.xex");
    QTest::mouseClick(form->cmdTabSource[4], Qt::LeftButton);
    EXPECT_EQ(form->txtTabSource[4]->text(), "/atari/Music/");
    EXPECT_EQ(form->txtTabName[4]->text(), "Music");
    EXPECT_EQ(dialogs.requests.size(), 1u);

    form->cmdTabSource_Click(4); // cancelled
    EXPECT_EQ(form->txtTabSource[4]->text(), "/atari/Music/");
    dialogs.answers.push_back("/root.atr");
    form->cmdTabSource_Click(5);
    EXPECT_EQ(form->txtTabSource[5]->text(), "/");
}

TEST_F(UtilityFormTest, RebuildUsesTheTextBoxesAndRefreshesTheMainForm) {
    world.writeFile("Games/Star Raiders.atr", "disk");
    world.writeFile("Games/Unsaved.xex", "xex");
    form->Form_Load();
    form->txtTabName[3]->setText("Typed, not saved");
    choose(3, "Games/");
    form->chkRebuildEverything->setChecked(true);
    QTest::mouseClick(form->cmdRebuild, Qt::LeftButton);
    EXPECT_EQ(messages(), std::vector<QString>{"Operation Complete!"});
    EXPECT_EQ(mainForm->calls, (std::vector<QString>{"loadTabs", "GeneralInit", "TabActivate 0"}));
    auto c = world.open();
    EXPECT_EQ(c->countCategory("Typed, not saved"), 2);
    EXPECT_EQ(c->programsByTabNumber(kEverythingTabNumber).size(), 2u);
    EXPECT_EQ(c->tabs()[3].tabName, "Education") << "the rebuild stores no tab";
}

// Clicks that arrive while the rebuild lets events through change neither the catalogue nor the
// rows being rebuilt, and none of them has to wait for the rebuild's write.
TEST_F(UtilityFormTest, NothingOnTheFormActsDuringARebuild) {
    world.writeFile("Games/Star Raiders.atr", "disk");
    form->Form_Load();
    choose(0, "Games/");
    int pumps = 0;
    world.fake().clock.onPump = [&] {
        ++pumps;
        QTest::mouseClick(form->cmdSaveTabInfo, Qt::LeftButton);
        QTest::mouseDClick(form->lblAll, Qt::LeftButton);
        QTest::mouseClick(form->chkSelected[1], Qt::LeftButton);
        QTest::mouseClick(form->cmdTabSource[1], Qt::LeftButton);
        QTest::keyClicks(form->txtTabName[1], "x");
        QTest::mouseClick(form->cmdClose, Qt::LeftButton);
    };
    QElapsedTimer timer;
    timer.start();
    form->cmdRebuild_Click();
    world.fake().clock.onPump = nullptr;
    EXPECT_GT(pumps, 0);
    EXPECT_LT(timer.elapsed(), 5000) << "no click waited on the catalogue";
    EXPECT_EQ(messages(), std::vector<QString>{"Operation Complete!"});
    EXPECT_TRUE(dialogs.requests.empty());
    EXPECT_TRUE(form->chkSelected[0]->isChecked());
    EXPECT_FALSE(form->chkSelected[1]->isChecked());
    EXPECT_EQ(form->txtTabName[1]->text(), "Demos");
    EXPECT_EQ(world.open()->tabs()[0].tabSource, "") << "the typed folder was not saved";
    EXPECT_EQ(form->result(), 0) << "Close did nothing";
    for (QWidget* w : std::initializer_list<QWidget*>{form->cmdSaveTabInfo, form->cmdRebuild, form->cmdClose,
                                                      form->chkSelected[1], form->cmdTabSource[1]})
        EXPECT_TRUE(w->isEnabled()) << w->objectName().toStdString() << " is usable again";
}

TEST_F(UtilityFormTest, FailedRebuildSaysSoAndKeepsTheOldRows) {
    world.writeFile("Games/Poison.atr", "disk");
    {
        auto c = world.open();
        c->addProgram(program("Games", "Old", "/old.atr"));
        QSqlQuery q(c->database());
        ASSERT_TRUE(q.exec("CREATE TRIGGER Fault BEFORE INSERT ON Programs WHEN NEW.Name = 'Poison' "
                           "BEGIN SELECT RAISE(ABORT, 'disk full'); END"));
    }
    form->txtTabName[0]->setText("Games");
    choose(0, "Games/");
    form->cmdRebuild_Click();
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_TRUE(messages()[0].startsWith("The rebuild stopped:") && messages()[0].contains("disk full"))
        << messages()[0].toStdString();
    EXPECT_EQ(world.open()->countCategory("Games"), 1);
    EXPECT_EQ(mainForm->calls.size(), 3u);
}

// Enter and Escape typed anywhere on the form press no button and do not close it: no picker
// overwrites a folder, nothing is saved or rebuilt, and the edits stay.
TEST_F(UtilityFormTest, EnterAndEscapeDoNothing) {
    form->Form_Load();
    form->txtTabSource[0]->setText("/atari/Games/");
    dialogs.answers.push_back("/elsewhere/picked.atr"); // what a picker opened by mistake would give
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    const std::pair<const char*, Qt::Key> cases[] = {
        {"txtTabName_5", Qt::Key_Return},   {"txtTabName_5", Qt::Key_Enter},
        {"chkSelected_5", Qt::Key_Return},  {"chkRebuildEverything", Qt::Key_Enter},
        {"cmdTabSource_3", Qt::Key_Return}, {"txtTabName_5", Qt::Key_Escape},
        {"chkSelected_5", Qt::Key_Escape},  {"cmdRebuild", Qt::Key_Escape},
    };
    for (const auto& [name, key] : cases) {
        SCOPED_TRACE(std::string(name) + " " + QTest::toString(key));
        auto* widget = form->findChild<QWidget*>(name);
        ASSERT_NE(widget, nullptr);
        widget->setFocus();
        if (qobject_cast<QLineEdit*>(widget)) QTest::keyClicks(widget, "Shooters");
        QTest::keyClick(widget, key);
        EXPECT_TRUE(dialogs.requests.empty());
        EXPECT_EQ(form->txtTabSource[0]->text(), "/atari/Games/");
        EXPECT_TRUE(form->isVisible());
        EXPECT_TRUE(messages().empty()) << "nothing was saved or rebuilt";
        EXPECT_TRUE(mainForm->calls.empty());
    }
    EXPECT_TRUE(form->txtTabName[5]->text().endsWith("Shooters")) << "the edits are still there";
    EXPECT_EQ(world.open()->tabs()[5].tabName, Catalogue::defaultTabNames()[5]);

    form->close(); // the close box
    EXPECT_FALSE(form->isVisible());
}

// Rows 0 to 23 show the rebuild's way through the tabs; the cartridges' row 24 and the Everything
// pass colour nothing.
TEST_F(UtilityFormTest, RowColoursFollowTheRebuild) {
    world.writeFile("Carts/Cart.rom");
    world.writeFile("Two/a.atr");
    world.writeFile("Five/b.atr");
    form->Form_Load();
    const std::pair<int, const char*> chosen[] = {{2, "Two/"}, {5, "Five/"}, {kCartridgeRow, "Carts/"}};
    for (const auto& [row, folder] : chosen)
        choose(row, folder);
    form->chkRebuildEverything->setChecked(true);

    const QColor window = form->txtTabName[0]->palette().color(QPalette::Base);
    const auto code = [&](QLineEdit* box) {
        const QColor c = box->palette().color(QPalette::Base);
        if (c == QColor(0xC0, 0xFF, 0xC0)) return 'G'; // chosen
        if (c == QColor(0xE0, 0xE0, 0xE0)) return 'g'; // not chosen
        if (c == QColor(0xFF, 0xC0, 0xC0)) return 'R'; // under way
        return c == window ? '.' : '?';
    };
    std::vector<std::string> seen;
    world.fake().clock.onPump = [&] {
        std::string state;
        for (int i = 0; i < kFormRows; ++i) {
            const char name = code(form->txtTabName[i]), source = code(form->txtTabSource[i]);
            state += name == source ? name : '?';
        }
        if (seen.empty() || seen.back() != state) seen.push_back(state);
    };
    form->cmdRebuild_Click();
    world.fake().clock.onPump = nullptr;

    const auto rows = [](char others, std::initializer_list<std::pair<int, char>> marked) {
        std::string state(kLastTabRow + 1, others);
        state += '.';
        for (const auto& [row, mark] : marked)
            state[static_cast<size_t>(row)] = mark;
        return state;
    };
    // The cartridges, the tabs' turn, row 2 under way and done, row 5 under way and done, Everything.
    EXPECT_EQ(seen, (std::vector<std::string>{
                        rows('.', {}), rows('g', {{2, 'G'}, {5, 'G'}}), rows('g', {{2, 'R'}, {5, 'G'}}),
                        rows('g', {{2, '.'}, {5, 'G'}}), rows('g', {{2, '.'}, {5, 'R'}}),
                        rows('g', {{2, '.'}, {5, '.'}}), rows('.', {})}));
    EXPECT_EQ(messages(), std::vector<QString>{"Operation Complete!"});
}
