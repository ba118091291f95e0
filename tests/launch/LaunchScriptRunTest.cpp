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

const char* const kHostile[] = {"$(touch PWNED1)",
                                "`touch PWNED2`",
                                "quote' ; touch PWNED3 ; '",
                                "dq\" ; touch PWNED4 ; \"",
                                "semi; touch PWNED5",
                                "new\nline; touch PWNED6",
                                "-rf --help",
                                "back\\slash $HOME & touch PWNED7 |"};

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

    // Runs the script as the launch would, on a fresh log, and waits (bounded) for sh to end.
    void run(const ProgramRecord& record, const QString& version = "XP") {
        QFile::remove(log);
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

// Association tables copied from desktop files often quote the file themselves.
TEST_F(LaunchScriptRun, HostileFileNamesReachTheEmulatorAsPlainText) {
    const QString emu = ShellQuote(emulator);
    const struct {
        QString command;
        const char* logged; // the arguments joined by '|', '@' for the file
    } commands[] = {
        {emu + " %f", "@"},
        {emu + " --disk=\"%f\"", "--disk=@"},
        {emu + " 'x %f y'", "x @ y"},
        {emu + " \"it\\\"s %f\"", "it\"s @"},
        {emu + " %f \"%f\"", "@|@"},
        // A second shell, given the file as its argument as the README advises.
        {"sh -c 'cd / && exec \"" + emulator + "\" \"$1\"' sh %f", "@"},
    };
    for (const auto& command : commands) {
        associations.extensions = {{"atr", command.command}};
        for (const char* hostile : kHostile) {
            const QString name = QString::fromUtf8(hostile);
            const QString file = world.writeFile("Games/" + name + ".atr");
            run(program("Games", name, file));
            QStringList expected;
            for (QString arg : QString(command.logged).split('|'))
                expected << arg.replace("@", file);
            EXPECT_EQ(logged(), expected) << command.command.toStdString() << " with " << hostile;
        }
    }
    EXPECT_EQ(sideEffects(), QStringList{});
}

TEST_F(LaunchScriptRun, EveryFormKeepsHostileTextPlain) {
    const QString plain = world.writeFile("Games/plain.atr");
    const QString listing = world.writeFile("Basic/`touch PWNED2`.lst", "10 PRINT\n");
    const QString image = world.writeFile("5200/$(touch PWNED1) 'x'.a52", "cartridge bytes");
    const QString background = world.writeFile("Games/$(touch PWNED3).atr");
    const QString standIn = "x$(touch PWNED8)';touch PWNED9;'";
    const struct {
        ProgramRecord record;
        const char* version;
        QStringList logged;
    } cases[] = {
        // The Name stands in for a base name that is not in the path.
        {program("Games", standIn, plain), "XP", {world.path("Games/" + standIn + ".atr")}},
        {program("BASIC", "Demo", listing), "XP", {"-windowed", listing}},
        {program("5200", "Demo", image), "XP", {"run5200.bin"}},
        {program("Games", "$(touch PWNED3)", background), "98", {background}},
    };
    for (const auto& c : cases) {
        run(c.record, c.version);
        // sh has ended; in the "98" form the emulator may still be on its way. Wait, within a bound.
        EXPECT_TRUE(QTest::qWaitFor([&] { return !logged().isEmpty(); }, 5000));
        EXPECT_EQ(logged(), c.logged) << c.record.fileName1.toStdString();
    }
    QFile copy(atariDir + "run5200.bin");
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "cartridge bytes");
    EXPECT_EQ(sideEffects(), QStringList{});
}
