#include "ProgramList.h"
#include "TestWorld.h"

#include "JetText.h"

#include <QFile>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

std::vector<QString> names(const std::vector<ListRow>& rows) {
    std::vector<QString> n;
    for (const ListRow& r : rows)
        n.push_back(r.name);
    return n;
}

// A writer outside this process goes through SQLite alone: nothing here hears of its commits, only
// the files change.
struct OtherWriter {
    explicit OtherWriter(const QString& path) {
        EXPECT_EQ(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
        registerJetFunctions(db);
    }
    ~OtherWriter() { sqlite3_close(db); }
    void exec(const char* sql) {
        const quint64 commits = Catalogue::commitCount();
        ASSERT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        ASSERT_EQ(Catalogue::commitCount(), commits) << "the other writer must not count as this process";
    }
    sqlite3* db = nullptr;
};

} // namespace

// The extension is looked for as a piece of the list's text, in any case; no dot: the whole name.
TEST(KnownExtensions, ThePieceTest) {
    const std::pair<const char*, bool> cases[] = {
        {"/a/GAME.ATR", true},     {"/a/game.at", true},  {"/a/game.", true},
        {"/a/noextension", false}, {"C:\\a.b\\c", false}, {"/a/game.zip", false},
    };
    for (const auto& [file, listed] : cases)
        EXPECT_EQ(isListedFile(QString::fromUtf8(file)), listed) << file;
}

TEST(ListRows, FiltersOrdersAndSkipsUnknownFiles) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    c->addProgram(program("Games", "Star Raiders", "/g/Star Raiders.ATR"));
    c->addProgram(program("Games", "Archon", "/g/Archon.xex"));
    c->addProgram(program("Games", "Manual", "/g/Manual.zip"));
    c->addProgram(program("Games", "Summer Games 2", "/g/sg2.atr"));
    c->addProgram(program("Demos", "Starfield", "/d/sf.xex"));
    const std::pair<const char*, std::vector<QString>> cases[] = {
        {"", {"Archon", "Star Raiders", "Summer Games 2"}},
        {"STAR", {"Star Raiders"}},
        {"a?d", {"Star Raiders"}},
        {"#", {"Summer Games 2"}},
        {"'", {}},
        {"man", {}}, // only in a row whose extension is not listed
    };
    CategoryList kept;
    for (const auto& [filter, expected] : cases) {
        EXPECT_EQ(names(listRows(*c, "Games", filter)), expected) << "filter '" << filter << "'";
        EXPECT_EQ(names(kept.rows(world.path("Atari.mdb"), "Games", filter)), expected)
            << "kept rows, filter '" << filter << "'";
    }
}

// The kept rows must never show a catalogue older than the file: any commit, by this process or
// another, is seen at the next keystroke, and they always equal what the list's query gives.
TEST(CategoryList, SeesEveryCommit) {
    TestWorld world;
    world.makeCatalogue();
    const QString path = world.path("Atari.mdb");
    const int code = world.open()->addProgram(program("Games", "Archon", "/a.atr"));
    CategoryList kept;
    ASSERT_EQ(kept.rows(path, "Games", "").size(), 1u);
    const auto expectRows = [&](const char* caption, const char* filter,
                                const std::vector<QString>& expected) {
        const std::vector<QString> fromKept = names(kept.rows(path, caption, filter));
        EXPECT_EQ(fromKept, expected) << caption << " " << filter;
        EXPECT_EQ(fromKept, names(listRows(*world.open(), caption, filter))) << caption << " " << filter;
    };
    world.open()->addProgram(program("Games", "Zaxxon", "/z.atr"));
    expectRows("Games", "a", {"Archon", "Zaxxon"});
    world.open()->setProgramFields(code, {{"Category", "Favourites"}});
    expectRows("Games", "a", {"Zaxxon"});
    {
        OtherWriter other(path);
        other.exec("UPDATE Programs SET Name = 'Archon II' WHERE Category = 'Favourites'");
        expectRows("FAVOURITES", "", {"Archon II"});
        other.exec("INSERT INTO Programs (Category, Name, FileName1) VALUES ('Games', 'Yars', '/y.a26')");
        expectRows("Games", "", {"Yars", "Zaxxon"});
    }
    world.open()->deleteProgram(code);
    expectRows("Favourites", "", {});

    // A catalogue put back under the same name, as a restored backup is.
    const QString backup = world.path("backup.mdb");
    Catalogue::create(backup);
    Catalogue(backup).addProgram(program("Games", "Boulder Dash", "/b.atr"));
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QFile::rename(backup, path));
    expectRows("Games", "", {"Boulder Dash"});
}

// A log that starts over comes back to the same size, and on a coarse clock to the same time: the
// kept rows must still be read anew.
TEST(CategoryList, SeesALogThatStartedOver) {
    TestWorld world;
    world.makeCatalogue();
    const QString path = world.path("Atari.mdb");
    world.open()->addProgram(program("Games", "Archon", "/a.atr"));
    OtherWriter other(path);
    other.exec("UPDATE Programs SET Name = 'Archon I' WHERE ProgramCode = 1");
    CategoryList kept;
    ASSERT_EQ(kept.rows(path, "Games", "").at(0).name, "Archon I");
    const CatalogueStamp before = catalogueStamp(path);

    other.exec("PRAGMA wal_checkpoint(RESTART)");
    other.exec("UPDATE Programs SET Name = 'Archon 2' WHERE ProgramCode = 1");
    for (const QString& file : {path, path + "-wal"}) {
        const qint64 ns = file == path ? before.modifiedNs : before.logModifiedNs;
        const timespec time = {ns / 1'000'000'000, ns % 1'000'000'000}, times[2] = {time, time};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), times, 0), 0);
    }
    const CatalogueStamp after = catalogueStamp(path);
    ASSERT_EQ(after.logSize, before.logSize) << "the case needs a log of the same size";
    ASSERT_EQ(after.size, before.size);
    EXPECT_EQ(kept.rows(path, "Games", "").at(0).name, "Archon 2");
}

TEST(ListRows, StopsAt32767) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    Transaction t(*c);
    for (int i = 0; i < kMaxListRows + 50; ++i)
        c->addProgram(
            program("Games", QString("G%1").arg(i, 6, 10, QChar('0')), i % 2 ? "/g.atr" : "/g.zip"));
    for (int i = 0; i < kMaxListRows; ++i)
        c->addProgram(program("Games", QString("H%1").arg(i, 6, 10, QChar('0')), "/h.xex"));
    t.commit();
    CategoryList kept;
    // The list's query and the kept rows the form lists from cut at the same row.
    for (const auto& rows : {listRows(*c, "Games", ""), kept.rows(world.path("Atari.mdb"), "Games", "")}) {
        ASSERT_EQ(rows.size(), static_cast<size_t>(kMaxListRows));
        EXPECT_EQ(rows.front().name, "G000001");
        EXPECT_TRUE(rows.back().name.startsWith("H")) << "rows in query order up to the cut";
    }
}
