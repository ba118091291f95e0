#include "TestWorld.h"
#include "basRegistry.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

// Numbers, in any of the forms Basic reads, become DWORDs; only blanks are trimmed.
TEST(SaveRegistryValue, StoresByTheLookOfTheValue) {
    const struct {
        QVariant value;
        const char* expected;
    } cases[] = {
        {48, "v=dword:48"},
        {" 1088 ", "v=dword:1088"},
        {"-1", "v=dword:4294967295"},
        {"&H10", "v=dword:16"},
        {"2.5", "v=dword:2"},
        {"12abc", "v=12abc"},
        {"99999999999", "v=99999999999"},
        {"  /a/Action!.rom  ", "v=/a/Action!.rom"},
        {{}, "v="},
        {"\t12\n", "v=\t12\n"},
    };
    for (const auto& c : cases) {
        FakeRegistry registry;
        SaveRegistryValue(registry, HKEY_CURRENT_USER, kEmulatorKey, "v", c.value);
        ASSERT_EQ(registry.writes.size(), 1u);
        EXPECT_EQ(registry.writes[0].brief(), c.expected) << c.value.toString().toStdString();
    }
    FakeRegistry registry;
    SaveRegistryValue(registry, HKEY_LOCAL_MACHINE, "Software\\X", "v", 1);
    EXPECT_EQ(registry.writes.at(0).keyPath, "HKEY_LOCAL_MACHINE\\Software\\X");
}
