#include "Startup.h"
#include "TestWorld.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(Startup, NoCatalogueInTheCurrentFolder) {
    for (const bool folderOfThatName : {false, true}) {
        TestWorld world;
        ASSERT_TRUE(!folderOfThatName || QDir().mkpath(world.path("Atari.mdb")));
        EXPECT_FALSE(startUp(world.fake().host(), world.root()).proceed) << folderOfThatName;
        EXPECT_EQ(world.fake().dialogs.messages,
                  std::vector<QString>{
                      "Error! - Cannot locate Atari.mdb - please check the properties of this shortcut"});
    }
}

// The answer becomes the Atari folder, with one separator at its end; its drive letter, if it has
// one, moves every stored drive letter.
TEST(Startup, FirstRunAnswers) {
    const struct {
        const char* answer;   // nullptr: Cancel
        const char* atariDir; // empty: no start
        char drive;           // of the paths stored afterwards
    } cases[] = {
        {nullptr, "", 'D'},
        {"   ", "", 'D'},
        {"E:\\Atari\\", "E:\\Atari\\", 'E'},
        {"  f:\\Atari  ", "f:\\Atari\\", 'f'},
        {"/home/user/Atari", "/home/user/Atari/", 'D'},
        {"/home/user/Atari/", "/home/user/Atari/", 'D'},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer ? c.answer : "Cancel");
        TestWorld world;
        world.makeCatalogue(false);
        {
            auto cat = world.open();
            cat->addProgram(program("Games", "a", "D:\\Atari\\Games\\a.atr"));
            cat->addProgram(program("Games", "b", "/home/u/b.atr"));
            cat->addCartridge("c", "D:\\Atari\\c.rom");
        }
        FakeHost& f = world.fake();
        if (c.answer) f.dialogs.inputAnswers.push_back(QString::fromUtf8(c.answer));
        const auto r = startUp(f.host(), world.root());
        EXPECT_EQ(r.proceed, *c.atariDir != 0);
        auto cat = world.open();
        const auto config = cat->config();
        EXPECT_EQ(config ? config->atariDir : "", QString::fromUtf8(c.atariDir));
        if (r.proceed) {
            EXPECT_EQ(r.atariDir, QString::fromUtf8(c.atariDir));
            EXPECT_TRUE(f.dialogs.messages.empty());
        } else {
            EXPECT_EQ(f.dialogs.messages, std::vector<QString>{"Fatal Error! - You must supply a location!"});
        }
        const auto rows = cat->programsByTabNumber(0);
        EXPECT_EQ(rows[0].fileName1 + " " + rows[1].fileName1 + " " + cat->cartridges()[0].cartPath,
                  c.drive + QString(":\\Atari\\Games\\a.atr /home/u/b.atr ") + c.drive + ":\\Atari\\c.rom");
    }
}

TEST(Startup, CancelAsksAgainNextTimeAndASecondStartAsksNothing) {
    TestWorld world;
    world.makeCatalogue(false);
    FakeHost& f = world.fake();
    EXPECT_FALSE(startUp(f.host(), world.root()).proceed);
    f.dialogs.inputAnswers.push_back("/srv/atari");
    EXPECT_TRUE(startUp(f.host(), world.root()).proceed);
    EXPECT_EQ(startUp(f.host(), world.root()).atariDir, "/srv/atari/");
    EXPECT_EQ(f.dialogs.prompts.size(), 2u);
}

TEST(Startup, StoredValuesAreTrimmedOnly) {
    TestWorld world;
    world.makeCatalogue(false);
    world.open()->addConfig({" 98 ", "  /srv/atari  "});
    const auto r = startUp(world.fake().host(), world.root());
    EXPECT_EQ(r.windowsVersion, "98");
    EXPECT_EQ(r.atariDir, "/srv/atari") << "no separator is added to a stored folder";
}

TEST(Total, EverythingRowsOrAllRows) {
    TestWorld world;
    world.makeCatalogue();
    auto c = world.open();
    EXPECT_EQ(catalogueTotal(*c), 0);
    c->addProgram(program("Games", "a", "/a.atr"));
    c->addProgram(program("Games", "b", "/b.atr"));
    EXPECT_EQ(catalogueTotal(*c), 2);
    c->addProgram(program("Everything", "a", "/a.atr"));
    EXPECT_EQ(catalogueTotal(*c), 1);
}
