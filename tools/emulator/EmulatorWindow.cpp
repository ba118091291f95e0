#include "EmulatorWindow.h"
#include "Pcx.h"
#include "StringFuncs.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QPainter>
#include <QSaveFile>
#include <functional>

namespace ql::emu {

namespace {
// The 8-bit machines' familiar blue screen with light text.
const QColor kBorder(0x10, 0x2a, 0x6b);
const QColor kScreen(0x1c, 0x4c, 0x9c);
const QColor kText(0xb8, 0xd4, 0xf4);
// Prompts look like the host's dialogs, not like the Atari's screen.
const QColor kPanel(0xec, 0xec, 0xec);
const QColor kPanelText(0x10, 0x10, 0x10);
const QColor kError(0xa0, 0x10, 0x10);

QFont screenFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(18);
    font.setBold(true);
    return font;
}

// Pressing Shift or Alt alone sends a key of its own; it must not count as "the next key".
bool isModifierKey(int key) {
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
        return true;
    default:
        return false;
    }
}

bool isEnter(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

// Written whole or not at all: a reader never sees half a picture.
bool saveWhole(const QString& path, const std::function<bool(QIODevice&)>& write, QString* error) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && write(file) && file.commit()) return true;
    *error = file.errorString();
    return false;
}

} // namespace

EmulatorWindow::EmulatorWindow(EmulatorState state, Journal journal, QWidget* parent)
    : QWidget(parent), state_(std::move(state)), journal_(std::move(journal)) {
    setObjectName(QStringLiteral("EmulatorWindow"));
    setWindowTitle(windowTitleFor(state_.file));
    setFocusPolicy(Qt::StrongFocus);
    resize(672, 480);
    journal_.write(QStringLiteral("started ") + state_.file);
}

QImage EmulatorWindow::screenPicture() const {
    QImage picture(size(), QImage::Format_RGB32);
    QPainter painter(&picture);
    paintScreen(painter);
    return picture;
}

void EmulatorWindow::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (isModifierKey(key)) return;
    const bool alt = event->modifiers().testFlag(Qt::AltModifier);
    if (alt && key == Qt::Key_F4) return quit();
    switch (prompt_) {
    case Prompt::FileMenu:
        open(Prompt::None);
        if (key == Qt::Key_E) quit();
        return;
    case Prompt::Picture:
    case Prompt::Disk:
        return promptKey(*event);
    case Prompt::None:
        break;
    }
    if (key == Qt::Key_F10 && state_.windowed)
        saveScreenshot();
    else if (key == Qt::Key_F10)
        open(Prompt::Picture);
    else if (alt && key == Qt::Key_F && !state_.windowed)
        open(Prompt::FileMenu);
    else if (alt && key == Qt::Key_1 && !state_.windowed)
        open(Prompt::Disk);
    else
        QWidget::keyPressEvent(event);
}

void EmulatorWindow::promptKey(const QKeyEvent& event) {
    const int key = event.key();
    if (!message_.isEmpty()) {
        if (isEnter(key) || key == Qt::Key_Escape) open(Prompt::None);
        return;
    }
    if (key == Qt::Key_Escape) {
        open(Prompt::None);
    } else if (isEnter(key)) {
        answer();
    } else if (key == Qt::Key_Backspace) {
        typed_.chop(1);
        update();
    } else if (!(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        const QString text = event.text();
        if (!text.isEmpty() && text.front().isPrint()) {
            typed_ += text;
            update();
        }
    }
}

void EmulatorWindow::answer() {
    if (prompt_ == Prompt::Picture)
        savePicture(typed_);
    else
        attachDrive1(typed_);
    update();
}

void EmulatorWindow::savePicture(const QString& path) {
    QString error;
    const QImage picture = screenPicture();
    if (!saveWhole(
            path, [&](QIODevice& file) { return picture.save(&file, "PNG"); }, &error)) {
        message_ = QStringLiteral("Cannot save the picture: %1").arg(error);
        return;
    }
    journal_.write(QStringLiteral("picture ") + path);
    open(Prompt::None);
}

void EmulatorWindow::attachDrive1(const QString& path) {
    if (!QFileInfo(path).isFile()) {
        message_ = QStringLiteral("Cannot attach \"%1\": no such file").arg(path);
        return;
    }
    attachDisk(state_, 1, path);
    message_ = QStringLiteral("Disk attached: %1").arg(GetFileName(path));
    journal_.write(QStringLiteral("disk ") + path);
}

void EmulatorWindow::saveScreenshot() {
    // As the SDL emulator: the first free number after the last screenshot; when all are taken,
    // numbering starts again at 000 and overwrites.
    auto name = [](int number) {
        return QDir::current().absoluteFilePath(
            QStringLiteral("atari%1.pcx").arg(number, 3, 10, QChar(u'0')));
    };
    int number = lastScreenshot_;
    do {
        if (++number > 999) {
            number = 0;
            break;
        }
    } while (QFileInfo::exists(name(number)));
    lastScreenshot_ = number;
    const QByteArray pcx = encodePcx(screenPicture());
    QString error;
    if (saveWhole(
            name(number), [&](QIODevice& file) { return file.write(pcx) == pcx.size(); }, &error))
        journal_.write(QStringLiteral("pcx ") + name(number));
    else
        qWarning("Cannot save the screenshot %s: %s", qUtf8Printable(name(number)), qUtf8Printable(error));
}

void EmulatorWindow::open(Prompt prompt) {
    prompt_ = prompt;
    typed_.clear();
    message_.clear();
    update();
}

void EmulatorWindow::quit() {
    if (!quitLogged_) journal_.write(QStringLiteral("quit"));
    quitLogged_ = true;
    emit quitRequested();
}

void EmulatorWindow::closeEvent(QCloseEvent* event) {
    // Closed by the window manager rather than by a key: ended all the same.
    if (!quitLogged_) journal_.write(QStringLiteral("quit"));
    quitLogged_ = true;
    QWidget::closeEvent(event);
}

void EmulatorWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintScreen(painter);
    paintPrompt(painter);
}

void EmulatorWindow::paintScreen(QPainter& painter) const {
    painter.fillRect(rect(), kBorder);
    const QRect screen = rect().adjusted(32, 24, -32, -24);
    painter.fillRect(screen, kScreen);
    const QFont font = screenFont();
    painter.setFont(font);
    painter.setPen(kText);
    const int lineHeight = QFontMetrics(font).height() + 4;
    int y = screen.top() + 16 + lineHeight;
    const int x = screen.left() + 20;
    auto line = [&](const QString& text) {
        painter.drawText(QRect(x, y - lineHeight, screen.width() - 40, lineHeight), Qt::AlignVCenter, text);
        y += lineHeight;
    };
    line(QStringLiteral("QUAYLIGHT EMULATOR STAND-IN"));
    line(QString());
    line(QStringLiteral("RUN \"%1\"").arg(GetFileName(state_.file)));
    line(QString());
    for (const QString& setting : state_.lines)
        line(setting);
    line(QString());
    line(QStringLiteral("READY"));
    painter.fillRect(QRect(x, y - lineHeight + 4, 12, lineHeight - 8), kText); // the cursor
}

void EmulatorWindow::paintPrompt(QPainter& painter) const {
    if (prompt_ == Prompt::None) return;
    QFont font = screenFont();
    font.setBold(false);
    font.setPixelSize(14);
    painter.setFont(font);
    const int lineHeight = QFontMetrics(font).height() + 6;
    if (prompt_ == Prompt::FileMenu) {
        const QRect menu(8, 4, 180, 2 * lineHeight + 8);
        painter.fillRect(menu, kPanel);
        painter.setPen(kPanelText);
        painter.drawRect(menu.adjusted(0, 0, -1, -1));
        painter.drawText(menu.adjusted(8, 4, -8, 0), Qt::AlignTop, QStringLiteral("File\n  E  Exit"));
        return;
    }
    const QRect panel(0, height() - 3 * lineHeight - 8, width(), 3 * lineHeight + 8);
    painter.fillRect(panel, kPanel);
    painter.setPen(kPanelText);
    QRect row(panel.left() + 12, panel.top() + 4, panel.width() - 24, lineHeight);
    painter.drawText(row, Qt::AlignVCenter,
                     prompt_ == Prompt::Picture ? QStringLiteral("Save screenshot as:")
                                                : QStringLiteral("Disk 1:"));
    row.translate(0, lineHeight);
    painter.fillRect(row, Qt::white);
    painter.drawRect(row.adjusted(0, 0, -1, -1));
    painter.drawText(row.adjusted(4, 0, -4, 0), Qt::AlignVCenter,
                     message_.isEmpty() ? typed_ + u'_' : typed_);
    row.translate(0, lineHeight);
    if (message_.isEmpty()) {
        painter.drawText(row, Qt::AlignVCenter, QStringLiteral("Enter: OK    Escape: cancel"));
    } else {
        painter.setPen(message_.startsWith(QLatin1String("Cannot")) ? kError : kPanelText);
        painter.drawText(row, Qt::AlignVCenter, message_ + QStringLiteral("    (press Enter)"));
    }
}

} // namespace ql::emu
