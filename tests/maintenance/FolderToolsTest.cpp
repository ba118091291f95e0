#include "FolderTools.h"
#include "LinuxHost.h"
#include "Store.h"
#include "TestWorld.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

using namespace ql;
using namespace ql::test;

namespace {

QString crcOf(const QByteArray& bytes) {
    const uLong c = crc32(0L, reinterpret_cast<const Bytef*>(bytes.constData()), bytes.size());
    return QString::number(static_cast<std::int32_t>(static_cast<std::uint32_t>(c)));
}

// "name=contents" of every file under dir, sorted, so a failure shows the whole folder.
QStringList filesUnder(const QString& dir) {
    QStringList out;
    for (QDirIterator it(dir, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
         it.hasNext();) {
        QFile f(it.next());
        out << QDir(dir).relativeFilePath(f.fileName()) + "=" +
                   (f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString("<fifo>"));
    }
    out.sort();
    return out;
}

// The real folders, with the attribute words that this file system cannot give: "Bare" reports the
// directory flag alone, "Locked" adds read-only.
struct MarkedFileSystem : LinuxFileSystem {
    std::vector<DirEntry> list(const QString& folder) override {
        auto entries = LinuxFileSystem::list(folder);
        for (DirEntry& e : entries) {
            if (e.name == "Bare") e.attributes = attr::Directory;
            if (e.name == "Locked") e.attributes = attr::PlainFolder | attr::ReadOnly;
        }
        return entries;
    }
};

// Folders that the file walks never enter: a dot folder, a link, a read-only one and a bare one.
void addClosedFolders(TestWorld& world, const QString& under, const QString& file) {
    for (const char* folder : {"/.dot/", "/Locked/", "/Bare/"})
        world.writeFile(under + folder + "Inner/" + file, folder);
    world.writeFile("outside/Inner/" + file, "outside");
    ASSERT_EQ(::symlink(qPrintable(world.path("outside")), qPrintable(world.path(under + "/Link"))), 0);
}

// Files under a folder of the world, each given as "path=contents".
void writeFiles(TestWorld& world, const QString& under, const QStringList& files) {
    for (const QString& f : files)
        world.writeFile(under + f.section('=', 0, 0), f.section('=', 1).toUtf8());
}

class FolderToolsTest : public ::testing::Test {
protected:
    TestWorld world;
    MarkedFileSystem fs;
};

} // namespace

TEST(FolderToolNamesTest, TargetNamesAndBracketsOut) {
    const std::pair<const char*, const char*> targets[] = {
        {"Game.exe", "Game.xex"},          {"Game.Exe", "Game.Exe"},       {"Pack.exe.exe", "Pack.xex.xex"},
        {"GAME.COM", "GAME.xex"},          {"Two.com.COM", "Two.xex.xex"}, {"Demo.atr", "Demo.atr"},
        {"Setup.exe.atr", "Setup.exe.atr"}};
    for (const auto& [name, target] : targets)
        EXPECT_EQ(newFileTargetName(name), target) << name;
    const std::pair<const char*, const char*> brackets[] = {{"Game (Disk 1).atr", "Game Disk 1.atr"},
                                                            {"Pack(1)(2).zip", "Pack12.zip"},
                                                            {"Half).atr", "Half.atr"},
                                                            {"Game (1) .atr", "Game 1 .atr"},
                                                            {"[x]{y}.atr", "[x]{y}.atr"}};
    for (const auto& [name, without] : brackets)
        EXPECT_EQ(nameWithoutBrackets(name), without) << name;
}

TEST(FolderToolsFindNewTest, CopiesWhatEverythingLacksPassByPass) {
    // With and without the Everything row of Known.atr; TabOnly.atr is known under tab 3 alone.
    for (const bool knownInEverything : {true, false}) {
        TestWorld world;
        MarkedFileSystem fs;
        const QString catalogue = world.makeCatalogue();
        {
            auto c = world.open();
            ProgramRecord known = program(kEverything, "Known", "/k.atr");
            known.tabNumber = knownInEverything ? kEverythingTabNumber : 3;
            known.crc = crcOf("known");
            c->addProgram(known);
            ProgramRecord tab = program("Games", "TabOnly", "/t.atr");
            tab.tabNumber = 3;
            tab.crc = crcOf("tab");
            c->addProgram(tab);
        }
        writeFiles(world, "new/",
                   {"Demo.atr=demo", "Known.atr=known", "TabOnly.atr=tab",
                    "Empty.atr=", "Game (Disk 2).ATR=game2", "A(1).atr=bracketed", "A1.atr=a1",
                    "Game.exe=exe", "Notes.txt=notes", "Sub/Game.xex=xex", "Sub/GAME.COM=com",
                    "Sub/Pack.exe.exe=pack", "Sub/Deeper/Game.Exe=Exe"});
        ASSERT_EQ(::mkfifo(qPrintable(world.path("new/Pipe.atr")), 0600), 0);
        addClosedFolders(world, "new", "Closed.atr");
        ASSERT_TRUE(QDir().mkpath(world.path("dest")));

        std::vector<int> passOfEachFile;
        const ToolCounts counts = findNewFiles(
            catalogue, world.path("new/"), world.path("dest/"), fs, [&](const QString& path, int) {
                if (!path.endsWith('/'))
                    passOfEachFile.push_back(newFileSpecs().indexOf("*." + path.right(3).toLower()));
            });

        QStringList expected = {"A(1).atr=bracketed",    "A1.atr=a1",    "Demo.atr=demo", "GAME.xex=com",
                                "Game Disk 2.ATR=game2", "Game.Exe=Exe", "Game.xex=xex",  "Pack.xex.xex=pack",
                                "TabOnly.atr=tab"};
        if (!knownInEverything) expected << "Known.atr=known";
        expected.sort();
        EXPECT_EQ(filesUnder(world.path("dest")), expected);
        EXPECT_TRUE(QFile::exists(world.path("new/Game Disk 2.ATR")));
        EXPECT_TRUE(QFile::exists(world.path("new/A(1).atr")));
        EXPECT_TRUE(std::is_sorted(passOfEachFile.begin(), passOfEachFile.end()));
        EXPECT_EQ(counts.scanned, 13);
        EXPECT_EQ(counts.copied, knownInEverything ? 10 : 11); // Game.xex twice
        EXPECT_EQ(counts.renamed, 1);
        EXPECT_EQ(counts.skipped, 1); // A(1).atr: A1.atr is there
        EXPECT_EQ(counts.failed, 1);  // the pipe
        EXPECT_EQ(counts.problems.size(), 2);
    }
}

TEST_F(FolderToolsTest, AStopOrAMissingDestinationEndsTheRun) {
    const QString catalogue = world.makeCatalogue();
    world.writeFile("new/Demo (1).atr", "demo");
    const ToolCounts nowhere = findNewFiles(catalogue, world.path("new"), world.path("dest"), fs);
    EXPECT_EQ(nowhere.problems.size(), 1);
    EXPECT_TRUE(QFile::exists(world.path("new/Demo (1).atr"))); // nothing was done

    QDir().mkpath(world.path("dest"));
    EXPECT_THROW(findNewFiles(catalogue, world.path("new"), world.path("dest"), fs,
                              [](const QString& path, int) {
                                  if (path.endsWith(".atr")) throw std::runtime_error("stop");
                              }),
                 std::runtime_error);
    EXPECT_TRUE(filesUnder(world.path("dest")).isEmpty());
}

TEST_F(FolderToolsTest, DuplicatesGroupedKeptCopiedAndRemoved) {
    const QString catalogue = world.makeCatalogue();
    world.open()->addDiskFile({"1", "/old/row", false});
    writeFiles(world, "src/",
               {"Game.atr=A", "Deep/Game.atr=A", "Old/Game copy.atr=A", "Com,ma.atr=A", "Unique.atr=B",
                "e1.atr=", "Deep/e2.txt=", "atari.mdb=C"});
    addClosedFolders(world, "src", "Closed.atr");
    const QString src = world.path("src/");

    ToolCounts scan;
    const auto groups = collectDuplicateGroups(catalogue, world.path("src"), fs, {}, &scan);
    QStringList shown;
    for (const DuplicateGroup& g : groups)
        shown << g.crc + ": " + QStringList(g.files).replaceInStrings(src, "").join(", ");
    EXPECT_EQ(shown, QStringList({crcOf("C") + ": atari.mdb",
                                  crcOf("A") + ": Old/Game copy.atr, Deep/Game.atr, Com,ma.atr, Game.atr",
                                  "0: Deep/e2.txt, e1.atr", crcOf("B") + ": Unique.atr"}));
    EXPECT_EQ(scan.scanned, 8);
    const auto rows = world.open()->diskFiles();
    EXPECT_EQ(rows.size(), 8u); // the old row is gone
    EXPECT_TRUE(
        std::any_of(rows.begin(), rows.end(), [&](auto& r) { return r.filename == src + "Comma.atr"; }));

    ASSERT_TRUE(QDir().mkpath(world.path("dest")));
    const ToolCounts copied = copyUniqueFiles(groups, world.path("dest"));
    EXPECT_EQ(copied.copied, 4);
    EXPECT_EQ(filesUnder(world.path("dest")),
              QStringList({"Game copy.atr=A", "Unique.atr=B", "atari.mdb=C", "e2.txt="}));

    // The twins' names in the target folder, each once; none of them is in dest.
    const QStringList doomed = duplicatesToRemove(groups, world.path("src"));
    EXPECT_EQ(doomed, QStringList({src + "Game.atr", src + "Com,ma.atr", src + "e1.atr"}));
    EXPECT_TRUE(duplicatesToRemove(groups, world.path("dest")).isEmpty());

    const ToolCounts removed = removeFiles(doomed + QStringList{src + "Gone.atr"});
    EXPECT_EQ(removed.deleted, 3);
    EXPECT_EQ(removed.failed, 1);
    EXPECT_FALSE(QFile::exists(src + "Game.atr"));
    EXPECT_TRUE(QFile::exists(src + "Deep/Game.atr"));
}

TEST_F(FolderToolsTest, BracketsLeaveFileNamesButNotFolderNames) {
    for (const char* file : {"Game (Disk 1).atr", "(Demo).xex", "Pack(1)(2).zip", "Half).atr", "Plain.atr",
                             "A(1).atr", "A1.atr", "Dir (x)/In (1).atr"})
        world.writeFile(QString("ren/") + file, file);
    addClosedFolders(world, "ren", "Closed (1).atr");

    const ToolCounts counts = removeBracketsFromNames(world.path("ren"), "*.*", fs);
    QStringList names = filesUnder(world.path("ren"));
    for (QString& n : names)
        n = n.section('=', 0, 0);
    EXPECT_EQ(names,
              QStringList({".dot/Inner/Closed (1).atr", "A(1).atr", "A1.atr", "Bare/Inner/Closed (1).atr",
                           "Demo.xex", "Dir (x)/In 1.atr", "Game Disk 1.atr", "Half.atr",
                           "Locked/Inner/Closed (1).atr", "Pack12.zip", "Plain.atr"}));
    EXPECT_EQ(counts.renamed, 5);
    EXPECT_EQ(counts.skipped, 1);
    EXPECT_EQ(counts.failed, 0);
}

TEST_F(FolderToolsTest, TreeRowsHangUnderTheirRealParents) {
    for (const char* folder : {"A/A1/", "A/A2/A2a/", "B/B1/"})
        ASSERT_TRUE(QDir().mkpath(world.path(QString("atari/") + folder)));
    world.writeFile("atari/file.atr");
    addClosedFolders(world, "atari", "f.atr");

    QStringList rows;
    for (const FolderRow& r : buildFolderTable(world.path("atari"), fs))
        rows << QString("%1 %2 %3").arg(r.row).arg(r.parent).arg(r.name);
    // A bare folder (16) is entered here, unlike in the file walks.
    EXPECT_EQ(rows, QStringList({"1 0 A", "2 0 B", "3 0 Bare", "4 1 A1", "5 1 A2", "6 5 A2a", "7 2 B1",
                                 "8 3 Inner"}));
    EXPECT_TRUE(buildFolderTable(world.path("atari/A/A1"), fs).empty());
}
