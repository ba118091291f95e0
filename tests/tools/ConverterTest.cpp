#include "TestWorld.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QProcess>
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace ql::test;

namespace {

struct Outcome {
    int exitCode = -1; // -1: it crashed or did not end in time
    QString err;
};

Outcome convert(const QStringList& args) {
    QProcess process;
    process.start(QStringLiteral(QUAYLIGHT_CONVERT), args);
    const bool ended = process.waitForFinished(60000);
    if (!ended) process.kill(), process.waitForFinished(5000);
    return {ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardError())};
}

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Four flat quarters, colours a JPEG keeps well away from each other.
const QRgb kQuarters[] = {qRgb(200, 40, 40), qRgb(40, 160, 60), qRgb(40, 60, 200), qRgb(240, 220, 80)};
QImage screenshot() {
    QImage image(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            image.setPixel(x, y, kQuarters[(y >= 24) * 2 + (x >= 32)]);
    return image;
}

// A PCX as the emulators write it: version 5, RLE, 8 bits a plane; one plane with a 256-colour
// palette at the end, or three planes of red, green and blue.
QByteArray pcx(const QImage& image, bool palettised) {
    const QImage src = image.convertToFormat(palettised ? QImage::Format_Indexed8 : QImage::Format_RGB888);
    const int w = src.width(), h = src.height(), planes = palettised ? 1 : 3, perLine = w + (w & 1);
    QByteArray out(128, '\0');
    const auto put16 = [&](int at, int v) { out[at] = char(v & 0xff), out[at + 1] = char(v >> 8); };
    out[0] = 10, out[1] = 5, out[2] = 1, out[3] = 8, out[65] = char(planes);
    put16(8, w - 1), put16(10, h - 1), put16(66, perLine), put16(68, 1);
    for (int y = 0; y < h; ++y)
        for (int p = 0; p < planes; ++p) {
            QByteArray line(perLine, '\0');
            for (int x = 0; x < w; ++x)
                line[x] = char(palettised ? src.pixelIndex(x, y) : src.constScanLine(y)[3 * x + p]);
            for (int x = 0, run = 1; x < perLine; x += run, run = 1) {
                while (x + run < perLine && run < 63 && line[x + run] == line[x])
                    ++run;
                if (run > 1 || (uchar(line[x]) & 0xc0) == 0xc0) out.append(char(0xc0 | run));
                out.append(line[x]);
            }
        }
    if (!palettised) return out;
    out.append(char(12));
    for (int i = 0; i < 256; ++i) {
        const QRgb c = i < src.colorCount() ? src.color(i) : 0;
        out.append(char(qRed(c))).append(char(qGreen(c))).append(char(qBlue(c)));
    }
    return out;
}

const QString kFolder = QStringLiteral("shots 'n' \"snaps\" ünï/");

} // namespace

// A screenshot becomes a JPEG of the same picture, whatever its name says; any failure leaves the
// destination as it was (absent, or an older file with every byte kept) and says why in one line.
TEST(ConverterTest, ScreenshotsBecomeJpegsAndFailuresLeaveTheDestinationAlone) {
    TestWorld world;
    const QImage shot = screenshot();
    const QByteArray pcx8 = pcx(shot, true), pcx24 = pcx(shot, false);
    QByteArray good;
    QBuffer buffer(&good);
    ASSERT_TRUE(shot.save(&buffer, "PNG"));
    const QStringList usual{"SRC", "/convert=DST"};
    // Source file, its bytes (null: no such file), exit code, arguments.
    const std::tuple<const char*, QByteArray, int, QStringList> cases[] = {
        {"Pac Man's.png", good, 0, usual},
        {"Pac Man's 24-bit.pcx", pcx24, 0, usual},
        {"8-bit PCX named.png", pcx8, 0, usual},
        {"missing.png", {}, 1, usual},
        {"empty.png", QByteArray(""), 1, usual},
        {"words.png", "not a picture at all\n", 1, usual},
        {"half.png", good.left(good.size() / 2), 1, usual},
        {"half 8-bit.pcx", pcx8.left(pcx8.size() / 2), 1, usual},
        {"short palette.pcx", pcx8.chopped(100), 1, usual},
        {"half 24-bit.pcx", pcx24.left(pcx24.size() / 2), 1, usual},
        {"good.png", good, 1, {"SRC", "/convert=NOWHERE"}},
        {"good.png", good, 2, {"SRC", "DST"}},
        {"good.png", good, 2, {"SRC", "/convert="}},
        {"good.png", good, 2, {"SRC", "/convert=DST", "/silent"}}};
    int n = 0;
    for (const auto& [file, bytes, exitCode, arguments] : cases)
        for (const bool existing : {false, true}) {
            const QString dir = kFolder + QString::number(n++) + "/", dst = world.path(dir + "it's out.jpg");
            SCOPED_TRACE(QString(dir + file + (existing ? " over an older file" : "")).toStdString());
            const QString src = bytes.isNull() ? world.path(dir + file) : world.writeFile(dir + file, bytes);
            if (existing) world.writeFile(dir + "it's out.jpg", "an older picture");
            const uint entries = QDir(world.path(dir)).count();
            const QByteArray old = contents(dst);

            QStringList args = arguments;
            const QString nowhere = world.path(dir + "no/it's out.jpg");
            args.replaceInStrings("SRC", src)
                .replaceInStrings("DST", dst)
                .replaceInStrings("NOWHERE", nowhere);
            const Outcome run = convert(args);
            ASSERT_EQ(run.exitCode, exitCode) << run.err.toStdString();
            if (exitCode == 0) {
                QImageReader reader(dst);
                EXPECT_EQ(reader.format(), "jpeg");
                const QImage out = reader.read();
                ASSERT_EQ(out.size(), shot.size());
                for (int i = 0; i < 4; ++i) {
                    const QRgb want = kQuarters[i], got = out.pixel(16 + 32 * (i % 2), 12 + 24 * (i / 2));
                    EXPECT_LE(
                        std::max({std::abs(qRed(got) - qRed(want)), std::abs(qGreen(got) - qGreen(want)),
                                  std::abs(qBlue(got) - qBlue(want))}),
                        16)
                        << "quarter " << i;
                }
                continue;
            }
            const QString named = exitCode == 2 ? "usage" : arguments[1].contains("NOWHERE") ? nowhere : src;
            EXPECT_TRUE(run.err.count('\n') == 1 && run.err.endsWith('\n') && run.err.contains(named))
                << run.err.toStdString();
            EXPECT_EQ(QDir(world.path(dir)).count(), entries) << "no file left behind";
            EXPECT_EQ(contents(dst), old);
        }
}
