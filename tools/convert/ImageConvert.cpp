#include "ImageConvert.h"

#include <Magick++.h>
#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>
#include <string>

namespace ql {
namespace {

// Far beyond any screenshot; stops a stray huge file from being read into memory.
constexpr qint64 kMaxSourceBytes = 256 * 1024 * 1024;

QString quoted(const QString& path) {
    return '"' + path + '"';
}

// The fixed part of a PCX header: maker 10, a known version, raw or RLE, a plane depth PCX allows.
bool looksLikePcx(const QByteArray& bytes) {
    if (bytes.size() < 128) return false;
    const auto at = [&](int i) { return static_cast<unsigned char>(bytes[i]); };
    const bool version = at(1) == 0 || (at(1) >= 2 && at(1) <= 5);
    const bool depth = at(3) == 1 || at(3) == 2 || at(3) == 4 || at(3) == 8;
    return at(0) == 10 && version && at(2) <= 1 && depth;
}

// Magick words its messages as "client: reason `file': errno text (detail) @ coder.c/...";
// the reason alone is what a user can act on.
QString magickReason(const Magick::Exception& e) {
    QString text = QString::fromLocal8Bit(e.what()).simplified();
    const QString client = QString::fromLocal8Bit(MagickCore::GetClientName()) + QLatin1String(": ");
    if (text.startsWith(client)) text.remove(0, client.size());
    for (const QLatin1String end : {QLatin1String(" `"), QLatin1String(" @ "), QLatin1String(" (")}) {
        const qsizetype at = text.indexOf(end);
        if (at > 0) text.truncate(at);
    }
    return text;
}

// The coder is named, never guessed from the bytes, so no other Magick coder ever sees the file.
QImage readWithMagick(const QByteArray& bytes, const char* coder, QString* why) {
    try {
        Magick::Image image;
        image.magick(coder);
        image.read(Magick::Blob(bytes.constData(), static_cast<size_t>(bytes.size())));
        const size_t width = image.columns(), height = image.rows();
        if (width == 0 || height == 0 || width > 65535 || height > 65535) {
            *why = QStringLiteral("damaged %1 picture (no usable size)").arg(coder);
            return {};
        }
        QImage out(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB888);
        if (out.isNull()) {
            *why = QStringLiteral("picture too large");
            return {};
        }
        // Row by row: QImage rows are padded to 4 bytes, Magick's export is not.
        for (int y = 0; y < out.height(); ++y)
            image.write(0, y, width, 1, "RGB", Magick::CharPixel, out.scanLine(y));
        return out;
    } catch (const Magick::Exception& e) {
        // Warnings count too: a short PCX only warns, and half a picture is no picture.
        *why = QStringLiteral("damaged %1 picture (%2)").arg(coder, magickReason(e));
        return {};
    }
}

QImage decode(const QByteArray& bytes, QString* why) {
    if (bytes.isEmpty()) {
        *why = QStringLiteral("the file is empty");
        return {};
    }
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    // No file name given: Qt picks its reader by the content, whatever the extension says.
    QImageReader reader(&buffer);
    if (reader.canRead()) {
        const QString format = QString::fromLatin1(reader.format()).toUpper();
        QImage image = reader.read();
        if (image.isNull())
            *why = QStringLiteral("damaged %1 picture (%2)").arg(format, reader.errorString());
        return image;
    }
    if (looksLikePcx(bytes)) return readWithMagick(bytes, "PCX", why);
    *why = QStringLiteral("not a picture in a format this program reads (PNG, PCX, JPEG, GIF, BMP, ...)");
    return {};
}

// JPEG has no transparency; see-through parts come out white rather than as whatever colour they hid.
QImage opaque(const QImage& image) {
    if (!image.hasAlphaChannel()) return image;
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    return flat;
}

} // namespace

QString convertToJpeg(const QString& source, const QString& destination, int quality) {
    const QString cannotRead = QStringLiteral("cannot read %1: ").arg(quoted(source));
    const QString cannotWrite = QStringLiteral("cannot write %1: ").arg(quoted(destination));
    const QFileInfo info(source);
    if (info.isDir()) return cannotRead + "it is a folder";
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) return cannotRead + in.errorString();
    if (in.size() > kMaxSourceBytes) return cannotRead + "too large for a picture";
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError) return cannotRead + in.errorString();
    in.close();

    QString why;
    const QImage image = decode(bytes, &why);
    if (image.isNull()) return cannotRead + (why.isEmpty() ? QStringLiteral("not a picture") : why);

    // Nothing touches the destination until the picture is whole; QSaveFile renames only on commit.
    QSaveFile out(destination);
    if (!out.open(QIODevice::WriteOnly)) return cannotWrite + out.errorString();
    QImageWriter writer(&out, "jpeg");
    writer.setQuality(quality);
    if (!writer.write(opaque(image))) {
        out.cancelWriting();
        return cannotWrite + writer.errorString();
    }
    if (!out.commit()) return cannotWrite + out.errorString();
    return {};
}

} // namespace ql
