// A row dragged onto drive 2 with the real X pointer, on the test's X server: the slot takes the
// disk, and a running emulator stand-in is handed it through its disk prompt.
#include "LinuxTestHost.h"
#include "TestWorld.h"
#include "frmMain.h"

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

using namespace ql;
using namespace ql::test;

namespace {

// Registered to run on xcb; with no X server that platform cannot start, so fall back before main
// builds the application, and let the test skip.
[[maybe_unused]] const bool headless = [] {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    return true;
}();

// QDrag::exec runs its own event loop, so the pointer's steps run from a timer, each once the
// one before has taken effect.
void drag(Display* dpy, LinuxTestHost& real, frmMain& form, int row, QWidget* target) {
    QListView* list = form.prgList;
    const QPoint from =
        list->viewport()->mapToGlobal(list->visualRect(list->model()->index(row, 0)).center());
    const QPoint begun = from + QPoint(QApplication::startDragDistance() + 2, 0);
    const QPoint to = target->mapToGlobal(target->rect().center());
    auto at = [](QPoint p) { return [p] { return QCursor::pos() == p; }; };
    auto move = [d = dpy](QPoint p) { return [=] { XTestFakeMotionEvent(d, -1, p.x(), p.y(), 0); }; };
    auto button = [d = dpy](bool down) { return [=] { XTestFakeButtonEvent(d, 1, down, 0); }; };
    struct Step {
        std::function<void()> act;
        std::function<bool()> done;
    };
    std::vector<Step> steps = {{move(from), at(from)},
                               {button(true), [&form] { return form.dragPending(); }},
                               {move(begun), [list] { return list->findChild<QDrag*>() != nullptr; }}};
    for (const QPoint& p : {(begun * 3 + to) / 4, (begun + to) / 2, (begun + to * 3) / 4, to})
        steps.push_back({move(p), at(p)});
    steps.push_back({button(false), [] { return true; }});
    size_t next = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        if (next == steps.size() || (next > 0 && !steps[next - 1].done())) return;
        steps[next++].act();
        XFlush(dpy);
    });
    ticker.start(10);
    ASSERT_TRUE(real.waitFor([&] { return next == steps.size() && !list->findChild<QDrag*>(); }, 10))
        << "stuck after step " << next;
}

} // namespace

TEST(DragToDrive, HandsTheDiskToTheRunningEmulator) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) GTEST_SKIP() << "needs an X server";
    const std::unique_ptr<Display, int (*)(Display*)> dpy(XOpenDisplay(nullptr), XCloseDisplay);
    ASSERT_TRUE(dpy);
    TestWorld world;
    LinuxTestHost real;
    world.makeCatalogue();
    const QString disk1 = world.writeFile("Games/Game (Disk 1).atr"),
                  disk2 = world.writeFile("Games/Game (Disk 2).atr");
    for (const QString& disk : {disk1, disk2})
        world.open()->addProgram(program("Games", QFileInfo(disk).completeBaseName(), disk));
    frmMain form(real.host);
    ASSERT_TRUE(form.Form_Load(world.root()));
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));

    QProcess emulator; // ended when it goes
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "xcb");
    env.insert("QUAYLIGHT_EMU_JOURNAL", world.path("emulator.journal"));
    emulator.setProcessEnvironment(env);
    emulator.start(QUAYLIGHT_EMU, {disk1});
    ASSERT_TRUE(real.waitFor([&] { return real.windowOpen(kEmulatorTitle); }, 10)) << "the stand-in's window";
    // The form must hold the focus for the drag, and lie above the stand-in's window. Qt's own
    // request carries its last server time, which the stand-in's newer focus outdates: go by title.
    real.windows.activate(form.windowTitle());
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));

    const QString drive1 = form.floppyTag(0);
    drag(dpy.get(), real, form, 1, form.frame8Bit->imgFloppy[1]);
    EXPECT_EQ(form.floppyTag(1), disk2);
    EXPECT_EQ(form.floppyTag(0), drive1) << "the other slot is left alone";
    const auto journal = [&] { return fileLines(world.path("emulator.journal")); };
    EXPECT_TRUE(real.waitFor([&] { return journal().contains("disk " + disk2); }, 10))
        << journal().join('\n').toStdString();

    // With no emulator running, the same drag fills the slot and nothing else happens.
    emulator.kill();
    emulator.waitForFinished(5000);
    ASSERT_TRUE(real.waitFor([&] { return !real.windowOpen(kEmulatorTitle); }, 10));
    real.windows.activate(form.windowTitle());
    const auto sent = journal().size();
    drag(dpy.get(), real, form, 0, form.frame8Bit->imgFloppy[1]);
    EXPECT_EQ(form.floppyTag(1), disk1);
    EXPECT_EQ(journal().size(), sent);
    EXPECT_TRUE(real.dialogs.messages.empty());
}
