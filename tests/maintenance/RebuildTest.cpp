#include "Rebuild.h"
#include "LinuxHost.h"
#include "Store.h"
#include "TestWorld.h"

#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

using namespace ql;
using namespace ql::test;

namespace {

QString zlibCrc(const QByteArray& bytes) {
    const uLong c = crc32(0L, reinterpret_cast<const Bytef*>(bytes.constData()), bytes.size());
    return QString::number(static_cast<std::int32_t>(static_cast<std::uint32_t>(c)));
}

// Bytes this process has taken in through read calls so far, or nothing where the kernel keeps no count.
std::optional<std::int64_t> bytesReadSoFar() {
    QFile io(QStringLiteral("/proc/self/io"));
    if (!io.open(QIODevice::ReadOnly)) return std::nullopt;
    for (const QByteArray& line : io.readAll().split('\n'))
        if (line.startsWith("rchar:")) return line.mid(6).trimmed().toLongLong();
    return std::nullopt;
}

// Lists what the real folder holds, plus names that vanished before they could be read.
class VanishingFileSystem : public FileSystem {
public:
    std::optional<int> attributes(const QString& path) override { return real.attributes(path); }
    std::vector<DirEntry> list(const QString& folder) override {
        auto entries = real.list(folder);
        for (const QString& name : ghosts)
            entries.push_back({name, 0});
        return entries;
    }
    LinuxFileSystem real;
    QStringList ghosts;
};

class RebuildTest : public ::testing::Test {
protected:
    void SetUp() override { path = world.makeCatalogue(); }
    RebuildRequest request(std::vector<TabTarget> tabs = {}) {
        RebuildRequest r;
        r.cataloguePath = path;
        r.tabs = std::move(tabs);
        return r;
    }
    void rebuildTab(int row, const QString& name, const QString& source, FileSystem* fs = nullptr) {
        rebuildCatalogue(request({{row, name, source}}), fs ? *fs : fileSystem);
    }
    std::vector<ProgramRecord> rows(int tab) {
        auto rows = world.open()->programsByTabNumber(tab);
        std::sort(rows.begin(), rows.end(), [](auto& a, auto& b) { return a.programCode < b.programCode; });
        return rows;
    }
    std::vector<QString> names(int tab) {
        std::vector<QString> n;
        for (const auto& r : rows(tab))
            n.push_back(r.name);
        return n;
    }

    TestWorld world;
    QString path;
    LinuxFileSystem fileSystem;
};

} // namespace

TEST(RebuildNamesTest, NameTypeBasicAndTakenByFileName) {
    // File name, taken by the walk, name, type, BASIC.
    const std::tuple<const char*, bool, const char*, int, bool> cases[] = {
        {"DEMO.XEX", true, "DEMO", 0, false},
        {"Intro.tx", true, "Intro.tx", -1, false},
        {"Tape.1.cas", true, "Tape.1", 0, false},
        {"Bas", true, "Bas", -1, false},
        {".atr", true, "", 1, false},
        {"Ends in a dot.", true, "Ends in a dot.", -1, false},
        {"Readme", false, "Readme", -1, false},
        {"Setup.exe", false, "Setup", -1, false},
        {"Oids.msa", true, "Oids", 3, false},
        {"Pitfall.a26", true, "Pitfall", 4, false},
        {"Pac-Man.a52", true, "Pac-Man", 5, false},
        {"Ms. Pac-Man.A78", true, "Ms. Pac-Man", 6, false},
        {"Tempest 2000.jag", true, "Tempest 2000", 7, false},
        {"California Games.lnx", true, "California Games", 8, false},
        {"Disk.pro", true, "Disk", 1, false},
        {"My BASIC Game.atr", true, "My BASIC Game", 1, true},
        {"Ball-Bash.xex", true, "Ball-Bash", 0, true},
        {"Demo.bas", true, "Demo", 0, false},
    };
    for (const auto& [file, taken, name, type, basic] : cases) {
        SCOPED_TRACE(file);
        EXPECT_EQ(isKnownProgramFile(file), taken);
        EXPECT_EQ(programNameFor(file), name);
        EXPECT_EQ(programTypeFor(file), type);
        EXPECT_EQ(isBasicName(file), basic);
    }
    EXPECT_TRUE(isCartridgeFile("Ab.in"));
    EXPECT_EQ(cartridgeNameFor("Ab.in"), "A");
    EXPECT_FALSE(isCartridgeFile("Game.atr"));
    EXPECT_EQ(everythingRoot("/atari"), "/atari/");
    EXPECT_EQ(everythingRoot("D:\\Atari\\"), "D:\\Atari\\\\");
}

TEST_F(RebuildTest, WorkedExampleGivesThreeRowsInWalkOrder) {
    const QByteArray star = "star raiders disk";
    world.writeFile("Games/Star Raiders.atr", star);
    world.writeFile("Games/Notes.txt", "notes");
    world.writeFile("Games/Manual.pdf", "pdf");
    world.writeFile("Games/Basic, Two/Demo.st", "st");
    world.writeFile("Games/__old/Junk.atr", "junk");
    auto c = world.open();
    c->addProgram(program("Games", "Old row", "/old.atr")); // TabNumber 0: another tab, kept
    ProgramRecord mine = program("Favourites", "Moved", "/moved.atr");
    mine.tabNumber = 3; // moved to Favourites but still of tab 3: replaced
    c->addProgram(mine);
    const QString d = world.path("Games/");
    rebuildTab(3, "Games", d);
    const auto r = rows(3);
    ASSERT_EQ(r.size(), 3u);
    // The folder's own files in listing order (names ignoring case), then the sub-folder's.
    const std::tuple<const char*, int, QString> expected[] = {{"Notes", -1, d + "Notes.txt"},
                                                              {"Star Raiders", 1, d + "Star Raiders.atr"},
                                                              {"Demo.st", 3, d + "Basic Two/Demo.st"}};
    for (size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(std::tie(r[i].name, r[i].type, r[i].fileName1), expected[i]);
        EXPECT_EQ(std::tie(r[i].category, r[i].tabNumber, r[i].fileName2, r[i].fileName4),
                  std::make_tuple("Games", 3, " ", " "));
        EXPECT_FALSE(r[i].basic) << "the folder's name is not tested";
    }
    EXPECT_EQ(r[1].crc, zlibCrc(star));
    EXPECT_EQ(names(0), std::vector<QString>{"Old row"});
}

TEST_F(RebuildTest, SkipsWhatTheWalkMustNotTake) {
    world.open()->addProgram(program("Games", "Kept", "/kept.atr"));
    world.writeFile("Tree/b.atr");
    world.writeFile("Tree/A.xex");
    world.writeFile("Tree/Atari.ldb");
    world.writeFile("Tree/ATARI.MDB");
    world.writeFile("Tree/.hidden.atr");
    world.writeFile("Tree/.dotfolder/in dot.atr");
    world.writeFile("Tree/_Unique/one underscore.atr");
    world.writeFile("Tree/x__y/two underscores.atr");
    world.writeFile("Tree/sub/deep/deeper.atr");
    world.writeFile("Elsewhere/linked.atr");
    ASSERT_TRUE(QFile::link(world.path("Elsewhere"), world.path("Tree/link")));
    ASSERT_TRUE(QFile::link(world.path("Tree"), world.path("Tree/sub/loop")));
    ASSERT_TRUE(QFile::link(world.path("Elsewhere/linked.atr"), world.path("Tree/file link.atr")));

    rebuildTab(2, "Utilities", world.path("Tree/"));
    EXPECT_EQ(names(2), (std::vector<QString>{"A", "b", "file link", "one underscore", "deeper"}))
        << "files before folders, names ignoring case; no links to folders, no dots, no \"__\"";

    rebuildTab(2, "Utilities", world.path("Tree/__NEW/"));
    EXPECT_TRUE(names(2).empty()) << "a root with \"__\" deletes and adds nothing";
    rebuildTab(2, "Utilities", "   ");
    EXPECT_TRUE(names(2).empty());
    rebuildCatalogue(request(), fileSystem); // nothing chosen
    EXPECT_EQ(names(0), std::vector<QString>{"Kept"});
}

TEST_F(RebuildTest, OddNamesAndUnreadableFiles) {
    const QByteArray archon = "archon bytes";
    world.writeFile("T/Archon, The Light.xex", archon);
    world.writeFile("T/Yars' Revenge.a26", "yars");
    world.writeFile("T/Empty.atr", "");
    ASSERT_EQ(::mkfifo(QFile::encodeName(world.path("T/Pipe.atr")).constData(), 0600), 0);
    VanishingFileSystem fs;
    fs.ghosts << "Gone.atr";
    rebuildTab(5, "It's \"BASIC\"", world.path("T"), &fs); // typed without its closing separator
    const auto r = rows(5);
    // The CRC is taken from the real file, before the comma goes; a named pipe neither blocks the
    // walk nor has a CRC; a file that cannot be read still gets its row.
    const std::tuple<const char*, QString> expected[] = {{"Archon, The Light", zlibCrc(archon)},
                                                         {"Empty", "0"},
                                                         {"Pipe", "0"},
                                                         {"Yars' Revenge", zlibCrc("yars")},
                                                         {"Gone", "0"}};
    ASSERT_EQ(r.size(), std::size(expected));
    for (size_t i = 0; i < r.size(); ++i)
        EXPECT_EQ(std::tie(r[i].name, r[i].crc), expected[i]) << i;
    EXPECT_EQ(r[0].fileName1, world.path("T/Archon The Light.xex"));
    EXPECT_EQ(r[0].category, "It's \"BASIC\"");
}

TEST_F(RebuildTest, TargetsInOrderWithCartridgesAndEverything) {
    world.writeFile("Carts/Action!.rom");
    world.writeFile("Carts/Atari BASIC, Rev C.bin");
    world.writeFile("Carts/Star Raiders.atr");
    world.writeFile("Games/Game.atr");
    world.writeFile("Top.xex");
    world.open()->addCartridge("Old", "/old.rom");

    std::vector<std::pair<RebuildProgress::Event, int>> events;
    RebuildRequest r = request({{0, "Games", world.path("Games/")}});
    r.cartridgeSource = world.path("Carts/");
    r.everything = true;
    const RebuildResult result = rebuildCatalogue(r, fileSystem, [&](const RebuildProgress& p) {
        if (p.event != RebuildProgress::Event::Files && p.event != RebuildProgress::Event::Walking)
            events.emplace_back(p.event, p.target);
    });
    using E = RebuildProgress::Event;
    EXPECT_EQ(events, (std::vector<std::pair<E, int>>{{E::TargetStarted, 24},
                                                      {E::TargetDone, 24},
                                                      {E::TabsBegin, -1},
                                                      {E::TargetStarted, 0},
                                                      {E::TargetDone, 0},
                                                      {E::TabsEnd, -1},
                                                      {E::TargetStarted, 99},
                                                      {E::TargetDone, 99}}));
    const auto carts = world.open()->cartridges();
    ASSERT_EQ(carts.size(), 2u);
    EXPECT_EQ(carts[0].cartName, "Action!");
    EXPECT_EQ(carts[1].cartName, "Atari BASIC, Rev C");
    EXPECT_EQ(carts[1].cartPath, world.path("Carts/Atari BASIC, Rev C.bin"))
        << "a cartridge keeps its commas";
    EXPECT_EQ(result.cartridges, 2);

    const auto all = rows(kEverythingTabNumber);
    ASSERT_EQ(all.size(), 5u);
    const QString root = world.root() + "//";
    EXPECT_EQ(all[0].fileName1, root + "Top.xex") << "AtariDir and one more separator, kept as it is";
    EXPECT_EQ(all[1].fileName1, root + "Carts/Action!.rom");
    EXPECT_EQ(names(0), std::vector<QString>{"Game"});
}

TEST_F(RebuildTest, FaultLeavesTheOldRowsOfThatTarget) {
    for (int i = 0; i < 50; ++i)
        world.writeFile(QStringLiteral("Games/Game %1.atr").arg(i, 2, 10, QLatin1Char('0')));
    world.writeFile("Games/Poison.atr");
    world.writeFile("Carts/New.rom");
    auto c = world.open();
    c->addProgram(program("Games", "Old one", "/old1.atr"));
    c->addProgram(program("Games", "Old two", "/old2.atr"));
    // A catalogue that fails half way, as a full disk would.
    QSqlQuery q(c->database());
    ASSERT_TRUE(q.exec("CREATE TRIGGER Fault BEFORE INSERT ON Programs WHEN NEW.Name = 'Poison' "
                       "BEGIN SELECT RAISE(ABORT, 'disk full'); END"));
    c.reset();

    RebuildRequest r = request({{0, "Games", world.path("Games/")}});
    r.cartridgeSource = world.path("Carts/");
    EXPECT_THROW(rebuildCatalogue(r, fileSystem), StoreError);
    EXPECT_EQ(names(0), (std::vector<QString>{"Old one", "Old two"}));
    ASSERT_EQ(world.open()->cartridges().size(), 1u) << "the target finished before the fault stays";

    // An interruption from outside the catalogue, with every new row written but not yet kept,
    // ends the same way.
    QFile::remove(world.path("Games/Poison.atr"));
    r.cartridgeSource.reset();
    const auto interrupt = [](const RebuildProgress& p) {
        if (p.event == RebuildProgress::Event::Files && p.filesDone == 50)
            throw std::runtime_error("stopped");
    };
    EXPECT_THROW(rebuildCatalogue(r, fileSystem, interrupt), std::runtime_error);
    EXPECT_EQ(names(0), (std::vector<QString>{"Old one", "Old two"}));
}

TEST_F(RebuildTest, SavedTabsRequestTakesTabsWithAFolder) {
    auto c = world.open();
    c->updateTab(1, "Games", "/atari/Games/");
    c->updateTab(3, "Utilities", "/atari/Utilities/");
    c->updateTab(25, "Resident Cartridges", "/atari/Carts/");
    c.reset();
    const RebuildRequest all = savedTabsRequest(path, {}, true, true);
    ASSERT_EQ(all.tabs.size(), 2u);
    EXPECT_EQ(all.tabs[0].row, 0);
    EXPECT_EQ(all.tabs[1].source, "/atari/Utilities/");
    EXPECT_EQ(all.cartridgeSource.value_or(""), "/atari/Carts/");
    const RebuildRequest one = savedTabsRequest(path, {1}, false, false);
    ASSERT_EQ(one.tabs.size(), 1u);
    EXPECT_EQ(one.tabs[0].name, "Demos") << "a row asked for by number is taken even without a folder";
    EXPECT_FALSE(one.cartridgeSource);
}

TEST_F(RebuildTest, EverythingRootIgnoresBlanksAroundAtariDir) {
    world.writeFile("Top.xex");
    world.writeFile("Games/Game.atr");
    const QString r = world.root();
    // AtariDir and where the top file's row points; no tree at all clears the rows of the case before.
    const std::pair<QString, QString> cases[] = {
        {" \t" + r + "/  ", r + "//Top.xex"}, {r + " ", r + "/Top.xex"}, {"   ", ""}};
    RebuildRequest everything = request();
    everything.everything = true;
    for (const auto& [atariDir, topFile] : cases) {
        SCOPED_TRACE(atariDir.toStdString());
        {
            auto catalogue = world.open();
            QSqlQuery q(catalogue->database());
            ASSERT_TRUE(q.prepare("UPDATE Config SET AtariDir = ?"));
            q.addBindValue(atariDir);
            ASSERT_TRUE(q.exec());
        }
        rebuildCatalogue(everything, fileSystem);
        const auto all = rows(kEverythingTabNumber);
        ASSERT_EQ(all.size(), topFile.isEmpty() ? 0u : 2u);
        EXPECT_EQ(all.empty() ? QString() : all[0].fileName1, topFile);
    }
}

// The CRCs are taken on several threads, and a big first file ends last; the rows still follow
// the walk, each with its own file's CRC.
TEST_F(RebuildTest, RowsFollowTheWalkWhateverOrderTheCrcsEndIn) {
    QByteArray big(8 << 20, Qt::Uninitialized);
    for (qsizetype i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>((i * 7 + i / 4093) & 0xFF);
    world.writeFile("Mixed/A big.atr", big);
    const auto small = [](int i) { return "small file " + QByteArray::number(i); };
    const auto smallName = [](int i) { return QStringLiteral("B %1").arg(i, 3, 10, QLatin1Char('0')); };
    for (int i = 0; i < 200; ++i)
        world.writeFile("Mixed/" + smallName(i) + ".xex", small(i));
    world.writeFile("Mixed/Sub/C last.atr", "in a sub-folder");

    RebuildRequest fourThreads = request({{1, "Mixed", world.path("Mixed/")}});
    fourThreads.crcThreads = 4;
    rebuildCatalogue(fourThreads, fileSystem);
    const auto r = rows(1);
    ASSERT_EQ(r.size(), 202u);
    EXPECT_EQ(r[0].name, "A big");
    EXPECT_EQ(r[0].crc, zlibCrc(big));
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(r[i + 1].name, smallName(i));
        EXPECT_EQ(r[i + 1].crc, zlibCrc(small(i)));
    }
    EXPECT_EQ(r[201].name, "C last");
}

// A rebuild that stops while a file of many gigabytes is read does not go on reading it to the end.
TEST_F(RebuildTest, StoppedRebuildLeavesTheRestOfABigFileUnread) {
    const std::int64_t size = std::int64_t(4) << 30; // sparse: it takes no room on the disk
    {
        QFile f(world.writeFile("Huge/Huge.atr", "ATARI"));
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_EQ(::ftruncate(f.handle(), size), 0);
    }
    world.writeFile("Huge/Small.xex");
    const auto before = bytesReadSoFar();
    if (!before) GTEST_SKIP() << "the kernel keeps no count of bytes read";

    // The first wait for the big file's CRC is the moment to stop: its read is under way.
    const auto stop = [](const RebuildProgress& p) {
        if (p.event == RebuildProgress::Event::Files) throw std::runtime_error("stopped");
    };
    EXPECT_THROW(rebuildCatalogue(request({{0, "Huge", world.path("Huge/")}}), fileSystem, stop),
                 std::runtime_error);
    EXPECT_LT(*bytesReadSoFar() - *before, size / 4);
    EXPECT_TRUE(names(0).empty());
}
