#pragma once
// A page of the utility form whose commands walk folder trees: while one runs, its inputs are
// locked, its progress shows, and Stop ends it at the next file.

#include "FolderTools.h"
#include "Host.h"

#include <QWidget>
#include <functional>
#include <vector>

class QLabel;
class QPushButton;

namespace ql {

class ToolPage : public QWidget {
public:
    ToolPage(Host& host, const QString& name, QWidget* parent = nullptr);

    bool running() const { return running_; }
    // Set by the form: locks or frees the rest of the form while a command runs.
    std::function<void(bool)> onRunning;

    QLabel* lblToolProgress = nullptr;
    QPushButton* cmdStopTool = nullptr;

protected:
    // Runs a command with progress and stop; then shows the closing message (the form's own words)
    // and beside it what was done. A failure is told to the user and ends the command.
    void runTool(const std::function<ToolCounts(const ToolProgressFn&)>& work, const QString& closingMessage);
    // The controls that a running command locks.
    std::vector<QWidget*> inputs;
    Host& host_;

private:
    bool running_ = false;
    bool stopAsked_ = false;
};

// A one-line account of what a command did: "12 files looked at, 3 copied, 1 renamed".
QString toolSummary(const ToolCounts& counts);

} // namespace ql
