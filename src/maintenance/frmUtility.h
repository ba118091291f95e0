#pragma once
#include "CommonDialog.h"
#include "Host.h"
#include "Rebuild.h"
#include "Startup.h"
#include "TabManagement.h"

#include <QDialog>
#include <QPalette>
#include <array>
#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTabWidget;

namespace ql {
class pageFindUnique;
class pageAdvanced;
} // namespace ql

namespace ql {

// The maintenance form: the tabs' names and folders, and the rebuild.
class frmUtility : public QDialog {
    Q_OBJECT
public:
    frmUtility(Host& host, MainFormOps& mainForm, FileDialogs& fileDialogs, QWidget* parent = nullptr);

    void Form_Load();
    void loadTabMgmt();
    void saveTabMgmt();
    void cmdSaveTabInfo_Click();
    void cmdTabSource_Click(int index);
    void cmdRebuild_Click();
    void lblAll_DblClick();
    void cmdClose_Click();
    bool rebuilding() const { return rebuilding_; }

    // Controls, by their names.
    QTabWidget* tabUtility = nullptr;
    QPushButton* cmdClose = nullptr;
    QLabel* lblAll = nullptr;
    std::array<QCheckBox*, kFormRows> chkSelected{};
    std::array<QLineEdit*, kFormRows> txtTabName{};
    std::array<QLineEdit*, kFormRows> txtTabSource{};
    std::array<QPushButton*, kFormRows> cmdTabSource{};
    QPushButton* cmdSaveTabInfo = nullptr;
    QPushButton* cmdRebuild = nullptr;
    QCheckBox* chkRebuildEverything = nullptr;
    QProgressBar* prgRebuild = nullptr;
    QLabel* lblRebuildProgress = nullptr;
    pageFindUnique* findUniquePage = nullptr;
    pageAdvanced* advancedPage = nullptr;

public slots:
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildControls();
    QWidget* buildTabManagementPage();
    void colourRow(int row, const QColor& colour);
    void resetRowColour(int row);
    void showProgress(const RebuildProgress& progress);
    // Locks the form while a rebuild or a folder tool runs; the page that runs keeps its Stop.
    void setRebuilding(bool on, QWidget* running = nullptr);
    TabRows rowsOnForm() const;
    // Runs a handler; a failure of the catalogue or the disk is told to the user, never fatal.
    void guarded(const std::function<void()>& handler);

    Host& host_;
    MainFormOps& mainForm_;
    FileDialogs& fileDialogs_;
    QPalette textPalette_;
    bool rebuilding_ = false;
};

} // namespace ql
