#include "Store.h"
#include "TestWorld.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

struct CliRun {
    int exitCode = -1; // -1: it crashed or did not end in time
    QString out, err;
};

// Runs quaylight-cli in the world, whose HOME and XDG folders the process inherits.
CliRun runCli(const TestWorld& world, const QStringList& args) {
    QProcess process;
    process.setWorkingDirectory(world.root());
    process.start(QStringLiteral(QUAYLIGHT_CLI), args);
    process.closeWriteChannel(); // no answer to a question
    const bool ended = process.waitForFinished(60000);
    if (!ended) process.kill(), process.waitForFinished(5000);
    return {ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString names(Catalogue& c, int tabNumber) {
    QStringList n;
    for (const ProgramRecord& r : c.programsByTabNumber(tabNumber))
        n << r.name;
    n.sort();
    return n.join(", ");
}

} // namespace

// Init writes a new catalogue, with its folder, and never replaces a file; a rebuild with a bad
// option or without a catalogue changes nothing. Each is refused with its reason, never a crash.
TEST(CliTest, RefusesWhatWouldHarmAFile) {
    TestWorld world;
    world.makeCatalogue();
    ASSERT_EQ(runCli(world, {"init", "new/folder"}).exitCode, 0);
    EXPECT_EQ(Catalogue(world.path("new/folder/Atari.mdb")).countPrograms(), 0);
    world.writeFile("Jet/Atari.mdb",
                    QByteArray("\x00\x01\x00\x00Standard Jet DB", 19) + QByteArray(2000, '\x7f'));
    world.writeFile("Empty/Atari.mdb", "");
    const auto files = [&] {
        QList<QByteArray> all;
        for (const char* f : {"Atari.mdb", "new/folder/Atari.mdb", "Jet/Atari.mdb", "Empty/Atari.mdb"})
            all << contents(world.path(f));
        return all;
    };
    const auto before = files();
    const QString here = world.root();
    const std::tuple<QStringList, int, const char*> cases[] = {
        {{"init", here}, 1, "already exists"},
        {{"init", "new/folder"}, 1, "already exists"},
        {{"init", "Jet"}, 1, "already exists"},
        {{"init", "Empty"}, 1, "already exists"},
        {{"rebuild", here, "--tabs="}, 2, "bad option --tabs="},
        {{"rebuild", here, "--tabs=24"}, 2, "bad option --tabs=24"}, // the cartridges are no tab
        {{"rebuild", here, "--tabs=-1"}, 2, "bad option"},
        {{"rebuild", here, "--tabs=1,x"}, 2, "bad option"},
        {{"rebuild", here, "--tabs=0", "--everything"}, 2, "bad option --everything"},
        {{"rebuild"}, 2, "Usage:"},
        {{"unknown", here}, 2, "Usage:"},
        {{"rebuild", world.path("no catalogue here")}, 1, "Cannot find the catalogue"}};
    for (const auto& [args, exitCode, err] : cases) {
        const CliRun run = runCli(world, args);
        const std::string name = args.join(' ').toStdString() + ": " + run.err.toStdString();
        EXPECT_EQ(run.exitCode, exitCode) << name;
        EXPECT_TRUE(run.err.contains(err) && !run.out.contains("Operation Complete!")) << name;
    }
    EXPECT_EQ(files(), before);
    EXPECT_FALSE(QFile::exists(world.path("no catalogue here/Atari.mdb")))
        << "no catalogue is made on the way";
}

// Each case starts from the same saved tabs (0 and 2 with a folder, 1 without) and old rows, and
// says which targets were rebuilt.
TEST(CliTest, RebuildTakesTheSavedTabsItIsAskedFor) {
    const std::pair<QStringList, const char*> cases[] = {
        // Options; then tabs 0, 1 and 2, how many cartridges and rows in Everything.
        {{}, "Game; Old demos; Tool; 2; 4"},
        {{"--tabs=2", "--no-cartridges", "--no-everything"}, "Old games; Old demos; Tool; 1; 1"},
        {{"--tabs=0,1", "--no-everything"}, "Game; ; Old utilities; 2; 1"}, // 1 has no folder to take from
        {{"--tabs=none", "--no-cartridges"}, "Old games; Old demos; Old utilities; 1; 4"}};
    for (const auto& [options, expected] : cases) {
        TestWorld world;
        world.makeCatalogue(); // AtariDir is the world's root
        for (const char* f : {"Games/Game.atr", "Utilities/Tool.xex", "Carts/Basic.rom", "Carts/Writer.bin"})
            world.writeFile(f);
        {
            auto c = world.open();
            c->updateTab(1, "Games", world.path("Games/"));
            c->updateTab(3, "Utilities", world.path("Utilities/"));
            c->updateTab(25, "Resident Cartridges", world.path("Carts/"));
            const std::pair<int, const char*> old[] = {
                {0, "Old games"}, {1, "Old demos"}, {2, "Old utilities"}, {kEverythingTabNumber, "Old"}};
            for (const auto& [tab, name] : old) {
                ProgramRecord r = program("Old", name, "/old.atr");
                r.tabNumber = tab;
                c->addProgram(r);
            }
            c->addCartridge("Old", "/old.rom");
        }
        const CliRun run = runCli(world, QStringList{"rebuild", world.root()} + options);
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_TRUE(run.out.contains("Operation Complete!"));
        auto c = world.open();
        EXPECT_EQ(QStringLiteral("%1; %2; %3; %4; %5")
                      .arg(names(*c, 0), names(*c, 1), names(*c, 2))
                      .arg(c->cartridges().size())
                      .arg(c->programsByTabNumber(kEverythingTabNumber).size()),
                  expected)
            << options.join(' ').toStdString();
    }
}

// The folder tools from the shell: one summary line, the form's closing words, and a removal that
// asks first (no answer on a closed input means no).
TEST(Cli, FolderTools) {
    TestWorld world;
    world.makeCatalogue();
    world.writeFile("in/(Demo).xex", "demo");
    world.writeFile("in/deep/twin.atr", "same");
    world.writeFile("in/twin.atr", "same");
    QDir().mkpath(world.path("out"));
    const struct {
        QStringList args;
        int exit;
        const char* out;
    } cases[] = {
        {{"find-new", "in", "out"}, 0, "find-new: 3 files looked at, 3 copied, 1 renamed"},
        {{"duplicates", "--remove", "in", "in"},
         0,
         "duplicates: 3 files looked at, 0 copied, 0 renamed, 0 unpacked, 0 deleted"},
        {{"duplicates", "--remove", "in", "in", "--yes"}, 0, "1 deleted"},
        {{"rename", "in"}, 0, "rename: 2 files looked at"},
        {{"tree", "in"}, 0, "deep\ntree: 1 folders"},
        {{"find-new", "in"}, 2, ""},
        {{"find-new", "in", "out", "--catalogue=missing.mdb"}, 1, ""},
    };
    for (const auto& c : cases) {
        const CliRun run = runCli(world, c.args);
        EXPECT_EQ(run.exitCode, c.exit) << c.args.join(' ').toStdString() << run.err.toStdString();
        EXPECT_TRUE(run.out.contains(c.out)) << run.out.toStdString();
    }
    EXPECT_FALSE(QFile::exists(world.path("in/twin.atr")));
    EXPECT_TRUE(QFile::exists(world.path("in/deep/twin.atr")));
}
