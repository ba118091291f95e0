#include "TestWorld.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {
QByteArray digest(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}
} // namespace

TEST(Store, NewCatalogueHasItsTabsAndDefaults) {
    TestWorld world;
    world.makeCatalogue(false);
    auto c = world.open();
    const auto tabs = c->tabs();
    ASSERT_EQ(tabs.size(), 25u);
    EXPECT_EQ(tabs[0].tabName, "Games");
    EXPECT_EQ(tabs[24].tabCode, 25);
    EXPECT_EQ(tabs[24].tabName, "Resident Cartridges");
    EXPECT_FALSE(c->config().has_value());
    EXPECT_EQ(c->countPrograms(), 0) << "an aggregate gives a row on no rows";

    // A row added with no options set takes values the selection view can show.
    QSqlQuery q(c->database());
    ASSERT_TRUE(q.exec("INSERT INTO Programs (Name, FileName1) VALUES ('x', '/x.atr')"));
    const auto row = c->programByCode(q.lastInsertId().toInt());
    ASSERT_TRUE(row);
    EXPECT_EQ(row->memory, 64);
    EXPECT_EQ(row->artifact, 0);
    EXPECT_EQ(row->stretch, 0);
    EXPECT_FALSE(row->basic);
    EXPECT_TRUE(row->description.isNull());
    EXPECT_THROW(Catalogue::create(world.path("Atari.mdb")), StoreError) << "never replaces a file";
}

TEST(Store, RefusesFilesThatAreNotCataloguesAndLeavesThemAlone) {
    QByteArray jet(2048, '\0');
    jet.replace(4, 15, "Standard Jet DB");
    QByteArray sqliteOther;
    {
        TestWorld scratch;
        const QString p = scratch.path("other.db");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "other");
            db.setDatabaseName(p);
            db.open();
            QSqlQuery(db).exec("CREATE TABLE Notes (t TEXT)");
            db.close();
        }
        QSqlDatabase::removeDatabase("other");
        QFile f(p);
        f.open(QIODevice::ReadOnly);
        sqliteOther = f.readAll();
    }
    struct Case {
        const char* what;
        QByteArray bytes;
        const char* expected;
    };
    const Case cases[] = {
        {"jet", jet, "Jet"},
        {"garbage", QByteArray("this is not a database at all, just text\n").repeated(20), "not an SQLite"},
        {"empty", QByteArray(), "empty"},
        {"other sqlite", sqliteOther, "no table Programs"},
    };
    for (const Case& c : cases) {
        TestWorld world;
        const QString path = world.writeFile("Atari.mdb", c.bytes);
        const QByteArray before = digest(path);
        try {
            Catalogue catalogue(path);
            ADD_FAILURE() << c.what << " was opened";
        } catch (const StoreError& e) {
            EXPECT_TRUE(e.message().contains(c.expected)) << c.what << ": " << e.what();
            EXPECT_TRUE(e.message().contains("not changed")) << e.what();
        }
        EXPECT_EQ(digest(path), before) << c.what;
        EXPECT_FALSE(QFile::exists(path + "-wal")) << c.what;
    }
}

TEST(Store, QuotesAreOrdinaryCharacters) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    c->updateTab(1, "Kid's Games", "/atari/kid's games/");
    c->addProgram(program("Kid's Games", "Yars' Revenge", "/atari/kid's games/Yars' Revenge.a26"));
    c->addProgram(program("Kid's Games", "Robert'); DROP TABLE Programs;--", "/x.atr"));
    EXPECT_EQ(c->tabs()[0].tabName, "Kid's Games");
    EXPECT_EQ(c->tabs()[0].tabSource, "/atari/kid's games/");
    std::vector<QString> names;
    c->forEachInCategory("kid's games", "s' r", [&](const RawListRow& r) {
        names.push_back(QString::fromStdString(std::string(r.name)));
        return true;
    });
    EXPECT_EQ(names, std::vector<QString>{"Yars' Revenge"});
    EXPECT_EQ(c->countPrograms(), 2);
}

TEST(Store, CategoryEqualityIgnoresCaseAndUnknownGivesNothing) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    c->addProgram(program("Games", "b", "/b.atr"));
    c->addProgram(program("GAMES", "A", "/a.atr"));
    c->addProgram(program("Demos", "c", "/c.atr"));
    std::vector<QString> names;
    c->forEachInCategory("games", "", [&](const RawListRow& r) {
        names.push_back(QString::fromStdString(std::string(r.name)));
        return true;
    });
    EXPECT_EQ(names, (std::vector<QString>{"A", "b"}));
    names.clear();
    c->forEachInCategory("Nothing Here", "", [&](const RawListRow& r) {
        names.push_back(QString::fromStdString(std::string(r.name)));
        return true;
    });
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(c->countCategory("Everything"), 0);
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
            auto writer = world.open();
            ProgramRecord r = *writer->programByCode(row.programCode);
            r.name = "Changed";
            writer->updateProgram(r);
            writer->addProgram(program("Demos", "New", "/n.atr"));
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
    r.tabNumber = 0;
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
    const auto rows = again->programsByTabNumber(0);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].name, "Old");
    EXPECT_EQ(again->programsByTabNumberAndCrc(0, "-1").size(), 1u);
    EXPECT_TRUE(again->programsByTabNumberAndCrc(0, "4294967295").empty()) << "CRC compares as text";
}

TEST(Store, RelocationReplacesOnlyDriveLetters) {
    TestWorld world;
    world.makeCatalogue(false);
    auto c = world.open();
    c->addProgram(program("Games", "a", "D:\\Atari\\Games\\a.atr"));
    c->addProgram(program("Games", "b", "/home/u/b.atr"));
    c->addCartridge("basic", "D:\\Atari\\Carts\\basic.rom");
    c->addConfig({"XP", "e:\\Atari\\"});
    {
        Transaction t(*c);
        c->relocateDrive('e');
        t.commit();
    }
    const auto rows = c->programsByTabNumber(0);
    EXPECT_EQ(rows[0].fileName1, "e:\\Atari\\Games\\a.atr");
    EXPECT_EQ(rows[1].fileName1, "/home/u/b.atr");
    EXPECT_EQ(rows[0].fileName2, " ") << "further disks are not touched";
    EXPECT_EQ(c->cartridges()[0].cartPath, "e:\\Atari\\Carts\\basic.rom");
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
