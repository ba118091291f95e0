#include "frmMain.h"
#include "FormWidgets.h"
#include "LaunchPipeline.h"
#include "MachineOptions.h"
#include "Panel8Bit.h"
#include "ProgramList.h"
#include "RecordCommands.h"
#include "SaveSettings.h"
#include "SelectionView.h"
#include "UtilityEntry.h"
#include "frmEditProgram.h"

#include <QApplication>
#include <QComboBox>
#include <QDrag>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTimer>
#include <QVBoxLayout>

namespace ql {

namespace {
// A drag carries no data: the dragged row is always the selected one.
const QString kProgramDrag = QStringLiteral("application/x-quaylight-program");

// 15360 x 11055 twips at 15 twips a pixel.
constexpr int kFormWidth = 1024;
constexpr int kFormHeight = 737;

} // namespace

} // namespace ql

// The pictures live in a static library, whose resources must be registered by hand.
static void initResources() {
    Q_INIT_RESOURCE(quaylight);
}

namespace ql {

frmMain::frmMain(Host& host, QWidget* parent) : QWidget(parent), host_(host) {
    initResources();
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Quaylight"));
    setFixedSize(kFormWidth, kFormHeight);
    buildControls();
}

void frmMain::buildControls() {
    CategoryTabs = named(new QTabBar(this), QStringLiteral("CategoryTabs"));
    CategoryTabs->setUsesScrollButtons(true);
    CategoryTabs->setExpanding(false);
    CategoryTabs->setDrawBase(true);
    for (int i = 0; i < kTabCount; ++i)
        CategoryTabs->addTab(QStringLiteral("Tab &%1").arg(i));
    connect(CategoryTabs, &QTabBar::currentChanged, this, [this](int index) {
        if (index >= 0) guarded([&] { CategoryTabs_TabActivate(index); });
    });

    lblLabel[0] = named(new QLabel(QStringLiteral("Filter:"), this), QStringLiteral("lblLabel_0"));
    txtSearch = named(new QLineEdit(this), QStringLiteral("txtSearch"));
    txtSearch->setClearButtonEnabled(true);
    lblLabel[0]->setBuddy(txtSearch);
    connect(txtSearch, &QLineEdit::textChanged, this, [this] { guarded([&] { txtSearch_Change(); }); });

    prgList = named(new QListView(this), QStringLiteral("prgList"));
    prgList->setModel(&model_);
    prgList->setUniformItemSizes(true); // keeps a refill of thousands of rows cheap
    prgList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    prgList->setSelectionMode(QAbstractItemView::SingleSelection);
    prgList->installEventFilter(this);
    prgList->viewport()->installEventFilter(this); // the mouse, for the drag onto the drives
    connect(prgList->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (!current.isValid()) return;
                if (refillingList_) {
                    // A refill shows its first row quietly: the list stands whatever the view meets,
                    // and a keystroke in the filter never raises a message.
                    try {
                        prgList_Click();
                    } catch (const std::exception&) {
                    }
                    return;
                }
                guarded([&] { prgList_Click(); });
            });
    connect(prgList, &QListView::doubleClicked, this, [this] { guarded([&] { prgList_DblClick(); }); });

    lblLabel[1] = named(new QLabel(QStringLiteral("Files:"), this), QStringLiteral("lblLabel_1"));
    lblLabel[2] = named(new QLabel(QStringLiteral("Total:"), this), QStringLiteral("lblLabel_2"));

    txtName = named(new QLineEdit(QStringLiteral("Star Raiders"), this), QStringLiteral("txtName"));
    QFont nameFont = txtName->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.4);
    nameFont.setBold(true);
    txtName->setFont(nameFont);
    txtDescription =
        named(new QPlainTextEdit(QStringLiteral("Description"), this), QStringLiteral("txtDescription"));
    txtDescription->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    imgProgramImage = named(new QLabel(this), QStringLiteral("imgProgramImage"));
    imgProgramImage->setFixedSize(384, 240);
    imgProgramImage->setAlignment(Qt::AlignCenter);
    imgProgramImage->setFrameShape(QFrame::StyledPanel);

    const QStringList editCaptions = {QStringLiteral("Add to Favourites"), QStringLiteral("Delete"),
                                      QStringLiteral("Edit")};
    for (int i = 0; i < 3; ++i) {
        cmdEdit[i] = named(new QPushButton(editCaptions[i], this), QStringLiteral("cmdEdit_%1").arg(i));
        connect(cmdEdit[i], &QPushButton::clicked, this, [this, i] { guarded([&] { cmdEdit_Click(i); }); });
    }
    cmdLoadUtilForm =
        named(new QPushButton(QStringLiteral("Utility"), this), QStringLiteral("cmdLoadUtilForm"));
    connect(cmdLoadUtilForm, &QPushButton::clicked, this,
            [this] { guarded([&] { showUtilityForm(this, host_, *this); }); });
    cmdClose = named(new QPushButton(QStringLiteral("&Close"), this), QStringLiteral("cmdClose"));
    connect(cmdClose, &QPushButton::clicked, this, [] { QApplication::quit(); });

    imgDefault = pictureLabel(this, QStringLiteral("imgDefault"), QStringLiteral(":/program.svg"),
                              imgProgramImage->size());
    imgLoadExe =
        pictureLabel(this, QStringLiteral("imgLoadExe"), QStringLiteral(":/drives/exe.svg"), kDriveSize);
    imgLoadDisk =
        pictureLabel(this, QStringLiteral("imgLoadDisk"), QStringLiteral(":/drives/disk.svg"), kDriveSize);
    imgLoadDiskOff = pictureLabel(this, QStringLiteral("imgLoadDiskOff"),
                                  QStringLiteral(":/drives/empty.svg"), kDriveSize);
    for (QLabel* holder : {imgDefault, imgLoadExe, imgLoadDisk, imgLoadDiskOff})
        holder->hide();
    imgProgramImage->setPixmap(imgDefault->pixmap());

    frameAtari = named(new QFrame(this), QStringLiteral("frameAtari"));
    buildOptionPanel();
    buildOtherMachinePanel();
    // The two panels share one place; the form keeps its layout whichever is on show.
    for (QFrame* panel : std::initializer_list<QFrame*>{frame8Bit, frameAtari}) {
        QSizePolicy policy = panel->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        panel->setSizePolicy(policy);
    }
    frameAtari->hide();
    // The design state, shown until the first selection.
    frame8Bit->chkOSType[1]->setChecked(true);
    frame8Bit->chkNTSC->setChecked(true);
    frame8Bit->cmbRAM->setCurrentIndex(4); // "48 K"

    // Left: filter, list and counters. Right: the selected program and its panel.
    auto* left = new QVBoxLayout;
    auto* filterRow = new QHBoxLayout;
    filterRow->addWidget(lblLabel[0]);
    filterRow->addWidget(txtSearch);
    left->addLayout(filterRow);
    left->addWidget(prgList, 1);
    auto* counters = new QHBoxLayout;
    counters->addWidget(lblLabel[1]);
    counters->addStretch();
    counters->addWidget(lblLabel[2]);
    left->addLayout(counters);

    auto* right = new QGridLayout;
    right->addWidget(txtName, 0, 0, 1, 2);
    right->addWidget(imgProgramImage, 1, 0);
    right->addWidget(txtDescription, 1, 1);
    auto* buttons = new QHBoxLayout;
    for (auto* b : cmdEdit)
        buttons->addWidget(b);
    buttons->addStretch();
    buttons->addWidget(cmdLoadUtilForm);
    buttons->addWidget(cmdClose);
    right->addLayout(buttons, 2, 0, 1, 2);
    auto* panels = new QGridLayout;
    panels->addWidget(frame8Bit, 0, 0);
    panels->addWidget(frameAtari, 0, 0);
    right->addLayout(panels, 3, 0, 1, 2);
    right->setRowStretch(3, 1);

    auto* body = new QHBoxLayout;
    body->addLayout(left, 2);
    body->addLayout(right, 3);
    auto* top = new QVBoxLayout(this);
    top->addWidget(CategoryTabs);
    top->addLayout(body, 1);
}

void frmMain::buildOptionPanel() {
    frame8Bit = new Panel8Bit(this);
    cmdSnapPicture[0] = frame8Bit->cmdSnapPicture;
    for (int i = 0; i < 3; ++i) {
        picAtari[i] = frame8Bit->picAtari[i];
        connect(frame8Bit->chkOSType[i], &QPushButton::toggled, this, [this, i] { chkOSType_Click(i); });
    }
    // Only the user's choice hands a cartridge over; filling the list must not.
    connect(frame8Bit->cmbResCart, &QComboBox::activated, this,
            [this] { guarded([&] { cmbResCart_Click(); }); });
    connect(frame8Bit->cmdOptionSet, &QPushButton::clicked, this,
            [this] { guarded([&] { cmdOptionSet_Click(); }); });
    connect(cmdSnapPicture[0], &QPushButton::clicked, this, [this] { cmdSnapPicture_Click(0); });
    cmdSnapPicture[0]->installEventFilter(this); // the right button starts the run down the list
    for (int i = 0; i < 2; ++i)
        frame8Bit->imgFloppy[i]->installEventFilter(this); // drops of a dragged program
}

void frmMain::buildOtherMachinePanel() {
    cmdSnapPicture[1] = named(new QPushButton(QStringLiteral("&Take Picture"), frameAtari),
                              QStringLiteral("cmdSnapPicture_1"));
    cmdSnapPicture[1]->setToolTip(QStringLiteral("Snaps a picture of the currently running Atari program"));
    connect(cmdSnapPicture[1], &QPushButton::clicked, this, [this] { cmdSnapPicture_Click(1); });
    cmdSnapPicture[1]->hide();
    auto* pictures = new QGridLayout;
    for (int i = 3; i < 9; ++i) {
        picAtari[i] = pictureLabel(frameAtari, QStringLiteral("picAtari_%1").arg(i),
                                   QString::fromLatin1(kMachinePictures[i]), kMachineSize);
        picAtari[i]->hide();
        pictures->addWidget(picAtari[i], 0, 0, Qt::AlignCenter);
    }
    auto* layout = new QVBoxLayout(frameAtari);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(pictures);
    layout->addWidget(cmdSnapPicture[1], 0, Qt::AlignHCenter);
    layout->addStretch();
}

bool frmMain::Form_Load(const QString& currentFolder) {
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().left() + (screen->availableGeometry().width() - width()) / 2,
             screen->availableGeometry().top());
    StartupResult start;
    try {
        start = startUp(host_, currentFolder);
    } catch (const std::exception& e) {
        host_.dialogs.message(QString::fromUtf8(e.what()));
        return false;
    }
    if (!start.proceed) return false;
    cataloguePath_ = start.cataloguePath;
    windowsVersion_ = start.windowsVersion;
    atariDir_ = start.atariDir;
    bool ok = true;
    guarded([&] {
        ok = false;
        loadTabs();
        GeneralInit();
        CategoryTabs_TabActivate(0);
        ok = true;
    });
    return ok;
}

void frmMain::loadTabs() {
    Catalogue catalogue(cataloguePath_);
    {
        // Hiding the tab on show moves the strip on; that tab is listed once every caption is read.
        const QSignalBlocker blockTabs(CategoryTabs);
        for (const TabRecord& tab : catalogue.tabs()) {
            const int index = tab.tabCode - 1;
            if (index < 0 || index >= kTabCount)
                continue; // row 25 belongs to the resident cartridges; no tab shows it
            CategoryTabs->setTabText(index, tab.tabName);
            // A tab without a caption lists nothing; hiding it keeps the strip to the named tabs.
            // The strip's scroll buttons go by its last tab, so that one stays in place, disabled.
            const bool named = !tab.tabName.isEmpty();
            CategoryTabs->setTabVisible(index, named || index == kTabCount - 1);
            CategoryTabs->setTabEnabled(index, named);
        }
    }
    if (CategoryTabs->currentIndex() != currentTab_ && CategoryTabs->currentIndex() >= 0)
        CategoryTabs_TabActivate(CategoryTabs->currentIndex());
    const QSignalBlocker block(frame8Bit->cmbResCart);
    frame8Bit->cmbResCart->clear();
    frame8Bit->cmbResCart->addItem(QStringLiteral("No Cartridge"), 0);
    for (const CartridgeRecord& cartridge : catalogue.cartridges())
        frame8Bit->cmbResCart->addItem(cartridge.cartName, cartridge.cartCode);
    // Nothing is chosen until the user picks an item.
    frame8Bit->cmbResCart->setCurrentIndex(-1);
}

void frmMain::GeneralInit() {
    Catalogue catalogue(cataloguePath_);
    lblLabel[2]->setText(QStringLiteral("Total: %1").arg(catalogueTotal(catalogue)));
}

int frmMain::shownTab(int index) const {
    const auto shown = [this](int i) {
        return CategoryTabs->isTabVisible(i) && CategoryTabs->isTabEnabled(i);
    };
    if (index < 0 || index >= kTabCount || shown(index)) return index;
    for (int step = 1; step < kTabCount; ++step) {
        const int next = (index + step) % kTabCount;
        if (shown(next)) return next;
    }
    return index; // no tab has a caption: nothing to list, and the list stays as it is
}

void frmMain::CategoryTabs_TabActivate(int tabToActivate) {
    // A tab without a caption is hidden; asking for it goes on to the next named tab, so the strip,
    // CurrentTab and the list never disagree.
    tabToActivate = shownTab(tabToActivate);
    currentTab_ = tabToActivate;
    if (CategoryTabs->currentIndex() != tabToActivate) {
        const QSignalBlocker block(CategoryTabs);
        CategoryTabs->setCurrentIndex(tabToActivate);
    }
    UpdateListBox(CategoryTabs->tabText(tabToActivate));
}

void frmMain::UpdateListBox(const QString& caption) {
    if (caption.isEmpty()) return;
    std::vector<ListRow> rows = categoryList_.rows(cataloguePath_, caption, searchText_);
    const int count = static_cast<int>(rows.size());
    model_.setRows(std::move(rows));
    lblLabel[1]->setText(QStringLiteral("Files: %1").arg(count));
    if (count > 0) {
        refillingList_ = true;
        prgList->setCurrentIndex(model_.index(0));
        refillingList_ = false;
    }
}

void frmMain::txtSearch_Change() {
    searchText_ = txtSearch->text();
    UpdateListBox(CategoryTabs->tabText(currentTab_));
}

void frmMain::prgList_KeyPress(const QString& text) {
    // Typing in the list extends the filter. Control characters (Backspace among them) would only
    // make the filter match nothing, so they are left to the list.
    if (text.isEmpty() || !text.at(0).isPrint()) return;
    txtSearch->setText(txtSearch->text() + text);
    searchText_ = txtSearch->text();
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (watched == prgList->viewport()) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            if (mouse->button() == Qt::LeftButton) {
                dragStart_ = mouse->position().toPoint();
                prgList_MouseDown();
            }
            break;
        case QEvent::MouseMove:
            // Past the usual distance, so that a click with a shaky hand stays a click.
            if ((mouse->buttons() & Qt::LeftButton) &&
                (mouse->position().toPoint() - dragStart_).manhattanLength() >=
                    QApplication::startDragDistance())
                prgList_MouseMove();
            break;
        case QEvent::MouseButtonRelease:
            guarded([&] { prgList_MouseUp(); });
            break;
        default:
            break;
        }
    }
    for (int i = 0; i < 2; ++i) {
        if (watched != frame8Bit->imgFloppy[i]) continue;
        if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove) {
            auto* drag = static_cast<QDragMoveEvent*>(event);
            if (drag->mimeData()->hasFormat(kProgramDrag)) drag->acceptProposedAction();
            return true;
        }
        if (event->type() == QEvent::Drop) {
            static_cast<QDropEvent*>(event)->acceptProposedAction();
            guarded([&] { imgFloppy_DragDrop(i); });
            return true;
        }
    }
    if (watched == cmdSnapPicture[0] && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        cmdSnapPicture_MouseUp(0, 2);
        return true;
    }
    if (watched == prgList && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            guarded([&] { prgList_DblClick(); });
            return true;
        }
        if (!(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
            guarded([&] { prgList_KeyPress(key->text()); });
    }
    return QWidget::eventFilter(watched, event);
}

int frmMain::selectedProgramCode() const {
    return model_.programCode(prgList->currentIndex().row());
}

QString frmMain::currentTabCaption() const {
    return CategoryTabs->tabText(currentTab_);
}

int frmMain::listIndex() const {
    return prgList->currentIndex().isValid() ? prgList->currentIndex().row() : -1;
}

void frmMain::setListIndex(int index) {
    prgList->setCurrentIndex(model_.index(index));
}

int frmMain::listCount() const {
    return model_.rowCount();
}

QString frmMain::floppyTag(int index) const {
    return frame8Bit->floppyTag(index);
}

void frmMain::setFloppy(int index, const DiskSlot& slot) {
    const QLabel* picture = slot.picture == DiskSlot::Picture::Disk  ? imgLoadDisk
                            : slot.picture == DiskSlot::Picture::Exe ? imgLoadExe
                                                                     : imgLoadDiskOff;
    frame8Bit->setFloppy(index, slot.text, slot.tag, picture->pixmap());
}

void frmMain::prgList_MouseDown() {
    dragPending_ = true;
}

void frmMain::prgList_MouseMove() {
    if (!dragPending_) return;
    dragPending_ = false; // one drag per press
    auto* drag = new QDrag(prgList);
    auto* data = new QMimeData;
    data->setData(kProgramDrag, QByteArray());
    drag->setMimeData(data);
    drag->setPixmap(imgLoadDisk->pixmap().scaled(48, 28, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    // A drop anywhere but on a drive is refused, which cancels the drag.
    drag->exec(Qt::CopyAction);
}

void frmMain::prgList_MouseUp() {
    dragPending_ = false;
    if (listIndex() < 0) return;
    if (const auto drives = slotsForProgram(cataloguePath_, selectedProgramCode()))
        for (int i = 0; i < 4; ++i)
            setFloppy(i, (*drives)[i]);
}

void frmMain::imgFloppy_DragDrop(int index) {
    dragPending_ = false;
    const int code = selectedProgramCode();
    if (code == 0) return; // nothing was dragged
    if (const auto slot = slotForDrop(cataloguePath_, code)) setFloppy(index, *slot);
    // The keys go out once the drag has ended, so the emulator's window can take the focus.
    const QString path = floppyTag(index);
    QTimer::singleShot(0, this, [this, path] { attachDiskToEmulator(host_, path); });
}

void frmMain::cmdOptionSet_Click() {
    PanelSettings settings = frame8Bit->settings();
    settings.description = txtDescription->toPlainText();
    settings.name = txtName->text();
    if (!saveProgramSettings(cataloguePath_, selectedProgramCode(), settings)) return;
    prgList_Click();
    prgList_DblClick();
}

void frmMain::cmdEdit_Click(int index) {
    const int code = selectedProgramCode();
    if (recordCommand(cataloguePath_, index, code) == RecordOutcome::OpenEditor)
        openProgramEditor(cataloguePath_, code, host_.dialogs, this);
}

void frmMain::cmdSnapPicture_Click(int) {
    SnapRunningPicture(host_, *this);
}

void frmMain::cmdSnapPicture_MouseUp(int index, int button) {
    if (index != 0 || button != 2) return;
    // A BASIC listing's picture is taken by the Atari800 road, which ends the program.
    if (pictureRun_.rightClick(host_, *this) == SnapOutcome::EndProgram) QApplication::quit();
}

void frmMain::prgList_Click() {
    const auto view = selectionView(cataloguePath_, selectedProgramCode(), CategoryTabs->tabText(currentTab_),
                                    host_.fileSystem);
    if (!view) return; // the row went away after the list was built: the view stays

    // A picture that will not decode counts as none: the stock picture, never the last program's.
    QPixmap picture;
    if (view->picturePath.isEmpty() || !picture.load(view->picturePath)) picture = imgDefault->pixmap();
    // A picture taken from the emulator's window is larger than the box: shown whole, not cropped.
    if (picture.width() > imgProgramImage->width() || picture.height() > imgProgramImage->height())
        picture = picture.scaled(imgProgramImage->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    imgProgramImage->setPixmap(picture);

    for (int i = 3; i < 9; ++i)
        picAtari[i]->hide();
    cmdSnapPicture[1]->hide();
    if (view->family) {
        const bool eightBit = *view->family == Family::Atari8Bit;
        frame8Bit->setVisible(eightBit);
        frameAtari->setVisible(!eightBit);
        if (view->machinePicture >= 3) picAtari[view->machinePicture]->show();
        cmdSnapPicture[1]->setVisible(view->snapPicture1);
    }
    frame8Bit->showSettings(*view);
    txtDescription->setPlainText(view->description);
    txtName->setText(view->name);
}

void frmMain::prgList_DblClick() {
    const int code = selectedProgramCode();
    if (code == 0) return; // nothing selected, nothing to run
    // The display modes come from the controls, saved or not. A list that shows its placeholder
    // stands on its first row.
    const LaunchControls controls{std::max(0, frame8Bit->cmbArtifact->currentIndex()),
                                  std::max(0, frame8Bit->cmbStretch->currentIndex()),
                                  frame8Bit->cmbResCart->currentIndex()};
    if (const auto name = launchProgram(host_, cataloguePath_, code, controls, windowsVersion_))
        lastProgramName_ = *name;
}

void frmMain::chkOSType_Click(int index) {
    for (int i = 3; i < 9; ++i)
        picAtari[i]->hide();
    frame8Bit->chkOSType_Click(index);
}

void frmMain::chkBasic_Click() {
    frame8Bit->chkBasic_Click();
}

void frmMain::chkNTSC_Click() {
    frame8Bit->chkNTSC_Click();
}

void frmMain::cmbResCart_Click() {
    ql::cmbResCart_Click(host_.registry, cataloguePath_, frame8Bit->cmbResCart->currentData().toInt());
}

void frmMain::guarded(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const std::exception& e) {
        host_.dialogs.message(QString::fromUtf8(e.what()));
    }
}

} // namespace ql
