#include "LaunchPipeline.h"
#include "StringFuncs.h"
#include "TestWorld.h"

#include <algorithm>
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

std::vector<QString> registryOf(const ProgramRecord& r, const LaunchControls& controls = {}) {
    FakeRegistry registry;
    writeLaunchRegistry(registry, r, controls);
    for (const auto& w : registry.writes)
        EXPECT_EQ(w.keyPath, "HKEY_CURRENT_USER\\Software\\Atari800WinPLus");
    return registry.briefs();
}

std::vector<QString> offDrives(int from, int to) {
    std::vector<QString> out;
    for (int i = from; i <= to; ++i)
        out.push_back(QString("pathDiskDrive%1=Off").arg(i));
    return out;
}

std::vector<QString> joined(std::initializer_list<std::vector<QString>> parts) {
    std::vector<QString> out;
    for (const auto& p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

} // namespace

TEST(LaunchClass, ByTheLastFourCharactersInAnyCase) {
    EXPECT_EQ(launchClassOf("/a/Demo.bas"), LaunchClass::BasicListing);
    EXPECT_EQ(launchClassOf("/a/DEMO.LST"), LaunchClass::BasicListing);
    EXPECT_EQ(launchClassOf("/a/Demo.A52"), LaunchClass::Image5200);
    for (const char* file : {"/a/x.atr", "/a/x.st", "/a/x.a26", "/a/x.txt", "/a/x", "/a/x.basic"})
        EXPECT_EQ(launchClassOf(file), LaunchClass::General) << file;
}

TEST(LaunchRegistry, GeneralSingleFileInOrder) {
    ProgramRecord r = row("Demo", "/atari/Games/Demo.xex", 0);
    r.basic = true;
    r.machineType = 2;
    r.video = 312;
    r.memory = 128;
    EXPECT_EQ(registryOf(r, {3, 2, -1}),
              joined({{"sysDisableBasic=dword:0", "sysMachineType=dword:2"},
                      offDrives(1, 8),
                      {"sysTVMode=dword:312", "sysRAMSizeXLXE=dword:128", "screenArtifactMode=dword:3",
                       "screenStretchMode=dword:2",
                       "fileRomCartridge=", "fileRomCurrent=", "sysCartType=dword:0", "fileTape="}}));
}

TEST(LaunchRegistry, DrivesMemoryNameAndCartridge) {
    // Type 1 is no disk set: all eight drives go off; "No Cartridge" (0) empties the cartridge.
    ProgramRecord single = row("Demo", "/atari/Demo.atr", 1);
    single.machineType = 0;
    single.memory = 48;
    EXPECT_EQ(registryOf(single, {0, 0, 0}),
              joined({{"sysDisableBasic=dword:1", "sysMachineType=dword:0"},
                      offDrives(1, 8),
                      {"sysTVMode=dword:262", "sysRAMSizeOSA=dword:48", "screenArtifactMode=dword:0",
                       "screenStretchMode=dword:0",
                       "fileRomCartridge=", "fileRomCurrent=", "sysCartType=dword:0", "fileTape="}}));

    // A disk set of two: empty fields go off, drives 5 to 8 are left alone; a chosen cartridge stays.
    ProgramRecord set = row("Alternate Reality", "/atari/AR1.atr", 2);
    set.fileName2 = "/atari/AR2.atr";
    set.fileName3 = set.fileName4 = "";
    set.machineType = 1;
    EXPECT_EQ(registryOf(set, {1, 1, 2}),
              (std::vector<QString>{"sysDisableBasic=dword:1", "sysMachineType=dword:1",
                                    "pathDiskDrive1=/atari/AR1.atr", "pathDiskDrive2=/atari/AR2.atr",
                                    "pathDiskDrive3=Off", "pathDiskDrive4=Off", "sysTVMode=dword:262",
                                    "sysRAMSizeOSB=dword:64", "screenArtifactMode=dword:1",
                                    "screenStretchMode=dword:1", "fileTape="}));

    // As a rebuild leaves a row: one blank in Filename2 to 4, Type 3 or more. A blank is no empty
    // field: it is trimmed to an empty path, never "Off".
    const auto rebuilt = registryOf(row("Pitfall!", "/atari/2600/Pitfall!.a26", 3));
    EXPECT_EQ(std::vector<QString>(rebuilt.begin() + 2, rebuilt.begin() + 6),
              (std::vector<QString>{"pathDiskDrive1=/atari/2600/Pitfall!.a26",
                                    "pathDiskDrive2=", "pathDiskDrive3=", "pathDiskDrive4="}));
}

TEST(LaunchRegistry, MachineTypeWithoutMemoryName) {
    ProgramRecord odd = row("Odd", "/atari/odd.xex");
    odd.machineType = 7;
    for (const QString& w : registryOf(odd))
        EXPECT_FALSE(w.startsWith("sysRAMSize")) << w.toStdString();
}

TEST(LaunchRegistry, FiveThousandTwoHundredAndBasic) {
    EXPECT_EQ(
        registryOf(row("Demo", "/atari/5200/Demo.a52"), {3, 2, 0}),
        (std::vector<QString>{"sysDisableBasic=dword:1", "sysMachineType=dword:3", "sysCartType=dword:7"}));
    EXPECT_TRUE(registryOf(row("Demo", "/atari/Basic/DEMO.LST")).empty());
    EXPECT_TRUE(registryOf(row("Demo", "/atari/Basic/Demo.bas")).empty());
}

TEST(LaunchScript, EachClassAndSetting) {
    FakeAssociations associations;
    associations.extensions = {{"atr", "emu %f"}, {"bin", "emu %f"}, {"xex", "emu --run"}};
    associations.programs = {{"Atari800", "basic-emu"}};
    struct Case {
        const char* name;
        const char* file;
        const char* atariDir;
        const char* version;
        QString expected;
    } cases[] = {
        {"Demo", "/atari/Basic/Demo.bas", "/atari/", "XP",
         "\ncd -- '/atari/'\nbasic-emu -windowed '/atari/Basic/Demo.bas'\n"},
        {"Demo", "/atari/Basic/Demo.bas", "/atari", "98",
         "\ncd -- '/atari/'\nbasic-emu -windowed '/atari/Basic/Demo.bas'\n"},
        {"Demo", "/atari/5200/Demo.a52", "/atari", "XP",
         "\ncp -- '/atari/5200/Demo.a52' '/atari/run5200.bin'\ncd -- '/atari/'\nemu 'run5200.bin'\n"},
        {"Demo", "/atari/5200/Demo.a52", "/", "98",
         "\ncp -- '/atari/5200/Demo.a52' '/run5200.bin'\ncd -- '/'\nemu 'run5200.bin' &\n"},
        {"Demo", "/atari/Games/Demo.atr", "/atari", "XP", "emu '/atari/Games/Demo.atr'\n"},
        {"Demo", "/atari/Games/Demo.atr", "/atari", "98", "emu '/atari/Games/Demo.atr' &\n"},
        {"Demo", "/atari/Games/Demo.atr", "/atari", "xp", "emu '/atari/Games/Demo.atr'\n"},
        // Name not in the path (the search is case-sensitive): the Name stands in for the base name.
        {"Demo", "/atari/Games/demo.atr", "/atari", "XP", "emu '/atari/Games/Demo.atr'\n"},
        {"Star Raiders", "/atari/Games/SR (1979).atr", "/atari", "XP",
         "emu '/atari/Games/Star Raiders.atr'\n"},
        {"", "/atari/Games/x.atr", "/atari", "XP", "emu '/atari/Games/x.atr'\n"},
        // No %f: the file goes at the end. No association: xdg-open.
        {"Numen", "/atari/Numen.xex", "/atari", "XP", "emu --run '/atari/Numen.xex'\n"},
        {"Read Me", "/atari/Read Me.txt", "/atari", "XP", "xdg-open '/atari/Read Me.txt'\n"},
        // Without a dot the extension is the whole text, carried behind the dot all the same.
        {"Readme", "/atari/Games/README", "/atari", "XP",
         "xdg-open '/atari/Games/Readme./atari/Games/README'\n"},
    };
    for (const auto& c : cases) {
        const QByteArray text =
            launchScriptText(launchScriptLines(row(c.name, c.file), c.atariDir, c.version, associations));
        EXPECT_EQ(QString::fromUtf8(text), c.expected + kTail) << c.file << " " << c.version;
    }
}

TEST(LaunchScript, BasicWithoutANamedEmulatorRunsTheOneInAtariDir) {
    FakeAssociations none;
    EXPECT_EQ(launchScriptLines(row("Demo", "/atari/Demo.bas"), "/atari/", "XP", none).at(2),
              "./Atari800 -windowed '/atari/Demo.bas'");
}

TEST(Launch, WritesRegistryThenScriptThenStartsIt) {
    TestWorld world;
    world.makeCatalogue();
    int code = 0;
    {
        auto c = world.open();
        c->addProgram(row("Other", "/atari/Other.xex"));
        code = c->addProgram(row("Demo", world.path("Games/Demo.atr")));
    }
    FakeHost& fake = world.fake();
    fake.associations.extensions = {{"atr", "emu %f"}};
    const auto name = launchProgram(fake.host(), world.path("Atari.mdb"), code, {}, "XP");
    EXPECT_EQ(name, std::optional<QString>("Demo"));
    EXPECT_EQ(fake.registry.writes.size(), 18u);
    // The emulator reads the registry when it starts: every value is in place before the script runs.
    ASSERT_EQ(fake.journal.size(), 20u);
    EXPECT_TRUE(std::all_of(fake.journal.begin(), fake.journal.begin() + 18,
                            [](const QString& e) { return e.startsWith("registry "); }));
    EXPECT_EQ(fake.journal[18], "script AtariRun.sh");
    EXPECT_EQ(fake.journal[19], "start /bin/sh");
    EXPECT_EQ(QString::fromUtf8(fake.scripts.written.value("AtariRun.sh")),
              "emu " + ShellQuote(world.path("Games/Demo.atr")) + "\n" + kTail);
    ASSERT_EQ(fake.processes.started.size(), 1u);
    EXPECT_EQ(fake.processes.started[0].program, "/bin/sh");
    EXPECT_EQ(fake.processes.started[0].args, QStringList{world.path("state/quaylight/AtariRun.sh")});

    // A row that went away: nothing written, nothing run.
    world.open()->deleteProgram(code);
    EXPECT_EQ(launchProgram(fake.host(), world.path("Atari.mdb"), code, {}, "XP"), std::nullopt);
    EXPECT_EQ(fake.registry.writes.size(), 18u);
    EXPECT_EQ(fake.processes.started.size(), 1u);
}
