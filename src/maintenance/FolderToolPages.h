#pragma once
// The "Find Unqiue" and "Advanced" pages of the utility form.

#include "ToolPage.h"

#include <QString>
#include <array>
#include <functional>

class QLineEdit;
class QTreeWidget;

namespace ql {

class pageFindUnique : public ToolPage {
public:
    pageFindUnique(Host& host, std::function<QString()> cataloguePath, QWidget* parent = nullptr);
    // The default folders under AtariDir (with its closing separator).
    void setDefaults(const QString& atariDir);
    void cmdFindNewFiles_Click();

    QLineEdit* txtSourceDir = nullptr;
    QLineEdit* txtDestDir = nullptr;
    QPushButton* cmdFindNewFiles = nullptr;

private:
    std::function<QString()> cataloguePath_;
};

class pageAdvanced : public ToolPage {
public:
    pageAdvanced(Host& host, std::function<QString()> cataloguePath, QWidget* parent = nullptr);
    void setDefaults(const QString& atariDir);
    // Remove Duplicates: the files of Text1 grouped by CRC; the others of each group deleted from
    // txtDupTarget once the user has read the list and agreed.
    void Command1_Click();
    void cmdCopyUnique_Click();
    void cmdUnZipFiles_Click();
    void cmdRename_Click();
    void cmdUnArcMD_Click();
    void Command2_Click();

    QPushButton* Command1 = nullptr;
    QLineEdit* Text1 = nullptr;
    QLineEdit* Text2 = nullptr;
    QLineEdit* txtDupTarget = nullptr;
    QPushButton* cmdCopyUnique = nullptr;
    QLineEdit* txtDupDest = nullptr;
    QPushButton* cmdUnZipFiles = nullptr;
    QLineEdit* txtUnZipSource = nullptr;
    QLineEdit* txtUnZipSpec = nullptr;
    QPushButton* cmdRename = nullptr;
    QLineEdit* txtRename = nullptr;
    QLineEdit* txtChars = nullptr;
    QPushButton* cmdUnArcMD = nullptr;
    QLineEdit* txtUnARC = nullptr;
    QLineEdit* txtUAext = nullptr;
    QPushButton* Command2 = nullptr;
    QTreeWidget* aTree = nullptr;

private:
    std::function<QString()> cataloguePath_;
    QString atariDir_;
};

// The help text of the "Find Unqiue" page, with its runs of blanks.
extern const char* const kFindUniqueHelp;

} // namespace ql
