#include "TestWorld.h"
#include "frmMain.h"

#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
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
            if (form->chkOSType[i]->isChecked()) found = found == -1 ? i : 99;
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

TEST_F(OptionPanelTest, ControlsCaptionsAndRows) {
    for (const char* name :
         {"chkOSType_0", "chkOSType_2", "chkBasic", "chkNTSC", "cmbRAM", "cmbArtifact", "cmbStretch",
          "cmbResCart", "cmdOptionSet", "cmdSnapPicture_0", "cmdSnapPicture_1", "picAtari_0", "picAtari_8",
          "imgFloppy_1", "txtFloppy_3", "imgDefault"})
        EXPECT_NE(form->findChild<QWidget*>(name), nullptr) << name;
    EXPECT_EQ(form->chkOSType[2]->text(), "XL / XE");
    EXPECT_EQ(form->cmbRAM->itemText(7), "320 K (compy)");
    EXPECT_EQ(form->cmbRAM->itemData(7).toInt(), 321);
    EXPECT_EQ(form->cmbRAM->itemData(8).toInt(), 320);
    ASSERT_EQ(form->cmbResCart->count(), 2);
    EXPECT_EQ(form->cmbResCart->itemText(0), "No Cartridge");
    EXPECT_EQ(form->cmbResCart->itemText(1), "Action!");
    EXPECT_EQ(form->cmbResCart->currentIndex(), -1) << "nothing is chosen at start";
    EXPECT_TRUE(world.fake().registry.writes.empty()) << "filling the list hands nothing over";
}

TEST_F(OptionPanelTest, StoredMemoryWinsOverTheMachineRule) {
    select(0);
    EXPECT_EQ(checkedBox(), 0);
    EXPECT_EQ(shownMachine(), 0);
    EXPECT_EQ(form->cmbRAM->currentText(), "64 K");
    EXPECT_EQ(form->chkBasic->text(), "Basic On");
    EXPECT_EQ(form->chkNTSC->text(), "PAL");
    EXPECT_EQ(form->cmbArtifact->currentText(), "GTIA");
    EXPECT_EQ(form->cmbStretch->currentText(), "Smooth");
    EXPECT_TRUE(form->frame8Bit->isVisibleTo(form.get()));
    EXPECT_FALSE(form->frameAtari->isVisibleTo(form.get()));
}

TEST_F(OptionPanelTest, MachineClicksKeepOneBoxAndTheMemoryInLine) {
    select(4); // XL/XE, 1088 K
    EXPECT_EQ(form->cmbRAM->currentText(), "1088 K");
    form->chkOSType[0]->click();
    EXPECT_EQ(checkedBox(), 0);
    EXPECT_EQ(form->cmbRAM->currentText(), "48 K");
    form->chkOSType[2]->click();
    EXPECT_EQ(checkedBox(), 2);
    EXPECT_EQ(shownMachine(), 2);
    EXPECT_EQ(form->cmbRAM->currentText(), "64 K");
    form->chkOSType[2]->click(); // the box that is set: cleared and set again
    EXPECT_EQ(checkedBox(), 2);
    form->cmbRAM->setCurrentIndex(2); // 16 K
    form->chkOSType[1]->click();
    EXPECT_EQ(form->cmbRAM->currentText(), "16 K");
    form->chkBasic->click();
    form->chkNTSC->click();
    EXPECT_EQ(form->chkBasic->text(), "Basic On");
    EXPECT_EQ(form->chkNTSC->text(), "PAL");
}

TEST_F(OptionPanelTest, OtherFamiliesShowTheirMachine) {
    select(0);
    select(1);
    EXPECT_FALSE(form->frame8Bit->isVisibleTo(form.get()));
    EXPECT_EQ(shownMachine(), 3);
    EXPECT_EQ(checkedBox(), 0) << "the boxes are left alone";
    select(2);
    EXPECT_EQ(shownMachine(), 5);
    EXPECT_TRUE(form->cmdSnapPicture[1]->isVisibleTo(form.get()));
    select(3); // no family: the panel of the row before stays, without its picture or button
    EXPECT_TRUE(form->frameAtari->isVisibleTo(form.get()));
    EXPECT_EQ(shownMachine(), -1);
    EXPECT_FALSE(form->cmdSnapPicture[1]->isVisibleTo(form.get()));
    EXPECT_EQ(form->txtName->text(), "D Read Me");
}

TEST_F(OptionPanelTest, PicturesOwnStockAndUndecodable) {
    QImage red(32, 16, QImage::Format_RGB32);
    red.fill(Qt::red);
    QDir().mkpath(world.path("ProgramImages/Games"));
    ASSERT_TRUE(red.save(world.path("ProgramImages/Games/A Archon.jpg"), "JPG"));
    world.writeFile("ProgramImages/Games/B Oids.jpg", "not a picture at all");
    const QImage stock = form->imgDefault->pixmap().toImage();
    select(1);
    EXPECT_EQ(shownPicture(), stock) << "an undecodable file shows the stock picture";
    select(0);
    EXPECT_EQ(shownPicture().size(), QSize(32, 16));
    select(2);
    EXPECT_EQ(shownPicture(), stock) << "the picture before never stays";
}

TEST_F(OptionPanelTest, ResidentCartridgeChoiceWritesTheRegistry) {
    form->cmbResCart->setCurrentIndex(1);
    form->cmbResCart_Click();
    EXPECT_EQ(
        world.fake().registry.briefs(),
        (std::vector<QString>{"fileRomCartridge=" + world.path("carts/Action!.rom"),
                              "fileRomCurrent=" + world.path("carts/Action!.rom"), "sysCartType=dword:0"}));
}

TEST_F(OptionPanelTest, DoubleClickLaunchesWithTheControlsDisplayModes) {
    world.fake().associations.extensions = {{"xex", "emu %f"}};
    select(0);
    form->cmbArtifact->setCurrentIndex(1); // changed, not saved: still counts
    form->cmbResCart->setCurrentIndex(1);  // a cartridge chosen: the launch leaves it
    QTest::keyClick(form->prgList, Qt::Key_Return);
    const auto writes = world.fake().registry.briefs();
    EXPECT_NE(std::find(writes.begin(), writes.end(), "screenArtifactMode=dword:1"), writes.end());
    EXPECT_NE(std::find(writes.begin(), writes.end(), "sysRAMSizeOSA=dword:64"), writes.end());
    EXPECT_EQ(
        std::count_if(writes.begin(), writes.end(), [](const QString& w) { return w.startsWith("fileRom"); }),
        0);
    EXPECT_EQ(world.fake().processes.started.size(), 1u);
    EXPECT_EQ(form->lastProgramName(), "A Archon");
}
