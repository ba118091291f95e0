#include "SelectionView.h"
#include "MachineOptions.h"
#include "Shell.h"
#include "StringFuncs.h"

namespace ql {

std::optional<Family> familyOf(const QString& fileName1) {
    static const QStringList eightBit = {"xex", "bin", "cas", "bas", "rom", "atr",
                                         "dcm", "xfd", "xfz", "atz", "pro"};
    const QString ending = fileName1.right(3).toLower();
    if (eightBit.contains(ending)) return Family::Atari8Bit;
    if (ending == QLatin1String("msa") || ending == QLatin1String(".st")) return Family::AtariST;
    if (ending == QLatin1String("a26")) return Family::Atari2600;
    if (ending == QLatin1String("a52")) return Family::Atari5200;
    if (ending == QLatin1String("a78")) return Family::Atari7800;
    if (ending == QLatin1String("jag")) return Family::Jaguar;
    if (ending == QLatin1String("lnx")) return Family::Lynx;
    return std::nullopt;
}

int machinePictureOf(Family family) {
    switch (family) {
    case Family::Atari8Bit:
        return -1;
    case Family::AtariST:
        return 3;
    case Family::Atari2600:
        return 4;
    case Family::Atari5200:
        return 5;
    case Family::Atari7800:
        return 6;
    case Family::Jaguar:
        return 7;
    case Family::Lynx:
        return 8;
    }
    return -1;
}

QString programPicturePath(const QString& atariDir, const QString& tabCaption, const QString& name) {
    return WithTrailingSeparator(atariDir) + QStringLiteral("ProgramImages/") + tabCaption +
           QLatin1Char('/') + name + QStringLiteral(".jpg");
}

std::optional<SelectionView> selectionView(const QString& cataloguePath, int programCode,
                                           const QString& tabCaption, FileSystem& fileSystem) {
    Catalogue catalogue(cataloguePath);
    const auto config = catalogue.config();
    const auto record = catalogue.programByCode(programCode);
    if (!record) return std::nullopt;

    SelectionView view;
    const QString picture =
        programPicturePath(config ? config->atariDir : QString(), tabCaption, record->name);
    if (FileExists(fileSystem, picture)) view.picturePath = picture;
    view.family = familyOf(record->fileName1);
    if (view.family) {
        view.machinePicture = machinePictureOf(*view.family);
        view.snapPicture1 = *view.family == Family::Atari5200;
        // A machine type outside the three boxes is refused: the boxes keep their state.
        if (*view.family == Family::Atari8Bit && record->machineType >= 0 && record->machineType <= 2)
            view.osTypeBox = record->machineType;
    }
    view.basic = record->basic;
    view.ntsc = record->video == 262;
    view.memory = record->memory;
    const auto inList = [](int value, qsizetype count) { return value >= 0 && value < count ? value : 0; };
    view.artifactIndex = inList(record->artifact, artifactItems().size());
    view.stretchIndex = inList(record->stretch, stretchItems().size());
    view.description = record->description.isNull() ? QString() : record->description.toString();
    view.name = record->name;
    return view;
}

} // namespace ql
