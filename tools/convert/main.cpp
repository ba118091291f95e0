// quaylight-convert: the image converter the catalogue starts where it once started IrfanView,
// with IrfanView's command line: quaylight-convert SRC /convert=DST
#include "ImageConvert.h"

#include <Magick++.h>
#include <QCoreApplication>
#include <QFile>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

int main(int argc, char** argv) {
    // Taken before Qt sees argv, so no path can ever be mistaken for one of Qt's own options.
    const std::vector<QByteArray> args(argv + 1, argv + argc);
    const QByteArray prefix = "/convert=";
    if (args.size() != 2 || args[0].isEmpty() || !args[1].startsWith(prefix) ||
        args[1].size() == prefix.size()) {
        std::fputs("usage: quaylight-convert SOURCE /convert=DESTINATION.jpg\n", stderr);
        return 2;
    }

    // libpng and Magick print their own complaints straight to stderr; the caller gets one line of ours.
    const int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    FILE* report = saved >= 0 ? fdopen(saved, "w") : nullptr;
    const int null = report ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
    if (null >= 0) {
        dup2(null, STDERR_FILENO);
        close(null);
    }
    if (!report) report = stderr;

    Magick::InitializeMagick(argv[0]);
    QCoreApplication app(argc, argv);
    const QByteArray source = args[0], destination = args[1].mid(prefix.size());
    // Qt turns bytes that are not UTF-8 into U+FFFD, which would name a different file; refuse instead.
    const auto decodes = [](const QByteArray& name) {
        return QFile::encodeName(QFile::decodeName(name)) == name;
    };
    const QString error =
        !decodes(source)
            ? QStringLiteral("cannot read \"%1\": the file name is not UTF-8").arg(QFile::decodeName(source))
        : !decodes(destination)
            ? QStringLiteral("cannot write \"%1\": the file name is not UTF-8")
                  .arg(QFile::decodeName(destination))
            : ql::convertToJpeg(QFile::decodeName(source), QFile::decodeName(destination));
    if (error.isEmpty()) return 0;
    // One line, whatever a reason or a file name holds.
    QString line = error;
    line.replace('\n', ' ').replace('\r', ' ');
    std::fprintf(report, "quaylight-convert: %s\n", line.toLocal8Bit().constData());
    std::fflush(report);
    return 1;
}
