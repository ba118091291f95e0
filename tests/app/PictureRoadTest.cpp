// The picture road as a user takes it, on the test's X server with the real host: the emulator
// stand-in started through the association table, keys into its window, the converter's JPEG, and
// the selection view showing it.
#include "LinuxTestHost.h"
#include "TestWorld.h"
#include "frmMain.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QLabel>
#include <QRegularExpression>
#include <csignal>
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
        form = std::make_unique<frmMain>(real.host);
        ASSERT_TRUE(form->Form_Load(world.root()));
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
    QStringList journal() const { return fileLines(journalPath()); }
    // One bound for all the waits of a test, so that a failing test ends, and its TearDown ends the
    // stand-ins, well inside the CTest timeout.
    bool waitFor(const std::function<bool()>& done) {
        return real.waitFor(done, deadline.remainingTime() / 1000.0);
    }
    bool pictureTaken(const QString& name) {
        QImageReader reader(world.path("ProgramImages/Games/" + name + ".jpg"));
        return reader.format() == "jpeg" && !reader.read().isNull();
    }
    bool showsStock() const {
        return form->imgProgramImage->pixmap().toImage() == form->imgDefault->pixmap().toImage();
    }

    QDeadlineTimer deadline{40000};
    TestWorld world;
    LinuxTestHost real;
    std::unique_ptr<frmMain> form;
};

} // namespace

TEST_F(PictureRoad, TakePictureOfTheRunningProgramAndShowIt) {
    form->setListIndex(2);
    form->prgList_DblClick();
    ASSERT_TRUE(waitFor([&] {
        return journal().contains("started " + world.path("atari/Yars' Revenge.atr"));
    })) << journal().join('\n').toStdString();
    ASSERT_TRUE(waitFor([&] { return real.windowOpen(kEmulatorTitle); }));
    EXPECT_TRUE(showsStock());

    form->cmdSnapPicture_Click(0);
    ASSERT_TRUE(waitFor([&] { return pictureTaken("Yars' Revenge"); }));
    form->setListIndex(0); // the conversion ends after the click: the next selection shows it
    form->setListIndex(2);
    EXPECT_FALSE(showsStock());
}

TEST_F(PictureRoad, RightClickTakesEveryProgramDownTheListAndEndsEachEmulator) {
    real.dialogs.inputAnswers = {"2"}; // from the first row down
    form->cmdSnapPicture_MouseUp(0, 2);
    for (const char* name : {"Archon", "Star Raiders", "Yars' Revenge"})
        ASSERT_TRUE(waitFor([&] { return pictureTaken(name); })) << name;
    EXPECT_TRUE(waitFor([&] { return journal().count("quit") == 3; })) << journal().join('\n').toStdString();
    EXPECT_EQ(journal().filter(QRegularExpression("^started .*/atari/.*\\.atr$")).size(), 3);
    EXPECT_TRUE(waitFor([&] { return !real.windowOpen(kEmulatorTitle); })) << "no stand-in is left running";
}
