#pragma once
// The commands on the selected record (Add to Favourites, Delete, Edit) and the record editor's
// reading and writing, as plain functions of the catalogue path and the ProgramCode.

#include <QString>
#include <QStringList>
#include <optional>

namespace ql {

// cmdEdit by index.
enum class RecordCommand { AddToFavourites = 0, Delete = 1, Edit = 2 };

enum class RecordOutcome {
    Nothing,    // no row selected, the row is gone, or no such command: nothing visible happens
    Done,       // the row was changed or deleted; the list stays as it stands until it is rebuilt
    OpenEditor, // the caller opens frmEditProgram for the code, modal and centred
};

// cmdEdit_Click for the selected row's ProgramCode (0 when no row is selected). A catalogue that
// refuses the write throws StoreError, and the row stays as it was.
RecordOutcome recordCommand(const QString& cataloguePath, int index, int programCode);

// The editor's boxes: the text of each named field of the row, in the order of the names (a null
// field reads as empty); nothing when no row has the code.
std::optional<QStringList> readProgramTexts(const QString& cataloguePath, int programCode,
                                            const QStringList& fieldNames);

// Writes each text to the field of the same position, all in one statement; where a name comes
// twice the later box wins, as it would writing them one after another. False when no row has the
// code, and then nothing is written.
bool writeProgramTexts(const QString& cataloguePath, int programCode, const QStringList& fieldNames,
                       const QStringList& texts);

} // namespace ql
