#include "MachineOptions.h"
#include "Store.h"
#include "basRegistry.h"

namespace ql {

const std::vector<OptionItem>& ramItems() {
    static const std::vector<OptionItem> items = {
        {QStringLiteral("4 K"), 4},
        {QStringLiteral("8 K"), 8},
        {QStringLiteral("16 K"), 16},
        {QStringLiteral("32 K"), 32},
        {QStringLiteral("48 K"), 48},
        {QStringLiteral("64 K"), 64},
        {QStringLiteral("128 K"), 128},
        {QStringLiteral("320 K (compy)"), 321},
        {QStringLiteral("320 K (rambo)"), 320},
        {QStringLiteral("576 K"), 576},
        {QStringLiteral("1088 K"), 1088},
    };
    return items;
}

const QStringList& artifactItems() {
    static const QStringList items = {QStringLiteral("None"), QStringLiteral("Blue/Brown 1"),
                                      QStringLiteral("Blue/Brown 2"), QStringLiteral("GTIA"),
                                      QStringLiteral("CTIA")};
    return items;
}

const QStringList& stretchItems() {
    static const QStringList items = {QStringLiteral("Normal"), QStringLiteral("Smooth"),
                                      QStringLiteral("Scan Lines")};
    return items;
}

const QStringList& osTypeCaptions() {
    static const QStringList captions = {QStringLiteral("400/800 A"), QStringLiteral("400/800 B"),
                                         QStringLiteral("XL / XE")};
    return captions;
}

QString basicCaption(bool set) {
    return set ? QStringLiteral("Basic On") : QStringLiteral("Basic Off");
}

QString videoCaption(bool set) {
    return set ? QStringLiteral("NTSC") : QStringLiteral("PAL");
}

int leadingNumber(const QString& text) {
    const QString trimmed = text.trimmed();
    qsizetype digits = 0;
    while (digits < trimmed.size() && digits < 9 && trimmed[digits].isDigit() &&
           trimmed[digits].unicode() < 128)
        ++digits;
    return digits == 0 ? 0 : trimmed.left(digits).toInt();
}

std::optional<int> memoryIndexForMachine(int osType, const QString& ramText) {
    constexpr int k48 = 4;
    constexpr int k64 = 5;
    const int kilobytes = leadingNumber(ramText);
    if ((osType == 0 || osType == 1) && kilobytes > 48) return k48;
    if (osType == 2 && kilobytes < 64) return k64;
    return std::nullopt;
}

QString ramValueName(int machineType) {
    switch (machineType) {
    case 0:
        return QStringLiteral("sysRAMSizeOSA");
    case 1:
        return QStringLiteral("sysRAMSizeOSB");
    case 2:
        return QStringLiteral("sysRAMSizeXLXE");
    default:
        return QString();
    }
}

void cmbResCart_Click(Registry& registry, const QString& cataloguePath, int cartCode) {
    QString path;
    {
        Catalogue catalogue(cataloguePath);
        if (const auto cartridge = catalogue.cartridgeByCode(cartCode)) path = cartridge->cartPath;
    }
    SaveEmulatorValue(registry, QStringLiteral("fileRomCartridge"), path);
    SaveEmulatorValue(registry, QStringLiteral("fileRomCurrent"), path);
    SaveEmulatorValue(registry, QStringLiteral("sysCartType"), 0);
}

} // namespace ql
