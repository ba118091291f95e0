// quaylight-emu [-windowed] FILE: stands in for Atari800Win PLus and Atari800 in tests and the demo.
// It reads the emulator's settings from the registry file when it starts, as the real one reads the
// registry, shows them with the file it was given, and answers the keys the launcher sends.
#include "EmulatorWindow.h"
#include "RegistryFile.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quaylight-emu"));
    const QStringList arguments = QApplication::arguments().mid(1);
    ql::emu::EmulatorWindow window(
        ql::emu::emulatorState(ql::RegistryFile::load(ql::registryFilePath()), arguments));
    QObject::connect(&window, &ql::emu::EmulatorWindow::quitRequested, &app, &QApplication::quit);
    window.show();
    return QApplication::exec();
}
