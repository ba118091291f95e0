#pragma once
#include <QStringList>

namespace ql {
// The folder tools on the command line; -1 when args name none of them, else the exit code.
int folderCommand(const QStringList& args);
// Their lines of the usage text.
extern const char* const kFolderCommandsUsage;
} // namespace ql
