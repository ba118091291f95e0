// What a launch leaves in the registry file is what the emulator stand-in reads when it starts; a
// key or a value name that drifted on either side would leave the stand-in showing "(not set)".
#include "EmulatorState.h"
#include "LaunchPipeline.h"
#include "RegistryFile.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(EmulatorStandIn, ShowsWhatTheLaunchWrote) {
    TestWorld world;
    ProgramRecord r = program("Games", "AR", "/atari/Games/AR (Disk 1).atr");
    r.machineType = 2;
    r.memory = 128;
    r.video = 312;
    r.type = 2;
    r.basic = true;
    r.fileName2 = "/atari/Games/AR (Disk 2).atr";
    r.fileName3 = r.fileName4 = "";
    LinuxRegistry registry;
    writeLaunchRegistry(registry, r, {2, 1, 0});

    const auto state = emu::emulatorState(RegistryFile::load(registryFilePath()), {"-windowed", r.fileName1});
    EXPECT_EQ(state.file, r.fileName1);
    EXPECT_TRUE(state.windowed);
    EXPECT_EQ(state.machine, "XL/XE");
    EXPECT_FALSE(state.lines.join('\n').contains("(not set)")) << state.lines.join('\n').toStdString();
    for (const char* shown : {"BASIC:      on", "Video:      PAL", "Memory:     128 K", "Artifacts:  2",
                              "D2:         AR (Disk 2).atr", "D3:         Off"})
        EXPECT_TRUE(state.lines.contains(shown)) << shown;
    // The title the picture and disk commands look for.
    EXPECT_EQ(emu::windowTitleFor(r.fileName1), "Atari800Win Plus 4.0: AR (Disk 1).atr");
}
