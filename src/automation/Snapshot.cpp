#include "Snapshot.h"
#include "Shell.h"
#include "Store.h"
#include "StringFuncs.h"
#include "cSendKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cmath>

namespace ql {

namespace {

const QString kSnapshotFile = QStringLiteral("snapshot.png");
const QString kPcxFile = QStringLiteral("atari000.pcx");

QString defaultConverter() {
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/quaylight-convert");
    if (QFileInfo(beside).isExecutable()) return beside;
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("quaylight-convert"));
    return onPath.isEmpty() ? QStringLiteral("quaylight-convert") : onPath;
}

QString picturesFolder(const QString& atariDir, const SnapshotForm& form) {
    return atariDir + QStringLiteral("ProgramImages/") + form.currentTabCaption();
}

// The finished picture, by the tab and the program launched last as they are at this moment: the
// form stays live during the waits, so both may have moved on since the flow began.
QString picturePath(const QString& atariDir, const SnapshotForm& form) {
    return picturesFolder(atariDir, form) + QLatin1Char('/') + form.lastProgramName() +
           QStringLiteral(".jpg");
}

// AtariDir from Config with its closing separator, and the folder of the current tab's pictures
// made when missing (the ProgramImages folder itself is expected to be there).
QString prepare(Catalogue& catalogue, const SnapshotForm& form) {
    const auto config = catalogue.config();
    const QString atariDir = WithTrailingSeparator(config ? config->atariDir : QString());
    QDir().mkdir(picturesFolder(atariDir, form)); // errors ignored: the folder is usually there
    return atariDir;
}

void removeIfThere(Host& host, const QString& path) {
    if (FileExists(host.fileSystem, path)) QFile::remove(path);
}

// The screenshot key, the file name typed into the emulator's prompt, and Enter. The path goes out
// as it stands: the emulator's prompt takes what is typed.
void snapKeys(Host& host, const QString& file) {
    host.windows.activate(kEmulatorTitle);
    host.keyboard.sendKeys(QStringLiteral("{F10}"));
    host.keyboard.sendKeys(file);
    host.keyboard.sendKeys(QStringLiteral("{ENTER}"));
}

// The Atari800 road for BASIC listings: every way of pressing F10 there is, then Alt+F4.
void basicListingKeys(Host& host, const SnapshotForm& form, const QString& atariDir) {
    host.windows.activate(kBasicEmulatorTitle);
    host.keyboard.beep();
    host.clock.pumpEvents(0);
    host.keyboard.sendKeys(QStringLiteral("{F10}"), true);
    SendVirtualKey(host.keyboard, 121);
    host.keyboard.sendKeys(QStringLiteral("{F10}"));
    host.keyboard.sendKeys(QStringLiteral("{F1}"), true);
    cSendKeys keys(host.keyboard);
    keys.SendKeys(QStringLiteral("{F10}"), true);
    keys.KeyPress(QStringLiteral("{F10}"), 1);
    keys.SendKeys(QStringLiteral("121"), false);
    host.keyboard.sendKeys(QStringLiteral("121"));
    keys.SendKeyF10();
    keys.SendKeyF10();
    SendVirtualKey(host.keyboard, 112);
    Pause(host.clock, 4);
    host.keyboard.beep();
    host.keyboard.sendKeys(QStringLiteral("%{F4}"), true);
    Pause(host.clock, 0.5);
    const QString pcx = atariDir + kPcxFile;
    if (FileExists(host.fileSystem, pcx)) {
        host.dialogs.message(QStringLiteral("fuck it worked!"));
        startConversion(host, pcx, picturePath(atariDir, form));
    }
}

} // namespace

void startConversion(Host& host, const QString& source, const QString& destination) {
    const QString target = QStringLiteral("/convert=") + destination;
    const QString command = host.associations.program(kConverterProgramName).trimmed();
    bool started = false;
    if (command.isEmpty()) {
        started = host.processes.startDetached(defaultConverter(), {source, target});
    } else {
        // The table holds shell text; the two paths go in as parameters, never as code.
        started = host.processes.startDetached(
            QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command + QStringLiteral(" \"$1\" \"$2\""),
                                        QStringLiteral("sh"), source, target});
    }
    if (!started) throw HostError("Cannot start the picture converter.");
}

void SnapRunningPicture(Host& host, SnapshotForm& form) {
    try {
        const QString atariDir = [&] {
            Catalogue catalogue(form.cataloguePath());
            return prepare(catalogue, form);
        }();
        const QString snapshot = atariDir + kSnapshotFile;
        removeIfThere(host, snapshot);
        snapKeys(host, snapshot);
        Pause(host.clock, 0.5);
        if (FileExists(host.fileSystem, snapshot))
            startConversion(host, snapshot, picturePath(atariDir, form));
        form.prgList_Click();
    } catch (const std::exception&) {
        // No emulator window, no converter: no picture, and nothing to tell.
    }
}

SnapOutcome SnapProgramPicture(Host& host, SnapshotForm& form, int delaySeconds) {
    try {
        std::optional<ProgramRecord> record;
        QString atariDir;
        {
            Catalogue catalogue(form.cataloguePath());
            record = catalogue.programByCode(form.selectedProgramCode());
            if (!record) return SnapOutcome::Continue;
            atariDir = prepare(catalogue, form);
        }
        const QString snapshot = atariDir + kSnapshotFile;
        removeIfThere(host, snapshot);
        removeIfThere(host, atariDir + kPcxFile);
        form.prgList_Click();
        form.prgList_DblClick();
        Pause(host.clock, delaySeconds);
        const QString ending = record->fileName1.right(4).toLower();
        if (ending == QLatin1String(".bas") || ending == QLatin1String(".lst")) {
            basicListingKeys(host, form, atariDir);
            return SnapOutcome::EndProgram;
        }
        snapKeys(host, snapshot);
        Pause(host.clock, 0.5);
        if (FileExists(host.fileSystem, snapshot))
            startConversion(host, snapshot, picturePath(atariDir, form));
        host.windows.activate(kEmulatorTitle);
        host.keyboard.sendKeys(QStringLiteral("%FE"));
    } catch (const std::exception&) {
        // The run goes on with the next program; an emulator that was not found stays open.
    }
    return SnapOutcome::Continue;
}

std::optional<int> delayFromText(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) return std::nullopt;
    const double rounded = std::nearbyint(value);
    if (rounded < -32768 || rounded > 32767) return std::nullopt;
    return static_cast<int>(rounded);
}

SnapOutcome AutomaticPictureRun::rightClick(Host& host, SnapshotForm& form) {
    if (flag_) {
        flag_ = false; // a second right click stops the run that is going
        return SnapOutcome::Continue;
    }
    const auto delay =
        delayFromText(host.dialogs.inputBox(QStringLiteral("Enter delay value:"), QStringLiteral("13")));
    if (!delay || form.listIndex() < 0) return SnapOutcome::Continue;
    flag_ = true;
    const int last = form.listCount() - 1;
    for (int i = form.listIndex(); i <= last && flag_; ++i) {
        // The list may have been changed while the form was live.
        if (i >= form.listCount()) break;
        form.setListIndex(i);
        if (SnapProgramPicture(host, form, *delay) == SnapOutcome::EndProgram) {
            flag_ = false;
            return SnapOutcome::EndProgram;
        }
        if (i >= form.listCount()) break;
        form.setListIndex(i);
        form.prgList_Click();
        Pause(host.clock, 0.5);
    }
    flag_ = false;
    return SnapOutcome::Continue;
}

} // namespace ql
