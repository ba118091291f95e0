#include "DiskSlots.h"
#include "SendKeysText.h"
#include "Shell.h"
#include "Snapshot.h"
#include "Store.h"
#include "StringFuncs.h"

namespace ql {

namespace {
bool isAtrDisk(const QString& path) {
    return path.toLower().contains(QLatin1String(".atr"));
}
} // namespace

std::optional<DiskSlots> slotsForProgram(const QString& cataloguePath, int programCode) {
    Catalogue catalogue(cataloguePath);
    const auto row = catalogue.programByCode(programCode);
    if (!row) return std::nullopt;
    DiskSlots drives;
    if (!isAtrDisk(row->fileName1)) {
        drives[0].picture = DiskSlot::Picture::Exe;
        return drives;
    }
    const QString files[4] = {row->fileName1, row->fileName2, row->fileName3, row->fileName4};
    for (int i = 0; i < 4; ++i) {
        // Only drive 1 shows a disk, whatever the others hold.
        drives[i].picture = i == 0 ? DiskSlot::Picture::Disk : DiskSlot::Picture::Off;
        drives[i].text = GetFileName(files[i]);
        drives[i].tag = files[i];
    }
    return drives;
}

std::optional<DiskSlot> slotForDrop(const QString& cataloguePath, int programCode) {
    Catalogue catalogue(cataloguePath);
    const auto row = catalogue.programByCode(programCode);
    if (!row) return std::nullopt;
    return DiskSlot{isAtrDisk(row->fileName1) ? DiskSlot::Picture::Disk : DiskSlot::Picture::Exe,
                    GetFileName(row->fileName1), row->fileName1};
}

void attachDiskToEmulator(Host& host, const QString& path) {
    try {
        host.windows.activate(kEmulatorTitle);
        // The same key for every slot: the emulator is told of drive 1's prompt only.
        host.keyboard.sendKeys(QStringLiteral("%1"));
        host.keyboard.sendKeys(SendKeysLiteral(path));
        host.keyboard.sendKeys(QStringLiteral("{ENTER}"));
        Pause(host.clock, 1);
        host.windows.activate(kEmulatorTitle);
        host.keyboard.sendKeys(QStringLiteral("{ENTER}"));
    } catch (const std::exception&) {
        // No emulator running: the slot holds the disk, and that is all.
    }
}

} // namespace ql
