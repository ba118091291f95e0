#include "Store.h"
#include "TestWorld.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

struct CliRun {
    int exitCode = -1; // -1: it crashed or did not end in time
    QString out, err;
};

// Runs quaylight-cli with HOME and the XDG folders inside the test's world.
CliRun runCli(const TestWorld& world, const QStringList& args) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", world.root());
    for (const QString folder : {"config", "state", "data", "cache"})
        env.insert("XDG_" + folder.toUpper() + "_HOME", world.path(folder));
    QProcess process;
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(world.root());
    process.start(QStringLiteral(QUAYLIGHT_CLI), args);
    CliRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished(5000);
        return run;
    }
    if (process.exitStatus() == QProcess::NormalExit) run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

std::vector<QString> names(Catalogue& c, int tabNumber) {
    std::vector<QString> n;
    for (const ProgramRecord& r : c.programsByTabNumber(tabNumber))
        n.push_back(r.name);
    std::sort(n.begin(), n.end());
    return n;
}

} // namespace

// The first run makes the catalogue, with its new folder; every later run is refused.
TEST(CliTest, InitWritesANewCatalogueAndNeverReplacesAFile) {
    TestWorld world;
    const QString made = world.path("new/folder/Atari.mdb");
    EXPECT_EQ(runCli(world, {"init", "new/folder"}).exitCode, 0);
    std::vector<QString> tabNames;
    for (const TabRecord& tab : Catalogue(made).tabs())
        tabNames.push_back(tab.tabName);
    EXPECT_EQ(tabNames, Catalogue::defaultTabNames());
    EXPECT_EQ(Catalogue(made).countPrograms(), 0);
    Catalogue(made).updateTab(1, "Mine", "/atari/Mine/");

    const std::pair<const char*, QByteArray> cases[] = {
        {"new/folder/Atari.mdb", {}}, // the catalogue just made, with a tab renamed
        {"Jet/Atari.mdb", QByteArray("\x00\x01\x00\x00Standard Jet DB", 19) + QByteArray(2000, '\x7f')},
        {"Empty/Atari.mdb", QByteArray("", 0)},
    };
    for (const auto& [file, bytes] : cases) {
        SCOPED_TRACE(file);
        const QString path = bytes.isNull() ? world.path(file) : world.writeFile(file, bytes);
        const QByteArray before = contents(path);
        const CliRun run = runCli(world, {"init", QFileInfo(path).path()});
        EXPECT_GT(run.exitCode, 0) << "refused, not crashed";
        EXPECT_TRUE(run.err.contains("already exists")) << run.err.toStdString();
        EXPECT_EQ(contents(path), before);
    }
}

TEST(CliTest, RebuildRefusesBadOptionsAndMissingCatalogues) {
    TestWorld world;
    world.makeCatalogue();
    world.open()->addProgram(program("Games", "Kept", "/kept.atr"));
    struct Case {
        QStringList args;
        int exitCode;
        const char* err;
    };
    const QString here = world.root();
    const Case cases[] = {
        {{"rebuild", here, "--tabs="}, 2, "bad option --tabs="},
        {{"rebuild", here, "--tabs=24"}, 2, "bad option --tabs=24"}, // the cartridges are no tab
        {{"rebuild", here, "--tabs=-1"}, 2, "bad option"},
        {{"rebuild", here, "--tabs=1,x"}, 2, "bad option"},
        {{"rebuild", here, "--tabs=1,,2"}, 2, "bad option"},
        {{"rebuild", here, "--tabs=0", "--everything"}, 2, "bad option --everything"},
        {{"rebuild"}, 2, "Usage:"},
        {{"unknown", here}, 2, "Usage:"},
        {{"rebuild", world.path("no catalogue here")}, 1, "Cannot find the catalogue"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CliRun run = runCli(world, c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_TRUE(run.err.contains(c.err)) << run.err.toStdString();
        EXPECT_FALSE(run.out.contains("Operation Complete!"));
    }
    EXPECT_FALSE(QFile::exists(world.path("no catalogue here/Atari.mdb")))
        << "no catalogue is made on the way";
    auto c = world.open();
    EXPECT_EQ(names(*c, 0), std::vector<QString>{"Kept"}) << "a refused rebuild changes nothing";
}

// Each case starts from the same saved tabs and old rows, and says which targets were rebuilt.
TEST(CliTest, RebuildTakesTheSavedTabsItIsAskedFor) {
    struct Case {
        QStringList options;
        std::vector<QString> tab0, tab2;
        size_t cartridges;
        size_t everything;
    };
    const std::vector<QString> old0{"Old games"}, old2{"Old utilities"}, new0{"Game"}, new2{"Tool"};
    const Case cases[] = {
        {{}, new0, new2, 2, 4},
        {{"--tabs=2", "--no-cartridges", "--no-everything"}, old0, new2, 1, 1},
        {{"--tabs=0,2", "--no-everything"}, new0, new2, 2, 1},
        {{"--tabs=none", "--no-everything"}, old0, old2, 2, 1},
        {{"--tabs=none", "--no-cartridges"}, old0, old2, 1, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options.join(' ').toStdString());
        TestWorld world;
        world.makeCatalogue(); // AtariDir is the world's root
        world.writeFile("Games/Game.atr");
        world.writeFile("Utilities/Tool.xex");
        world.writeFile("Carts/Basic.rom");
        world.writeFile("Carts/Writer.bin");
        {
            auto catalogue = world.open();
            catalogue->updateTab(1, "Games", world.path("Games/"));
            catalogue->updateTab(3, "Utilities", world.path("Utilities/"));
            catalogue->updateTab(25, "Resident Cartridges", world.path("Carts/"));
            catalogue->addProgram(program("Games", "Old games", "/old.atr"));
            ProgramRecord utility = program("Utilities", "Old utilities", "/old.xex");
            utility.tabNumber = 2;
            catalogue->addProgram(utility);
            ProgramRecord everything = program(kEverything, "Old", "/old.atr");
            everything.tabNumber = kEverythingTabNumber;
            catalogue->addProgram(everything);
            catalogue->addCartridge("Old", "/old.rom");
        }
        const CliRun run = runCli(world, QStringList{"rebuild", world.root()} + c.options);
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_TRUE(run.out.contains("Operation Complete!"));
        auto catalogue = world.open();
        EXPECT_EQ(names(*catalogue, 0), c.tab0);
        EXPECT_EQ(names(*catalogue, 2), c.tab2);
        EXPECT_EQ(catalogue->cartridges().size(), c.cartridges);
        EXPECT_EQ(catalogue->programsByTabNumber(kEverythingTabNumber).size(), c.everything);
    }
}
