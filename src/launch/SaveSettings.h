#pragma once
// "Save settings and run": the panel's options, the name, the description and the disk set stored
// in the program's row.

#include <QString>
#include <array>
#include <optional>

namespace ql {

// What the form's controls hold.
struct PanelSettings {
    std::optional<int> machineType; // the machine box that is set; nothing keeps the stored value
    bool basic = false;
    QString description;
    QString name;
    bool ntsc = true;
    std::optional<int> memory; // the data of cmbRAM's item; nothing when no item is chosen
    int artifactIndex = 0;
    int stretchIndex = 0;
    std::array<QString, 4> slotTags; // the full paths of the drive slots
};

// The number of disks in the set: with ".atr" anywhere in slot 1's path (any case), the slots
// counted up to the first empty one; otherwise 0. A blank " " is not empty.
int diskSetType(const std::array<QString, 4>& slotTags);

// Writes the settings into the row in one statement. False, with nothing written, when the row is
// gone or no memory size is chosen. Throws StoreError when the catalogue refuses the write.
bool saveProgramSettings(const QString& cataloguePath, int programCode, const PanelSettings& settings);

} // namespace ql
