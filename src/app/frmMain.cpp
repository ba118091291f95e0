#include "frmMain.h"
#include "ProgramList.h"
#include "UtilityEntry.h"

#include <QApplication>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTabBar>
#include <QVBoxLayout>

namespace ql {

namespace {
// 15360 x 11055 twips at 15 twips a pixel.
constexpr int kFormWidth = 1024;
constexpr int kFormHeight = 737;

template <typename T> T* named(T* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}
} // namespace

frmMain::frmMain(Host& host, QWidget* parent) : QWidget(parent), host_(host) {
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
    connect(prgList->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid()) guarded([&] { prgList_Click(); });
            });
    connect(prgList, &QListView::doubleClicked, this, [this] { guarded([&] { prgList_DblClick(); }); });

    lblLabel[1] = named(new QLabel(QStringLiteral("Files:"), this), QStringLiteral("lblLabel_1"));
    lblLabel[2] = named(new QLabel(QStringLiteral("Total:"), this), QStringLiteral("lblLabel_2"));

    txtName = named(new QLineEdit(QStringLiteral("Star Raiders"), this), QStringLiteral("txtName"));
    txtName->setReadOnly(true);
    QFont nameFont = txtName->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.4);
    nameFont.setBold(true);
    txtName->setFont(nameFont);
    txtDescription =
        named(new QPlainTextEdit(QStringLiteral("Description"), this), QStringLiteral("txtDescription"));
    txtDescription->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtDescription->setReadOnly(true);
    imgProgramImage = named(new QLabel(this), QStringLiteral("imgProgramImage"));
    imgProgramImage->setFixedSize(384, 240);
    imgProgramImage->setAlignment(Qt::AlignCenter);
    imgProgramImage->setFrameShape(QFrame::StyledPanel);

    const QStringList editCaptions = {QStringLiteral("Add to Favourites"), QStringLiteral("Delete"),
                                      QStringLiteral("Edit")};
    for (int i = 0; i < 3; ++i)
        cmdEdit[i] = named(new QPushButton(editCaptions[i], this), QStringLiteral("cmdEdit_%1").arg(i));
    cmdLoadUtilForm =
        named(new QPushButton(QStringLiteral("Utility"), this), QStringLiteral("cmdLoadUtilForm"));
    connect(cmdLoadUtilForm, &QPushButton::clicked, this,
            [this] { guarded([&] { showUtilityForm(this, host_, *this); }); });
    cmdClose = named(new QPushButton(QStringLiteral("&Close"), this), QStringLiteral("cmdClose"));
    connect(cmdClose, &QPushButton::clicked, this, [] { QApplication::quit(); });

    frame8Bit = named(new QFrame(this), QStringLiteral("frame8Bit"));
    frameAtari = named(new QFrame(this), QStringLiteral("frameAtari"));
    frameAtari->hide();

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
    for (const TabRecord& tab : catalogue.tabs()) {
        const int index = tab.tabCode - 1;
        if (index < 0 || index >= kTabCount)
            continue; // row 25 belongs to the resident cartridges; no tab shows it
        CategoryTabs->setTabText(index, tab.tabName);
        // A tab without a caption lists nothing; hiding it keeps the strip to the named tabs.
        CategoryTabs->setTabVisible(index, !tab.tabName.isEmpty());
    }
    // The resident cartridge list joins the machine options; until then only the rows are read.
    (void)catalogue.cartridges();
}

void frmMain::GeneralInit() {
    Catalogue catalogue(cataloguePath_);
    lblLabel[2]->setText(QStringLiteral("Total: %1").arg(catalogueTotal(catalogue)));
}

void frmMain::CategoryTabs_TabActivate(int tabToActivate) {
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
    if (count > 0) prgList->setCurrentIndex(model_.index(0));
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

void frmMain::prgList_Click() {
    const int code = selectedProgramCode();
    Catalogue catalogue(cataloguePath_);
    const auto record = catalogue.programByCode(code);
    if (!record) return;
    txtName->setText(record->name);
    txtDescription->setPlainText(record->description.toString());
}

void frmMain::prgList_DblClick() {
    // The launch road starts here; it is filled in with the emulator contract.
}

void frmMain::guarded(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const std::exception& e) {
        host_.dialogs.message(QString::fromUtf8(e.what()));
    }
}

} // namespace ql
