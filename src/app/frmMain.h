#pragma once
#include "DiskSlots.h"
#include "Host.h"
#include "Panel8Bit.h"
#include "ProgramList.h"
#include "ProgramListModel.h"
#include "Snapshot.h"
#include "Startup.h"

#include <QWidget>
#include <array>
#include <functional>

class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListView;
class QPlainTextEdit;
class QPushButton;
class QTabBar;

namespace ql {

class frmMain : public QWidget, public MainFormOps, public SnapshotForm {
    Q_OBJECT
public:
    static constexpr int kTabCount = 24;

    explicit frmMain(Host& host, QWidget* parent = nullptr);

    // The start-up: finds the catalogue in the current folder, asks the first-run question, fills
    // the tabs and lists tab 0. False when the program is to end.
    bool Form_Load(const QString& currentFolder);

    // MainFormOps
    void loadTabs() override;
    void GeneralInit() override;
    void CategoryTabs_TabActivate(int tabToActivate) override;
    QString cataloguePath() const override { return cataloguePath_; }

    void UpdateListBox(const QString& caption);
    void prgList_Click() override;
    void prgList_DblClick() override;

    // Stores the panel, the name, the description and the drive slots in the row, then runs it.
    void cmdOptionSet_Click();

    // The drive slots: a click in the list loads them, a drag of the selected row onto a drive
    // fills that drive and hands the disk to a running emulator.
    void prgList_MouseDown();
    void prgList_MouseMove();
    void prgList_MouseUp();
    void imgFloppy_DragDrop(int index);
    bool dragPending() const { return dragPending_; }
    // The full path a slot holds (its Tag).
    QString floppyTag(int index) const;

    // Record commands: 0 Add to Favourites, 1 Delete, 2 Edit.
    void cmdEdit_Click(int index);
    // Pictures: a left click takes one of the running emulator; a right click on button 0 runs down
    // the list (button 2 is the right mouse button).
    void cmdSnapPicture_Click(int index);
    void cmdSnapPicture_MouseUp(int index, int button);

    // The machine option panel.
    void chkOSType_Click(int index);
    void chkBasic_Click();
    void chkNTSC_Click();
    void cmbResCart_Click();

    // State that lives between events.
    QString atariDir() const { return atariDir_; }
    QString windowsVersion() const { return windowsVersion_; }
    int currentTab() const { return currentTab_; }
    QString searchText() const { return searchText_; }
    QString lastProgramName() const override { return lastProgramName_; }
    // The ProgramCode of the selected row, 0 when none.
    int selectedProgramCode() const override;
    QString currentTabCaption() const override;
    int listIndex() const override;
    void setListIndex(int index) override;
    int listCount() const override;

    // Controls, by their names.
    QTabBar* CategoryTabs = nullptr;
    QLineEdit* txtSearch = nullptr;
    QListView* prgList = nullptr;
    std::array<QLabel*, 3> lblLabel{};
    QLineEdit* txtName = nullptr;
    QPlainTextEdit* txtDescription = nullptr;
    QLabel* imgProgramImage = nullptr;
    std::array<QPushButton*, 3> cmdEdit{};
    QPushButton* cmdLoadUtilForm = nullptr;
    QPushButton* cmdClose = nullptr;
    Panel8Bit* frame8Bit = nullptr; // the 8-bit panel, with its controls under their own names
    QFrame* frameAtari = nullptr;

    std::array<QPushButton*, 2> cmdSnapPicture{}; // 0 in frame8Bit, 1 in frameAtari
    // 0 to 2 in frame8Bit, by machine box; 3 to 8 in frameAtari, by family.
    std::array<QLabel*, 9> picAtari{};
    // Hidden holders of the stock pictures.
    QLabel* imgDefault = nullptr;
    QLabel* imgLoadExe = nullptr;
    QLabel* imgLoadDisk = nullptr;
    QLabel* imgLoadDiskOff = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void setFloppy(int index, const DiskSlot& slot);
    void buildOptionPanel();
    void buildOtherMachinePanel();
    void txtSearch_Change();
    void prgList_KeyPress(const QString& text);
    // Runs a handler; a failure of the catalogue or the disk is told to the user, never fatal.
    void guarded(const std::function<void()>& handler);
    // The tab that activating index shows: itself, or the next one with a caption.
    int shownTab(int index) const;

    Host& host_;
    ProgramListModel model_;
    CategoryList categoryList_;
    QString cataloguePath_;
    QString atariDir_;
    QString windowsVersion_;
    int currentTab_ = 0;
    QString searchText_;
    QString lastProgramName_;
    bool dragPending_ = false;
    QPoint dragStart_;
    // Set while UpdateListBox selects its first row.
    bool refillingList_ = false;
    AutomaticPictureRun pictureRun_;
};

} // namespace ql
