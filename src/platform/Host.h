#pragma once
// Everything that leaves the process goes through these small interfaces, so that tests can
// swap in a recording fake and check exact bytes and orders.

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

namespace ql {

// A host facility that cannot do what it was asked: no window with that title, no X display, a key
// text it cannot read. Callers that drive other programs trap it and end their sequence.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Message box, yes/no box and input box. Boxes carry no title, as the program's messages never did.
class Dialogs {
public:
    virtual ~Dialogs() = default;
    virtual void message(const QString& text) = 0;
    virtual bool askYesNo(const QString& text) = 0;
    // Cancel gives an empty text.
    virtual QString inputBox(const QString& prompt, const QString& defaultText) = 0;
};

// Starting outside programs; nothing ever waits for them.
class Processes {
public:
    virtual ~Processes() = default;
    virtual bool startDetached(const QString& program, const QStringList& args,
                               const QString& workingDir = QString()) = 0;
};

// The private per-user folder where throw-away scripts are written (never a shared temp folder).
class Scripts {
public:
    virtual ~Scripts() = default;
    virtual QString folder() = 0;
    // Writes the whole text to folder()/baseName, replacing any old file; returns the full path.
    // Throws std::runtime_error when the file cannot be written.
    virtual QString write(const QString& baseName, const QByteArray& text) = 0;
    virtual bool remove(const QString& fullPath) = 0;
};

// A monotonic clock and the event pump that waits use.
class Clock {
public:
    virtual ~Clock() = default;
    // Seconds on a monotonic clock; never jumps back, so a wait across midnight still ends.
    virtual double now() = 0;
    // Runs pending events, sleeping in the event loop for at most maxSeconds when none are pending.
    virtual void pumpEvents(double maxSeconds) = 0;
};

// A folder listing entry with its attribute word (directory 16, not-indexed 8192, link 1024,
// hidden 2, read-only 1).
struct DirEntry {
    QString name;
    int attributes = 0;
};

namespace attr {
constexpr int ReadOnly = 1;
constexpr int Hidden = 2;
constexpr int Directory = 16;
constexpr int ReparsePoint = 1024;
constexpr int NotIndexed = 8192;
constexpr int PlainFolder = Directory | NotIndexed; // 8208
} // namespace attr

class FileSystem {
public:
    virtual ~FileSystem() = default;
    // The attribute word of a path, or nothing when the path does not exist or cannot be read.
    virtual std::optional<int> attributes(const QString& path) = 0;
    // The entries of a folder (no "." or ".."), files and folders alike, in name order ignoring case.
    virtual std::vector<DirEntry> list(const QString& folder) = 0;
};

// Keys into whatever window has the focus.
class Keyboard {
public:
    virtual ~Keyboard() = default;
    // One complete tap of a key given by its Windows virtual-key code, no modifiers.
    virtual void tapVirtualKey(std::uint8_t vk) = 0;
    // One key going down or up, by Windows virtual-key code; extended marks the keys of the
    // navigation block, as the Windows call does (it changes nothing for a key X knows only once).
    virtual void keyEvent(std::uint8_t vk, bool down, bool extended) = 0;
    // The key that types a character on the current layout: the virtual-key code in the low byte,
    // the shift state it needs in the high byte (1 Shift, 2 Ctrl, 4 Alt); -1 when no key types it.
    virtual int keyScan(char16_t character) = 0;
    // The SendKeys statement: "+" Shift, "^" Ctrl, "%" Alt on the next key or group "( )", "~" Enter,
    // "{NAME}" and "{NAME n}" named keys, anything else typed. wait: return only once the display
    // has taken every event. Throws HostError on a bad key text.
    virtual void sendKeys(const QString& keys, bool wait = false) = 0;
    // The system's short signal.
    virtual void beep() = 0;
};

// Other programs' top-level windows, found by title.
class Windows {
public:
    virtual ~Windows() = default;
    // AppActivate: raises and focuses the first viewable top-level window whose title equals the
    // text, else the first whose title begins with it, and returns once it holds the focus (within
    // a bound). Throws HostError when there is none.
    virtual void activate(const QString& title) = 0;
};

// The emulator's settings store, in the registry's terms: a key path under a root, and typed values.
class Registry {
public:
    virtual ~Registry() = default;
    // Creates the key when it is missing; keyPath is the full path, root included
    // ("HKEY_CURRENT_USER\\Software\\Atari800WinPLus").
    virtual void setDword(const QString& keyPath, const QString& name, std::uint32_t value) = 0;
    virtual void setString(const QString& keyPath, const QString& name, const QString& value) = 0;
};

// What opens a data file, by its extension: the user's association table.
class Associations {
public:
    virtual ~Associations() = default;
    // The shell command line for files with this extension (no dot, any case), in which %f stands
    // for the file; empty when the table names none.
    virtual QString commandFor(const QString& extension) = 0;
    // The shell command that starts a named program ("Atari800"), without arguments; empty when none.
    virtual QString program(const QString& name) = 0;
};

// The host the program runs on: one reference per facility.
struct Host {
    Dialogs& dialogs;
    Processes& processes;
    Scripts& scripts;
    Clock& clock;
    FileSystem& fileSystem;
    Keyboard& keyboard;
    Registry& registry;
    Associations& associations;
    Windows& windows;
};

} // namespace ql
