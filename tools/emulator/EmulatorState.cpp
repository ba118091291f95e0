#include "EmulatorState.h"
#include "StringFuncs.h"

namespace ql::emu {

namespace {

QString machineName(std::optional<std::uint32_t> type) {
    static const char* const names[] = {"400/800 OS A", "400/800 OS B", "XL/XE", "5200"};
    if (!type) return QStringLiteral("(not set)");
    if (*type < 4) return QString::fromLatin1(names[*type]);
    return QStringLiteral("unknown (%1)").arg(*type);
}

QString ramValueFor(std::optional<std::uint32_t> type) {
    if (type == 0u) return QStringLiteral("sysRAMSizeOSA");
    if (type == 1u) return QStringLiteral("sysRAMSizeOSB");
    return QStringLiteral("sysRAMSizeXLXE");
}

QString shown(const QString& text) {
    return text.isEmpty() ? QStringLiteral("(empty)") : text;
}

QString driveLine(int drive, const QString& file) {
    return QStringLiteral("D%1:         %2").arg(drive).arg(shown(GetFileName(file)));
}

} // namespace

QString windowTitleFor(const QString& file) {
    return kTitlePrefix + GetFileName(file);
}

EmulatorState emulatorState(const RegistryFile& registry, const QStringList& arguments) {
    EmulatorState state;
    for (const QString& argument : arguments) {
        if (argument == QLatin1String("-windowed"))
            state.windowed = true;
        else if (state.file.isEmpty())
            state.file = argument;
    }
    auto text = [&](const char* name) { return registry.text(kSettingsKey, QString::fromLatin1(name)); };
    auto dword = [&](const char* name) { return registry.dword(kSettingsKey, QString::fromLatin1(name)); };

    const auto type = dword("sysMachineType");
    state.machine = machineName(type);
    const auto tv = dword("sysTVMode");
    const auto disabled = dword("sysDisableBasic");
    state.lines << QStringLiteral("Machine:    %1").arg(state.machine);
    state.lines << QStringLiteral("BASIC:      %1")
                       .arg(!disabled   ? QStringLiteral("(not set)")
                            : *disabled ? QStringLiteral("off")
                                        : QStringLiteral("on"));
    state.lines << QStringLiteral("Video:      %1")
                       .arg(tv == 312u   ? QStringLiteral("PAL")
                            : tv == 262u ? QStringLiteral("NTSC")
                                         : shown(text("sysTVMode")));
    if (type != 3u)
        state.lines
            << QStringLiteral("Memory:     %1 K").arg(shown(registry.text(kSettingsKey, ramValueFor(type))));
    state.lines << QStringLiteral("Artifacts:  %1").arg(shown(text("screenArtifactMode")));
    state.lines << QStringLiteral("Stretch:    %1").arg(shown(text("screenStretchMode")));
    state.lines << QStringLiteral("Cartridge:  %1 (type %2)")
                       .arg(shown(GetFileName(text("fileRomCartridge"))), shown(text("sysCartType")));
    for (int drive = 1; drive <= 4; ++drive)
        state.lines << driveLine(drive, text(QStringLiteral("pathDiskDrive%1").arg(drive).toLatin1()));
    return state;
}

void attachDisk(EmulatorState& state, int drive, const QString& file) {
    const QString prefix = QStringLiteral("D%1:").arg(drive);
    for (QString& line : state.lines)
        if (line.startsWith(prefix)) line = driveLine(drive, file);
}

} // namespace ql::emu
