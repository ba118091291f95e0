#include "Pcx.h"

namespace ql::emu {

namespace {

void putWord(QByteArray& out, int at, int value) {
    out[at] = char(value & 0xff);
    out[at + 1] = char((value >> 8) & 0xff);
}

// A run is at most 63 bytes; a single byte with its two top bits set must be written as a run, or
// it would read as a count.
void encodeLine(QByteArray& out, const QByteArray& line) {
    for (int i = 0; i < line.size();) {
        const char byte = line[i];
        int run = 1;
        while (i + run < line.size() && run < 63 && line[i + run] == byte)
            ++run;
        if (run > 1 || (uchar(byte) & 0xc0) == 0xc0) out += char(0xc0 | run);
        out += byte;
        i += run;
    }
}

} // namespace

QByteArray encodePcx(const QImage& image) {
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const int width = rgb.width(), height = rgb.height();
    const int bytesPerLine = (width + 1) & ~1;
    QByteArray out(128, '\0');
    out[0] = 0x0a; // maker
    out[1] = 5;    // version 3.0, with 24-bit colour
    out[2] = 1;    // run-length coding
    out[3] = 8;    // bits per pixel in each plane
    putWord(out, 8, width - 1);
    putWord(out, 10, height - 1);
    putWord(out, 12, 72);
    putWord(out, 14, 72);
    out[65] = 3; // planes
    putWord(out, 66, bytesPerLine);
    putWord(out, 68, 1); // colour, not grey
    QByteArray plane(bytesPerLine, '\0');
    for (int y = 0; y < height; ++y) {
        const uchar* row = rgb.constScanLine(y);
        for (int channel = 0; channel < 3; ++channel) {
            for (int x = 0; x < width; ++x)
                plane[x] = char(row[3 * x + channel]);
            encodeLine(out, plane);
        }
    }
    return out;
}

} // namespace ql::emu
