#include "Startup.h"
#include "TestWorld.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {
const QString kMissing = "Error! - Cannot locate Atari.mdb - please check the properties of this shortcut";
const QString kNoLocation = "Fatal Error! - You must supply a location!";
} // namespace

TEST(Startup, NoCatalogueInTheCurrentFolder) {
    for (const bool folderOfThatName : {false, true}) {
        SCOPED_TRACE(folderOfThatName);
        TestWorld world;
        ASSERT_TRUE(!folderOfThatName || QDir().mkpath(world.path("Atari.mdb")));
        FakeHost& f = world.fake();
        EXPECT_FALSE(startUp(f.host(), world.root()).proceed);
        EXPECT_EQ(f.dialogs.messages, std::vector<QString>{kMissing});
    }
}

TEST(Startup, FirstRunAnswers) {
    struct Case {
        const char* answer;   // nullptr: Cancel
        const char* atariDir; // empty: no start
        char drive;           // of the paths stored afterwards
    };
    const Case cases[] = {
        {nullptr, "", 'D'},
        {"   ", "", 'D'},
        {"E:\\Atari\\", "E:\\Atari\\", 'E'},
        {"e:\\Elsewhere", "e:\\Elsewhere\\", 'e'},
        {"  F:\\Atari  ", "F:\\Atari\\", 'F'},
        {"/home/user/Atari", "/home/user/Atari/", 'D'},
        {"/home/user/Atari/", "/home/user/Atari/", 'D'},
    };
    for (const Case& c : cases) {
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
        const bool proceeds = *c.atariDir;
        EXPECT_EQ(r.proceed, proceeds) << c.answer;
        auto cat = world.open();
        const auto config = cat->config();
        EXPECT_EQ(config.has_value(), proceeds) << c.answer;
        if (config) {
            EXPECT_EQ(config->atariDir, QString::fromUtf8(c.atariDir)) << c.answer;
            EXPECT_EQ(config->windowsVersion, "XP");
            EXPECT_EQ(r.atariDir, QString::fromUtf8(c.atariDir));
            EXPECT_TRUE(f.dialogs.messages.empty());
        } else {
            EXPECT_EQ(f.dialogs.messages, std::vector<QString>{kNoLocation});
        }
        EXPECT_EQ(cat->programsByTabNumber(0)[1].fileName1, "/home/u/b.atr") << "no drive, no change";
        EXPECT_EQ(cat->programsByTabNumber(0)[0].fileName1, c.drive + QString(":\\Atari\\Games\\a.atr"))
            << c.answer;
        EXPECT_EQ(cat->cartridges()[0].cartPath, c.drive + QString(":\\Atari\\c.rom")) << c.answer;
    }
}

TEST(Startup, CancelAsksAgainNextTimeAndASecondStartAsksNothing) {
    TestWorld world;
    world.makeCatalogue(false);
    FakeHost& f = world.fake();
    EXPECT_FALSE(startUp(f.host(), world.root()).proceed);
    EXPECT_EQ(f.dialogs.prompts.size(), 1u);
    f.dialogs.inputAnswers.push_back("/srv/atari");
    EXPECT_TRUE(startUp(f.host(), world.root()).proceed);
    EXPECT_EQ(f.dialogs.prompts.size(), 2u);
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
