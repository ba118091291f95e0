// What a launch leaves in the registry file is what the emulator stand-in reads when it starts; a
// key or a value name that drifted on either side would leave the stand-in showing "(not set)".
#include "EmulatorState.h"
#include "LaunchPipeline.h"
#include "RegistryFile.h"
#include "StringFuncs.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(EmulatorStandIn, ShowsWhatTheLaunchWrote) {
    struct Case {
        const char* file;
        int machineType, memory, video, type;
        bool basic;
        QStringList expected;
    };
    const Case cases[] = {
        {"/atari/Games/Star Raiders.atr",
         1,
         48,
         262,
         1,
         false,
         {"Machine:    400/800 OS B", "BASIC:      off", "Video:      NTSC", "Memory:     48 K",
          "Artifacts:  2", "Stretch:    1", "Cartridge:  (empty) (type 0)", "D1:         Off",
          "D2:         Off", "D3:         Off", "D4:         Off"}},
        {"/atari/Games/Alternate Reality (Disk 1).atr",
         2,
         128,
         312,
         2,
         true,
         {"Machine:    XL/XE", "BASIC:      on", "Video:      PAL", "Memory:     128 K", "Artifacts:  2",
          "Stretch:    1", "Cartridge:  (empty) (type 0)", "D1:         Alternate Reality (Disk 1).atr",
          "D2:         Alternate Reality (Disk 2).atr", "D3:         Off", "D4:         Off"}},
        {"/atari/5200/Pac-Man.a52", 1, 48, 262, 5, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        TestWorld world;
        ProgramRecord r = program("Games", "P", c.file);
        r.machineType = c.machineType;
        r.memory = c.memory;
        r.video = c.video;
        r.type = c.type;
        r.basic = c.basic;
        r.fileName2 = c.type == 2 ? "/atari/Games/Alternate Reality (Disk 2).atr" : "";
        r.fileName3 = r.fileName4 = "";
        LinuxRegistry registry;
        writeLaunchRegistry(registry, r, {2, 1, 0});

        const auto state = emu::emulatorState(RegistryFile::load(registryFilePath()), {"-windowed", c.file});
        EXPECT_EQ(state.file, c.file);
        EXPECT_TRUE(state.windowed);
        if (c.type == 5) {
            EXPECT_EQ(state.machine, "5200");
            EXPECT_EQ(state.lines.at(1), "BASIC:      off");
        } else {
            EXPECT_EQ(state.lines, c.expected);
        }
        // The title the picture and disk commands look for.
        EXPECT_TRUE(emu::windowTitleFor(c.file).startsWith("Atari800Win Plus 4.0:"));
        EXPECT_TRUE(emu::windowTitleFor(c.file).endsWith(GetFileName(c.file)));
    }
}
