#pragma once
// The drive slots of the 8-bit panel: loaded from a clicked program, filled by a drop, and the disk
// handed to the running emulator by its keys.

#include "Host.h"

#include <QString>
#include <array>
#include <optional>

namespace ql {

struct DiskSlot {
    enum class Picture { Disk, Exe, Off };
    Picture picture = Picture::Off;
    QString text; // the file's name, for the eye
    QString tag;  // the full path, for all logic
    bool operator==(const DiskSlot&) const = default;
};

using DiskSlots = std::array<DiskSlot, 4>;

// The slots for a clicked program: a disk set when ".atr" occurs in its first file's path (only
// drive 1 shows a disk), else every slot empty and drive 1 showing a program. Nothing when the row
// is gone, and then the slots stay as they are.
std::optional<DiskSlots> slotsForProgram(const QString& cataloguePath, int programCode);

// What a slot holds after the program is dropped on it; nothing when the row is gone.
std::optional<DiskSlot> slotForDrop(const QString& cataloguePath, int programCode);

// Hands the disk to the running emulator: Alt+1, the path, Enter, a second's wait with the form
// live, Enter again. With no emulator window nothing is sent and nothing is said.
void attachDiskToEmulator(Host& host, const QString& path);

} // namespace ql
