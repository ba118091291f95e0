#include "Panel8Bit.h"
#include "FormWidgets.h"
#include "MachineOptions.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace ql {

Panel8Bit::Panel8Bit(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("frame8Bit"));
    for (int i = 0; i < 3; ++i)
        chkOSType[i] = checkButton(this, QStringLiteral("chkOSType_%1").arg(i), osTypeCaptions()[i]);
    chkBasic = checkButton(this, QStringLiteral("chkBasic"), basicCaption(false));
    connect(chkBasic, &QPushButton::toggled, this, [this] { chkBasic_Click(); });
    chkNTSC = checkButton(this, QStringLiteral("chkNTSC"), videoCaption(true));
    connect(chkNTSC, &QPushButton::toggled, this, [this] { chkNTSC_Click(); });

    cmbRAM = named(new QComboBox(this), QStringLiteral("cmbRAM"));
    for (const OptionItem& item : ramItems())
        cmbRAM->addItem(item.text, item.data);
    cmbArtifact = named(new QComboBox(this), QStringLiteral("cmbArtifact"));
    cmbArtifact->addItems(artifactItems());
    cmbStretch = named(new QComboBox(this), QStringLiteral("cmbStretch"));
    cmbStretch->addItems(stretchItems());
    cmbStretch->setPlaceholderText(QStringLiteral("None"));
    cmbStretch->setCurrentIndex(-1);
    cmbResCart = named(new QComboBox(this), QStringLiteral("cmbResCart"));
    cmbResCart->setPlaceholderText(QStringLiteral("None"));
    cmbResCart->setMinimumContentsLength(18);

    cmdOptionSet = named(new QPushButton(QStringLiteral("&Save settings and run this program"), this),
                         QStringLiteral("cmdOptionSet"));
    cmdOptionSet->setToolTip(QStringLiteral("Click here BEFORE running program"));
    cmdSnapPicture =
        named(new QPushButton(QStringLiteral("&Take Picture"), this), QStringLiteral("cmdSnapPicture_0"));
    cmdSnapPicture->setToolTip(QStringLiteral("Snaps a picture of the currently running Atari program"));

    const QString driveNumbers[4] = {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("4"),
                                     QStringLiteral("3")};
    auto* drives = new QGridLayout;
    for (int i = 0; i < 4; ++i) {
        imgFloppy[i] = pictureLabel(this, QStringLiteral("imgFloppy_%1").arg(i),
                                    QStringLiteral(":/drives/empty.svg"), kDriveSize);
        txtFloppy[i] = named(new QLineEdit(this), QStringLiteral("txtFloppy_%1").arg(i));
        txtFloppy[i]->setReadOnly(true);
        txtFloppy[i]->setProperty("Tag", QString());
        lblFloppyNum[i] = named(new QLabel(driveNumbers[i], this), QStringLiteral("lblFloppyNum_%1").arg(i));
        if (i >= 2) { // the hidden slots hold data only
            imgFloppy[i]->hide();
            txtFloppy[i]->hide();
            lblFloppyNum[i]->hide();
            continue;
        }
        imgFloppy[i]->setAcceptDrops(true);
        drives->addWidget(lblFloppyNum[i], 0, i * 2);
        drives->addWidget(imgFloppy[i], 0, i * 2 + 1);
        drives->addWidget(txtFloppy[i], 1, i * 2, 1, 2);
    }
    for (int i = 0; i < 3; ++i) {
        picAtari[i] = pictureLabel(this, QStringLiteral("picAtari_%1").arg(i),
                                   QString::fromLatin1(kMachinePictures[i]), kMachineSize);
        picAtari[i]->setVisible(i == 1);
    }

    auto* options = new QGridLayout;
    options->addWidget(
        named(new QLabel(QStringLiteral("Operating System:"), this), QStringLiteral("lblOSType")), 0, 0);
    auto* boxes = new QHBoxLayout;
    for (auto* box : chkOSType)
        boxes->addWidget(box);
    options->addLayout(boxes, 0, 1, 1, 3);
    const struct {
        const char* label;
        const char* text;
        QWidget* control;
    } fields[] = {{"lblBasic", "Basic Cart.", chkBasic},
                  {"lblNTSC", "Video Sys.", chkNTSC},
                  {"lblRAM", "Memory:", cmbRAM},
                  {"lblArtifact", "Artifacting:", cmbArtifact},
                  {"lblStretch", "Stretching:", cmbStretch},
                  {"lblResCart", "Resident Cartridge:", cmbResCart}};
    for (int i = 0; i < 6; ++i) {
        auto* label = named(new QLabel(QString::fromLatin1(fields[i].text), this),
                            QString::fromLatin1(fields[i].label));
        options->addWidget(label, 1 + i / 2, (i % 2) * 2);
        options->addWidget(fields[i].control, 1 + i / 2, (i % 2) * 2 + 1);
    }
    options->addLayout(drives, 4, 0, 1, 4);

    auto* pictures = new QGridLayout;
    for (QLabel* picture : picAtari)
        pictures->addWidget(picture, 0, 0, Qt::AlignCenter);
    auto* side = new QVBoxLayout;
    side->addLayout(pictures);
    side->addWidget(cmdOptionSet);
    side->addWidget(cmdSnapPicture);
    side->addStretch();

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(options, 1);
    layout->addLayout(side);
}

void Panel8Bit::chkOSType_Click(int index) {
    if (osTypeGuard_) return;
    osTypeGuard_ = true;
    for (int i = 0; i < 3; ++i) {
        chkOSType[i]->setChecked(i == index);
        picAtari[i]->setVisible(i == index);
    }
    if (const auto row = memoryIndexForMachine(index, cmbRAM->currentText())) cmbRAM->setCurrentIndex(*row);
    osTypeGuard_ = false;
}

void Panel8Bit::chkBasic_Click() {
    chkBasic->setText(basicCaption(chkBasic->isChecked()));
}

void Panel8Bit::chkNTSC_Click() {
    chkNTSC->setText(videoCaption(chkNTSC->isChecked()));
}

void Panel8Bit::showSettings(const SelectionView& view) {
    if (view.family == Family::Atari8Bit && view.osTypeBox) chkOSType[*view.osTypeBox]->setChecked(true);
    chkBasic->setChecked(view.basic);
    chkBasic_Click();
    chkNTSC->setChecked(view.ntsc);
    chkNTSC_Click();
    // After the machine box: what the row holds wins over the memory rule of the box.
    for (int i = 0; i < cmbRAM->count(); ++i) {
        if (cmbRAM->itemData(i).toInt() == view.memory) {
            cmbRAM->setCurrentIndex(i);
            break;
        }
    }
    cmbArtifact->setCurrentIndex(view.artifactIndex);
    cmbStretch->setCurrentIndex(view.stretchIndex);
}

PanelSettings Panel8Bit::settings() const {
    PanelSettings settings;
    for (int i = 0; i < 3; ++i)
        if (chkOSType[i]->isChecked()) settings.machineType = i;
    settings.basic = chkBasic->isChecked();
    settings.ntsc = chkNTSC->isChecked();
    if (cmbRAM->currentIndex() >= 0) settings.memory = cmbRAM->currentData().toInt();
    settings.artifactIndex = cmbArtifact->currentIndex();
    settings.stretchIndex = cmbStretch->currentIndex();
    for (int i = 0; i < 4; ++i)
        settings.slotTags[i] = floppyTag(i);
    return settings;
}

QString Panel8Bit::floppyTag(int index) const {
    return txtFloppy[index]->property("Tag").toString();
}

void Panel8Bit::setFloppy(int index, const QString& text, const QString& tag, const QPixmap& picture) {
    imgFloppy[index]->setPixmap(picture);
    txtFloppy[index]->setText(text);
    txtFloppy[index]->setProperty("Tag", tag);
}

} // namespace ql
