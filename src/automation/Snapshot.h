#pragma once
// Pictures of programs taken from the running emulator: its screenshot key, a file name typed into
// its prompt, and the converter turning the picture into the JPEG that the selection view shows.

#include "Host.h"

#include <QString>

namespace ql {

// The emulator's window, by the beginning of its title.
inline const QString kEmulatorTitle = QStringLiteral("Atari800Win Plus 4.0:");
// The window of the emulator that runs BASIC listings.
inline const QString kBasicEmulatorTitle = QStringLiteral("Atari800");
// The converter's name in the [Programs] section of the association table.
inline const QString kConverterProgramName = QStringLiteral("IrfanView");

// What the picture flows use of the main form.
class SnapshotForm {
public:
    virtual ~SnapshotForm() = default;
    virtual QString cataloguePath() const = 0;
    // The caption of the current tab, read afresh.
    virtual QString currentTabCaption() const = 0;
    virtual QString lastProgramName() const = 0;
    virtual int selectedProgramCode() const = 0;
    virtual void prgList_Click() = 0;
    virtual void prgList_DblClick() = 0;
    virtual int listIndex() const = 0; // -1 when nothing is selected
    virtual void setListIndex(int index) = 0;
    virtual int listCount() const = 0;
};

// Starts the converter, not waited for: SOURCE "/convert=" DEST. The command comes from the
// association table's [Programs] IrfanView line, else the converter installed beside Quaylight.
// Throws HostError when it cannot be started.
void startConversion(Host& host, const QString& source, const QString& destination);

// One picture of the emulator that runs now, named by the last program launched and the current
// tab. Any failure (no emulator window, no converter) ends it silently.
void SnapRunningPicture(Host& host, SnapshotForm& form);

enum class SnapOutcome { Continue, EndProgram };

// Launches the selected program, waits delaySeconds while the form stays live, takes its picture
// and ends the emulator. A BASIC listing takes the Atari800 road, after which the program is to end.
SnapOutcome SnapProgramPicture(Host& host, SnapshotForm& form, int delaySeconds);

// The right-click run down the list. The flag is the form's: a right click while a run is going
// clears it, which stops the run before its next program.
class AutomaticPictureRun {
public:
    // A right click on the picture button. Asks for the delay and runs, or stops a run that is going.
    SnapOutcome rightClick(Host& host, SnapshotForm& form);
    bool running() const { return flag_; }

private:
    bool flag_ = false;
};

// The delay the user typed, as a whole number of seconds; nothing for a cancel or a text that is
// no number in range.
std::optional<int> delayFromText(const QString& text);

} // namespace ql
