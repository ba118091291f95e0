#pragma once
// Everything that leaves the process goes through these small interfaces, so that tests can
// swap in a recording fake and check exact bytes and orders.

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <vector>

namespace ql {

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

// One complete tap of a key given by its Windows virtual-key code, no modifiers.
class Keyboard {
public:
    virtual ~Keyboard() = default;
    virtual void tapVirtualKey(std::uint8_t vk) = 0;
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
};

} // namespace ql
