#include "MachineOptions.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(MachineOptions, ListRowsAndData) {
    std::vector<QString> texts;
    std::vector<int> data;
    for (const auto& item : ramItems()) {
        texts.push_back(item.text);
        data.push_back(item.data);
    }
    EXPECT_EQ(texts, (std::vector<QString>{"4 K", "8 K", "16 K", "32 K", "48 K", "64 K", "128 K",
                                           "320 K (compy)", "320 K (rambo)", "576 K", "1088 K"}));
    EXPECT_EQ(data, (std::vector<int>{4, 8, 16, 32, 48, 64, 128, 321, 320, 576, 1088}));
    EXPECT_EQ(artifactItems(), (QStringList{"None", "Blue/Brown 1", "Blue/Brown 2", "GTIA", "CTIA"}));
    EXPECT_EQ(stretchItems(), (QStringList{"Normal", "Smooth", "Scan Lines"}));
}

TEST(MachineOptions, LeadingNumber) {
    EXPECT_EQ(leadingNumber("320 K (compy)"), 320);
    EXPECT_EQ(leadingNumber("1088 K"), 1088);
    EXPECT_EQ(leadingNumber("K 48"), 0);
    EXPECT_EQ(leadingNumber(""), 0);
    EXPECT_EQ(leadingNumber("99999999999999 K"), 999999999) << "a long number does not overflow";
}

TEST(MachineOptions, MemoryFollowsTheMachine) {
    struct Case {
        int box;
        const char* ram;
        std::optional<int> row;
    } cases[] = {
        {0, "64 K", 4},          {1, "1088 K", 4},  {1, "48 K", std::nullopt}, {1, "16 K", std::nullopt},
        {2, "48 K", 5},          {2, "4 K", 5},     {2, "64 K", std::nullopt}, {2, "1088 K", std::nullopt},
        {0, "320 K (compy)", 4}, {2, "garbage", 5},
    };
    for (const auto& c : cases)
        EXPECT_EQ(memoryIndexForMachine(c.box, c.ram), c.row) << c.box << " " << c.ram;
}

TEST(MachineOptions, ResidentCartridgeIsWrittenAtOnce) {
    TestWorld world;
    world.makeCatalogue();
    int action = 0;
    int numeric = 0;
    {
        auto c = world.open();
        action = c->addCartridge("Action!", "/atari/carts/Action!.rom");
        numeric = c->addCartridge("Odd", "1234");
    }
    FakeRegistry& registry = world.fake().registry;
    cmbResCart_Click(registry, world.path("Atari.mdb"), action);
    cmbResCart_Click(registry, world.path("Atari.mdb"), 0);
    cmbResCart_Click(registry, world.path("Atari.mdb"), numeric);
    EXPECT_EQ(registry.briefs(),
              (std::vector<QString>{
                  "fileRomCartridge=/atari/carts/Action!.rom", "fileRomCurrent=/atari/carts/Action!.rom",
                  "sysCartType=dword:0", "fileRomCartridge=", "fileRomCurrent=", "sysCartType=dword:0",
                  "fileRomCartridge=dword:1234", "fileRomCurrent=dword:1234", "sysCartType=dword:0"}));
}
