#pragma once
#include "AssociationTable.h"
#include "Host.h"
#include "RegistryFile.h"

#include <QWidget>
#include <memory>

namespace ql {

class LinuxDialogs : public Dialogs {
public:
    void message(const QString& text) override;
    bool askYesNo(const QString& text) override;
    QString inputBox(const QString& prompt, const QString& defaultText) override;
};

class LinuxProcesses : public Processes {
public:
    bool startDetached(const QString& program, const QStringList& args, const QString& workingDir) override;
};

// $XDG_STATE_HOME/quaylight (default ~/.local/state/quaylight), mode 0700.
class LinuxScripts : public Scripts {
public:
    QString folder() override;
    QString write(const QString& baseName, const QByteArray& text) override;
    bool remove(const QString& fullPath) override;
};

class LinuxClock : public Clock {
public:
    double now() override;
    void pumpEvents(double maxSeconds) override;
};

class LinuxFileSystem : public FileSystem {
public:
    std::optional<int> attributes(const QString& path) override;
    std::vector<DirEntry> list(const QString& folder) override;
};

// X11: XTest events to the window that has the focus. With no X display each call throws a
// HostError that names the cause.
class LinuxKeyboard : public Keyboard {
public:
    void tapVirtualKey(std::uint8_t vk) override;
    void keyEvent(std::uint8_t vk, bool down, bool extended) override;
    int keyScan(char16_t character) override;
    void sendKeys(const QString& keys, bool wait) override;
    void beep() override;
};

// X11: top-level windows found by _NET_WM_NAME or WM_NAME.
class LinuxWindows : public Windows {
public:
    void activate(const QString& title) override;
};

// Owns one of each and hands out the Host of references.
class LinuxHost {
public:
    LinuxHost();
    Host& host() { return *host_; }

private:
    LinuxDialogs dialogs_;
    LinuxProcesses processes_;
    LinuxScripts scripts_;
    LinuxClock clock_;
    LinuxFileSystem fileSystem_;
    LinuxKeyboard keyboard_;
    LinuxRegistry registry_;
    LinuxAssociations associations_;
    LinuxWindows windows_;
    std::unique_ptr<Host> host_;
};

// The per-user configuration folder, $XDG_CONFIG_HOME/quaylight.
QString configFolder();
// The per-user state folder, $XDG_STATE_HOME/quaylight.
QString stateFolder();

} // namespace ql
