#include "TestWorld.h"
#include "basRegistry.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

struct ValueCase {
    QVariant value;
    QString expected; // as RegistryWrite::brief gives it
};

class SaveRegistryValueTest : public ::testing::TestWithParam<ValueCase> {};

TEST_P(SaveRegistryValueTest, StoresByTheLookOfTheValue) {
    FakeRegistry registry;
    SaveRegistryValue(registry, HKEY_CURRENT_USER, kEmulatorKey, "v", GetParam().value);
    ASSERT_EQ(registry.writes.size(), 1u);
    EXPECT_EQ(registry.writes[0].keyPath, "HKEY_CURRENT_USER\\Software\\Atari800WinPLus");
    EXPECT_EQ(registry.writes[0].brief(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, SaveRegistryValueTest,
    ::testing::Values(ValueCase{48, "v=dword:48"}, ValueCase{QString("262"), "v=dword:262"},
                      ValueCase{QString(" 1088 "), "v=dword:1088"}, ValueCase{-1, "v=dword:4294967295"},
                      ValueCase{QString("-1"), "v=dword:4294967295"},
                      ValueCase{QString("1e2"), "v=dword:100"}, ValueCase{QString("&H10"), "v=dword:16"},
                      ValueCase{QString("2.5"), "v=dword:2"}, ValueCase{QString("12abc"), "v=12abc"},
                      ValueCase{QString("99999999999"), "v=99999999999"},
                      ValueCase{QString("  /atari/carts/Action!.rom  "), "v=/atari/carts/Action!.rom"},
                      ValueCase{QString("Off"), "v=Off"}, ValueCase{QString(""), "v="},
                      ValueCase{QString(" "), "v="}, ValueCase{QVariant(), "v="},
                      ValueCase{QString("/a/file.atr\t"), "v=/a/file.atr\t"},
                      ValueCase{QString("\t12\n"), "v=\t12\n"}));

TEST(SaveRegistryValue, OtherRootsNameTheirKey) {
    FakeRegistry registry;
    SaveRegistryValue(registry, HKEY_LOCAL_MACHINE, "Software\\X", "v", 1);
    EXPECT_EQ(registry.writes.at(0).keyPath, "HKEY_LOCAL_MACHINE\\Software\\X");
}

} // namespace
