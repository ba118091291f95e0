#include "FolderCommands.h"
#include "Archives.h"
#include "FolderTools.h"
#include "LinuxHost.h"
#include "Startup.h"
#include "Store.h"
#include "StringFuncs.h"

#include <QDir>
#include <cstdio>
#include <iostream>
#include <string>

namespace ql {

const char* const kFolderCommandsUsage =
    "       quaylight-cli find-new SRC DEST          copy the files under SRC whose CRC the catalogue's\n"
    "                                                Everything rows lack into DEST\n"
    "       quaylight-cli duplicates --copy-unique SRC DEST\n"
    "                                                copy one file of each CRC under SRC into DEST\n"
    "       quaylight-cli duplicates --remove SRC TARGET [--yes]\n"
    "                                                list, then delete, the other files of each CRC in "
    "TARGET\n"
    "       quaylight-cli unpack FOLDER [SPEC]       unpack the ZIP (and ARC) files under FOLDER\n"
    "       quaylight-cli unarc FOLDER               unpack each ARC file under FOLDER into a folder of its "
    "own\n"
    "       quaylight-cli rename FOLDER              take ( and ) out of the file names under FOLDER\n"
    "       quaylight-cli tree [FOLDER]              print the folder tree (default: the Atari folder)\n"
    "       These take --catalogue=FILE (default ./Atari.mdb) where they read the catalogue.\n";

namespace {

QString folderArg(const QString& arg) {
    return WithTrailingSeparator(QDir(arg).absolutePath());
}

// 0 when everything went, 3 when some files could not be handled; the summary on stdout and one
// line per problem on stderr.
int report(const QString& command, const ToolCounts& counts, const char* closing) {
    for (const QString& problem : counts.problems)
        std::fprintf(stderr, "%s: %s\n", qPrintable(command), qPrintable(problem));
    QStringList parts{QStringLiteral("%1 files looked at").arg(counts.scanned)};
    const std::pair<int, const char*> all[] = {{counts.copied, "copied"},     {counts.renamed, "renamed"},
                                               {counts.unpacked, "unpacked"}, {counts.deleted, "deleted"},
                                               {counts.skipped, "skipped"},   {counts.failed, "failed"}};
    for (const auto& [n, what] : all)
        parts << QStringLiteral("%1 %2").arg(n).arg(QLatin1String(what));
    std::printf("%s: %s\n%s\n", qPrintable(command), qPrintable(parts.join(QStringLiteral(", "))), closing);
    return counts.failed > 0 ? 3 : 0;
}

int scanned(const std::vector<DuplicateGroup>& groups) {
    int n = 0;
    for (const auto& group : groups)
        n += static_cast<int>(group.files.size());
    return n;
}

bool confirmed(const QStringList& files) {
    for (const QString& file : files)
        std::printf("%s\n", qPrintable(file));
    std::printf("Delete these %lld files? [y/N] ", static_cast<long long>(files.size()));
    std::fflush(stdout);
    std::string answer;
    if (!std::getline(std::cin, answer)) answer.clear();
    if (answer.empty()) std::printf("\n");
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace

int folderCommand(const QStringList& all) {
    QStringList args;
    QString catalogue = QDir::current().filePath(kCatalogueFileName);
    bool yes = false;
    for (const QString& arg : all) {
        if (arg.startsWith(QLatin1String("--catalogue=")))
            catalogue = QDir(arg.mid(12)).absolutePath();
        else if (arg == QLatin1String("--yes"))
            yes = true;
        else
            args << arg;
    }
    if (args.isEmpty()) return -1;
    const QString command = args[0];
    const QStringList known = {"find-new", "duplicates", "unpack", "unarc", "rename", "tree"};
    if (!known.contains(command)) return -1;
    LinuxFileSystem fileSystem;
    LinuxAssociations associations;
    const auto need = [&](qsizetype n) { return args.size() == n; };

    if (command == QLatin1String("find-new") && need(3))
        return report(command, findNewFiles(catalogue, folderArg(args[1]), folderArg(args[2]), fileSystem),
                      "Operation Complete!");
    if (command == QLatin1String("duplicates") && need(4) && args[1] == QLatin1String("--copy-unique")) {
        const auto groups = collectDuplicateGroups(catalogue, folderArg(args[2]), fileSystem);
        ToolCounts counts = copyUniqueFiles(groups, folderArg(args[3]));
        counts.scanned = scanned(groups);
        return report(command, counts, "Done!");
    }
    if (command == QLatin1String("duplicates") && need(4) && args[1] == QLatin1String("--remove")) {
        const auto groups = collectDuplicateGroups(catalogue, folderArg(args[2]), fileSystem);
        const QStringList doomed = duplicatesToRemove(groups, folderArg(args[3]));
        ToolCounts counts;
        if (!doomed.isEmpty() && (yes || confirmed(doomed))) counts = removeFiles(doomed);
        counts.scanned = scanned(groups);
        return report(command, counts, "Done!");
    }
    if (command == QLatin1String("unpack") && (need(2) || need(3)))
        return report(command,
                      unpackArchives(folderArg(args[1]), need(3) ? args[2] : QStringLiteral("*.zip"),
                                     QString(), arcxCommand(associations), fileSystem),
                      "Done!");
    if (command == QLatin1String("unarc") && need(2))
        return report(command,
                      expandArcFiles(folderArg(args[1]), QStringLiteral("*.arc"), QString(),
                                     arcxCommand(associations), fileSystem),
                      "done!");
    if (command == QLatin1String("rename") && need(2))
        return report(command, removeBracketsFromNames(folderArg(args[1]), QStringLiteral("*.*"), fileSystem),
                      "Done!");
    if (command == QLatin1String("tree") && (need(1) || need(2))) {
        QString root;
        if (need(2)) {
            root = folderArg(args[1]);
        } else {
            Catalogue c(catalogue);
            const auto config = c.config();
            root = WithTrailingSeparator(config ? config->atariDir.trimmed() : QString());
        }
        const std::vector<FolderRow> rows = buildFolderTable(root, fileSystem);
        std::vector<int> depth(rows.size() + 1, 0);
        for (const FolderRow& row : rows) {
            depth[row.row] = row.parent > 0 ? depth[row.parent] + 1 : 0;
            std::printf("%s%s\n", std::string(2 * depth[row.row], ' ').c_str(), qPrintable(row.name));
        }
        std::printf("tree: %zu folders under %s\n", rows.size(), qPrintable(root));
        return 0;
    }
    return 2; // a known command with the wrong arguments
}

} // namespace ql
