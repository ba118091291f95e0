#include "EmulatorWindow.h"
#include "StringFuncs.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QPainter>

namespace ql::emu {

namespace {
// The 8-bit machines' familiar blue screen with light text.
const QColor kBorder(0x10, 0x2a, 0x6b);
const QColor kScreen(0x1c, 0x4c, 0x9c);
const QColor kText(0xb8, 0xd4, 0xf4);
} // namespace

EmulatorWindow::EmulatorWindow(EmulatorState state, QWidget* parent)
    : QWidget(parent), state_(std::move(state)) {
    setObjectName(QStringLiteral("EmulatorWindow"));
    setWindowTitle(windowTitleFor(state_.file));
    setFocusPolicy(Qt::StrongFocus);
    resize(672, 480);
}

void EmulatorWindow::addKeyAction(const QKeySequence& keys, std::function<void()> action) {
    keyActions_.emplace_back(keys, std::move(action));
}

void EmulatorWindow::keyPressEvent(QKeyEvent* event) {
    const QKeySequence pressed(event->keyCombination());
    for (const auto& [keys, action] : keyActions_) {
        if (keys == pressed) {
            action();
            return;
        }
    }
    QWidget::keyPressEvent(event);
}

void EmulatorWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kBorder);
    const QRect screen = rect().adjusted(32, 24, -32, -24);
    painter.fillRect(screen, kScreen);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(18);
    font.setBold(true);
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

} // namespace ql::emu
