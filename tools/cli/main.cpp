// quaylight-cli: the command-line companion. Builds catalogues without a display.
#include "DemoCollection.h"
#include "FolderCommands.h"
#include "LinuxHost.h"
#include "Rebuild.h"
#include "Startup.h"
#include "Store.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdint>
#include <cstdio>
#include <unistd.h>

namespace {

int usage() {
    std::fputs(
        "Usage: quaylight-cli init FOLDER     write a new, empty Atari.mdb in FOLDER\n"
        "       quaylight-cli demo FOLDER     write a demo collection and its catalogue in FOLDER\n"
        "       quaylight-cli rebuild FOLDER [--tabs=N,N...|--tabs=none] [--no-cartridges] "
        "[--no-everything]\n"
        "                                     rebuild the catalogue FOLDER/Atari.mdb from the saved tab\n"
        "                                     folders: by default every tab with a folder (N is the tab's\n"
        "                                     row, 0 to 23), the resident cartridges and Everything\n",
        stderr);
    std::fputs(ql::kFolderCommandsUsage, stderr);
    return 2;
}

// Decimal megabytes, as disks and file managers count them.
double megabytes(std::int64_t bytes) {
    return static_cast<double>(bytes) / 1e6;
}

struct RebuildOptions {
    std::vector<int> rows;
    bool noTabs = false;
    bool cartridges = true;
    bool everything = true;
};

bool parseRebuildOptions(const QStringList& args, RebuildOptions& options) {
    const auto bad = [](const QString& arg) {
        std::fprintf(stderr, "quaylight-cli: bad option %s\n", qPrintable(arg));
        return false;
    };
    for (const QString& arg : args) {
        if (arg == QLatin1String("--no-cartridges")) {
            options.cartridges = false;
        } else if (arg == QLatin1String("--no-everything")) {
            options.everything = false;
        } else if (arg == QLatin1String("--tabs=none")) {
            options.noTabs = true;
        } else if (arg.startsWith(QLatin1String("--tabs="))) {
            for (const QString& part : arg.mid(7).split(QLatin1Char(','))) {
                bool ok = false;
                const int row = part.toInt(&ok);
                if (!ok || row < 0 || row > ql::kLastTabRow) return bad(arg);
                options.rows.push_back(row);
            }
        } else {
            return bad(arg);
        }
    }
    return true;
}

int rebuild(const QString& folder, const QStringList& args) {
    RebuildOptions options;
    if (!parseRebuildOptions(args, options)) return usage();
    const QString path = QDir(folder).filePath(ql::kCatalogueFileName);
    ql::RebuildRequest request =
        ql::savedTabsRequest(path, options.rows, options.cartridges, options.everything);
    if (options.noTabs) request.tabs.clear();
    ql::LinuxFileSystem fileSystem;
    const bool toTerminal = isatty(fileno(stderr));
    const ql::RebuildResult result =
        ql::rebuildCatalogue(request, fileSystem, [toTerminal](const ql::RebuildProgress& p) {
            if (toTerminal && p.event == ql::RebuildProgress::Event::Files)
                std::fprintf(stderr, "\r%lld of %lld files, %.1f of %.1f MB",
                             static_cast<long long>(p.filesDone), static_cast<long long>(p.filesTotal),
                             megabytes(p.bytesDone), megabytes(p.bytesTotal));
        });
    if (toTerminal) std::fputc('\n', stderr);
    std::printf("rebuild: %d programs, %d cartridges, %.1f MB read\n", result.programs, result.cartridges,
                megabytes(result.bytes));
    std::puts("Operation Complete!");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(1);
    try {
        if (const int code = ql::folderCommand(args); code >= 0) return code == 2 ? usage() : code;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "quaylight-cli: %s\n", e.what());
        return 1;
    }
    if (args.size() < 2) return usage();
    const QString& command = args[0];
    const QString folder = QDir(args[1]).absolutePath();
    try {
        if (command == QLatin1String("rebuild")) return rebuild(folder, args.mid(2));
        if (args.size() != 2) return usage();
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
