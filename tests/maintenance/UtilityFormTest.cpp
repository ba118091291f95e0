#include "Crc32.h"
#include "FolderToolPages.h"
#include "TestWorld.h"
#include "frmUtility.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTest>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

struct FakeMainForm : MainFormOps {
    void loadTabs() override { calls += "loadTabs "; }
    void GeneralInit() override { calls += "GeneralInit "; }
    void CategoryTabs_TabActivate(int tab) override { calls += QStringLiteral("TabActivate %1 ").arg(tab); }
    QString cataloguePath() const override { return path; }
    QString path, calls;
};

struct FakeFileDialogs : FileDialogs {
    std::optional<OpenFileAnswer> getOpenFileName(const OpenFileRequest&) override {
        ++asked;
        if (answers.isEmpty()) return std::nullopt; // Cancel
        return OpenFileAnswer{{answers.takeFirst()}};
    }
    int asked = 0;
    QStringList answers;
};

class UtilityFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        mainForm.path = world.makeCatalogue();
        form = std::make_unique<frmUtility>(world.fake().host(), mainForm, dialogs);
    }
    // Writes a file and chooses the row, with the file's folder typed in.
    void choose(int row, const QString& file) {
        const QString path = world.writeFile(file);
        form->txtTabSource[row]->setText(path.left(path.lastIndexOf('/') + 1));
        form->chkSelected[row]->setChecked(true);
    }
    std::vector<QString>& messages() { return world.fake().dialogs.messages; }
    const QString refreshed = "loadTabs GeneralInit TabActivate 0 ";
    TestWorld world;
    FakeMainForm mainForm;
    FakeFileDialogs dialogs;
    std::unique_ptr<frmUtility> form;
};

} // namespace

TEST_F(UtilityFormTest, LoadAndSaveKeepTextsAsTyped) {
    world.open()->updateTab(3, "Utilities", "/atari/Utilities/");
    ASSERT_TRUE(
        QSqlQuery(world.open()->database()).exec("UPDATE Tabs SET TabSource = NULL WHERE TabCode = 1"));
    ASSERT_TRUE(QSqlQuery(world.open()->database()).exec("DELETE FROM Tabs WHERE TabCode = 25"));
    form->Form_Load();
    EXPECT_EQ(form->txtTabSource[2]->text(), "/atari/Utilities/");
    EXPECT_EQ(form->txtTabName[0]->text(), "Games") << "a row with a null source is loaded";
    EXPECT_EQ(form->txtTabName[24]->text(), "Resident Cartridges")
        << "a row without a record keeps its default";

    form->txtTabName[1]->setText("Demo's");
    form->txtTabSource[1]->setText("/atari/O'Neil's demos/");
    form->txtTabName[2]->setText("");
    QTest::mouseClick(form->cmdSaveTabInfo, Qt::LeftButton);
    const auto tabs = world.open()->tabs();
    EXPECT_EQ(std::tie(tabs[1].tabName, tabs[1].tabSource, tabs[2].tabName, tabs[0].tabSource),
              std::make_tuple("Demo's", "/atari/O'Neil's demos/", "", ""))
        << "a null source is saved as the empty text";
    EXPECT_TRUE(messages().empty());
}

TEST_F(UtilityFormTest, DoubleClickOnTheSquareTurnsOverTheSelection) {
    form->chkSelected[0]->setChecked(true);
    QTest::mouseDClick(form->lblAll, Qt::LeftButton);
    for (int i = 0; i < kFormRows; ++i)
        EXPECT_EQ(form->chkSelected[i]->isChecked(), i != 0) << i;
}

TEST_F(UtilityFormTest, FolderIsPickedThroughAFileInIt) {
    dialogs.answers = {"/atari/Music/Chip Tunes.xex", "/root.atr"};
    QTest::mouseClick(form->cmdTabSource[4], Qt::LeftButton);
    EXPECT_EQ(form->txtTabSource[4]->text(), "/atari/Music/");
    form->cmdTabSource_Click(5);
    EXPECT_EQ(form->txtTabSource[5]->text(), "/");
    form->cmdTabSource_Click(4); // cancelled
    EXPECT_EQ(form->txtTabSource[4]->text(), "/atari/Music/");
}

// Enter and Escape typed anywhere on the form press no button and do not close it: no picker
// opens, nothing is saved or rebuilt, and the edits stay.
TEST_F(UtilityFormTest, EnterAndEscapeDoNothing) {
    dialogs.answers = {"/elsewhere/picked.atr"}; // what a picker opened by mistake would give
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    const std::pair<QWidget*, Qt::Key> cases[] = {{form->txtTabName[5], Qt::Key_Return},
                                                  {form->chkSelected[5], Qt::Key_Enter},
                                                  {form->cmdTabSource[3], Qt::Key_Return},
                                                  {form->txtTabName[5], Qt::Key_Escape},
                                                  {form->cmdRebuild, Qt::Key_Escape}};
    for (const auto& [widget, key] : cases) {
        widget->setFocus();
        if (qobject_cast<QLineEdit*>(widget)) QTest::keyClicks(widget, "Shooters");
        QTest::keyClick(widget, key);
        const std::string c = widget->objectName().toStdString() + " key " + std::to_string(key);
        EXPECT_EQ(dialogs.asked, 0) << c << ": no picker opened";
        EXPECT_TRUE(form->isVisible()) << c;
        EXPECT_TRUE(messages().empty() && mainForm.calls.isEmpty()) << c << ": nothing was saved or rebuilt";
    }
    EXPECT_TRUE(form->txtTabName[5]->text().endsWith("Shooters")) << "the edits are still there";
    EXPECT_EQ(world.open()->tabs()[5].tabName, Catalogue::defaultTabNames()[5]);
    form->close(); // the close box
    EXPECT_FALSE(form->isVisible());
}

// The rebuild takes the rows as typed and stores no tab. Rows 0 to 23 show its way through the
// tabs; the cartridges' row 24 and the Everything pass colour nothing. Clicks that arrive while it
// lets events through change neither the catalogue nor the rows being rebuilt. A rebuild that fails
// says so, keeps the old rows of the target under way and leaves no row coloured.
TEST_F(UtilityFormTest, RebuildFollowsTheRowsAndIgnoresClicksMeanwhile) {
    choose(2, "Two/a.atr");
    choose(5, "Five/b.atr");
    choose(kCartridgeRow, "Carts/C.rom");
    form->txtTabName[2]->setText("Typed, not saved");
    form->chkRebuildEverything->setChecked(true);
    int toggles = 0; // counted, as two flips would hide each other
    for (QCheckBox* box : form->chkSelected)
        QObject::connect(box, &QCheckBox::toggled, [&] { ++toggles; });

    const QColor window = form->txtTabName[0]->palette().color(QPalette::Base);
    const auto code = [&](QLineEdit* box) {
        const QColor c = box->palette().color(QPalette::Base);
        if (c == QColor(0xC0, 0xFF, 0xC0)) return 'G';
        if (c == QColor(0xE0, 0xE0, 0xE0)) return 'g';
        if (c == QColor(0xFF, 0xC0, 0xC0)) return 'R';
        return c == window ? '.' : '?';
    };
    const auto state = [&] {
        std::string s;
        for (int i = 0; i < kFormRows; ++i)
            s += code(form->txtTabName[i]) == code(form->txtTabSource[i]) ? code(form->txtTabName[i]) : '?';
        return s;
    };
    std::vector<std::string> seen;
    world.fake().clock.onPump = [&] {
        if (seen.empty() || seen.back() != state()) seen.push_back(state());
        QTest::mouseClick(form->cmdSaveTabInfo, Qt::LeftButton);
        QTest::mouseDClick(form->lblAll, Qt::LeftButton);
        QTest::mouseClick(form->chkSelected[1], Qt::LeftButton);
        QTest::mouseClick(form->cmdTabSource[1], Qt::LeftButton);
        QTest::keyClicks(form->txtTabName[1], "x");
        QTest::mouseClick(form->cmdClose, Qt::LeftButton);
    };
    QTest::mouseClick(form->cmdRebuild, Qt::LeftButton);
    world.fake().clock.onPump = nullptr;

    // The cartridges, the tabs' turn (G chosen, g not), row 2 under way (R) and done, the same for
    // row 5, Everything.
    const std::string idle(kFormRows, '.');
    EXPECT_EQ(seen, (std::vector<std::string>{idle, "ggGggGgggggggggggggggggg.", "ggRggGgggggggggggggggggg.",
                                              "gg.ggGgggggggggggggggggg.", "gg.ggRgggggggggggggggggg.",
                                              "gg.gg.gggggggggggggggggg.", idle}));
    EXPECT_EQ(messages(), std::vector<QString>{"Operation Complete!"});
    EXPECT_EQ(mainForm.calls, refreshed);
    EXPECT_EQ(world.open()->countCategory("Typed, not saved"), 1);
    EXPECT_EQ(world.open()->programsByTabNumber(kEverythingTabNumber).size(), 3u);
    const TabRecord tab = world.open()->tabs()[2];
    EXPECT_EQ(std::tie(tab.tabName, tab.tabSource),
              std::make_tuple(Catalogue::defaultTabNames()[2], QString()))
        << "no tab was saved";
    EXPECT_EQ(dialogs.asked, 0);
    EXPECT_EQ(toggles, 0) << "no row was chosen or dropped";
    EXPECT_EQ(form->txtTabName[1]->text(), "");
    EXPECT_EQ(form->result(), 0) << "Close did nothing";
    for (QWidget* w : std::initializer_list<QWidget*>{form->cmdSaveTabInfo, form->cmdRebuild, form->cmdClose,
                                                      form->chkSelected[1], form->cmdTabSource[1]})
        EXPECT_TRUE(w->isEnabled()) << w->objectName().toStdString() << " is usable again";

    world.writeFile("Two/Poison.atr");
    ASSERT_TRUE(QSqlQuery(world.open()->database())
                    .exec("CREATE TRIGGER Fault BEFORE INSERT ON Programs WHEN NEW.Name = 'Poison' "
                          "BEGIN SELECT RAISE(ABORT, 'disk full'); END"));
    form->cmdRebuild_Click();
    ASSERT_EQ(messages().size(), 2u);
    EXPECT_TRUE(messages()[1].startsWith("The rebuild stopped:") && messages()[1].contains("disk full"))
        << messages()[1].toStdString();
    EXPECT_EQ(world.open()->countCategory("Typed, not saved"), 1);
    EXPECT_EQ(state(), idle);
    EXPECT_EQ(mainForm.calls, refreshed + refreshed);
}

TEST_F(UtilityFormTest, FolderToolPagesRunAndRemoveOnlyAfterYes) {
    form->Form_Load();
    const QString dir = world.root() + "/";
    EXPECT_EQ(form->findUniquePage->txtSourceDir->text(), dir + "__NEW/");
    EXPECT_EQ(form->advancedPage->Text1->text(), dir + "__NEW2/");
    EXPECT_FALSE(form->advancedPage->cmdRename->isEnabled());

    // Find new: the one file the Everything rows lack is copied, with the name's brackets gone.
    world.writeFile("__NEW/Known.atr", "known");
    world.writeFile("__NEW/New (1).atr", "new");
    ProgramRecord known = program(kEverything, "Known", dir + "Known.atr");
    known.tabNumber = kEverythingTabNumber;
    known.crc = QString::number(cCRC32().GetByteArrayCrc32("known"));
    world.open()->addProgram(known);
    QDir().mkpath(dir + "_Unique");
    QTest::mouseClick(form->findUniquePage->cmdFindNewFiles, Qt::LeftButton);
    EXPECT_EQ(QDir(dir + "_Unique").entryList(QDir::Files), QStringList{"New 1.atr"});
    EXPECT_EQ(messages().back(), "Operation Complete!");
    EXPECT_TRUE(form->findUniquePage->lblToolProgress->text().contains("1 copied"));

    // Remove duplicates: the list is shown first, and No deletes nothing.
    world.writeFile("__NEW2/a.atr", "same");
    world.writeFile("__NEW2/longer folder/a copy.atr", "same");
    for (bool yes : {false, true}) {
        world.fake().dialogs.yesNoAnswers = {yes};
        QTest::mouseClick(form->advancedPage->Command1, Qt::LeftButton);
        EXPECT_TRUE(world.fake().dialogs.prompts.back().contains(dir + "__NEW2/a.atr"));
        EXPECT_EQ(QFile::exists(dir + "__NEW2/a.atr"), !yes);
    }
    EXPECT_TRUE(QFile::exists(dir + "__NEW2/longer folder/a copy.atr"));
    EXPECT_TRUE(form->cmdClose->isEnabled() && form->findUniquePage->isEnabled());
}
