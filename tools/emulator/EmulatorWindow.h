#pragma once
// The stand-in's window: a screen that shows the machine settings and the running file, and the few
// keys that the launcher sends to the real emulators.
//
// As Atari800Win PLus: F10 asks for a file name and saves a PNG picture of the screen there; Alt+F
// opens the File menu, where E ends the program; Alt+1 asks for the disk for drive 1, and a message
// confirms it until Enter. As the SDL Atari800 (-windowed): F10 saves atariNNN.pcx in the current
// folder at once. Alt+F4 ends either.

#include "EmulatorState.h"
#include "Journal.h"

#include <QWidget>

namespace ql::emu {

class EmulatorWindow : public QWidget {
    Q_OBJECT
public:
    enum class Prompt { None, Picture, Disk, FileMenu };

    explicit EmulatorWindow(EmulatorState state, Journal journal = Journal::fromEnvironment(),
                            QWidget* parent = nullptr);

    const EmulatorState& state() const { return state_; }
    Prompt prompt() const { return prompt_; }
    QString typed() const { return typed_; }
    // The prompt's answer to Enter (an error, a confirmation); Enter or Escape then closes it.
    QString message() const { return message_; }
    // The emulator's screen, without any prompt over it.
    QImage screenPicture() const;

signals:
    // The user ended the emulator; the owner ends the application.
    void quitRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void paintScreen(QPainter& painter) const;
    void paintPrompt(QPainter& painter) const;
    void promptKey(const QKeyEvent& event);
    void answer(); // Enter in a prompt that has not answered yet
    void savePicture(const QString& path);
    void attachDrive1(const QString& path);
    void saveScreenshot();
    void open(Prompt prompt);
    void quit();

    EmulatorState state_;
    Journal journal_;
    Prompt prompt_ = Prompt::None;
    QString typed_;
    QString message_;
    int lastScreenshot_ = -1; // the SDL emulator numbers its screenshots on from the last one
    bool quitLogged_ = false;
};

} // namespace ql::emu
