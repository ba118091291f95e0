#include "MachineOptions.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

// The memory box follows the machine box; a long number must not overflow into a small one.
TEST(MachineOptions, MemoryFollowsTheMachine) {
    const struct {
        int box;
        const char* ram;
        std::optional<int> row;
    } cases[] = {
        {0, "64 K", 4},    {1, "1088 K", 4},          {1, "48 K", std::nullopt}, {2, "48 K", 5},
        {2, "garbage", 5}, {2, "64 K", std::nullopt}, {0, "K 64", std::nullopt}, {1, "99999999999999 K", 4}};
    for (const auto& c : cases)
        EXPECT_EQ(memoryIndexForMachine(c.box, c.ram), c.row) << c.box << " " << c.ram;
}

TEST(MachineOptions, ResidentCartridgeIsWrittenAtOnce) {
    TestWorld world;
    world.makeCatalogue();
    const int action = world.open()->addCartridge("Action!", "/atari/Action!.rom");
    const int numeric = world.open()->addCartridge("Odd", "1234");
    FakeRegistry& registry = world.fake().registry;
    for (int code : {action, 0, numeric})
        cmbResCart_Click(registry, world.path("Atari.mdb"), code);
    EXPECT_EQ(registry.briefs(),
              (std::vector<QString>{
                  "fileRomCartridge=/atari/Action!.rom", "fileRomCurrent=/atari/Action!.rom",
                  "sysCartType=dword:0", "fileRomCartridge=", "fileRomCurrent=", "sysCartType=dword:0",
                  "fileRomCartridge=dword:1234", "fileRomCurrent=dword:1234", "sysCartType=dword:0"}));
}
