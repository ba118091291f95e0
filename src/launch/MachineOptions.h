#pragma once
// The 8-bit option panel: its list rows, captions and click rules.

#include "Host.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace ql {

struct OptionItem {
    QString text;
    int data = 0;
};

// cmbRAM: the data word is the stored Memory code and the emulator's value. The two 320 K
// machines have different codes.
const std::vector<OptionItem>& ramItems();
// cmbArtifact and cmbStretch: the index is the stored value and the emulator's value.
const QStringList& artifactItems();
const QStringList& stretchItems();
// chkOSType 0 to 2.
const QStringList& osTypeCaptions();

QString basicCaption(bool set);
QString videoCaption(bool set);

// The number at the start of a text, anything behind it passed over ("320 K (compy)" reads 320);
// 0 when the text starts with no digit.
int leadingNumber(const QString& text);

// The row cmbRAM moves to when machine box osType is set: a 400/800 above 48 K falls to "48 K",
// an XL/XE below 64 K rises to "64 K". Nothing when the memory fits the machine.
std::optional<int> memoryIndexForMachine(int osType, const QString& ramText);

// The value name that carries the memory of a machine type; empty outside 0 to 2.
QString ramValueName(int machineType);

// cmbResCart_Click: hands the chosen cartridge (by its CartCode; 0 for "No Cartridge") to the
// emulator as an image path with cartridge type 0. No row gives an empty path.
void cmbResCart_Click(Registry& registry, const QString& cataloguePath, int cartCode);

} // namespace ql
