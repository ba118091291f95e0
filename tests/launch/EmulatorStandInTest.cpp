// What a launch leaves in the registry file is what the emulator stand-in reads when it starts; a
// key or a value name that drifted on either side would leave the stand-in showing "(not set)".
#include "EmulatorState.h"
#include "EmulatorWindow.h"
#include "LaunchPipeline.h"
#include "Pcx.h"
#include "RegistryFile.h"
#include "TestWorld.h"

#include <QDir>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(EmulatorStandIn, ShowsWhatTheLaunchWrote) {
    TestWorld world;
    ProgramRecord r = program("Games", "AR", "/atari/Games/AR (Disk 1).atr");
    r.machineType = 2;
    r.memory = 128;
    r.video = 312;
    r.type = 2;
    r.basic = true;
    r.fileName2 = "/atari/Games/AR (Disk 2).atr";
    r.fileName3 = r.fileName4 = "";
    LinuxRegistry registry;
    writeLaunchRegistry(registry, r, {2, 1, 0});

    const auto state = emu::emulatorState(RegistryFile::load(registryFilePath()), {"-windowed", r.fileName1});
    EXPECT_EQ(state.file, r.fileName1);
    EXPECT_TRUE(state.windowed);
    EXPECT_EQ(state.machine, "XL/XE");
    EXPECT_FALSE(state.lines.join('\n').contains("(not set)")) << state.lines.join('\n').toStdString();
    for (const char* shown : {"BASIC:      on", "Video:      PAL", "Memory:     128 K", "Artifacts:  2",
                              "D2:         AR (Disk 2).atr", "D3:         Off"})
        EXPECT_TRUE(state.lines.contains(shown)) << shown;
    // The title the picture and disk commands look for.
    EXPECT_EQ(emu::windowTitleFor(r.fileName1), "Atari800Win Plus 4.0: AR (Disk 1).atr");
}

// The keys the launcher sends to the emulator, and what the stand-in does with them.
namespace {

using Prompt = emu::EmulatorWindow::Prompt;

struct Step {
    Qt::Key key = Qt::Key_unknown;
    Qt::KeyboardModifiers modifiers = {};
    QString text = {}; // typed, one key per character; "@" stands for the test's folder
};
Step key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    return {key, modifiers};
}
Step type(const QString& text) {
    return {Qt::Key_unknown, {}, text};
}
const Step enter = key(Qt::Key_Return);

// Decodes a 24-bit, three-plane PCX; a null image when the header is not one.
QImage decodePcx(const QByteArray& pcx) {
    auto word = [&](int at) { return uchar(pcx[at]) | uchar(pcx[at + 1]) << 8; };
    if (pcx.size() < 128 || pcx[0] != 0x0a || pcx[2] != 1 || pcx[3] != 8 || pcx[65] != 3) return {};
    const int width = word(8) - word(4) + 1, height = word(10) - word(6) + 1, stride = word(66);
    if (stride % 2 || stride < width) return {};
    QByteArray planes;
    for (int i = 128; i < pcx.size(); ++i) {
        const uchar byte = pcx[i];
        if ((byte & 0xc0) == 0xc0 && i + 1 < pcx.size())
            planes += QByteArray(byte & 0x3f, pcx[++i]);
        else
            planes += char(byte);
    }
    if (planes.size() != 3 * stride * height) return {};
    QImage image(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                image.scanLine(y)[3 * x + c] = uchar(planes[(3 * y + c) * stride + x]);
    return image;
}

} // namespace

void PrintTo(const QImage& image, std::ostream* os) {
    *os << "image " << image.width() << "x" << image.height();
}

TEST(EmulatorStandIn, AnswersTheLaunchersKeys) {
    struct Case {
        const char* name;
        bool windowed;
        std::vector<Step> steps;
        QStringList journal; // after "started"; a "quit" line stands for the quit signal too
        Prompt after = Prompt::None;
        QString message = {}; // the prompt's answer begins so
    };
    const Qt::KeyboardModifiers alt = Qt::AltModifier, shift = Qt::ShiftModifier;
    const Step f10 = key(Qt::Key_F10), altF = key(Qt::Key_F, alt), altOne = key(Qt::Key_1, alt),
               e = key(Qt::Key_E), esc = key(Qt::Key_Escape), bs = key(Qt::Key_Backspace);
    const QString picture = "@/shots/a shot.png", lost = "@/missing/x.png", disk = "@/Side B.atr";
    const Case cases[] = {
        {"picture corrected", false, {f10, type(picture + "x"), bs, enter}, {"picture " + picture}},
        {"picture cancelled", false, {f10, type(picture), esc}, {}},
        {"picture unwritable", false, {f10, type(lost), enter}, {}, Prompt::Picture, "Cannot"},
        {"error closed", false, {f10, type(lost), enter, enter}, {}},
        // Shift pressed alone is a key of its own, not the menu's next key.
        {"file exit shifted",
         false,
         {key(Qt::Key_F, alt | shift), key(Qt::Key_Shift), key(Qt::Key_E, shift)},
         {"quit"}},
        {"file menu left", false, {altF, key(Qt::Key_X), e}, {}},
        {"alt f4", false, {key(Qt::Key_F4, alt)}, {"quit"}},
        {"disk", false, {altOne, type(disk), enter}, {"disk " + disk}, Prompt::Disk, "Disk attached: Side B"},
        {"disk missing", false, {altOne, type(disk + "x"), enter}, {}, Prompt::Disk, "Cannot"},
        {"windowed screenshots", true, {f10, f10}, {"pcx @/shots/atari000.pcx", "pcx @/shots/atari001.pcx"}},
        {"windowed has no file menu", true, {altF, e}, {}},
    };
    const QString home = QDir::currentPath();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TestWorld world;
        const QString root = QFileInfo(world.root()).canonicalFilePath();
        auto at = [&](QString text) { return text.replace('@', root); };
        world.writeFile("Side B.atr");
        ASSERT_TRUE(QDir(root).mkpath("shots") && QDir::setCurrent(root + "/shots"));
        qputenv("QUAYLIGHT_EMU_JOURNAL", at("@/journal").toUtf8());
        QStringList args{at("@/Games/Game.atr")};
        if (c.windowed) args.prepend("-windowed");
        emu::EmulatorWindow window(emu::emulatorState(RegistryFile::load(registryFilePath()), args));
        QSignalSpy quits(&window, &emu::EmulatorWindow::quitRequested);
        for (const Step& step : c.steps) {
            if (step.text.isEmpty())
                QTest::keyClick(&window, step.key, step.modifiers);
            else
                QTest::keyClicks(&window, at(step.text));
        }
        qunsetenv("QUAYLIGHT_EMU_JOURNAL");
        QDir::setCurrent(home);

        QFile journal(at("@/journal"));
        ASSERT_TRUE(journal.open(QIODevice::ReadOnly));
        QStringList expected{"started " + args.last()};
        for (const QString& line : c.journal)
            expected << at(line);
        EXPECT_EQ(QString::fromUtf8(journal.readAll()).split('\n', Qt::SkipEmptyParts), expected);
        EXPECT_EQ(window.prompt(), c.after);
        EXPECT_TRUE(c.message.isEmpty() ? window.message().isEmpty() : window.message().startsWith(c.message))
            << window.message().toStdString();
        EXPECT_EQ(quits.count(), c.journal.contains("quit") ? 1 : 0);
        EXPECT_EQ(window.state().lines.contains("D1:         Side B.atr"),
                  expected.join('\n').contains("disk "));

        // Each picture lands whole where the journal says and shows the screen; nothing else is left.
        QStringList written;
        for (const QString& line : expected.mid(1)) {
            const QString kind = line.section(' ', 0, 0), path = line.section(' ', 1);
            if (kind == "picture") {
                EXPECT_EQ(QImage(path).size(), window.size());
            } else if (kind == "pcx") {
                QFile pcx(path);
                ASSERT_TRUE(pcx.open(QIODevice::ReadOnly));
                EXPECT_EQ(decodePcx(pcx.readAll()),
                          window.screenPicture().convertToFormat(QImage::Format_RGB888));
            } else {
                continue;
            }
            written << QFileInfo(path).fileName();
        }
        EXPECT_EQ(QDir(root + "/shots").entryList(QDir::Files), written);
    }
}

TEST(EmulatorStandIn, PcxKeepsEveryPixel) {
    // Odd width (a padded plane), runs longer than one count holds, and bytes that look like counts.
    QImage image(131, 3, QImage::Format_RGB888);
    image.fill(QColor(0xc5, 0xff, 0x00));
    for (int x = 0; x < image.width(); x += 7)
        image.setPixelColor(x, 1, QColor(x, 0xc0 + x % 64, 255 - x));
    EXPECT_EQ(decodePcx(emu::encodePcx(image)), image);
}
