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
using E = RebuildProgress::Event;

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

// The real folders, with a name in the folder T that vanishes before it can be read.
struct VanishingFileSystem : LinuxFileSystem {
    std::vector<DirEntry> list(const QString& folder) override {
        auto entries = LinuxFileSystem::list(folder);
        if (folder.endsWith("/T/")) entries.push_back({"Gone.atr", 0});
        return entries;
    }
};

class RebuildTest : public ::testing::Test {
protected:
    void SetUp() override { path = world.makeCatalogue(); }
    RebuildRequest request(std::vector<TabTarget> tabs = {}, bool everything = false) {
        return {path, std::nullopt, std::move(tabs), everything, 0};
    }
    void addRows(int tab, std::initializer_list<const char*> names) {
        auto c = world.open();
        for (const char* name : names) {
            ProgramRecord r = program("Old", name, "/old.atr");
            r.tabNumber = tab;
            c->addProgram(r);
        }
    }
    std::vector<ProgramRecord> rows(int tab) {
        auto rows = world.open()->programsByTabNumber(tab);
        std::sort(rows.begin(), rows.end(), [](auto& a, auto& b) { return a.programCode < b.programCode; });
        return rows;
    }
    QString names(int tab) {
        QStringList n;
        for (const auto& r : rows(tab))
            n << r.name;
        return n.join(", ");
    }

    TestWorld world;
    QString path;
    VanishingFileSystem fs;
};

} // namespace

TEST(RebuildNamesTest, NameTypeBasicAndTakenByFileName) {
    // File name, taken by the walk, name, type, BASIC. "tx" and "" are found in the list of extensions.
    const std::tuple<const char*, bool, const char*, int, bool> cases[] = {
        {"DEMO.XEX", true, "DEMO", 0, false},
        {"Intro.tx", true, "Intro.tx", -1, false},
        {"Tape.1.cas", true, "Tape.1", 0, false},
        {"Bas", true, "Bas", -1, false},
        {"Readme", false, "Readme", -1, false},
        {".atr", true, "", 1, false},
        {"Ends in a dot.", true, "Ends in a dot.", -1, false},
        {"Setup.exe", false, "Setup", -1, false},
        {"My BASIC Game.atr", true, "My BASIC Game", 1, true},
        {"Ball-Bash.xex", true, "Ball-Bash", 0, true},
        {"Demo.bas", true, "Demo", 0, false}};
    for (const auto& [file, taken, name, type, basic] : cases)
        EXPECT_EQ(std::make_tuple(isKnownProgramFile(file), programNameFor(file), programTypeFor(file),
                                  isBasicName(file)),
                  std::make_tuple(taken, QString(name), type, basic))
            << file;
    EXPECT_TRUE(isCartridgeFile("Ab.in"));
    EXPECT_EQ(cartridgeNameFor("Ab.in"), "A");
    EXPECT_FALSE(isCartridgeFile("Game.atr"));
    EXPECT_EQ(everythingRoot("/atari"), "/atari/");
    EXPECT_EQ(everythingRoot("D:\\Atari\\"), "D:\\Atari\\\\");
}

// Own files in listing order (names ignoring case), then each sub-folder depth first; no hidden
// files, dot folders, "__" folders or links to folders. Only the tab's own rows are replaced.
TEST_F(RebuildTest, WalkTakesFilesThenSubFoldersAndReplacesOnlyItsTab) {
    world.writeFile("T/Archon, Yars' Light.xex", "archon");
    world.writeFile("T/empty.atr", "");
    ASSERT_EQ(::mkfifo(QFile::encodeName(world.path("T/Pipe.atr")).constData(), 0600), 0);
    for (const char* f :
         {"T/Manual.pdf", "T/.hidden.atr", "T/Basic, Two/Demo.st", "T/Basic, Two/deep/deeper.atr",
          "T/_One/one.atr", "T/__old/Junk.atr", "T/.dot/in dot.atr", "Elsewhere/linked.atr"})
        world.writeFile(f);
    ASSERT_TRUE(QFile::link(world.path("Elsewhere"), world.path("T/link")));
    ASSERT_TRUE(QFile::link(world.path("T"), world.path("T/Basic, Two/loop")));
    ASSERT_TRUE(QFile::link(world.path("Elsewhere/linked.atr"), world.path("T/file link.atr")));
    addRows(0, {"Other tab"});
    addRows(3, {"Moved to another category"});

    const QString quoted = "It's \"BASIC\"";
    rebuildCatalogue(request({{3, quoted, world.path("T")}}), fs); // typed without its closing separator
    // The CRC comes from the real file, before the comma goes; a pipe neither blocks the walk nor
    // has a CRC; a file that cannot be read still gets its row.
    const QString t = world.path("T/"), x = zlibCrc("x");
    const std::tuple<const char*, QString, QString> expected[] = {
        {"Archon, Yars' Light", zlibCrc("archon"), t + "Archon Yars' Light.xex"},
        {"empty", "0", t + "empty.atr"},
        {"file link", x, t + "file link.atr"},
        {"Pipe", "0", t + "Pipe.atr"},
        {"Gone", "0", t + "Gone.atr"},
        {"one", x, t + "_One/one.atr"},
        {"Demo.st", x, t + "Basic Two/Demo.st"},
        {"deeper", x, t + "Basic Two/deep/deeper.atr"}};
    const auto r = rows(3);
    ASSERT_EQ(r.size(), std::size(expected));
    for (size_t i = 0; i < r.size(); ++i) {
        EXPECT_EQ(std::tie(r[i].name, r[i].crc, r[i].fileName1), expected[i]) << i;
        EXPECT_EQ(std::tie(r[i].category, r[i].fileName2, r[i].basic), std::make_tuple(quoted, " ", false))
            << i << ": the folder's name is not tested for BASIC";
    }
    EXPECT_EQ(r[6].type, 3);
    EXPECT_EQ(names(0), "Other tab");

    for (const QString& root : {world.path("T/__NEW/"), QString("   ")}) {
        rebuildCatalogue(request({{3, "Tab", root}}), fs);
        EXPECT_EQ(names(3), "") << "a root with \"__\" or a blank one adds nothing";
    }
}

TEST_F(RebuildTest, TargetsInOrderEachReplacedWholeOrNotAtAll) {
    for (const char* f :
         {"Carts/Action!.rom", "Carts/Atari BASIC, Rev C.bin", "Carts/Star Raiders.atr", "Games/Game.atr"})
        world.writeFile(f);
    world.open()->addCartridge("Old", "/old.rom");

    QString events; // S(tarted), B(egin of the tabs), D(one), E(nd of the tabs), with their targets
    RebuildRequest r = request({{0, "Games", world.path("Games/")}}, true);
    r.cartridgeSource = world.path("Carts/");
    const RebuildResult result = rebuildCatalogue(r, fs, [&](const RebuildProgress& p) {
        if (p.event != E::Files && p.event != E::Walking)
            events += QStringLiteral("WSBFDE")[int(p.event)] + QString::number(p.target) + ' ';
    });
    EXPECT_EQ(events, "S24 D24 B-1 S0 D0 E-1 S99 D99 ");
    QString carts;
    for (const auto& cart : world.open()->cartridges())
        carts += cart.cartName + "=" + QString(cart.cartPath).remove(world.root()) + ";";
    EXPECT_EQ(carts, "Action!=/Carts/Action!.rom;Atari BASIC, Rev C=/Carts/Atari BASIC, Rev C.bin;")
        << "a cartridge keeps its commas";
    EXPECT_EQ(names(0), "Game");
    EXPECT_EQ(std::tie(result.programs, result.cartridges), std::make_tuple(5, 2)); // 4 in Everything

    // A catalogue that fails half way, as a full disk would: the target finished before stays
    // rebuilt, the one under way keeps its old rows, and none after it starts.
    for (const char* f : {"Carts/New.rom", "Games/Poison.atr", "New.xex"})
        world.writeFile(f);
    ASSERT_TRUE(QSqlQuery(world.open()->database())
                    .exec("CREATE TRIGGER Fault BEFORE INSERT ON Programs WHEN NEW.Name = 'Poison' "
                          "BEGIN SELECT RAISE(ABORT, 'disk full'); END"));
    EXPECT_THROW(rebuildCatalogue(r, fs), StoreError);
    EXPECT_EQ(world.open()->cartridges().size(), 3u);
    EXPECT_EQ(names(0), "Game");
    EXPECT_EQ(rows(kEverythingTabNumber).size(), 4u);
}

TEST_F(RebuildTest, EverythingRootIgnoresBlanksAroundAtariDir) {
    world.writeFile("Top.xex");
    world.writeFile("Games/Game.atr");
    const QString r = world.root();
    // AtariDir and where the top file's row points; no tree at all clears the rows of the case before.
    const std::pair<QString, QString> cases[] = {
        {" \t" + r + "/  ", r + "//Top.xex"}, {r + " ", r + "/Top.xex"}, {"   ", ""}};
    for (const auto& [atariDir, topFile] : cases) {
        ASSERT_TRUE(QSqlQuery(world.open()->database()).exec("DELETE FROM Config"));
        world.open()->addConfig({"XP", atariDir});
        rebuildCatalogue(request({}, true), fs);
        const auto all = rows(kEverythingTabNumber);
        ASSERT_EQ(all.size(), topFile.isEmpty() ? 0u : 2u) << atariDir.toStdString();
        EXPECT_EQ(all.empty() ? "" : all[0].fileName1, topFile);
    }
}

// The CRCs are taken on several threads, and a big first file ends last; the rows still follow
// the walk, each with its own file's CRC.
TEST_F(RebuildTest, RowsFollowTheWalkWhateverOrderTheCrcsEndIn) {
    QByteArray big(8 << 20, Qt::Uninitialized);
    for (qsizetype i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>((i * 7 + i / 4093) & 0xFF);
    world.writeFile("Mixed/A big.atr", big);
    std::vector<std::pair<QString, QString>> expected{{"A big", zlibCrc(big)}}, got;
    for (int i = 0; i < 200; ++i) {
        const QString name = QStringLiteral("B %1").arg(i, 3, 10, QLatin1Char('0'));
        expected.emplace_back(name, zlibCrc(name.toUtf8()));
        world.writeFile("Mixed/" + name + ".xex", name.toUtf8());
    }
    world.writeFile("Mixed/Sub/C last.atr", "in a sub-folder");
    expected.emplace_back("C last", zlibCrc("in a sub-folder"));

    RebuildRequest fourThreads = request({{1, "Mixed", world.path("Mixed/")}});
    fourThreads.crcThreads = 4;
    rebuildCatalogue(fourThreads, fs);
    for (const auto& r : rows(1))
        got.emplace_back(r.name, r.crc);
    EXPECT_EQ(got, expected);
}

// A rebuild stopped from outside, with a new row written but not yet kept and a file of many
// gigabytes under way, keeps the old rows and does not go on reading that file to the end.
TEST_F(RebuildTest, StoppedRebuildKeepsTheOldRowsAndLeavesABigFileUnread) {
    const std::int64_t size = std::int64_t(4) << 30; // sparse: it takes no room on the disk
    world.writeFile("Huge/A small.xex");
    ASSERT_EQ(::truncate(QFile::encodeName(world.writeFile("Huge/Huge.atr", "ATARI")).constData(), size), 0);
    addRows(0, {"Old one"});
    const auto before = bytesReadSoFar();
    const auto stop = [](const RebuildProgress& p) {
        if (p.event == E::Files && p.filesDone == 1) throw std::runtime_error("stopped");
    };
    EXPECT_THROW(rebuildCatalogue(request({{0, "Huge", world.path("Huge/")}}), fs, stop), std::runtime_error);
    EXPECT_EQ(names(0), "Old one");
    EXPECT_LT(before ? *bytesReadSoFar() - *before : 0, size / 4); // where the kernel keeps a count
}
