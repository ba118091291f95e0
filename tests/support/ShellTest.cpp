#include "Shell.h"
#include "LinuxHost.h"
#include "TestWorld.h"

#include <QFile>
#include <QTimer>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(Pause, WaitsPastTheEndAndKeepsEventsRunning) {
    for (double seconds : {0.0, 1.0}) {
        FakeClock clock;
        Pause(clock, seconds);
        EXPECT_GT(clock.time, 1000.0 + seconds) << seconds;
        EXPECT_LT(clock.time, 1000.0 + seconds + 0.5) << "overshoots " << seconds;
    }
    LinuxClock clock;
    bool fired = false;
    QTimer::singleShot(0, [&] { fired = true; });
    const double start = clock.now();
    Pause(clock, 0.05);
    EXPECT_TRUE(fired);
    EXPECT_GT(clock.now() - start, 0.05);
}

// Each step is tried a few times, a second apart, then given up with a message.
TEST(RunDosCommand, WritesStartsAndRemovesTheScript) {
    const QString command = "cp -- '/a/it'\\''s.atr' /b/";
    struct Case {
        int writeFailures, startFailures;
        bool started;
    };
    for (const Case c : {Case{0, 0, true}, {2, 0, true}, {0, 3, true}, {100, 0, false}, {0, 100, false}}) {
        TestWorld world;
        FakeHost& f = world.fake();
        f.scripts.writeFailuresToGo = c.writeFailures;
        f.processes.failuresToGo = c.startFailures;
        RunDosCommand(f.host(), command);
        SCOPED_TRACE(testing::Message() << "failures: " << c.writeFailures << "/" << c.startFailures);
        ASSERT_EQ(f.processes.started.size(), c.started ? 1u : 0u);
        EXPECT_EQ(f.dialogs.messages.size(), c.started ? 0u : 1u);
        EXPECT_LT(f.clock.time, 1000.0 + 15) << "bounded";
        if (!c.started) continue;
        const QString script = f.scripts.folder() + "/rundos.sh";
        EXPECT_EQ(f.scripts.written.value("rundos.sh"), "#!/bin/sh\n" + command.toUtf8() + "\n\nexit\n");
        EXPECT_EQ(f.processes.started[0].args, QStringList{script});
        EXPECT_EQ(f.processes.started[0].program, "/bin/sh");
        EXPECT_FALSE(QFile::exists(script));
        EXPECT_GE(f.clock.time, 1001.0) << "gives the command a second";
    }
}
