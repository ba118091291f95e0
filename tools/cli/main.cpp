// quaylight-cli: the command-line companion. Builds catalogues without a display.
#include "DemoCollection.h"
#include "Startup.h"
#include "Store.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdio>

namespace {

int usage() {
    std::fputs("Usage: quaylight-cli init FOLDER    write a new, empty Atari.mdb in FOLDER\n"
               "       quaylight-cli demo FOLDER    write a demo collection and its catalogue in FOLDER\n",
               stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.size() != 2) return usage();
    const QString& command = args[0];
    const QString folder = QDir(args[1]).absolutePath();
    try {
        if (command == QLatin1String("init")) {
            QDir().mkpath(folder);
            ql::Catalogue::create(QDir(folder).filePath(ql::kCatalogueFileName));
        } else if (command == QLatin1String("demo")) {
            ql::writeDemoCollection(folder);
        } else {
            return usage();
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "quaylight-cli: %s\n", e.what());
        return 1;
    }
    std::printf("%s: %s\n", qPrintable(command), qPrintable(QDir(folder).filePath(ql::kCatalogueFileName)));
    return 0;
}
