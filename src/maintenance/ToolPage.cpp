#include "ToolPage.h"

#include <QLabel>
#include <QPushButton>

namespace ql {

namespace {
// Thrown from the progress call when the user asked to stop.
struct Stopped {};
} // namespace

ToolPage::ToolPage(Host& host, const QString& name, QWidget* parent) : QWidget(parent), host_(host) {
    setObjectName(name);
    lblToolProgress = new QLabel(this);
    lblToolProgress->setObjectName(QStringLiteral("lblToolProgress"));
    lblToolProgress->setWordWrap(true);
    cmdStopTool = new QPushButton(QStringLiteral("Stop"), this);
    cmdStopTool->setObjectName(QStringLiteral("cmdStopTool"));
    cmdStopTool->setEnabled(false);
    connect(cmdStopTool, &QPushButton::clicked, this, [this] { stopAsked_ = true; });
}

QString toolSummary(const ToolCounts& c) {
    QStringList parts{QStringLiteral("%1 files looked at").arg(c.scanned)};
    const std::pair<int, const char*> counts[] = {{c.copied, "copied"},     {c.renamed, "renamed"},
                                                  {c.unpacked, "unpacked"}, {c.deleted, "deleted"},
                                                  {c.skipped, "skipped"},   {c.failed, "failed"}};
    for (const auto& [n, what] : counts)
        if (n > 0) parts << QStringLiteral("%1 %2").arg(n).arg(QLatin1String(what));
    return parts.join(QStringLiteral(", "));
}

void ToolPage::runTool(const std::function<ToolCounts(const ToolProgressFn&)>& work,
                       const QString& closingMessage) {
    if (running_) return; // a click that came in while a command let events through
    running_ = true;
    stopAsked_ = false;
    for (QWidget* w : inputs)
        w->setEnabled(false);
    cmdStopTool->setEnabled(true);
    if (onRunning) onRunning(true);
    double lastShown = -1;
    const ToolProgressFn progress = [&](const QString& path, int filesDone) {
        // Repaint a few times a second, not at every file.
        const double now = host_.clock.now();
        if (now - lastShown >= 0.1) {
            lastShown = now;
            lblToolProgress->setText(QStringLiteral("%1 files: %2").arg(filesDone).arg(path));
        }
        host_.clock.pumpEvents(0);
        if (stopAsked_) throw Stopped{};
    };
    QString message = closingMessage;
    QString account;
    try {
        const ToolCounts counts = work(progress);
        account = toolSummary(counts);
        if (!counts.problems.isEmpty())
            account += QLatin1Char('\n') + counts.problems.mid(0, 20).join(QLatin1Char('\n')) +
                       (counts.problems.size() > 20
                            ? QStringLiteral("\n… and %1 more").arg(counts.problems.size() - 20)
                            : QString());
    } catch (const Stopped&) {
        message = QStringLiteral("Stopped. What was done before the stop stays done.");
    } catch (const std::exception& e) {
        message = QStringLiteral("The command stopped: %1").arg(QString::fromUtf8(e.what()));
    }
    lblToolProgress->setText(account);
    cmdStopTool->setEnabled(false);
    for (QWidget* w : inputs)
        w->setEnabled(true);
    if (onRunning) onRunning(false);
    running_ = false;
    host_.dialogs.message(message);
}

} // namespace ql
