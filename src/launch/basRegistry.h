#pragma once
// Writing the emulator's settings.

#include "Host.h"

#include <QString>
#include <QVariant>
#include <cstdint>

namespace ql {

constexpr std::uint32_t HKEY_CLASSES_ROOT = 0x80000000u;
constexpr std::uint32_t HKEY_CURRENT_USER = 0x80000001u;
constexpr std::uint32_t HKEY_LOCAL_MACHINE = 0x80000002u;
constexpr std::uint32_t HKEY_USERS = 0x80000003u;

// The key under HKEY_CURRENT_USER that Atari800Win PLus reads when it starts.
inline const QString kEmulatorKey = QStringLiteral("Software\\Atari800WinPLus");

// Stores one value, creating the key when it is missing. A number, or a text that reads as one
// (" 48 ", "1e2", "&H10"), becomes a DWORD; any other text is trimmed and stored as a string, and
// empty text stays an empty string. A number too large for 32 bits is kept as its text.
void SaveRegistryValue(Registry& registry, std::uint32_t rootKey, const QString& keyPath,
                       const QString& valueName, const QVariant& value);

// The same under HKEY_CURRENT_USER\Software\Atari800WinPLus, where every caller writes.
inline void SaveEmulatorValue(Registry& registry, const QString& valueName, const QVariant& value) {
    SaveRegistryValue(registry, HKEY_CURRENT_USER, kEmulatorKey, valueName, value);
}

} // namespace ql
