#include "frmEditProgram.h"
#include "Host.h"
#include "RecordCommands.h"
#include "Store.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>
#include <QVBoxLayout>

namespace ql {

namespace {

struct FieldBox {
    const char* tag;
    const char* caption;
};

// One row per editable field; a new row here is a new field on the form.
constexpr FieldBox kFields[] = {
    {"Name", "Name:"},
    {"FileName1", "Filename 1:"},
    {"FileName2", "Filename 2:"},
    {"FileName3", "Filename 3:"},
    {"FileName4", "Filename 4:"},
};

template <typename T> T* named(T* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

} // namespace

frmEditProgram::frmEditProgram(const QString& cataloguePath, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), cataloguePath_(cataloguePath), dialogs_(dialogs) {
    setObjectName(QStringLiteral("frmEditProgram"));
    setWindowTitle(QStringLiteral("Edit Program Record"));
    setModal(true);

    auto* grid = new QGridLayout;
    ProgramCode = named(new QLineEdit(QStringLiteral("0"), this), QStringLiteral("ProgramCode"));
    ProgramCode->setVisible(false);
    int row = 0;
    for (const FieldBox& field : kFields) {
        auto* label = named(new QLabel(QString::fromLatin1(field.caption), this),
                            QStringLiteral("lblLabel_%1").arg(row));
        auto* box = named(new QLineEdit(this), QStringLiteral("txtField_%1").arg(row));
        box->setProperty("Tag", QString::fromLatin1(field.tag));
        box->setMinimumWidth(420);
        label->setBuddy(box);
        grid->addWidget(label, row, 0);
        grid->addWidget(box, row, 1);
        lblLabel.push_back(label);
        txtField.push_back(box);
        ++row;
    }

    cmdSave = named(new QPushButton(QStringLiteral("&Save"), this), QStringLiteral("cmdSave"));
    cmdClose = named(new QPushButton(QStringLiteral("&Close"), this), QStringLiteral("cmdClose"));
    // Enter in a box is not a click on either button.
    for (auto* button : {cmdSave, cmdClose})
        button->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdClose);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    connect(cmdSave, &QPushButton::clicked, this, &frmEditProgram::cmdSave_Click);
    connect(cmdClose, &QPushButton::clicked, this, &frmEditProgram::cmdClose_Click);
}

int frmEditProgram::code() const {
    return ProgramCode->text().trimmed().toInt(); // text that is no number finds no row
}

// Boxes without a Tag are not bound to a field.
std::vector<QLineEdit*> frmEditProgram::boundBoxes() const {
    std::vector<QLineEdit*> boxes;
    for (QLineEdit* box : txtField)
        if (!box->property("Tag").toString().isEmpty()) boxes.push_back(box);
    return boxes;
}

QStringList frmEditProgram::fieldNames(const std::vector<QLineEdit*>& boxes) {
    QStringList names;
    for (QLineEdit* box : boxes)
        names << box->property("Tag").toString();
    return names;
}

void frmEditProgram::Form_Activate() {
    const auto boxes = boundBoxes();
    try {
        const auto texts = readProgramTexts(cataloguePath_, code(), fieldNames(boxes));
        if (!texts) return;
        for (size_t i = 0; i < boxes.size(); ++i)
            boxes[i]->setText(texts->at(static_cast<qsizetype>(i)));
    } catch (const StoreError& e) {
        dialogs_.message(e.message());
    }
}

void frmEditProgram::cmdSave_Click() {
    const auto boxes = boundBoxes();
    QStringList texts;
    for (QLineEdit* box : boxes)
        texts << box->text();
    try {
        // A record deleted meanwhile is not made again; the form just stays as it is.
        writeProgramTexts(cataloguePath_, code(), fieldNames(boxes), texts);
    } catch (const StoreError& e) {
        dialogs_.message(e.message());
    }
}

void frmEditProgram::cmdClose_Click() {
    close();
}

void frmEditProgram::showCentred() {
    adjustSize();
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        move(area.x() + (area.width() - width()) / 2, area.y() + (area.height() - height()) / 2);
    }
    exec();
}

void frmEditProgram::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // A window restored by the window system is not a new activation: unsaved text stays.
    if (!event->spontaneous()) Form_Activate();
}

void openProgramEditor(const QString& cataloguePath, int programCode, Dialogs& dialogs, QWidget* parent) {
    frmEditProgram form(cataloguePath, dialogs, parent);
    form.ProgramCode->setText(QString::number(programCode));
    form.showCentred();
}

} // namespace ql
