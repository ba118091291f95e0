#pragma once
// The record editor: the name and the four file paths of one Programs row, by hand.

#include <QDialog>
#include <QString>
#include <QStringList>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;

namespace ql {

class Dialogs;

class frmEditProgram : public QDialog {
    Q_OBJECT
public:
    // Store errors (a missing or read-only catalogue) go to dialogs; nothing else is ever shown.
    frmEditProgram(const QString& cataloguePath, Dialogs& dialogs, QWidget* parent = nullptr);

    // Fills the boxes from the row whose code ProgramCode holds; a missing row leaves them empty.
    void Form_Activate();
    // Writes every box to the field its Tag names; the form stays open and reports nothing.
    void cmdSave_Click();
    void cmdClose_Click();

    // Puts the form in the middle of the screen and shows it modally; returns when it is closed.
    void showCentred();

    // Controls, by their names. Each box's field name is its dynamic property "Tag".
    QLineEdit* ProgramCode = nullptr; // hidden: the record's key as decimal text
    std::vector<QLineEdit*> txtField;
    std::vector<QLabel*> lblLabel;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdClose = nullptr;

protected:
    void showEvent(QShowEvent* event) override;

private:
    int code() const;
    std::vector<QLineEdit*> boundBoxes() const;
    static QStringList fieldNames(const std::vector<QLineEdit*>& boxes);

    QString cataloguePath_;
    Dialogs& dialogs_;
};

// cmdEdit's Edit: the editor for one record, centred on the screen, modal.
void openProgramEditor(const QString& cataloguePath, int programCode, Dialogs& dialogs,
                       QWidget* parent = nullptr);

} // namespace ql
