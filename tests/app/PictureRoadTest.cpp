// The picture road as a user takes it, on the test's X server with the real host: the emulator
// stand-in started through the association table, keys into its window, the converter's JPEG, and
// the selection view showing it.
#include "LinuxHost.h"
#include "TestWorld.h"
#include "frmMain.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

QString quoted(QString text) {
    return "'" + text.replace("'", "'\\''") + "'";
}

class PictureRoad : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("DISPLAY")) GTEST_SKIP() << "needs an X server";
        world.makeCatalogue();
        QDir().mkpath(world.path("ProgramImages"));
        auto c = world.open();
        // A quote in a name goes through the shell, the window title and the picture's path.
        for (const char* name : {"Archon", "Star Raiders", "Yars' Revenge"})
            c->addProgram(program("Games", name, world.writeFile(QString("atari/%1.atr").arg(name))));
        // The test runs offscreen; the stand-in needs the X server.
        world.writeFile(
            "config/quaylight/associations.ini",
            ("[Associations]\natr=env QT_QPA_PLATFORM=xcb QUAYLIGHT_EMU_JOURNAL=" + quoted(journalPath()) +
             " " + quoted(QUAYLIGHT_EMU) + " %f\n[Programs]\nIrfanView=" + quoted(QUAYLIGHT_CONVERT) + "\n")
                .toUtf8());
        form = std::make_unique<frmMain>(host);
        ASSERT_TRUE(form->Form_Load(world.root()));
        ASSERT_EQ(form->listCount(), 3);
    }

    // Whatever a failed test left running ends here: the stand-ins that write to this journal.
    void TearDown() override {
        const QByteArray mark = "QUAYLIGHT_EMU_JOURNAL=" + QFile::encodeName(journalPath());
        for (const QString& pid : QDir("/proc").entryList(QDir::Dirs)) {
            QFile env("/proc/" + pid + "/environ");
            if (pid.toInt() > 0 && env.open(QIODevice::ReadOnly) && env.readAll().split('\0').contains(mark))
                ::kill(pid.toInt(), SIGTERM);
        }
    }

    QString journalPath() const { return world.path("emulator.journal"); }
    QStringList journal() const {
        QFile file(journalPath());
        return file.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                   : QStringList();
    }
    QString picture(const QString& name) const { return world.path("ProgramImages/Games/" + name + ".jpg"); }

    // One bound for all the waits of a test, so that a failing test ends, and its TearDown ends the
    // stand-ins, well inside the CTest timeout.
    bool waitFor(const std::function<bool()>& done) {
        while (!done()) {
            if (deadline.hasExpired()) return false;
            clock.pumpEvents(0.02); // sleeps in the event loop, so the wait costs no CPU
        }
        return true;
    }
    bool isJpeg(const QString& path) {
        QImageReader reader(path);
        return reader.format() == "jpeg" && !reader.read().isNull();
    }
    bool emulatorWindowOpen() {
        try {
            windows.activate(kEmulatorTitle);
            return true;
        } catch (const HostError& e) {
            return !std::string(e.what()).starts_with("No window titled"); // else there, but not focused
        }
    }
    QImage shown() const { return form->imgProgramImage->pixmap().toImage(); }
    QImage stock() const { return form->imgDefault->pixmap().toImage(); }

    QDeadlineTimer deadline{40000};
    TestWorld world;
    FakeDialogs dialogs;
    LinuxProcesses processes;
    LinuxScripts scripts;
    LinuxClock clock;
    LinuxFileSystem fileSystem;
    LinuxKeyboard keyboard;
    LinuxRegistry registry;
    LinuxAssociations associations;
    LinuxWindows windows;
    Host host{dialogs, processes, scripts, clock, fileSystem, keyboard, registry, associations, windows};
    std::unique_ptr<frmMain> form;
};

} // namespace

TEST_F(PictureRoad, TakePictureOfTheRunningProgramAndShowIt) {
    form->setListIndex(2);
    form->prgList_Click();
    ASSERT_EQ(form->txtName->text(), "Yars' Revenge");
    EXPECT_EQ(shown(), stock());
    form->prgList_DblClick();
    const QString file = world.path("atari/Yars' Revenge.atr");
    ASSERT_TRUE(waitFor([&] { return journal().contains("started " + file); }))
        << journal().join('\n').toStdString();
    ASSERT_TRUE(waitFor([&] { return emulatorWindowOpen(); }));

    form->cmdSnapPicture_Click(0);
    EXPECT_TRUE(waitFor([&] { return journal().contains("picture " + world.path("snapshot.png")); }));
    ASSERT_TRUE(waitFor([&] { return isJpeg(picture("Yars' Revenge")); }));
    form->setListIndex(0);
    form->prgList_Click();
    EXPECT_EQ(shown(), stock());
    form->setListIndex(2);
    form->prgList_Click();
    EXPECT_NE(shown(), stock()) << "the selection view shows the new picture";

    windows.activate(kEmulatorTitle);
    keyboard.sendKeys("%FE", false);
    ASSERT_TRUE(waitFor([&] { return journal().contains("quit"); }));
    EXPECT_TRUE(waitFor([&] { return !emulatorWindowOpen(); }));
}

TEST_F(PictureRoad, RightClickTakesEveryProgramDownTheListAndEndsEachEmulator) {
    form->setListIndex(0);
    dialogs.inputAnswers = {"2"};
    form->cmdSnapPicture_MouseUp(0, 2);
    EXPECT_EQ(dialogs.prompts, std::vector<QString>{"Enter delay value:"});
    for (const char* name : {"Archon", "Star Raiders", "Yars' Revenge"})
        ASSERT_TRUE(waitFor([&] { return isJpeg(picture(name)); })) << name;
    EXPECT_TRUE(waitFor([&] { return journal().count("quit") == 3; })) << journal().join('\n').toStdString();
    EXPECT_EQ(journal().filter(QRegularExpression("^started .*/atari/.*\\.atr$")).size(), 3);
    EXPECT_TRUE(waitFor([&] { return !emulatorWindowOpen(); })) << "no stand-in is left running";
}
