#pragma once
// The tools of the utility form that work on folder trees: new files by CRC, duplicates, names
// without brackets, the folder tree. Each file operation is carried out and finished before the
// walk goes on, and its outcome is counted. The form and the command line call the same functions.

#include "Host.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace ql {

// What a tool did, for the form and the command line's summary.
struct ToolCounts {
    int scanned = 0; // files looked at
    int copied = 0;
    int renamed = 0;
    int deleted = 0;
    int unpacked = 0; // archives
    int skipped = 0;  // e.g. an archive entry that would land outside its folder, a rename onto a taken name
    int failed = 0;
    QStringList problems; // one line per skip or failure: path and cause
};

// Called at every file with its path and the files looked at so far; a form repaints and takes
// clicks there. What it throws ends the walk at once (a stop); work already done stays done.
using ToolProgressFn = std::function<void(const QString& path, int filesDone)>;

// Every "(" and ")" taken out of a name: "Game (Disk 1).atr" gives "Game Disk 1.atr".
QString nameWithoutBrackets(const QString& name);

// New-file analysis: the specs in their order, the target name of a new file (".exe" and ".com"
// endings become ".xex" by exact replacement), and the run over a source tree. The catalogue is
// only read: a CRC is known when an Everything row (TabNumber 99) holds it as text.
const QStringList& newFileSpecs();
QString newFileTargetName(const QString& name);
ToolCounts findNewFiles(const QString& cataloguePath, const QString& sourceDir, const QString& destDir,
                        FileSystem& fileSystem, const ToolProgressFn& progress = {});

// Duplicates: the files under a folder grouped by CRC through the DiskFiles table (emptied first);
// each group's first file is the one kept, the one with the longest path.
struct DuplicateGroup {
    QString crc;
    QStringList files; // full paths, longest first
};
// A file that cannot be read is in no group; scan, when given, counts the files looked at and those.
std::vector<DuplicateGroup> collectDuplicateGroups(const QString& cataloguePath, const QString& sourceDir,
                                                   FileSystem& fileSystem,
                                                   const ToolProgressFn& progress = {},
                                                   ToolCounts* scan = nullptr);
// Copies each group's kept file into destDir (a file of the same name there is replaced).
ToolCounts copyUniqueFiles(const std::vector<DuplicateGroup>& groups, const QString& destDir,
                           const ToolProgressFn& progress = {});
// The files a removal would delete: for each group's other files, the file of that name in targetDir,
// where there is one. Shown to the user before anything is deleted.
QStringList duplicatesToRemove(const std::vector<DuplicateGroup>& groups, const QString& targetDir);
ToolCounts removeFiles(const QStringList& files, const ToolProgressFn& progress = {});

// Bulk rename: brackets taken out of the names of the files (not folders) under folder; a name that
// is taken already leaves both files as they are (skipped).
ToolCounts removeBracketsFromNames(const QString& folder, const QString& spec, FileSystem& fileSystem,
                                   const ToolProgressFn& progress = {});

// The folder tree under root, level by level within each branch; parent is the row of the folder's
// real parent, 0 for a folder directly under root. Rows count from 1.
struct FolderRow {
    int row = 0;
    int parent = 0;
    QString name;
};
std::vector<FolderRow> buildFolderTable(const QString& root, FileSystem& fileSystem);

} // namespace ql
