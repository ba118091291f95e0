#include "TestWorld.h"
#include "frmMain.h"

#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

class OptionPanelTest : public ::testing::Test {
protected:
    void SetUp() override {
        world.makeCatalogue();
        auto c = world.open();
        ProgramRecord a = program("Games", "A Archon", world.path("Games/archon.xex"));
        a.machineType = 0;
        a.memory = 64; // more than a 400/800 takes: the row wins over the rule
        a.basic = true;
        a.video = 312;
        a.artifact = 3;
        a.stretch = 1;
        c->addProgram(a);
        c->addProgram(program("Games", "B Oids", world.path("Games/oids.msa")));
        c->addProgram(program("Games", "C Pac-Man", world.path("Games/pacman.a52")));
        c->addProgram(program("Games", "D Read Me", world.path("Games/readme.txt")));
        ProgramRecord e = program("Games", "E Broken", world.path("Games/broken.atr"));
        e.machineType = 2;
        e.memory = 1088;
        c->addProgram(e);
        c->addCartridge("Action!", world.path("carts/Action!.rom"));
        form = std::make_unique<frmMain>(world.fake().host());
        ASSERT_TRUE(form->Form_Load(world.root()));
    }
    void select(int row) { form->prgList->setCurrentIndex(form->prgList->model()->index(row, 0)); }
    int checkedBox() const {
        int found = -1;
        for (int i = 0; i < 3; ++i)
            if (form->frame8Bit->chkOSType[i]->isChecked()) found = found == -1 ? i : 99;
        return found;
    }
    int shownMachine() const {
        int found = -1;
        for (int i = 0; i < 9; ++i)
            if (form->picAtari[i]->isVisibleTo(form.get()) &&
                form->picAtari[i]->parentWidget()->isVisibleTo(form.get()))
                found = found == -1 ? i : 99;
        return found;
    }
    QImage shownPicture() const { return form->imgProgramImage->pixmap().toImage(); }

    TestWorld world;
    std::unique_ptr<frmMain> form;
};

} // namespace

TEST_F(OptionPanelTest, StoredMemoryWinsAndMachineClicksKeepTheMemoryInLine) {
    EXPECT_EQ(std::make_tuple(checkedBox(), shownMachine(), form->frame8Bit->cmbRAM->currentText(),
                              form->frame8Bit->chkBasic->text(), form->frame8Bit->chkNTSC->text(),
                              form->frame8Bit->cmbArtifact->currentText(),
                              form->frame8Bit->cmbStretch->currentText()),
              std::make_tuple(0, 0, QString("64 K"), QString("Basic On"), QString("PAL"), QString("GTIA"),
                              QString("Smooth")));
    select(4); // XL/XE, 1088 K
    form->frame8Bit->chkOSType[0]->click();
    EXPECT_EQ(checkedBox(), 0);
    EXPECT_EQ(form->frame8Bit->cmbRAM->currentText(), "48 K");
    form->frame8Bit->chkOSType[2]->click();
    EXPECT_EQ(shownMachine(), 2);
    EXPECT_EQ(form->frame8Bit->cmbRAM->currentText(), "64 K");
    form->frame8Bit->chkOSType[2]->click(); // the box that is set: cleared and set again
    EXPECT_EQ(checkedBox(), 2);
    form->frame8Bit->cmbRAM->setCurrentIndex(2); // 16 K suits the next machine too
    form->frame8Bit->chkOSType[1]->click();
    EXPECT_EQ(form->frame8Bit->cmbRAM->currentText(), "16 K");
    form->frame8Bit->chkBasic->click();
    form->frame8Bit->chkNTSC->click();
    EXPECT_EQ(form->frame8Bit->chkBasic->text() + " " + form->frame8Bit->chkNTSC->text(), "Basic On PAL");
}

TEST_F(OptionPanelTest, EachFamilyShowsItsPanelAndEachRowItsOwnPicture) {
    QImage red(32, 16, QImage::Format_RGB32);
    red.fill(Qt::red);
    QDir().mkpath(world.path("ProgramImages/Games"));
    ASSERT_TRUE(red.save(world.path("ProgramImages/Games/A Archon.jpg"), "JPG"));
    world.writeFile("ProgramImages/Games/B Oids.jpg", "not a picture at all");
    const QImage stock = form->imgDefault->pixmap().toImage();
    form->prgList_Click();
    EXPECT_EQ(shownPicture().size(), QSize(32, 16));
    select(1);
    EXPECT_FALSE(form->frame8Bit->isVisibleTo(form.get()));
    EXPECT_EQ(shownMachine(), 3);
    EXPECT_EQ(checkedBox(), 0) << "the boxes are left alone";
    EXPECT_EQ(shownPicture(), stock) << "an undecodable file shows the stock picture, not the one before";
    select(0);
    EXPECT_TRUE(form->frame8Bit->isVisibleTo(form.get()) && !form->frameAtari->isVisibleTo(form.get()));
    select(2);
    EXPECT_EQ(shownMachine(), 5);
    EXPECT_TRUE(form->cmdSnapPicture[1]->isVisibleTo(form.get()));
    EXPECT_EQ(shownPicture(), stock) << "no picture: the one before never stays";
    select(3); // no family: the panel of the row before stays, without its picture or button
    EXPECT_TRUE(form->frameAtari->isVisibleTo(form.get()));
    EXPECT_EQ(shownMachine(), -1);
    EXPECT_FALSE(form->cmdSnapPicture[1]->isVisibleTo(form.get()));
}

TEST_F(OptionPanelTest, CartridgeGoesOutOnlyWhenChosenAndTheLaunchTakesTheControls) {
    EXPECT_TRUE(world.fake().registry.writes.empty()) << "filling the list hands nothing over";
    world.fake().associations.extensions = {{"xex", "emu %f"}};
    form->frame8Bit->cmbArtifact->setCurrentIndex(1); // changed, not saved: still counts
    form->frame8Bit->cmbResCart->setCurrentIndex(
        1); // not the user's choice: nothing yet; the launch leaves it
    QTest::keyClick(form->prgList, Qt::Key_Return);
    const auto writes = world.fake().registry.briefs();
    EXPECT_EQ(std::count(writes.begin(), writes.end(), "screenArtifactMode=dword:1"), 1);
    EXPECT_FALSE(
        std::any_of(writes.begin(), writes.end(), [](const QString& w) { return w.startsWith("fileRom"); }));
    EXPECT_EQ(world.fake().processes.started.size(), 1u);

    world.fake().registry.writes.clear();
    emit form->frame8Bit->cmbResCart->activated(1);
    const QString rom = world.path("carts/Action!.rom");
    EXPECT_EQ(
        world.fake().registry.briefs(),
        (std::vector<QString>{"fileRomCartridge=" + rom, "fileRomCurrent=" + rom, "sysCartType=dword:0"}));
}
