// A row dragged onto drive 2 with the real X pointer, on the test's X server: the slot takes the
// disk, and a running emulator stand-in is handed it through its disk prompt.
#include "LinuxHost.h"
#include "Snapshot.h"
#include "TestWorld.h"
#include "frmMain.h"

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

using namespace ql;
using namespace ql::test;

namespace {

// Registered to run on xcb; with no X server that platform cannot start, so fall back before main
// builds the application, and let the tests skip.
[[maybe_unused]] const bool headless = [] {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    return true;
}();

class DragToDrive : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("DISPLAY")) GTEST_SKIP() << "needs an X server";
        dpy = XOpenDisplay(nullptr);
        ASSERT_NE(dpy, nullptr);
        world.makeCatalogue();
        auto c = world.open();
        for (const QString& disk : {disk1, disk2})
            c->addProgram(program("Games", QFileInfo(disk).completeBaseName(), world.writeFile(disk)));
        form = std::make_unique<frmMain>(host);
        ASSERT_TRUE(form->Form_Load(world.root()));
        ASSERT_EQ(form->listCount(), 2);
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    }
    void TearDown() override {
        emulator.kill();
        emulator.waitForFinished(5000);
        if (dpy) XCloseDisplay(dpy);
    }

    bool waitFor(const std::function<bool()>& done, int ms = 10000) {
        QElapsedTimer waited;
        waited.start();
        while (!done()) {
            if (waited.elapsed() > ms) return false;
            clock.pumpEvents(0.02);
        }
        return true;
    }
    QString journal() const {
        QFile file(world.path("emulator.journal"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    // The form must hold the focus for the drag, and lie above the stand-in's window. Qt's own
    // request carries its last server time, which the stand-in's newer focus outdates: go by title.
    void activateForm() {
        windows.activate(form->windowTitle());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }

    // QDrag::exec runs its own event loop, so the pointer's steps run from a timer, each once the
    // one before has taken effect.
    void drag(int row, QWidget* target) {
        QListView* list = form->prgList;
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
                                   {button(true), [this] { return form->dragPending(); }},
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
        ASSERT_TRUE(waitFor([&] { return next == steps.size() && !list->findChild<QDrag*>(); }))
            << "stuck after step " << next;
    }

    const QString disk1 = "Games/Game (Disk 1).atr", disk2 = "Games/Game (Disk 2).atr";
    TestWorld world;
    FakeDialogs dialogs;
    LinuxProcesses processes;
    LinuxScripts scripts;
    LinuxClock clock;
    LinuxFileSystem files;
    LinuxKeyboard keyboard;
    LinuxRegistry registry;
    LinuxAssociations associations;
    LinuxWindows windows;
    Host host{dialogs, processes, scripts, clock, files, keyboard, registry, associations, windows};
    std::unique_ptr<frmMain> form;
    QProcess emulator;
    Display* dpy = nullptr;
};

} // namespace

TEST_F(DragToDrive, HandsTheDiskToTheRunningEmulator) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "xcb");
    env.insert("QUAYLIGHT_EMU_JOURNAL", world.path("emulator.journal"));
    emulator.setProcessEnvironment(env);
    emulator.start(QUAYLIGHT_EMU, {world.path(disk1)});
    ASSERT_TRUE(waitFor([&] {
        try {
            windows.activate(kEmulatorTitle);
            return true;
        } catch (const HostError&) {
            return false;
        }
    })) << "the stand-in's window";
    ASSERT_TRUE(journal().contains("started " + world.path(disk1)));
    activateForm();

    drag(1, form->imgFloppy[1]);
    EXPECT_EQ(form->txtFloppy[1]->text(), "Game (Disk 2).atr");
    EXPECT_EQ(form->floppyTag(1), world.path(disk2));
    EXPECT_TRUE(waitFor([&] { return journal().contains("disk " + world.path(disk2) + "\n"); }))
        << journal().toStdString();
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(DragToDrive, WithNoEmulatorOnlyFillsTheSlot) {
    activateForm();
    const QString drive1 = form->floppyTag(0);
    drag(1, form->imgFloppy[1]);
    EXPECT_EQ(form->txtFloppy[1]->text(), "Game (Disk 2).atr");
    EXPECT_EQ(form->floppyTag(1), world.path(disk2));
    EXPECT_EQ(form->floppyTag(0), drive1) << "the other slot is left alone";
    QCoreApplication::processEvents(); // the drop's hand-over runs, finds no emulator and says nothing
    EXPECT_TRUE(dialogs.messages.empty());
}
