#include "RegistryFile.h"
#include "AssociationTable.h"
#include "TestWorld.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

const QString kKey = "HKEY_CURRENT_USER\\Software\\Atari800WinPLus";

TEST(RegistryFile, WrittenWholeWithTypesAndFirstWriteOrderButNeverOverAnUnreadableFile) {
    TestWorld world;
    LinuxRegistry registry;
    registry.setDword(kKey, "sysTVMode", 262);
    registry.setString(kKey, "pathDiskDrive1", "/atari/Games/\"Quoted\" \\ name.atr");
    registry.setString(kKey, "fileTape", "");
    registry.setDword(kKey, "SYSTVMODE", 312); // names ignore case: the value changes in place
    const QString path = world.path("config/quaylight/registry.reg");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()),
              "REGEDIT4\n\n"
              "[HKEY_CURRENT_USER\\Software\\Atari800WinPLus]\n"
              "\"sysTVMode\"=dword:00000138\n"
              "\"pathDiskDrive1\"=\"/atari/Games/\\\"Quoted\\\" \\\\ name.atr\"\n"
              "\"fileTape\"=\"\"\n");
    EXPECT_EQ(QDir(world.path("config/quaylight")).entryList(QDir::Files), QStringList{"registry.reg"})
        << "no temporary file is left behind";

    const RegistryFile read = RegistryFile::load(path);
    EXPECT_EQ(read.dword(kKey, "sysTVMode"), 312u);
    EXPECT_EQ(read.text(kKey, "pathDiskDrive1"), "/atari/Games/\"Quoted\" \\ name.atr");

    // A file that cannot be read (a folder cannot, even by root) is never replaced.
    ASSERT_TRUE(QFile::remove(path) && QDir().mkpath(path));
    EXPECT_THROW(registry.setDword(kKey, "sysTVMode", 262), std::runtime_error);
    EXPECT_TRUE(QFileInfo(path).isDir());
}

// Lines the program does not read are the user's: a write keeps them in their place.
TEST(RegistryFile, HandEditedLinesAreKeptAsTheyStand) {
    RegistryFile file = RegistryFile::parse("REGEDIT4\r\n\r\n; mine\r\n\"orphan\"=\"x\"\r\n[" + kKey +
                                            "]\r\n\"bad\"=dword:zz\r\nnonsense\r\n\"ok\"=dword:0000000a\r\n"
                                            "\"open\"=\"no end\r\n\"bin\"=hex:01,02\r\n@=\"default\"\r\n");
    EXPECT_EQ(file.dword(kKey, "ok"), 10u);
    for (const char* unread : {"bad", "open", "orphan", "bin"})
        EXPECT_FALSE(file.value(kKey, unread)) << unread;
    file.set(kKey, "ok", std::uint32_t{11});
    file.set(kKey, "new", QString("n"));
    EXPECT_EQ(file.text(), "REGEDIT4\n; mine\n\"orphan\"=\"x\"\n\n[" + kKey +
                               "]\n\"bad\"=dword:zz\nnonsense\n\"ok\"=dword:0000000b\n"
                               "\"open\"=\"no end\n\"bin\"=hex:01,02\n@=\"default\"\n\"new\"=\"n\"\n");
}

TEST(AssociationTable, SectionsCaseAndComments) {
    const AssociationTable table =
        AssociationTable::parse("; comment\n[Associations]\nATR = emu %f\n.xex=run\n"
                                "# x=y\n[Programs]\nAtari800='/opt/my emu'\n[Other]\n"
                                "lnx=nope\n");
    EXPECT_EQ(table.commandFor("ATR"), "emu %f"); // both sides lower-cased
    EXPECT_EQ(table.commandFor("xex"), "run");
    EXPECT_EQ(table.commandFor("lnx"), "");
    EXPECT_EQ(table.program("atari800"), "'/opt/my emu'");
}
