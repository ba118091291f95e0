#pragma once
// The launch: the emulator's settings into the registry, the script AtariRun.sh written anew,
// and the script started without waiting for it.

#include "Host.h"
#include "Store.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace ql {

inline const QString kLaunchScriptName = QStringLiteral("AtariRun.sh");

enum class LaunchClass { BasicListing, Image5200, General };

// By the last four characters of FileName1 in lower case: ".bas" and ".lst" are BASIC listings,
// ".a52" a 5200 image, anything else opens through its association.
LaunchClass launchClassOf(const QString& fileName1);

// What the launch takes from the form's controls rather than from the row.
struct LaunchControls {
    int artifactIndex = 0; // cmbArtifact.ListIndex
    int stretchIndex = 0;  // cmbStretch.ListIndex
    int resCartIndex = -1; // cmbResCart.ListIndex
};

// Writes the registry values of the program's class, in the emulator's expected order. A BASIC
// listing writes nothing.
void writeLaunchRegistry(Registry& registry, const ProgramRecord& record, const LaunchControls& controls);

// The lines of the launch script, the common tail included. atariDir may lack its closing
// separator. windowsVersion "98" starts the emulator in the background, as "start" did.
QStringList launchScriptLines(const ProgramRecord& record, const QString& atariDir,
                              const QString& windowsVersion, Associations& associations);
QByteArray launchScriptText(const QStringList& lines);

// The whole launch of the row with this ProgramCode. Gives the row's Name, for LastProgramName,
// or nothing when the row is gone (then nothing is written and nothing runs).
std::optional<QString> launchProgram(Host& host, const QString& cataloguePath, int programCode,
                                     const LaunchControls& controls, const QString& windowsVersion);

} // namespace ql
