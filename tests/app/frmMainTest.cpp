#include "frmMain.h"
#include "TestWorld.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

class MainFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        world.makeCatalogue();
        auto c = world.open();
        c->updateTab(2, "Demo's", "");
        c->updateTab(4, "", "");
        for (const char* name : {"Star Raiders", "Archon", "Zaxxon", "Yars' Revenge", "Boulder Dash"})
            c->addProgram(program("Games", name, QString("/atari/%1.atr").arg(name)));
        c->addProgram(program("Games", "Read Me", "/atari/readme.zip"));
        c->addProgram(program("Demo's", "Numen", "/atari/numen.xex"));
        c->addProgram(program("Demo's", "Starfield", "/atari/starfield.xex"));
        ProgramRecord described = program("Games", "Archon", "/atari/archon2.xex");
        described.description = "Chess with fights";
        c->addProgram(described);
        form = std::make_unique<frmMain>(world.fake().host());
        ASSERT_TRUE(form->Form_Load(world.root()));
    }

    std::vector<QString> listed() const {
        std::vector<QString> names;
        auto* model = form->prgList->model();
        for (int i = 0; i < model->rowCount(); ++i)
            names.push_back(model->index(i, 0).data().toString());
        return names;
    }
    QString files() const { return form->lblLabel[1]->text(); }

    TestWorld world;
    std::unique_ptr<frmMain> form;
};

} // namespace

TEST_F(MainFormTest, StartsOnTabZeroWithCountersAndSelection) {
    EXPECT_EQ(form->windowTitle(), "Quaylight");
    EXPECT_EQ(form->CategoryTabs->count(), 24);
    EXPECT_EQ(form->CategoryTabs->tabText(0), "Games");
    EXPECT_EQ(form->CategoryTabs->tabText(1), "Demo's");
    EXPECT_FALSE(form->CategoryTabs->isTabVisible(3)) << "a tab without a caption is not shown";
    EXPECT_EQ(listed(), (std::vector<QString>{"Archon", "Archon", "Boulder Dash", "Star Raiders",
                                              "Yars' Revenge", "Zaxxon"}));
    EXPECT_EQ(files(), "Files: 6");
    EXPECT_EQ(form->lblLabel[2]->text(), "Total: 9");
    EXPECT_EQ(form->prgList->currentIndex().row(), 0);
    EXPECT_EQ(form->txtName->text(), "Archon");
    for (const char* name : {"CategoryTabs", "txtSearch", "prgList", "lblLabel_1", "lblLabel_2", "txtName",
                             "txtDescription", "imgProgramImage", "cmdEdit_0", "cmdEdit_2", "cmdLoadUtilForm",
                             "cmdClose", "frame8Bit", "frameAtari"})
        EXPECT_NE(form->findChild<QWidget*>(name), nullptr) << name;
}

TEST_F(MainFormTest, FilterAsYouTypeAcrossTabs) {
    QTest::keyClicks(form->txtSearch, "STAR");
    EXPECT_EQ(listed(), std::vector<QString>{"Star Raiders"});
    EXPECT_EQ(files(), "Files: 1");
    form->CategoryTabs->setCurrentIndex(1);
    EXPECT_EQ(form->currentTab(), 1);
    EXPECT_EQ(listed(), std::vector<QString>{"Starfield"}) << "the filter stays when the tab changes";
    form->txtSearch->clear();
    EXPECT_EQ(listed(), (std::vector<QString>{"Numen", "Starfield"}));
    form->CategoryTabs_TabActivate(0);
    QTest::keyClicks(form->txtSearch, "s' r");
    EXPECT_EQ(listed(), std::vector<QString>{"Yars' Revenge"}) << "a quote is an ordinary character";
}

TEST_F(MainFormTest, NoMatchKeepsTheLastProgramOnShow) {
    form->prgList->setCurrentIndex(form->prgList->model()->index(3, 0));
    EXPECT_EQ(form->txtName->text(), "Star Raiders");
    form->txtSearch->setText("nothing like it");
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(files(), "Files: 0");
    EXPECT_EQ(form->txtName->text(), "Star Raiders");
}

TEST_F(MainFormTest, EmptyCaptionLeavesTheListAlone) {
    const auto before = listed();
    form->UpdateListBox(QString());
    EXPECT_EQ(listed(), before);
    EXPECT_EQ(files(), "Files: 6");
    // The tab without a caption is hidden: asking for it shows the next named one.
    form->CategoryTabs_TabActivate(3);
    EXPECT_EQ(form->currentTab(), 4);
    EXPECT_EQ(form->CategoryTabs->currentIndex(), 4);
}

// A rename in the utility form can take the caption of the tab on show: the strip then moves to a
// named tab and lists that one, never a tab whose caption is not read yet.
TEST_F(MainFormTest, BlankingTheCurrentTabListsTheTabTheStripMovesTo) {
    form->CategoryTabs->setCurrentIndex(1);
    ASSERT_EQ(listed(), (std::vector<QString>{"Numen", "Starfield"}));
    world.open()->addProgram(program("Utilities", "DOS 2.5", "/atari/dos.atr"));
    world.open()->updateTab(2, "", "");
    world.open()->updateTab(3, "Utilities, renamed", "");
    form->loadTabs();
    const int shown = form->CategoryTabs->currentIndex();
    EXPECT_TRUE(form->CategoryTabs->isTabVisible(shown));
    EXPECT_FALSE(form->CategoryTabs->isTabVisible(1));
    EXPECT_FALSE(form->CategoryTabs->tabText(shown).startsWith("Tab")) << "a caption from the catalogue";
    EXPECT_EQ(files(), QString("Files: %1").arg(listed().size()));
    if (shown == 0) {
        EXPECT_EQ(listed().size(), 6u);
    } else if (shown == 2) {
        EXPECT_TRUE(listed().empty());
    }
    // And the user can go back to any named tab.
    form->CategoryTabs->setCurrentIndex(shown == 0 ? 2 : 0);
    form->CategoryTabs->setCurrentIndex(0);
    EXPECT_EQ(listed().size(), 6u);
}

TEST_F(MainFormTest, TypingInTheListExtendsTheFilter) {
    form->prgList->setFocus();
    QTest::keyClicks(form->prgList, "ar");
    EXPECT_EQ(form->txtSearch->text(), "ar");
    EXPECT_EQ(form->searchText(), "ar");
    EXPECT_EQ(listed(), (std::vector<QString>{"Archon", "Archon", "Star Raiders", "Yars' Revenge"}));
    QTest::keyClick(form->prgList, Qt::Key_Backspace);
    EXPECT_EQ(form->txtSearch->text(), "ar") << "Backspace in the list deletes nothing";
    QTest::keyClick(form->prgList, Qt::Key_Return);
    EXPECT_EQ(form->txtSearch->text(), "ar") << "Enter launches and leaves the filter";
}

TEST_F(MainFormTest, DescriptionOfTheSelectedRow) {
    form->prgList->setCurrentIndex(form->prgList->model()->index(1, 0));
    const bool second = form->txtDescription->toPlainText() == "Chess with fights";
    form->prgList->setCurrentIndex(form->prgList->model()->index(0, 0));
    const bool first = form->txtDescription->toPlainText() == "Chess with fights";
    EXPECT_NE(first, second) << "one of the two Archons carries the description";
}

TEST(MainFormStart, EndsWithoutACatalogue) {
    TestWorld world;
    frmMain form(world.fake().host());
    EXPECT_FALSE(form.Form_Load(world.root()));
    ASSERT_EQ(world.fake().dialogs.messages.size(), 1u);
    EXPECT_TRUE(world.fake().dialogs.messages[0].startsWith("Error! - Cannot locate Atari.mdb"));
}

TEST(MainFormStart, ANonCatalogueIsToldAndLeftAlone) {
    TestWorld world;
    world.writeFile("Atari.mdb",
                    QByteArray("Standard Jet DB").prepend(QByteArray(4, '\0')).leftJustified(4096, '\0'));
    frmMain form(world.fake().host());
    EXPECT_FALSE(form.Form_Load(world.root()));
    ASSERT_EQ(world.fake().dialogs.messages.size(), 1u);
    EXPECT_TRUE(world.fake().dialogs.messages[0].contains("not a Quaylight catalogue"));
}

// With the first tab unnamed, the start and a rebuild's refresh land on the first named tab, and
// the filter works on the rows that are shown.
TEST(MainFormStart, ABlankFirstTabStartsOnTheFirstNamedTab) {
    TestWorld world;
    world.makeCatalogue();
    {
        auto c = world.open();
        c->updateTab(1, "", "");
        c->updateTab(2, "Demos", "");
        c->addProgram(program("Demos", "Numen", "/a/numen.xex"));
        c->addProgram(program("Demos", "Joyride", "/a/joyride.xex"));
    }
    frmMain form(world.fake().host());
    ASSERT_TRUE(form.Form_Load(world.root()));
    const auto shows = [&](int tab, const char* files) {
        EXPECT_EQ(form.currentTab(), tab);
        EXPECT_EQ(form.CategoryTabs->currentIndex(), tab);
        EXPECT_EQ(form.lblLabel[1]->text(), files);
    };
    shows(1, "Files: 2");
    form.txtSearch->setText("joy");
    shows(1, "Files: 1");
    form.CategoryTabs_TabActivate(0);
    shows(1, "Files: 1");
    EXPECT_TRUE(world.fake().dialogs.messages.empty());
}

// Tabs named in the utility form appear at the next refresh, and the strip scrolls to reach them.
TEST_F(MainFormTest, TabsNamedLaterCanBeReachedAfterTheRefresh) {
    form->show();
    const auto scrollable = [&] {
        for (auto* button : form->CategoryTabs->findChildren<QToolButton*>())
            if (button->isVisible() && button->isEnabled()) return true;
        return false;
    };
    ASSERT_FALSE(scrollable()) << "the case needs a strip that fits at first";
    {
        auto c = world.open();
        for (int code = 16; code <= 21; ++code)
            c->updateTab(code, QString("Arcade Classics %1").arg(code), "");
        c->addProgram(program("Arcade Classics 21", "Gorf", "/atari/gorf.atr"));
    }
    form->loadTabs();
    form->GeneralInit();
    form->CategoryTabs_TabActivate(0);
    ASSERT_TRUE(form->CategoryTabs->isTabVisible(20));
    EXPECT_GT(form->CategoryTabs->tabRect(20).width(), 0);
    EXPECT_TRUE(scrollable());
    form->CategoryTabs->setCurrentIndex(20);
    EXPECT_EQ(listed(), std::vector<QString>{"Gorf"});
}

TEST_F(MainFormTest, DrivesSaveAndRunAndRecordCommands) {
    auto rowCentre = [&](int row) {
        return form->prgList->visualRect(form->prgList->model()->index(row, 0)).center();
    };
    QTest::mouseClick(form->prgList->viewport(), Qt::LeftButton, {}, rowCentre(3)); // Star Raiders
    EXPECT_EQ(form->txtFloppy[0]->text(), "Star Raiders.atr");
    EXPECT_EQ(form->floppyTag(2), " ");
    QTest::keyClick(form->prgList, Qt::Key_Down); // Yars' Revenge, by keyboard: the drives stay
    EXPECT_EQ(form->txtName->text(), "Yars' Revenge");
    EXPECT_EQ(form->txtFloppy[0]->text(), "Star Raiders.atr");

    // A drop on drive 2 with no emulator running fills the drive and sends nothing.
    QMimeData data;
    data.setData("application/x-quaylight-program", {});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(form->imgFloppy[1], &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(form->imgFloppy[1], &drop);
    QCoreApplication::processEvents();
    EXPECT_EQ(form->txtFloppy[1]->text(), "Yars' Revenge.atr");
    EXPECT_EQ(form->floppyTag(1), "/atari/Yars' Revenge.atr");
    EXPECT_TRUE(world.fake().keyboard.sent.empty());

    form->txtName->setText("Yars");
    form->chkNTSC->setChecked(false);
    QTest::mouseClick(form->cmdOptionSet, Qt::LeftButton);
    const int code = form->selectedProgramCode();
    const ProgramRecord saved = *world.open()->programByCode(code);
    EXPECT_EQ(std::tie(saved.name, saved.video, saved.fileName2, saved.type),
              std::make_tuple(QString("Yars"), 312, QString("/atari/Yars' Revenge.atr"), 4));
    ASSERT_EQ(world.fake().processes.started.size(), 1u) << "saved, then run";
    EXPECT_EQ(form->lastProgramName(), "Yars");

    QTest::mouseClick(form->cmdEdit[0], Qt::LeftButton);
    EXPECT_EQ(world.open()->programByCode(code)->category, "Favourites");
    QTest::mouseClick(form->cmdEdit[1], Qt::LeftButton);
    EXPECT_FALSE(world.open()->programByCode(code));
    EXPECT_EQ(listed().size(), 6u) << "the row stays listed until the list is built again";
    EXPECT_EQ(form->lblLabel[2]->text(), "Total: 9");
    QTest::mouseClick(form->cmdEdit[1], Qt::LeftButton); // the row is gone: nothing happens
    EXPECT_TRUE(world.fake().dialogs.messages.empty());
}
