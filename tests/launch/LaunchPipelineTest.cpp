#include "LaunchPipeline.h"
#include "StringFuncs.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

const QString kTail = "exit\n\n\n\n\n";

ProgramRecord row(const QString& name, const QString& file, int type = 0) {
    ProgramRecord r = program("Games", name, file);
    r.type = type;
    return r;
}

// Filename2 to 4 are as a rebuild leaves them: one blank each, unless given.
ProgramRecord rec(const char* file, int type, int machine, int memory, int video, bool basic,
                  const QString& file2 = " ", const QString& files34 = " ") {
    ProgramRecord r = row("Demo", file, type);
    r.machineType = machine, r.memory = memory, r.video = video, r.basic = basic;
    r.fileName2 = file2, r.fileName3 = r.fileName4 = files34;
    return r;
}

} // namespace

// The values of one launch in the order written, as "name=value" joined by blanks.
TEST(LaunchRegistry, ValuesByClassTypeAndMachine) {
    QString off;
    for (int i = 1; i <= 8; ++i)
        off += QString("pathDiskDrive%1=Off ").arg(i);
    const QString noCart = " fileRomCartridge= fileRomCurrent= sysCartType=dword:0";
    const struct {
        ProgramRecord record;
        LaunchControls controls;
        QString expected;
    } cases[] = {
        {rec("/a/Demo.xex", 0, 2, 128, 312, true),
         {3, 2, -1},
         "sysDisableBasic=dword:0 sysMachineType=dword:2 " + off +
             "sysTVMode=dword:312 sysRAMSizeXLXE=dword:128 " +
             "screenArtifactMode=dword:3 screenStretchMode=dword:2" + noCart + " fileTape="},
        // Type 1 is no disk set; cartridge 0 is none.
        {rec("/a/Demo.atr", 1, 0, 48, 262, false),
         {0, 0, 0},
         "sysDisableBasic=dword:1 sysMachineType=dword:0 " + off +
             "sysTVMode=dword:262 sysRAMSizeOSA=dword:48 " +
             "screenArtifactMode=dword:0 screenStretchMode=dword:0" + noCart + " fileTape="},
        // Empty fields go off, drives 5 to 8 are left alone; a chosen cartridge stays.
        {rec("/a/AR1.atr", 2, 1, 64, 262, false, "/a/AR2.atr", ""),
         {1, 1, 2},
         "sysDisableBasic=dword:1 sysMachineType=dword:1 pathDiskDrive1=/a/AR1.atr pathDiskDrive2=/a/AR2.atr "
         "pathDiskDrive3=Off pathDiskDrive4=Off sysTVMode=dword:262 sysRAMSizeOSB=dword:64 "
         "screenArtifactMode=dword:1 screenStretchMode=dword:1 fileTape="},
        // A blank is trimmed to an empty path, never "Off"; machine 7 has no memory value name.
        {rec("/a/Pitfall!.a26", 3, 7, 64, 262, false),
         {1, 1, 1},
         "sysDisableBasic=dword:1 sysMachineType=dword:7 pathDiskDrive1=/a/Pitfall!.a26 pathDiskDrive2= "
         "pathDiskDrive3= pathDiskDrive4= sysTVMode=dword:262 screenArtifactMode=dword:1 "
         "screenStretchMode=dword:1 fileTape="},
        {rec("/a/Demo.A52", 0, 2, 64, 312, true),
         {3, 2, 0},
         "sysDisableBasic=dword:1 sysMachineType=dword:3 sysCartType=dword:7"},
        {rec("/a/DEMO.LST", 0, 2, 64, 262, true), {}, ""},
    };
    for (const auto& c : cases) {
        FakeRegistry registry;
        writeLaunchRegistry(registry, c.record, c.controls);
        QStringList briefs;
        for (const auto& w : registry.writes) {
            EXPECT_EQ(w.keyPath, "HKEY_CURRENT_USER\\Software\\Atari800WinPLus");
            briefs << w.brief();
        }
        EXPECT_EQ(briefs.join(' '), c.expected) << c.record.fileName1.toStdString();
    }
}

TEST(LaunchScript, EachClassAndSetting) {
    FakeAssociations associations;
    associations.extensions = {{"atr", "emu %f"}, {"bin", "emu %f"}, {"xex", "emu --run"}};
    associations.programs = {{"Atari800", "basic-emu"}};
    const struct {
        const char* name;
        const char* file;
        const char* atariDir;
        const char* version;
        QString expected;
    } cases[] = {
        {"Demo", "/a/B/Demo.bas", "/a", "98", "\ncd -- '/a/'\nbasic-emu -windowed '/a/B/Demo.bas'\n"},
        {"Demo", "/a/Demo.a52", "/", "98",
         "\ncp -- '/a/Demo.a52' '/run5200.bin'\ncd -- '/'\nemu 'run5200.bin' &\n"},
        {"Demo", "/a/Demo.atr", "/a", "XP", "emu '/a/Demo.atr'\n"},
        {"Demo", "/a/Demo.atr", "/a", "98", "emu '/a/Demo.atr' &\n"},
        // Name not in the path (the search is case-sensitive): the Name stands in for the base name.
        {"Demo", "/a/demo.atr", "/a", "XP", "emu '/a/Demo.atr'\n"},
        {"", "/a/x.atr", "/a", "XP", "emu '/a/x.atr'\n"},
        // No %f: the file goes at the end. No association: xdg-open. Only the last four characters
        // make a listing.
        {"Numen", "/a/Numen.xex", "/a", "XP", "emu --run '/a/Numen.xex'\n"},
        {"Read Me", "/a/Read Me.txt", "/a", "XP", "xdg-open '/a/Read Me.txt'\n"},
        {"x", "/a/x.basic", "/a", "XP", "xdg-open '/a/x.basic'\n"},
        // Without a dot the extension is the whole text, carried behind the dot all the same.
        {"Readme", "/a/README", "/a", "XP", "xdg-open '/a/Readme./a/README'\n"},
    };
    for (const auto& c : cases) {
        const QByteArray text =
            launchScriptText(launchScriptLines(row(c.name, c.file), c.atariDir, c.version, associations));
        EXPECT_EQ(QString::fromUtf8(text), c.expected + kTail) << c.file << " " << c.version;
    }
    FakeAssociations none; // a listing with no emulator named runs the one in the Atari folder
    EXPECT_EQ(launchScriptLines(row("Demo", "/a/Demo.bas"), "/a/", "XP", none).at(2),
              "./Atari800 -windowed '/a/Demo.bas'");
}

TEST(Launch, WritesRegistryThenScriptThenStartsIt) {
    TestWorld world;
    world.makeCatalogue();
    world.open()->addProgram(row("Other", "/atari/Other.xex"));
    const int code = world.open()->addProgram(row("Demo", world.path("Games/Demo.atr")));
    FakeHost& fake = world.fake();
    fake.associations.extensions = {{"atr", "emu %f"}};
    EXPECT_EQ(launchProgram(fake.host(), world.path("Atari.mdb"), code, {}, "XP"),
              std::optional<QString>("Demo"));
    // The emulator reads the registry when it starts: every value is in place before the script runs.
    ASSERT_EQ(fake.journal.size(), 20u);
    for (int i = 0; i < 18; ++i)
        EXPECT_TRUE(fake.journal[i].startsWith("registry ")) << fake.journal[i].toStdString();
    EXPECT_EQ(std::vector<QString>(fake.journal.begin() + 18, fake.journal.end()),
              (std::vector<QString>{"script AtariRun.sh", "start /bin/sh"}));
    EXPECT_EQ(QString::fromUtf8(fake.scripts.written.value("AtariRun.sh")),
              "emu " + ShellQuote(world.path("Games/Demo.atr")) + "\n" + kTail);
    ASSERT_EQ(fake.processes.started.size(), 1u);
    EXPECT_EQ(fake.processes.started[0].args, QStringList{world.path("state/quaylight/AtariRun.sh")});

    // A row that went away: nothing written, nothing run.
    world.open()->deleteProgram(code);
    EXPECT_EQ(launchProgram(fake.host(), world.path("Atari.mdb"), code, {}, "XP"), std::nullopt);
    EXPECT_EQ(fake.journal.size(), 20u);
}
