#pragma once
// The 8-bit panel of the main form: the machine options, the drive slots, and the buttons that
// store, run and picture the program. Its controls keep the form's names.

#include "SaveSettings.h"
#include "SelectionView.h"

#include <QFrame>
#include <array>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ql {

class Panel8Bit : public QFrame {
public:
    explicit Panel8Bit(QWidget* parent);

    // A machine box clicked: it alone is set, its picture shows, and the memory follows the
    // machine's rule.
    void chkOSType_Click(int index);
    void chkBasic_Click();
    void chkNTSC_Click();

    // The row's settings on the boxes and lists.
    void showSettings(const SelectionView& view);
    // What the boxes, lists and slots hold; name and description are the form's.
    PanelSettings settings() const;

    // The full path a drive slot holds (its Tag), and filling a slot.
    QString floppyTag(int index) const;
    void setFloppy(int index, const QString& text, const QString& tag, const QPixmap& picture);

    std::array<QPushButton*, 3> chkOSType{};
    QPushButton* chkBasic = nullptr;
    QPushButton* chkNTSC = nullptr;
    QComboBox* cmbRAM = nullptr;
    QComboBox* cmbArtifact = nullptr;
    QComboBox* cmbStretch = nullptr;
    QComboBox* cmbResCart = nullptr;
    QPushButton* cmdOptionSet = nullptr;
    QPushButton* cmdSnapPicture = nullptr; // the form's cmdSnapPicture 0
    std::array<QLabel*, 4> imgFloppy{};
    std::array<QLineEdit*, 4> txtFloppy{};
    std::array<QLabel*, 4> lblFloppyNum{};
    std::array<QLabel*, 3> picAtari{}; // by machine box

private:
    // Ends the nested clicks that chkOSType_Click causes by setting and clearing the boxes.
    bool osTypeGuard_ = false;
};

} // namespace ql
