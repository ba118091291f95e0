#pragma once
// What the stand-in emulator takes up when it starts: the settings Atari800Win PLus reads from the
// registry, and the file it was handed.

#include "RegistryFile.h"

#include <QString>
#include <QStringList>

namespace ql::emu {

inline const QString kSettingsKey = QStringLiteral("HKEY_CURRENT_USER\\Software\\Atari800WinPLus");
inline const QString kTitlePrefix = QStringLiteral("Atari800Win Plus 4.0: ");

struct EmulatorState {
    QString file; // as given on the command line
    bool windowed = false;
    QString machine;   // "400/800 OS A", ..., "5200"
    QStringList lines; // the settings, one per line, for the screen
};

// The window title for a file: the prefix and the file's name without folders.
QString windowTitleFor(const QString& file);

// The state from the registry and the arguments (without the program name).
EmulatorState emulatorState(const RegistryFile& registry, const QStringList& arguments);

// Shows the file on the line of drive 1 to 4.
void attachDisk(EmulatorState& state, int drive, const QString& file);

} // namespace ql::emu
