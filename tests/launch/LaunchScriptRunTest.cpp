// The launch script really run by sh, with names built to break out of their quotes.
#include "LaunchPipeline.h"
#include "StringFuncs.h"
#include "TestWorld.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

const char* const kHostile[] = {
    "$(touch PWNED1)",
    "`touch PWNED2`",
    "quote' ; touch PWNED3 ; '",
    "dq\" ; touch PWNED4 ; \"",
    "semi; touch PWNED5",
    "new\nline; touch PWNED6",
    "-rf --help",
    "back\\slash $HOME & touch PWNED7 |",
};

class LaunchScriptRun : public ::testing::Test {
protected:
    void SetUp() override {
        // The emulator stand-in of this test logs each argument it was given, ended by a NUL.
        log = world.path("emulator.log");
        emulator =
            world.writeFile("bin/fake emu", "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\" >> " +
                                                ShellQuote(log).toUtf8() + "; done\n");
        QFile::setPermissions(emulator, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QString command = ShellQuote(emulator) + " %f";
        associations.extensions = {{"atr", command}, {"bin", command}};
        associations.programs = {{"Atari800", ShellQuote(emulator)}};
        atariDir = world.path("atari $(touch PWNED0)/");
        QDir().mkpath(atariDir);
    }

    // Runs the script as the launch would, and waits (bounded) for sh to end.
    void run(const ProgramRecord& record, const QString& version = "XP") {
        const QString script =
            world.writeFile("state/AtariRun.sh",
                            launchScriptText(launchScriptLines(record, atariDir, version, associations)));
        QProcess sh;
        sh.setWorkingDirectory(world.root());
        sh.start("/bin/sh", {script});
        ASSERT_TRUE(sh.waitForFinished(10000));
        EXPECT_EQ(sh.exitCode(), 0) << sh.readAllStandardError().toStdString();
    }

    QStringList logged() const {
        QFile file(log);
        if (!file.open(QIODevice::ReadOnly)) return {};
        QStringList lines = QString::fromUtf8(file.readAll()).split(QChar(0));
        lines.removeLast();
        return lines;
    }

    QStringList sideEffects() const {
        QStringList found;
        QDirIterator it(world.root(), {"PWNED*"}, QDir::AllEntries | QDir::Hidden,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            found << it.next();
        return found;
    }

    TestWorld world;
    FakeAssociations associations;
    QString log, emulator, atariDir;
};

} // namespace

TEST_F(LaunchScriptRun, HostileFileNamesReachTheEmulatorAsPlainText) {
    for (const char* hostile : kHostile) {
        const QString name = QString::fromUtf8(hostile);
        QFile::remove(log);
        const QString file = world.writeFile("Games/" + name + ".atr");
        run(program("Games", name, file));
        EXPECT_EQ(logged(), QStringList{file}) << hostile;
    }
    EXPECT_EQ(sideEffects(), QStringList{});
}

// Association tables copied from desktop files often quote the file themselves.
TEST_F(LaunchScriptRun, HostileNamesThroughCommandsThatQuoteTheFile) {
    const QString emu = ShellQuote(emulator);
    const struct {
        QString command;
        QString (*expected)(const QString& file);
    } commands[] = {
        {emu + " \"%f\"", [](const QString& f) { return f; }},
        {emu + " '%f'", [](const QString& f) { return f; }},
        {emu + " --disk=\"%f\"", [](const QString& f) { return "--disk=" + f; }},
        {emu + " 'x %f y'", [](const QString& f) { return "x " + f + " y"; }},
        {emu + " \"it\\\"s %f\"", [](const QString& f) { return "it\"s " + f; }},
        {emu + " %f \"%f\"", [](const QString& f) { return f; }},
        // A second shell, given the file as its argument as the README advises.
        {"sh -c 'cd / && exec \"" + emulator + "\" \"$1\"' sh %f", [](const QString& f) { return f; }},
    };
    for (const auto& command : commands) {
        associations.extensions = {{"atr", command.command}};
        for (const char* hostile : kHostile) {
            const QString name = QString::fromUtf8(hostile);
            QFile::remove(log);
            const QString file = world.writeFile("Games/" + name + ".atr");
            run(program("Games", name, file));
            QStringList expected{command.expected(file)};
            if (command.command.endsWith("%f \"%f\"")) expected << file;
            EXPECT_EQ(logged(), expected) << command.command.toStdString() << " with " << hostile;
        }
    }
    EXPECT_EQ(sideEffects(), QStringList{});
}

TEST_F(LaunchScriptRun, HostileNameStandingInForTheFile) {
    const QString file = world.writeFile("Games/plain.atr");
    run(program("Games", "x$(touch PWNED8)';touch PWNED9;'", file));
    EXPECT_EQ(logged(), QStringList{world.path("Games/x$(touch PWNED8)';touch PWNED9;'.atr")});
    EXPECT_EQ(sideEffects(), QStringList{});
}

TEST_F(LaunchScriptRun, FiveThousandTwoHundredImageIsCopiedAndOpened) {
    const QString file = world.writeFile("5200/$(touch PWNED1) 'x'.a52", "cartridge bytes");
    run(program("5200", "Demo", file));
    QFile copy(atariDir + "run5200.bin");
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "cartridge bytes");
    EXPECT_EQ(logged(), QStringList{"run5200.bin"});
    EXPECT_EQ(sideEffects(), QStringList{});
}

TEST_F(LaunchScriptRun, BasicListingRunsTheNamedEmulatorWindowed) {
    const QString file = world.writeFile("Basic/`touch PWNED2`.lst", "10 PRINT\n");
    run(program("BASIC", "Demo", file));
    EXPECT_EQ(logged(), (QStringList{"-windowed", file}));
    EXPECT_EQ(sideEffects(), QStringList{});
}

TEST_F(LaunchScriptRun, NinetyEightFormRunsInTheBackground) {
    const QString file = world.writeFile("Games/$(touch PWNED3).atr");
    run(program("Games", "$(touch PWNED3)", file), "98");
    // sh has ended; the emulator may still be on its way. Wait for it, within a bound.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !logged().isEmpty(); }, 5000));
    EXPECT_EQ(logged(), QStringList{file});
    EXPECT_EQ(sideEffects(), QStringList{});
}
