#include "FolderToolPages.h"
#include "Archives.h"
#include "StringFuncs.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <map>

namespace ql {

const char* const kFindUniqueHelp =
    "This function scans a directory tree (\"Source Dir:\") including sub-dirs looking for programs that "
    "do not already exist in the main library.  If a new program is found it is placed in the "
    "\"Destination Dir:\" folder.       In order for this function to work properly, the \"Everything\" "
    "category in the database must be up to date.  To ensure that it is, go to the \"Tab Management\" tab, "
    "make sure the \"Rebuild \"Everything\" Category\" checkbox is checked and then refresh one of the tabs "
    "(this may take a lot of time)                                 Please note: only potential Atari files "
    "(.atr,.exe,.xex,.bas,.bin,.com,.dcm,.pro) will be scanned.";

namespace {

template <typename T> T* named(T* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

QLabel* label(QWidget* parent, int index, const QString& text) {
    return named(new QLabel(text, parent), QStringLiteral("lblLabel_%1").arg(index));
}

QLineEdit* box(QWidget* parent, const QString& name, const QString& text = QString()) {
    return named(new QLineEdit(text, parent), name);
}

QPushButton* button(QWidget* parent, const QString& name, const QString& caption) {
    auto* b = named(new QPushButton(caption, parent), name);
    b->setAutoDefault(false);
    return b;
}

// The list a removal will delete, short enough for a message box.
QString removalQuestion(const QStringList& files) {
    QStringList shown = files.mid(0, 25);
    if (files.size() > 25) shown << QStringLiteral("… and %1 more").arg(files.size() - 25);
    return QStringLiteral("These %1 files will be deleted:\n\n%2\n\nDelete them?")
        .arg(files.size())
        .arg(shown.join(QLatin1Char('\n')));
}

int filesIn(const std::vector<DuplicateGroup>& groups) {
    int n = 0;
    for (const auto& group : groups)
        n += static_cast<int>(group.files.size());
    return n;
}

} // namespace

pageFindUnique::pageFindUnique(Host& host, std::function<QString()> cataloguePath, QWidget* parent)
    : ToolPage(host, QStringLiteral("pageFindUnique"), parent), cataloguePath_(std::move(cataloguePath)) {
    txtSourceDir = box(this, QStringLiteral("txtSourceDir"));
    txtDestDir = box(this, QStringLiteral("txtDestDir"));
    cmdFindNewFiles =
        button(this, QStringLiteral("cmdFindNewFiles"), QStringLiteral("Analyze fileset for new items"));
    connect(cmdFindNewFiles, &QPushButton::clicked, this, [this] { cmdFindNewFiles_Click(); });
    auto* help = label(this, 7, QString::fromLatin1(kFindUniqueHelp));
    help->setWordWrap(true);
    inputs = {txtSourceDir, txtDestDir, cmdFindNewFiles};

    auto* grid = new QGridLayout;
    grid->addWidget(label(this, 0, QStringLiteral("Source Dir:")), 0, 0);
    grid->addWidget(txtSourceDir, 0, 1);
    grid->addWidget(label(this, 1, QStringLiteral("Destination Dir:")), 1, 0);
    grid->addWidget(txtDestDir, 1, 1);
    grid->addWidget(cmdFindNewFiles, 2, 1, Qt::AlignLeft);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(help);
    layout->addWidget(lblToolProgress);
    layout->addWidget(cmdStopTool, 0, Qt::AlignLeft);
    layout->addStretch();
}

void pageFindUnique::setDefaults(const QString& atariDir) {
    txtSourceDir->setText(atariDir + QStringLiteral("__NEW/"));
    txtDestDir->setText(atariDir + QStringLiteral("_Unique/"));
}

void pageFindUnique::cmdFindNewFiles_Click() {
    const QString source = txtSourceDir->text();
    const QString dest = txtDestDir->text();
    runTool(
        [&](const ToolProgressFn& progress) {
            return findNewFiles(cataloguePath_(), source, dest, host_.fileSystem, progress);
        },
        QStringLiteral("Operation Complete!"));
}

pageAdvanced::pageAdvanced(Host& host, std::function<QString()> cataloguePath, QWidget* parent)
    : ToolPage(host, QStringLiteral("pageAdvanced"), parent), cataloguePath_(std::move(cataloguePath)) {
    Command1 = button(this, QStringLiteral("Command1"), QStringLiteral("Remove Duplicates"));
    Text1 = box(this, QStringLiteral("Text1"));
    Text2 = box(this, QStringLiteral("Text2"), QStringLiteral("*.zip"));
    Text2->setEnabled(false); // nothing reads it: the scan takes every file
    txtDupTarget = box(this, QStringLiteral("txtDupTarget"));
    cmdCopyUnique = button(this, QStringLiteral("cmdCopyUnique"), QStringLiteral("Copy Unique"));
    txtDupDest = box(this, QStringLiteral("txtDupDest"));
    cmdUnZipFiles = button(this, QStringLiteral("cmdUnZipFiles"), QStringLiteral("UnZip/Arc"));
    txtUnZipSource = box(this, QStringLiteral("txtUnZipSource"));
    txtUnZipSpec = box(this, QStringLiteral("txtUnZipSpec"), QStringLiteral("*.zip"));
    cmdRename = button(this, QStringLiteral("cmdRename"), QStringLiteral("Rename"));
    cmdRename->setEnabled(false);
    txtRename = box(this, QStringLiteral("txtRename"));
    txtChars = box(this, QStringLiteral("txtChars"), QStringLiteral("()"));
    txtChars->setEnabled(false);
    cmdUnArcMD = button(this, QStringLiteral("cmdUnArcMD"), QStringLiteral("unArc && MkDir"));
    txtUnARC = box(this, QStringLiteral("txtUnARC"));
    txtUAext = box(this, QStringLiteral("txtUAext"), QStringLiteral("*.arc"));
    Command2 = button(this, QStringLiteral("Command2"), QStringLiteral("Tree"));
    aTree = named(new QTreeWidget(this), QStringLiteral("aTree"));
    aTree->setHeaderHidden(true);
    connect(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    connect(cmdCopyUnique, &QPushButton::clicked, this, [this] { cmdCopyUnique_Click(); });
    connect(cmdUnZipFiles, &QPushButton::clicked, this, [this] { cmdUnZipFiles_Click(); });
    connect(cmdRename, &QPushButton::clicked, this, [this] { cmdRename_Click(); });
    connect(cmdUnArcMD, &QPushButton::clicked, this, [this] { cmdUnArcMD_Click(); });
    connect(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    // cmdRename stays disabled whatever runs: it was never offered on this page.
    inputs = {Command1,     Text1,     txtDupTarget, cmdCopyUnique, txtDupDest, cmdUnZipFiles, txtUnZipSource,
              txtUnZipSpec, txtRename, cmdUnArcMD,   txtUnARC,      txtUAext,   Command2};

    // File specs are short; the folders get the room.
    for (QLineEdit* spec : {Text2, txtUnZipSpec, txtChars, txtUAext})
        spec->setMaximumWidth(80);
    auto* grid = new QGridLayout;
    const auto row = [&](int r, QPushButton* command,
                         std::initializer_list<std::pair<QLabel*, QLineEdit*>> boxes) {
        grid->addWidget(command, r, 0);
        int column = 1;
        for (const auto& [caption, edit] : boxes) {
            if (caption) grid->addWidget(caption, r, column);
            grid->addWidget(edit, r, column + 1);
            column += 2;
        }
    };
    row(0, Command1,
        {{label(this, 4, QStringLiteral("Source Dir:")), Text1},
         {label(this, 5, QStringLiteral("File Spec:")), Text2},
         {named(new QLabel(QStringLiteral("Delete From:"), this), QStringLiteral("lblDupTarget")),
          txtDupTarget}});
    row(1, cmdCopyUnique,
        {{named(new QLabel(QStringLiteral("Destination Dir:"), this), QStringLiteral("lblDupDest")),
          txtDupDest}});
    row(2, cmdUnZipFiles,
        {{label(this, 2, QStringLiteral("Source Dir:")), txtUnZipSource},
         {label(this, 3, QStringLiteral("File Spec:")), txtUnZipSpec}});
    row(3, cmdRename, {{label(this, 6, QStringLiteral("Source Dir:")), txtRename}, {nullptr, txtChars}});
    row(4, cmdUnArcMD,
        {{label(this, 10, QStringLiteral("Source Dir:")), txtUnARC},
         {label(this, 9, QStringLiteral("File Spec:")), txtUAext}});
    grid->addWidget(Command2, 5, 0, Qt::AlignTop);
    grid->addWidget(aTree, 5, 1, 1, 6);
    grid->setColumnStretch(2, 3);
    grid->setColumnStretch(6, 3);
    grid->setRowStretch(5, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid, 1);
    layout->addWidget(lblToolProgress);
    layout->addWidget(cmdStopTool, 0, Qt::AlignLeft);
    layout->addWidget(label(this, 8, QStringLiteral("These functions are not fully implemented yet")));
}

void pageAdvanced::setDefaults(const QString& atariDir) {
    atariDir_ = atariDir;
    Text1->setText(atariDir + QStringLiteral("__NEW2/"));
    txtDupTarget->setText(atariDir + QStringLiteral("__NEW2/"));
    txtDupDest->setText(atariDir + QStringLiteral("_Unique/"));
    txtUnZipSource->setText(atariDir + QStringLiteral("__NEW/"));
    txtRename->setText(atariDir + QStringLiteral("__NEW/"));
    txtUnARC->setText(atariDir);
}

void pageAdvanced::Command1_Click() {
    const QString source = WithTrailingSeparator(Text1->text());
    const QString target = WithTrailingSeparator(txtDupTarget->text());
    runTool(
        [&](const ToolProgressFn& progress) {
            const auto groups = collectDuplicateGroups(cataloguePath_(), source, host_.fileSystem, progress);
            const QStringList doomed = duplicatesToRemove(groups, target);
            ToolCounts counts;
            if (!doomed.isEmpty() && host_.dialogs.askYesNo(removalQuestion(doomed)))
                counts = removeFiles(doomed, progress);
            counts.scanned = filesIn(groups);
            return counts;
        },
        QStringLiteral("Done!"));
}

void pageAdvanced::cmdCopyUnique_Click() {
    const QString source = WithTrailingSeparator(Text1->text());
    const QString dest = WithTrailingSeparator(txtDupDest->text());
    runTool(
        [&](const ToolProgressFn& progress) {
            const auto groups = collectDuplicateGroups(cataloguePath_(), source, host_.fileSystem, progress);
            ToolCounts counts = copyUniqueFiles(groups, dest, progress);
            counts.scanned = filesIn(groups);
            return counts;
        },
        QStringLiteral("Done!"));
}

void pageAdvanced::cmdUnZipFiles_Click() {
    // Taken as typed: a folder without its closing "/" runs on into the file spec.
    const QString folder = txtUnZipSource->text();
    const QString spec = txtUnZipSpec->text();
    runTool(
        [&](const ToolProgressFn& progress) {
            return unpackArchives(folder, spec, QString(), arcxCommand(host_.associations), host_.fileSystem,
                                  progress);
        },
        QStringLiteral("Done!"));
}

void pageAdvanced::cmdRename_Click() {
    const QString folder = txtRename->text();
    runTool(
        [&](const ToolProgressFn& progress) {
            return removeBracketsFromNames(folder, QStringLiteral("*.*"), host_.fileSystem, progress);
        },
        QStringLiteral("Done!"));
}

void pageAdvanced::cmdUnArcMD_Click() {
    QString folder = txtUnARC->text();
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    runTool(
        [&](const ToolProgressFn& progress) {
            return expandArcFiles(folder, QStringLiteral("*.arc"), QString(), arcxCommand(host_.associations),
                                  host_.fileSystem, progress);
        },
        QStringLiteral("done!"));
}

void pageAdvanced::Command2_Click() {
    const std::vector<FolderRow> rows = buildFolderTable(atariDir_, host_.fileSystem);
    aTree->clear();
    std::map<int, QTreeWidgetItem*> nodes;
    for (const FolderRow& row : rows) {
        QTreeWidgetItem* parent = row.parent > 0 && nodes.count(row.parent) ? nodes[row.parent] : nullptr;
        auto* node = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(aTree);
        node->setText(0, row.name);
        node->setData(0, Qt::UserRole, row.row); // the node's Tag
        nodes[row.row] = node;
    }
}

} // namespace ql
