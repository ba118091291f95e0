// Disk sets: the drive slots loaded from a row, the keys that hand a dropped disk to the emulator,
// and the row that "Save settings and run" makes of them.
#include "DiskSlots.h"
#include "SaveSettings.h"
#include "Snapshot.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {
using P = DiskSlot::Picture;
} // namespace

TEST(DiskSlots, LoadedFromTheClickedRow) {
    TestWorld world;
    world.makeCatalogue();
    const DiskSlot blank{P::Off, " ", " "};
    const struct {
        const char* file1;
        const char* file2;
        std::array<DiskSlot, 4> drives;
    } cases[] = {
        {"/a/Game.xex", "/a/Other.atr", {{{P::Exe, "", ""}, {}, {}, {}}}},
        {"/a/AR (Disk 1).ATR",
         "/a/AR (Disk 2).atr",
         {{{P::Disk, "AR (Disk 1).ATR", "/a/AR (Disk 1).ATR"},
           {P::Off, "AR (Disk 2).atr", "/a/AR (Disk 2).atr"},
           blank,
           blank}}},
        {"/my.atr files/Demo.xfd", "", {{{P::Disk, "Demo.xfd", "/my.atr files/Demo.xfd"}, {}, blank, blank}}},
    };
    for (const auto& c : cases) {
        ProgramRecord r = program("Games", "X", c.file1);
        r.fileName2 = c.file2;
        const int code = world.open()->addProgram(r);
        EXPECT_EQ(slotsForProgram(world.path("Atari.mdb"), code), c.drives) << c.file1;
        EXPECT_EQ(slotForDrop(world.path("Atari.mdb"), code)->picture, c.drives[0].picture) << c.file1;
    }
    EXPECT_EQ(slotsForProgram(world.path("Atari.mdb"), 999), std::nullopt);
}

TEST(DiskSlots, DropHandsTheDiskToARunningEmulatorOnly) {
    for (bool running : {true, false}) {
        TestWorld world;
        FakeHost& fake = world.fake();
        if (running) fake.windows.titles = {kEmulatorTitle + " AR (Disk 1).atr"};
        const double before = fake.clock.time;
        attachDiskToEmulator(fake.host(), "/a/AR (Disk 2)+{x}.atr");
        const QString activate = "activate " + kEmulatorTitle;
        const std::vector<QString> sent = {activate,       "keys %1", "keys /a/AR {(}Disk 2{)}{+}{{}x{}}.atr",
                                           "keys {ENTER}", activate,  "keys {ENTER}"};
        EXPECT_EQ(fake.journal, running ? sent : std::vector<QString>{});
        EXPECT_GE(fake.clock.time - before, running ? 1.0 : 0.0);
    }
}

TEST(SaveSettings, DiskSetType) {
    const struct {
        std::array<QString, 4> tags;
        int type;
    } cases[] = {
        {{"/a/G.dcm", "/a/G2.atr", "", ""}, 0},     // no ".atr" in slot 1: no disk set
        {{"/a/G.atr", "", "/a/G3.atr", ""}, 1},     // a gap ends the count
        {{"/x.ATR/G.xfd", "/a/G2.xfd", "", ""}, 2}, // ".atr" anywhere, any case
        {{"/a/G.atr", " ", " ", " "}, 4},           // a rebuild's blanks are not empty
    };
    for (const auto& c : cases)
        EXPECT_EQ(diskSetType(c.tags), c.type) << c.tags[0].toStdString();
}

TEST(SaveSettings, TheRowTakesThePanelOnlyWithARowAndAMemorySize) {
    TestWorld world;
    world.makeCatalogue();
    const QString mdb = world.path("Atari.mdb");
    ProgramRecord r = program("Games", "Old", "/a/G.atr");
    r.machineType = 0;
    r.rating = 3;
    r.tabNumber = 4;
    const int code = world.open()->addProgram(r);
    PanelSettings s{
        std::nullopt, true, "Two disks", "New", false, std::nullopt, 2, 1, {"/x/G.atr", "/a/G2.atr", "", ""}};
    EXPECT_FALSE(saveProgramSettings(mdb, code, s)) << "no memory chosen";
    s.memory = 128;
    EXPECT_FALSE(saveProgramSettings(mdb, 0, s));
    EXPECT_FALSE(saveProgramSettings(mdb, code + 1, s));
    EXPECT_EQ(world.open()->programByCode(code)->name, "Old");
    ASSERT_TRUE(saveProgramSettings(mdb, code, s));
    const ProgramRecord saved = *world.open()->programByCode(code);
    // No machine box set: the stored machine stays. Slot 1 is the program's own file, never changed.
    EXPECT_EQ(std::tie(saved.machineType, saved.basic, saved.video, saved.memory, saved.artifact,
                       saved.stretch, saved.type),
              std::make_tuple(0, true, 312, 128, 2, 1, 2));
    EXPECT_EQ(std::make_tuple(saved.name, saved.description.toString(), saved.fileName1, saved.fileName2,
                              saved.fileName3, saved.fileName4),
              std::make_tuple(QString("New"), QString("Two disks"), QString("/a/G.atr"), QString("/a/G2.atr"),
                              QString(), QString()));
    EXPECT_EQ(std::tie(saved.rating, saved.tabNumber, saved.category),
              std::make_tuple(3, 4, QString("Games")));
}
