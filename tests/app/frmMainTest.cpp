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

TEST_F(MainFormTest, StartsOnTheFirstTabWithCountersAndSelection) {
    EXPECT_FALSE(form->CategoryTabs->isTabVisible(3)) << "a tab without a caption is not shown";
    EXPECT_EQ(listed(), (std::vector<QString>{"Archon", "Archon", "Boulder Dash", "Star Raiders",
                                              "Yars' Revenge", "Zaxxon"}));
    EXPECT_EQ(files() + " " + form->lblLabel[2]->text(), "Files: 6 Total: 9");
    EXPECT_EQ(form->txtName->text(), "Archon");
    const QString firstDescription = form->txtDescription->toPlainText();
    form->setListIndex(1);
    EXPECT_NE(form->txtDescription->toPlainText(), firstDescription) << "each Archon shows its own row";

    form->UpdateListBox(QString());
    EXPECT_EQ(files(), "Files: 6") << "an empty caption leaves the list alone";
    form->CategoryTabs_TabActivate(3);
    EXPECT_EQ(form->currentTab(), 4) << "asking for the hidden tab shows the next named one";
    EXPECT_EQ(form->CategoryTabs->currentIndex(), 4);
}

TEST_F(MainFormTest, FilterFromTheBoxOrTheListStaysAcrossTabs) {
    form->prgList->setFocus();
    QTest::keyClicks(form->prgList, "STA");            // typing in the list extends the filter
    QTest::keyClick(form->prgList, Qt::Key_Backspace); // which Backspace there leaves alone
    QTest::keyClicks(form->txtSearch, "R");
    EXPECT_EQ(form->txtSearch->text(), "STAR");
    EXPECT_EQ(listed(), std::vector<QString>{"Star Raiders"});
    form->CategoryTabs->setCurrentIndex(1);
    EXPECT_EQ(listed(), std::vector<QString>{"Starfield"});
    form->txtSearch->setText("nothing like it");
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(files(), "Files: 0");
    EXPECT_EQ(form->txtName->text(), "Starfield") << "with no match the last program stays on show";
}

// A rename in the utility form can take the caption of the tab on show: the strip then moves to a
// named tab and lists that one, never a tab whose caption is not read yet.
TEST_F(MainFormTest, BlankingTheCurrentTabListsTheTabTheStripMovesTo) {
    form->CategoryTabs->setCurrentIndex(1);
    {
        auto c = world.open();
        c->addProgram(program("Utilities", "DOS 2.5", "/atari/dos.atr"));
        c->updateTab(2, "", "");
        c->updateTab(3, "Utilities, renamed", "");
    }
    form->loadTabs();
    const int shown = form->CategoryTabs->currentIndex();
    ASSERT_TRUE(shown == 0 || shown == 2) << shown;
    EXPECT_EQ(form->currentTab(), shown);
    EXPECT_EQ(listed().size(), shown == 0 ? 6u : 0u) << "never the rows of the caption before the rename";
}

// Tabs named in the utility form appear at the next refresh, and the strip scrolls to reach them.
TEST_F(MainFormTest, TabsNamedLaterCanBeReachedAfterTheRefresh) {
    form->show();
    const auto scrollable = [&] {
        const auto buttons = form->CategoryTabs->findChildren<QToolButton*>();
        return std::any_of(buttons.begin(), buttons.end(),
                           [](auto* b) { return b->isVisible() && b->isEnabled(); });
    };
    ASSERT_FALSE(scrollable()) << "the case needs a strip that fits at first";
    {
        auto c = world.open();
        for (int code = 16; code <= 21; ++code)
            c->updateTab(code, QString("Arcade Classics %1").arg(code), "");
        c->addProgram(program("Arcade Classics 21", "Gorf", "/atari/gorf.atr"));
    }
    form->loadTabs();
    EXPECT_TRUE(form->CategoryTabs->isTabVisible(20) && form->CategoryTabs->tabRect(20).width() > 0);
    EXPECT_TRUE(scrollable());
    form->CategoryTabs->setCurrentIndex(20);
    EXPECT_EQ(listed(), std::vector<QString>{"Gorf"});
}

TEST_F(MainFormTest, DrivesSaveAndRunAndRecordCommands) {
    const QPoint starRaiders = form->prgList->visualRect(form->prgList->model()->index(3, 0)).center();
    QTest::mouseClick(form->prgList->viewport(), Qt::LeftButton, {}, starRaiders);
    EXPECT_EQ(form->frame8Bit->txtFloppy[0]->text(), "Star Raiders.atr");
    QTest::keyClick(form->prgList, Qt::Key_Down); // Yars' Revenge, by keyboard: the drives stay
    EXPECT_EQ(form->frame8Bit->txtFloppy[0]->text(), "Star Raiders.atr");

    // A drop on drive 2 with no emulator running fills the drive.
    QMimeData data;
    data.setData("application/x-quaylight-program", {});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(form->frame8Bit->imgFloppy[1], &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(form->frame8Bit->imgFloppy[1], &drop);
    EXPECT_EQ(form->floppyTag(1), "/atari/Yars' Revenge.atr");

    form->txtName->setText("Yars");
    form->frame8Bit->chkNTSC->setChecked(false);
    QTest::mouseClick(form->frame8Bit->cmdOptionSet, Qt::LeftButton);
    const int code = form->selectedProgramCode();
    const ProgramRecord saved = *world.open()->programByCode(code);
    EXPECT_EQ(std::tie(saved.name, saved.video, saved.fileName2, saved.type),
              std::make_tuple(QString("Yars"), 312, QString("/atari/Yars' Revenge.atr"), 4));
    EXPECT_EQ(world.fake().processes.started.size(), 1u) << "saved, then run";

    QTest::mouseClick(form->cmdEdit[0], Qt::LeftButton);
    EXPECT_EQ(world.open()->programByCode(code)->category, "Favourites");
    QTest::mouseClick(form->cmdEdit[1], Qt::LeftButton);
    EXPECT_FALSE(world.open()->programByCode(code));
    EXPECT_EQ(listed().size(), 6u) << "the row stays listed until the list is built again";
}

TEST(MainFormStart, NoCatalogueOrAForeignFileEndsWithOneMessage) {
    const QByteArray jet =
        QByteArray("Standard Jet DB").prepend(QByteArray(4, '\0')).leftJustified(4096, '\0');
    for (const auto& [file, message] : {std::pair(QByteArray(), "Error! - Cannot locate Atari.mdb"),
                                        std::pair(jet, "not a Quaylight catalogue")}) {
        TestWorld world;
        if (!file.isEmpty()) world.writeFile("Atari.mdb", file);
        frmMain form(world.fake().host());
        EXPECT_FALSE(form.Form_Load(world.root()));
        ASSERT_EQ(world.fake().dialogs.messages.size(), 1u);
        EXPECT_TRUE(world.fake().dialogs.messages[0].contains(message)) << message;
    }
}

// With the first tab unnamed, the start lands on the first named tab.
TEST_F(MainFormTest, ABlankFirstTabStartsOnTheFirstNamedTab) {
    world.open()->updateTab(1, "", "");
    frmMain again(world.fake().host());
    ASSERT_TRUE(again.Form_Load(world.root()));
    EXPECT_EQ(
        std::make_tuple(again.currentTab(), again.CategoryTabs->currentIndex(), again.lblLabel[1]->text()),
        std::make_tuple(1, 1, QString("Files: 2")));
}
