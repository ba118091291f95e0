#pragma once
// PCX, the picture format of the SDL emulator's screenshots. Qt reads and writes no PCX, so the
// stand-in carries its own small encoder.

#include <QByteArray>
#include <QImage>

namespace ql::emu {

// The image as a 24-bit PCX: a 128-byte header, then each row as three run-length coded planes
// (red, green, blue), each padded to an even length.
QByteArray encodePcx(const QImage& image);

} // namespace ql::emu
