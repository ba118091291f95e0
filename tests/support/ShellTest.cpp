#include "Shell.h"
#include "StringFuncs.h"
#include "TestWorld.h"

#include "LinuxHost.h"
#include <QFile>
#include <QTimer>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(Pause, WaitsPastTheEndWithAtLeastOneReading) {
    for (double seconds : {0.0, 0.1, 1.0, 5.0}) {
        FakeClock clock;
        const double start = clock.time;
        Pause(clock, seconds);
        EXPECT_GT(clock.time, start + seconds - 1e-9) << seconds;
        EXPECT_GE(clock.pumps, 1) << seconds;
        EXPECT_LT(clock.time, start + seconds + 0.5) << "overshoots " << seconds;
    }
}

TEST(Pause, RealClockKeepsEventsRunning) {
    LinuxClock clock;
    bool fired = false;
    QTimer::singleShot(0, [&] { fired = true; });
    const double start = clock.now();
    Pause(clock, 0.05);
    EXPECT_TRUE(fired);
    EXPECT_GT(clock.now() - start, 0.05);
}

TEST(RunDosCommand, WritesStartsAndRemovesTheScript) {
    TestWorld world;
    FakeHost& f = world.fake();
    const QString command = "cp -- " + ShellQuote("/a/it's.atr") + " " + ShellQuote("/b/");
    RunDosCommand(f.host(), command);
    EXPECT_EQ(f.scripts.written.value("rundos.sh"), "#!/bin/sh\n" + command.toUtf8() + "\n\nexit\n");
    ASSERT_EQ(f.processes.started.size(), 1u);
    EXPECT_EQ(f.processes.started[0].program, "/bin/sh");
    EXPECT_EQ(f.processes.started[0].args, QStringList{f.scripts.folder() + "/rundos.sh"});
    EXPECT_FALSE(QFile::exists(f.scripts.folder() + "/rundos.sh"));
    EXPECT_GE(f.clock.time, 1001.0) << "gives the command a second";
}

TEST(RunDosCommand, RetriesThenGivesUpWithAMessage) {
    struct Case {
        int writeFailures;
        int startFailures;
        bool started;
    };
    for (const Case c : {Case{2, 0, true}, Case{0, 3, true}, Case{100, 0, false}, Case{0, 100, false}}) {
        TestWorld world;
        FakeHost& f = world.fake();
        f.scripts.writeFailuresToGo = c.writeFailures;
        f.processes.failuresToGo = c.startFailures;
        RunDosCommand(f.host(), "true");
        EXPECT_EQ(f.processes.started.size(), c.started ? 1u : 0u);
        EXPECT_EQ(f.dialogs.messages.size(), c.started ? 0u : 1u);
        EXPECT_LT(f.clock.time, 1000.0 + 15) << "bounded";
    }
}
