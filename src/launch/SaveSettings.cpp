#include "SaveSettings.h"
#include "Store.h"

namespace ql {

int diskSetType(const std::array<QString, 4>& slotTags) {
    if (!slotTags[0].toLower().contains(QLatin1String(".atr"))) return 0;
    for (int i = 0; i < 4; ++i)
        if (slotTags[i].isEmpty()) return i;
    return 4;
}

bool saveProgramSettings(const QString& cataloguePath, int programCode, const PanelSettings& settings) {
    if (programCode == 0 || !settings.memory) return false;
    QVariantMap fields;
    if (settings.machineType) fields.insert(QStringLiteral("MachineType"), *settings.machineType);
    fields.insert(QStringLiteral("Basic"), settings.basic ? 1 : 0);
    fields.insert(QStringLiteral("Description"), settings.description);
    fields.insert(QStringLiteral("Name"), settings.name);
    fields.insert(QStringLiteral("Video"), settings.ntsc ? 262 : 312);
    fields.insert(QStringLiteral("Memory"), *settings.memory);
    fields.insert(QStringLiteral("Artifact"), settings.artifactIndex);
    fields.insert(QStringLiteral("Stretch"), settings.stretchIndex);
    // Slot 1 is the program's own file, which this never changes.
    fields.insert(QStringLiteral("Filename2"), settings.slotTags[1]);
    fields.insert(QStringLiteral("Filename3"), settings.slotTags[2]);
    fields.insert(QStringLiteral("Filename4"), settings.slotTags[3]);
    fields.insert(QStringLiteral("Type"), diskSetType(settings.slotTags));
    Catalogue catalogue(cataloguePath);
    return catalogue.setProgramFields(programCode, fields);
}

} // namespace ql
