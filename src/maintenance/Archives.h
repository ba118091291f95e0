#pragma once
// Archive extraction over a folder tree: ZIP files unpacked in the process (libarchive), ARC files
// handed to the arcx command. Each archive is finished before the walk goes on.

#include "FolderTools.h"

namespace ql {

// The arcx command: the association table's [Programs] "arcx" line when there is one, else the arcx
// installed beside Quaylight, else arcx on the PATH.
QString arcxCommand(Associations& associations);

// One ZIP archive unpacked into a folder. An entry whose path is absolute, climbs out with "..",
// or is a link (or passes through one) pointing out of the folder is skipped and counted.
struct ZipOutcome {
    bool ok = false; // the archive was read to its end
    int extracted = 0;
    int skipped = 0;
    QString error;
    QStringList problems;
};
ZipOutcome unpackZip(const QString& archive, const QString& intoFolder);

// "unArc && MkDir": each ARC file under folder gets a folder named by the archive less its last
// four characters, arcx unpacks into it (arcx -r NAME FOLDER, run in the archive's folder), and the
// archive is deleted once it was unpacked.
ToolCounts expandArcFiles(const QString& folder, const QString& spec, const QString& filter,
                          const QString& arcx, FileSystem& fileSystem, const ToolProgressFn& progress = {});

// "UnZip/Arc": ZIP files unpacked beside themselves and deleted unless the name holds "("; ARC files
// handed to arcx (arcx -r NAME, in the archive's folder) and kept.
ToolCounts unpackArchives(const QString& folder, const QString& spec, const QString& filter,
                          const QString& arcx, FileSystem& fileSystem, const ToolProgressFn& progress = {});

} // namespace ql
