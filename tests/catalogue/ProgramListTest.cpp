#include "ProgramList.h"
#include "TestWorld.h"

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
    const auto rows = listRows(*c, "Games", "");
    ASSERT_EQ(rows.size(), static_cast<size_t>(kMaxListRows));
    EXPECT_EQ(rows.front().name, "G000001");
    EXPECT_TRUE(rows.back().name.startsWith("H")) << "rows in query order up to the cut";
}
