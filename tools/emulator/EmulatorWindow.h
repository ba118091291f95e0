#pragma once
// The stand-in's window: a screen that shows the machine settings and the running file.

#include "EmulatorState.h"

#include <QKeySequence>
#include <QWidget>
#include <functional>
#include <vector>

namespace ql::emu {

class EmulatorWindow : public QWidget {
public:
    explicit EmulatorWindow(EmulatorState state, QWidget* parent = nullptr);

    // Binds a key combination to an action; a key with no action is passed over.
    void addKeyAction(const QKeySequence& keys, std::function<void()> action);
    const EmulatorState& state() const { return state_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    EmulatorState state_;
    std::vector<std::pair<QKeySequence, std::function<void()>>> keyActions_;
};

} // namespace ql::emu
