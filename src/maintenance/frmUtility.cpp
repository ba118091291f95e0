#include "frmUtility.h"
#include "FolderToolPages.h"
#include "Store.h"
#include "StringFuncs.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace ql {

namespace {

template <typename T> T* named(T* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

// Colours as the form always used them: 0xBBGGRR 0xC0FFC0, 0xE0E0E0, 0xC0C0FF.
const QColor kChosenRow(0xC0, 0xFF, 0xC0);
const QColor kIdleRow(0xE0, 0xE0, 0xE0);
const QColor kWorkingRow(0xFF, 0xC0, 0xC0);

// Decimal megabytes, as disks and file managers count them.
QString megabytes(std::int64_t bytes) {
    return QString::number(static_cast<double>(bytes) / 1e6, 'f', 1);
}

} // namespace

frmUtility::frmUtility(Host& host, MainFormOps& mainForm, FileDialogs& fileDialogs, QWidget* parent)
    : QDialog(parent), host_(host), mainForm_(mainForm), fileDialogs_(fileDialogs) {
    setObjectName(QStringLiteral("frmUtility"));
    setWindowTitle(QStringLiteral("Quaylight Utility Form"));
    buildControls();
    // A dialog makes its buttons answer Enter pressed anywhere on it; here that would open a
    // picker or start a rebuild from a text box, so Enter presses no button.
    for (QPushButton* button : findChildren<QPushButton*>()) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    resize(1000, sizeHint().height()); // room for "Resident Cartridges" and a long folder
    textPalette_ = txtTabName[0]->palette();
}

void frmUtility::buildControls() {
    tabUtility = named(new QTabWidget(this), QStringLiteral("tabUtility"));
    tabUtility->addTab(buildTabManagementPage(), QStringLiteral("Tab Management"));
    const auto cataloguePath = [this] { return mainForm_.cataloguePath(); };
    findUniquePage = new pageFindUnique(host_, cataloguePath);
    advancedPage = new pageAdvanced(host_, cataloguePath);
    for (ToolPage* page : std::initializer_list<ToolPage*>{findUniquePage, advancedPage})
        page->onRunning = [this, page](bool on) { setRebuilding(on, page); };
    tabUtility->addTab(findUniquePage, QStringLiteral("Find Unqiue"));
    tabUtility->addTab(advancedPage, QStringLiteral("Advanced"));

    cmdClose = named(new QPushButton(QStringLiteral("&Close"), this), QStringLiteral("cmdClose"));
    connect(cmdClose, &QPushButton::clicked, this, [this] { cmdClose_Click(); });

    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(cmdClose);
    auto* top = new QVBoxLayout(this);
    top->addWidget(tabUtility, 1);
    top->addLayout(bottom);
}

QWidget* frmUtility::buildTabManagementPage() {
    auto* page = named(new QWidget, QStringLiteral("pageTabManagement"));
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(2);

    lblAll = named(new QLabel(page), QStringLiteral("lblAll"));
    lblAll->setFixedSize(13, 13);
    lblAll->setAutoFillBackground(true);
    QPalette square = lblAll->palette();
    square.setColor(QPalette::Window, QColor(0x00, 0x80, 0x80));
    lblAll->setPalette(square);
    lblAll->installEventFilter(this);
    grid->addWidget(lblAll, 0, 0, Qt::AlignCenter);

    const QString nameTip = QStringLiteral("Name of the Tab - User definable");
    const QString sourceTip =
        QStringLiteral("Path to add Atari files from (subdirs will be scanned and their contents added)");
    for (int i = 0; i < kFormRows; ++i) {
        chkSelected[i] = named(new QCheckBox(page), QStringLiteral("chkSelected_%1").arg(i));
        txtTabName[i] = named(new QLineEdit(page), QStringLiteral("txtTabName_%1").arg(i));
        txtTabName[i]->setToolTip(nameTip);
        txtTabSource[i] = named(new QLineEdit(page), QStringLiteral("txtTabSource_%1").arg(i));
        txtTabSource[i]->setToolTip(sourceTip);
        cmdTabSource[i] =
            named(new QPushButton(QStringLiteral("..."), page), QStringLiteral("cmdTabSource_%1").arg(i));
        cmdTabSource[i]->setFixedWidth(32);
        connect(cmdTabSource[i], &QPushButton::clicked, this, [this, i] { cmdTabSource_Click(i); });
        grid->addWidget(chkSelected[i], i + 1, 0, Qt::AlignCenter);
        grid->addWidget(txtTabName[i], i + 1, 1);
        grid->addWidget(txtTabSource[i], i + 1, 2);
        grid->addWidget(cmdTabSource[i], i + 1, 3);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 3);
    const TabRows defaults = defaultTabRows();
    for (int i = 0; i < kFormRows; ++i)
        txtTabName[i]->setText(defaults[static_cast<size_t>(i)].name);

    cmdSaveTabInfo = named(new QPushButton(QStringLiteral("&Save"), page), QStringLiteral("cmdSaveTabInfo"));
    connect(cmdSaveTabInfo, &QPushButton::clicked, this, [this] { cmdSaveTabInfo_Click(); });
    cmdRebuild =
        named(new QPushButton(QStringLiteral("&Rebuild Selected"), page), QStringLiteral("cmdRebuild"));
    connect(cmdRebuild, &QPushButton::clicked, this, [this] { cmdRebuild_Click(); });
    chkRebuildEverything = named(new QCheckBox(QStringLiteral("Rebuild \"Everything\" Category"), page),
                                 QStringLiteral("chkRebuildEverything"));
    chkRebuildEverything->setToolTip(QStringLiteral("This can take a long time but is required for accurate "
                                                    "counts and \"Find Unique\" function."));
    prgRebuild = named(new QProgressBar(page), QStringLiteral("prgRebuild"));
    prgRebuild->setRange(0, 1000);
    prgRebuild->setValue(0);
    prgRebuild->setTextVisible(false);
    lblRebuildProgress = named(new QLabel(page), QStringLiteral("lblRebuildProgress"));

    auto* commands = new QHBoxLayout;
    commands->addWidget(cmdSaveTabInfo);
    commands->addWidget(cmdRebuild);
    commands->addWidget(chkRebuildEverything);
    commands->addStretch();
    auto* progress = new QHBoxLayout;
    progress->addWidget(prgRebuild, 1);
    progress->addWidget(lblRebuildProgress, 1);

    auto* layout = new QVBoxLayout(page);
    layout->addLayout(grid);
    layout->addLayout(commands);
    layout->addLayout(progress);
    layout->addStretch();
    return page;
}

void frmUtility::guarded(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const std::exception& e) {
        host_.dialogs.message(QString::fromUtf8(e.what()));
    }
}

void frmUtility::Form_Load() {
    loadTabMgmt();
    // The folder tools' default folders lie under AtariDir; they are not saved.
    QString atariDir;
    guarded([&] {
        Catalogue catalogue(mainForm_.cataloguePath());
        if (const auto config = catalogue.config()) atariDir = config->atariDir;
    });
    atariDir = WithTrailingSeparator(atariDir.trimmed());
    findUniquePage->setDefaults(atariDir);
    advancedPage->setDefaults(atariDir);
}

TabRows frmUtility::rowsOnForm() const {
    TabRows rows;
    for (int i = 0; i < kFormRows; ++i)
        rows[static_cast<size_t>(i)] = {txtTabName[i]->text(), txtTabSource[i]->text()};
    return rows;
}

void frmUtility::loadTabMgmt() {
    TabRows rows = rowsOnForm();
    ql::loadTabMgmt(mainForm_.cataloguePath(), rows);
    for (int i = 0; i < kFormRows; ++i) {
        txtTabName[i]->setText(rows[static_cast<size_t>(i)].name);
        txtTabSource[i]->setText(rows[static_cast<size_t>(i)].source);
    }
}

void frmUtility::saveTabMgmt() {
    ql::saveTabMgmt(mainForm_.cataloguePath(), rowsOnForm());
}

void frmUtility::cmdSaveTabInfo_Click() {
    guarded([this] { saveTabMgmt(); });
}

void frmUtility::cmdTabSource_Click(int index) {
    cCommonDialog dialog(fileDialogs_);
    QString fileName, fileTitle, filter = QStringLiteral("All (*.*)| *.*");
    bool readOnly = false;
    int filterIndex = 1, flags = 0;
    if (!dialog.VBGetOpenFileName(fileName, fileTitle, true, false, readOnly, false, filter, filterIndex,
                                  QString(), QString(), QString(), this, flags))
        return;
    txtTabSource[index]->setText(GetFolderPath(fileName));
}

void frmUtility::lblAll_DblClick() {
    for (QCheckBox* box : chkSelected)
        box->setChecked(!box->isChecked());
}

void frmUtility::cmdClose_Click() {
    if (rebuilding_) return;
    done(QDialog::Accepted);
}

void frmUtility::reject() {
    if (!rebuilding_) QDialog::reject();
}

// Escape would close the form and drop the edits not saved yet; only Close and the close box do.
void frmUtility::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmUtility::closeEvent(QCloseEvent* event) {
    if (rebuilding_)
        event->ignore();
    else
        QDialog::closeEvent(event);
}

bool frmUtility::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lblAll && event->type() == QEvent::MouseButtonDblClick) {
        if (!rebuilding_) lblAll_DblClick();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmUtility::colourRow(int row, const QColor& colour) {
    for (QLineEdit* box : {txtTabName[row], txtTabSource[row]}) {
        QPalette p = textPalette_;
        p.setColor(QPalette::Base, colour);
        box->setPalette(p);
    }
}

void frmUtility::resetRowColour(int row) {
    txtTabName[row]->setPalette(textPalette_);
    txtTabSource[row]->setPalette(textPalette_);
}

void frmUtility::showProgress(const RebuildProgress& p) {
    using Event = RebuildProgress::Event;
    const bool tabRow = p.target >= 0 && p.target <= kLastTabRow;
    switch (p.event) {
    case Event::TabsBegin:
        for (int i = 0; i <= kLastTabRow; ++i)
            colourRow(i, chkSelected[i]->isChecked() ? kChosenRow : kIdleRow);
        break;
    case Event::TargetStarted:
        if (tabRow) colourRow(p.target, kWorkingRow);
        break;
    case Event::TargetDone:
        if (tabRow) resetRowColour(p.target);
        break;
    case Event::TabsEnd:
        for (int i = 0; i <= kLastTabRow; ++i)
            resetRowColour(i);
        break;
    case Event::Walking:
        lblRebuildProgress->setText(QStringLiteral("Listing folders: %1 files found").arg(p.filesTotal));
        break;
    case Event::Files:
        lblRebuildProgress->setText(QStringLiteral("%1 of %2 files, %3 of %4 MB")
                                        .arg(p.filesDone)
                                        .arg(p.filesTotal)
                                        .arg(megabytes(p.bytesDone), megabytes(p.bytesTotal)));
        prgRebuild->setValue(p.bytesTotal > 0   ? static_cast<int>(p.bytesDone * 1000 / p.bytesTotal)
                             : p.filesTotal > 0 ? static_cast<int>(p.filesDone * 1000 / p.filesTotal)
                                                : 1000);
        break;
    }
    // Lets the form repaint and take clicks while the files are read on other threads.
    host_.clock.pumpEvents(0);
}

// While a rebuild holds the catalogue, the rows it works from stay as they were chosen, and
// nothing on the form can start a second write that would wait on the first.
void frmUtility::setRebuilding(bool on, QWidget* running) {
    rebuilding_ = on;
    for (QWidget* page : std::initializer_list<QWidget*>{findUniquePage, advancedPage})
        if (page != running) page->setEnabled(!on);
    for (int i = 0; i < kFormRows; ++i) {
        chkSelected[i]->setEnabled(!on);
        txtTabName[i]->setReadOnly(on);
        txtTabSource[i]->setReadOnly(on);
        cmdTabSource[i]->setEnabled(!on);
    }
    for (QWidget* w :
         std::initializer_list<QWidget*>{cmdSaveTabInfo, cmdRebuild, chkRebuildEverything, cmdClose})
        w->setEnabled(!on);
}

void frmUtility::cmdRebuild_Click() {
    if (rebuilding_) return; // a click that came in while the rebuild let events through
    RebuildRequest request;
    request.cataloguePath = mainForm_.cataloguePath();
    if (chkSelected[kCartridgeRow]->isChecked())
        request.cartridgeSource = txtTabSource[kCartridgeRow]->text();
    for (int i = 0; i <= kLastTabRow; ++i)
        if (chkSelected[i]->isChecked())
            request.tabs.push_back({i, txtTabName[i]->text(), txtTabSource[i]->text()});
    request.everything = chkRebuildEverything->isChecked();

    setRebuilding(true);
    prgRebuild->setValue(0);
    QString outcome = QStringLiteral("Operation Complete!");
    try {
        rebuildCatalogue(request, host_.fileSystem, [this](const RebuildProgress& p) { showProgress(p); });
    } catch (const std::exception& e) {
        for (int i = 0; i <= kLastTabRow; ++i)
            resetRowColour(i);
        outcome = QStringLiteral("The rebuild stopped: %1\nWhat was being rebuilt keeps its old entries; "
                                 "what was finished before it stays rebuilt.")
                      .arg(QString::fromUtf8(e.what()));
    }
    setRebuilding(false);
    host_.dialogs.message(outcome);
    guarded([this] {
        mainForm_.loadTabs();
        mainForm_.GeneralInit();
        mainForm_.CategoryTabs_TabActivate(0);
    });
}

} // namespace ql
