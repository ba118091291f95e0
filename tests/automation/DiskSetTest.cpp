// Disk sets: the drive slots loaded from a row, the keys that hand a dropped disk to the emulator,
// and the row and launch that "Save settings and run" makes of them.
#include "DiskSlots.h"
#include "LaunchPipeline.h"
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
    const struct {
        const char* file1;
        const char* file2;
        std::array<DiskSlot, 4> drives;
    } cases[] = {
        {"/a/Game.xex",
         "/a/Other.atr",
         {{{P::Exe, "", ""}, {P::Off, "", ""}, {P::Off, "", ""}, {P::Off, "", ""}}}},
        {"/a/AR (Disk 1).ATR",
         "/a/AR (Disk 2).atr",
         {{{P::Disk, "AR (Disk 1).ATR", "/a/AR (Disk 1).ATR"},
           {P::Off, "AR (Disk 2).atr", "/a/AR (Disk 2).atr"},
           {P::Off, " ", " "},
           {P::Off, " ", " "}}}},
        {"/a/Demo.dcm", " ", {{{P::Exe, "", ""}, {P::Off, "", ""}, {P::Off, "", ""}, {P::Off, "", ""}}}},
        {"/my.atr files/Demo.xfd",
         "",
         {{{P::Disk, "Demo.xfd", "/my.atr files/Demo.xfd"}, {}, {P::Off, " ", " "}, {P::Off, " ", " "}}}},
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
        const std::vector<QString> sent = {"activate " + kEmulatorTitle,
                                           "keys %1",
                                           "keys /a/AR {(}Disk 2{)}{+}{{}x{}}.atr",
                                           "keys {ENTER}",
                                           "activate " + kEmulatorTitle,
                                           "keys {ENTER}"};
        EXPECT_EQ(fake.journal, running ? sent : std::vector<QString>{});
        EXPECT_GE(fake.clock.time - before, running ? 1.0 : 0.0);
    }
}

TEST(SaveSettings, TypeRowAndLaunch) {
    const struct {
        const char* name;
        std::array<QString, 4> tags;
        int type;
        std::vector<QString> drives; // pathDiskDrive values at the launch
    } cases[] = {
        {"executable",
         {"/a/Game.xex", "", "", ""},
         0,
         {"Off", "Off", "Off", "Off", "Off", "Off", "Off", "Off"}},
        {"one disk", {"/a/G.atr", "", "", ""}, 1, {"Off", "Off", "Off", "Off", "Off", "Off", "Off", "Off"}},
        {"second disk dropped",
         {"/a/G1.atr", "/a/G2.atr", "", ""},
         2,
         {"/a/G1.atr", "/a/G2.atr", "Off", "Off"}},
        {"rebuild's blanks", {"/a/G.atr", " ", " ", " "}, 4, {"/a/G.atr", "", "", ""}},
        {"gap ends the count",
         {"/a/G.atr", "", "/a/G3.atr", ""},
         1,
         {"Off", "Off", "Off", "Off", "Off", "Off", "Off", "Off"}},
        {"dcm image",
         {"/a/G.dcm", "/a/G2.atr", "", ""},
         0,
         {"Off", "Off", "Off", "Off", "Off", "Off", "Off", "Off"}},
        {"folder named .atr",
         {"/x.ATR/G.xfd", "/a/G2.xfd", "", ""},
         2,
         {"/x.ATR/G.xfd", "/a/G2.xfd", "Off", "Off"}},
    };
    for (const auto& c : cases) {
        TestWorld world;
        world.makeCatalogue();
        ProgramRecord r = program("Games", "Old", c.tags[0]);
        r.rating = 3;
        r.tabNumber = 4;
        const int code = world.open()->addProgram(r);
        PanelSettings s{2, true, "Two disks", "New", false, 128, 2, 1, c.tags};
        ASSERT_TRUE(saveProgramSettings(world.path("Atari.mdb"), code, s)) << c.name;
        const ProgramRecord saved = *world.open()->programByCode(code);
        EXPECT_EQ(saved.type, c.type) << c.name;
        EXPECT_EQ(std::tie(saved.machineType, saved.basic, saved.video, saved.memory, saved.artifact,
                           saved.stretch),
                  std::make_tuple(2, true, 312, 128, 2, 1))
            << c.name;
        EXPECT_EQ(std::tie(saved.name, saved.fileName1, saved.fileName2, saved.fileName4),
                  std::tie(s.name, r.fileName1, c.tags[1], c.tags[3]))
            << c.name;
        EXPECT_EQ(saved.description.toString(), "Two disks");
        EXPECT_EQ(std::tie(saved.rating, saved.tabNumber, saved.category),
                  std::make_tuple(3, 4, QString("Games")));

        writeLaunchRegistry(world.fake().registry, saved, {});
        std::vector<QString> drives;
        for (const auto& w : world.fake().registry.writes)
            if (w.name.startsWith("pathDiskDrive")) drives.push_back(w.text);
        EXPECT_EQ(drives, c.drives) << c.name;
    }
}

TEST(SaveSettings, NothingWithoutARowOrAMemorySize) {
    TestWorld world;
    world.makeCatalogue();
    const int code = world.open()->addProgram(program("Games", "Keep", "/a/G.atr"));
    PanelSettings s;
    s.name = "Changed";
    EXPECT_FALSE(saveProgramSettings(world.path("Atari.mdb"), code, s)); // no memory chosen
    s.memory = 48;
    EXPECT_FALSE(saveProgramSettings(world.path("Atari.mdb"), 0, s));
    EXPECT_FALSE(saveProgramSettings(world.path("Atari.mdb"), code + 1, s));
    EXPECT_EQ(world.open()->programByCode(code)->name, "Keep");
    EXPECT_EQ(world.open()->programByCode(code)->machineType, 1); // no box set: the stored value stays
    EXPECT_TRUE(saveProgramSettings(world.path("Atari.mdb"), code, s));
    EXPECT_EQ(world.open()->programByCode(code)->machineType, 1);
}
