#include "TestWorld.h"

#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace ql;
using namespace ql::test;

namespace {

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

std::vector<QString> namesIn(Catalogue& c, const QString& category, const QString& filter) {
    std::vector<QString> names;
    c.forEachInCategory(category, filter, [&](const RawListRow& r) {
        names.push_back(QString::fromStdString(std::string(r.name)));
        return true;
    });
    return names;
}

} // namespace

TEST(Store, NewCatalogueTakesRowsWrittenByOthers) {
    TestWorld world;
    world.makeCatalogue(false);
    auto c = world.open();
    EXPECT_FALSE(c->config().has_value());
    EXPECT_EQ(c->countPrograms(), 0) << "an aggregate gives a row on no rows";
    // A row added with no options set reads back, its null description still null.
    QSqlQuery q(c->database());
    ASSERT_TRUE(q.exec("INSERT INTO Programs (Name, FileName1) VALUES ('x', '/x.atr')"));
    const auto row = c->programByCode(q.lastInsertId().toInt());
    ASSERT_TRUE(row);
    EXPECT_TRUE(row->description.isNull());
    EXPECT_THROW(Catalogue::create(world.path("Atari.mdb")), StoreError) << "never replaces a file";
}

TEST(Store, RefusesFilesThatAreNotCataloguesAndLeavesThemAlone) {
    TestWorld world;
    QByteArray jet(2048, '\0');
    jet.replace(4, 15, "Standard Jet DB");
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(world.path("other.db")).constData(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE Notes (t TEXT)", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
    const struct {
        const char* what;
        QByteArray bytes;
        const char* expected;
    } cases[] = {
        {"jet", jet, "Jet"},
        {"garbage", QByteArray("this is not a database at all, just text\n").repeated(20), "not an SQLite"},
        {"empty", QByteArray(), "empty"},
        {"other sqlite", contents(world.path("other.db")), "no table Programs"},
    };
    for (const auto& c : cases) {
        const QString path = world.writeFile(QString(c.what) + "/Atari.mdb", c.bytes);
        try {
            Catalogue catalogue(path);
            ADD_FAILURE() << c.what << " was opened";
        } catch (const StoreError& e) {
            EXPECT_TRUE(e.message().contains(c.expected)) << c.what << ": " << e.what();
            EXPECT_TRUE(e.message().contains("not changed")) << e.what();
        }
        EXPECT_EQ(contents(path), c.bytes) << c.what;
        EXPECT_FALSE(QFile::exists(path + "-wal")) << c.what;
    }
}

TEST(Store, CategoriesIgnoreCaseAndQuotesAreOrdinaryCharacters) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    c->updateTab(1, "Kid's Games", "/atari/kid's games/");
    EXPECT_EQ(c->tabs()[0].tabSource, "/atari/kid's games/");
    c->addProgram(program("Kid's Games", "Yars' Revenge", "/atari/kid's games/Yars' Revenge.a26"));
    c->addProgram(program("Kid's Games", "Robert'); DROP TABLE Programs;--", "/x.atr"));
    c->addProgram(program("Games", "b", "/b.atr"));
    c->addProgram(program("GAMES", "A", "/a.atr"));
    EXPECT_EQ(namesIn(*c, "kid's games", "s' r"), std::vector<QString>{"Yars' Revenge"});
    EXPECT_EQ(namesIn(*c, "games", ""), (std::vector<QString>{"A", "b"}));
}

TEST(Store, OverlappingConnectionsSeeCommittedRows) {
    TestWorld world;
    world.makeCatalogue();
    auto reader = world.open();
    for (int i = 0; i < 50; ++i)
        reader->addProgram(program("Games", QString("G%1").arg(i, 2, 10, QChar('0')), "/g.atr"));
    int seen = 0;
    // A result that is open holds no lock against another handle writing.
    reader->forEachInCategory("Games", "", [&](const RawListRow& row) {
        if (seen++ == 0) {
            world.open()->setProgramFields(row.programCode, {{"Name", "Changed"}});
            world.open()->addProgram(program("Demos", "New", "/n.atr"));
        }
        return true;
    });
    EXPECT_EQ(seen, 50);
    auto third = world.open();
    EXPECT_EQ(third->countCategory("Demos"), 1);
    EXPECT_EQ(third->programsByTabNumber(0).size(), 51u);
}

TEST(Store, AnAbandonedTransactionLeavesTheOldRows) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    ProgramRecord r = program("Games", "Old", "/old.atr");
    r.crc = "-1";
    c->addProgram(r);
    try {
        Transaction t(*c);
        c->deleteProgramsByTabNumber(0);
        c->addProgram(program("Games", "New", "/new.atr"));
        throw std::runtime_error("disk full");
    } catch (const std::runtime_error&) {
    }
    auto again = world.open();
    const auto rows = again->programsByTabNumberAndCrc(0, "-1");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].name, "Old");
    EXPECT_EQ(again->countPrograms(), 1);
    EXPECT_TRUE(again->programsByTabNumberAndCrc(0, "4294967295").empty()) << "CRC compares as text";
}

TEST(Store, DiskFilesLongestNameFirst) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    c->addDiskFile({"123", "/a/short.atr"});
    c->addDiskFile({"123", "/a/much longer name.atr"});
    c->addDiskFile({"456", "/a/x.atr"});
    const auto rows = c->diskFilesByCrcLongestFirst("123");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].filename, "/a/much longer name.atr");
    EXPECT_EQ(c->distinctDiskFileCrcs().size(), 2u);
    c->deleteDiskFiles();
    EXPECT_TRUE(c->diskFiles().empty());
}
