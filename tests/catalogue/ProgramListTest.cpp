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

TEST(KnownExtensions, ThePieceTest) {
    struct Case {
        const char* file;
        bool listed;
    };
    const Case cases[] = {
        {"/a/game.atr", true},     {"/a/GAME.ATR", true}, {"/a/game.Xex", true}, {"/a/game.zip", false},
        {"/a/game.at", true},      {"/a/game.st", true},  {"/a/game.a", true},   {"/a/game.", true},
        {"/a/noextension", false}, {"C:\\a.b\\c", false}, {"/a/game.jag", true}, {"/a/game.msa", true},
        {"/a/game.arc", false},    {"/a/game.txt", true}, {"/a/game.rom", true}, {"/a/game.exe", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(isListedFile(QString::fromUtf8(c.file)), c.listed) << c.file;
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
    struct Case {
        const char* filter;
        std::vector<QString> names;
    };
    const Case cases[] = {
        {"", {"Archon", "Star Raiders", "Summer Games 2"}},
        {"r r", {"Star Raiders"}},
        {"STAR", {"Star Raiders"}},
        {"a?d", {"Star Raiders"}},
        {"#", {"Summer Games 2"}},
        {"zzz", {}},
        {"'", {}},
        {"man", {}}, // only in a row whose extension is not listed
    };
    CategoryList kept;
    for (const Case& k : cases) {
        std::vector<QString> fromQuery, fromKept;
        for (const ListRow& r : listRows(*c, "Games", k.filter))
            fromQuery.push_back(r.name);
        for (const ListRow& r : kept.rows(world.path("Atari.mdb"), "Games", k.filter))
            fromKept.push_back(r.name);
        EXPECT_EQ(fromQuery, k.names) << "filter '" << k.filter << "'";
        EXPECT_EQ(fromKept, k.names) << "kept rows, filter '" << k.filter << "'";
    }
}

// The kept rows must never show a catalogue older than the file: any commit, by any
// connection, is seen at the next keystroke.
TEST(CategoryList, SeesEveryCommit) {
    TestWorld world;
    world.makeCatalogue();
    const QString path = world.path("Atari.mdb");
    CategoryList kept;
    const auto names = [&](const QString& caption, const QString& filter) {
        std::vector<QString> n;
        for (const ListRow& r : kept.rows(path, caption, filter))
            n.push_back(r.name);
        return n;
    };
    int code = 0;
    {
        auto c = world.open();
        code = c->addProgram(program("Games", "Archon", "/a.atr"));
    }
    EXPECT_EQ(names("Games", ""), std::vector<QString>{"Archon"});
    world.open()->addProgram(program("Games", "Zaxxon", "/z.atr"));
    EXPECT_EQ(names("Games", "a"), (std::vector<QString>{"Archon", "Zaxxon"}));
    {
        auto c = world.open();
        ProgramRecord r = *c->programByCode(code);
        r.category = "Favourites";
        c->updateProgram(r);
    }
    EXPECT_EQ(names("Games", "a"), std::vector<QString>{"Zaxxon"});
    EXPECT_EQ(names("FAVOURITES", ""), std::vector<QString>{"Archon"});
    world.open()->deleteProgram(code);
    EXPECT_TRUE(names("Favourites", "").empty());

    // A catalogue put back under the same name, as a restored backup is.
    const QString other = world.path("backup.mdb");
    Catalogue::create(other);
    Catalogue(other).addProgram(program("Games", "Boulder Dash", "/b.atr"));
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QFile::rename(other, path));
    EXPECT_EQ(names("Games", ""), std::vector<QString>{"Boulder Dash"});
}

// A writer outside this process goes through SQLite alone: nothing here hears of its commit, only
// the files change. A bare SQLite connection stands in for it.
TEST(CategoryList, SeesCommitsOfOtherWriters) {
    TestWorld world;
    world.makeCatalogue();
    const QString path = world.path("Atari.mdb");
    world.open()->addProgram(program("Games", "Archon", "/a.atr"));
    CategoryList kept;
    ASSERT_EQ(kept.rows(path, "Games", "").size(), 1u);
    const quint64 commits = Catalogue::commitCount();

    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(path).constData(), &other), SQLITE_OK);
    registerJetFunctions(other);
    for (const char* sql :
         {"INSERT INTO Programs (Category, Name, FileName1) VALUES ('Games', 'Zaxxon', '/z.atr')",
          "UPDATE Programs SET Name = 'Archon II' WHERE Name = 'Archon'"}) {
        ASSERT_EQ(sqlite3_exec(other, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(other);
        std::vector<QString> names, fromQuery;
        for (const ListRow& r : kept.rows(path, "Games", ""))
            names.push_back(r.name);
        for (const ListRow& r : listRows(*world.open(), "Games", ""))
            fromQuery.push_back(r.name);
        EXPECT_EQ(names, fromQuery) << sql;
        EXPECT_EQ(names.size(), 2u) << sql;
    }
    sqlite3_close(other);
    ASSERT_EQ(Catalogue::commitCount(), commits) << "the other writer must not count as this process";
}

// A log that starts over comes back to the same size, and on a coarse clock to the same time: the
// kept rows must still be read anew.
TEST(CategoryList, SeesALogThatStartedOver) {
    TestWorld world;
    world.makeCatalogue();
    const QString path = world.path("Atari.mdb");
    world.open()->addProgram(program("Games", "Archon", "/a.atr"));
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(path).constData(), &other), SQLITE_OK);
    registerJetFunctions(other);
    const auto exec = [&](const char* sql) {
        ASSERT_EQ(sqlite3_exec(other, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(other);
    };
    exec("UPDATE Programs SET Name = 'Archon I' WHERE ProgramCode = 1");
    CategoryList kept;
    ASSERT_EQ(kept.rows(path, "Games", "").at(0).name, "Archon I");
    const CatalogueStamp before = catalogueStamp(path);

    exec("PRAGMA wal_checkpoint(RESTART)");
    exec("UPDATE Programs SET Name = 'Archon 2' WHERE ProgramCode = 1");
    for (const QString& file : {path, path + "-wal"}) {
        const qint64 ns = file == path ? before.modifiedNs : before.logModifiedNs;
        const timespec times[2] = {{ns / 1'000'000'000, ns % 1'000'000'000},
                                   {ns / 1'000'000'000, ns % 1'000'000'000}};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), times, 0), 0);
    }
    const CatalogueStamp after = catalogueStamp(path);
    ASSERT_EQ(after.logSize, before.logSize) << "the case needs a log of the same size";
    ASSERT_EQ(after.size, before.size);
    EXPECT_EQ(kept.rows(path, "Games", "").at(0).name, "Archon 2");
    sqlite3_close(other);
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
