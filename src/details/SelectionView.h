#pragma once
// What the right side of the main form shows for the selected program, worked out from its row.

#include "Host.h"
#include "Store.h"

#include <QString>
#include <optional>

namespace ql {

enum class Family { Atari8Bit, AtariST, Atari2600, Atari5200, Atari7800, Jaguar, Lynx };

// By the last three characters of FileName1 in lower case (so ".st" keeps its dot); nothing for
// files of no family, such as ".txt" and ".lst".
std::optional<Family> familyOf(const QString& fileName1);

// The picAtari index of another machine's picture (3 to 8); -1 for the 8-bit family, whose
// picture follows its machine box.
int machinePictureOf(Family family);

struct SelectionView {
    QString name;
    QString description;
    // The program's own picture; empty when it has none, for the stock picture.
    QString picturePath;
    std::optional<Family> family; // nothing: the panels stay as they stand
    int machinePicture = -1;      // picAtari 3 to 8 to show, or -1
    bool snapPicture1 = false;    // cmdSnapPicture 1, the 5200's
    // The machine box to set (8-bit family with a MachineType of 0 to 2 only).
    std::optional<int> osTypeBox;
    bool basic = false;
    bool ntsc = false;
    int memory = 0;
    // Indexes the lists hold; a value outside a list shows its first row.
    int artifactIndex = 0;
    int stretchIndex = 0;
};

// The picture of a program listed under a tab: AtariDir, "ProgramImages/", tab caption, "/",
// Name, ".jpg". The folder goes by the tab, not by the row's own category.
QString programPicturePath(const QString& atariDir, const QString& tabCaption, const QString& name);

// The view of the row with this ProgramCode, listed under the tab with this caption; nothing when
// the row is gone.
std::optional<SelectionView> selectionView(const QString& cataloguePath, int programCode,
                                           const QString& tabCaption, FileSystem& fileSystem);

} // namespace ql
