#pragma once
#include <functional>
// A host that records what the program does and answers its questions from a script.

#include "Host.h"

#include <QDir>
#include <QMap>
#include <deque>
#include <vector>

namespace ql::test {

class FakeDialogs : public Dialogs {
public:
    void message(const QString& text) override { messages.push_back(text); }
    bool askYesNo(const QString& text) override;
    QString inputBox(const QString& prompt, const QString& defaultText) override;

    std::vector<QString> messages;
    std::vector<QString> prompts;
    std::deque<bool> yesNoAnswers;    // true = Yes; empty: Yes
    std::deque<QString> inputAnswers; // empty: Cancel
};

struct StartedProcess {
    QString program;
    QStringList args;
    QString workingDir;
};

class FakeProcesses : public Processes {
public:
    bool startDetached(const QString& program, const QStringList& args, const QString& workingDir) override;
    std::vector<StartedProcess> started;
    std::vector<QString>* journal = nullptr;
    int failuresToGo = 0; // the next n starts fail
};

// Writes scripts for real, in a folder of the test's world, and keeps every text written.
class FakeScripts : public Scripts {
public:
    explicit FakeScripts(QString folder) : folder_(std::move(folder)) {}
    QString folder() override { return folder_; }
    QString write(const QString& baseName, const QByteArray& text) override;
    bool remove(const QString& fullPath) override;
    QMap<QString, QByteArray> written; // last text by base name
    std::vector<QString>* journal = nullptr;
    int writeFailuresToGo = 0;
    int removals = 0;

private:
    QString folder_;
};

// Time stands still until someone waits: each pump moves it on by what was asked (at least 1 ms).
class FakeClock : public Clock {
public:
    double now() override { return time; }
    void pumpEvents(double maxSeconds) override;
    double time = 1000.0;
    int pumps = 0;
    std::function<void()> onPump; // stands for the user's events that a pump lets through
};

// One low-level key event as the program made it.
struct KeyEventRecord {
    std::uint8_t vk = 0;
    bool down = false;
    bool extended = false;
    bool operator==(const KeyEventRecord&) const = default;
};

// Records every key that leaves the program. Key texts are read as the real keyboard reads them, so
// a bad text fails here too. The layout is a US keyboard's.
class FakeKeyboard : public Keyboard {
public:
    void tapVirtualKey(std::uint8_t vk) override;
    void keyEvent(std::uint8_t vk, bool down, bool extended) override;
    int keyScan(char16_t character) override;
    void sendKeys(const QString& keys, bool wait) override;
    void beep() override;

    std::vector<std::uint8_t> taps;
    std::vector<KeyEventRecord> events;
    std::vector<QString> sent; // SendKeys texts, in order
    int beeps = 0;
    // "tap 121", "keys {F10}", "keys(wait) {F10}", "beep"; key events are not journalled.
    std::vector<QString>* journal = nullptr;
    // When set, every facility throws HostError with this text, as with no display.
    QString failure;
    std::function<void(const QString&)> onSendKeys; // stands for the target window taking the keys
};

// Top-level windows by title; activation finds them as the real one does.
class FakeWindows : public Windows {
public:
    void activate(const QString& title) override;
    QStringList titles;                      // the windows that are open
    QString active;                          // the title of the last window activated
    std::vector<QString>* journal = nullptr; // "activate TITLE"
};

// One write to the registry, as the program made it.
struct RegistryWrite {
    QString keyPath;
    QString name;
    bool isDword = false;
    std::uint32_t dword = 0;
    QString text;
    // "name=dword:262" or "name=text", for compact expectations.
    QString brief() const {
        return name + (isDword ? QStringLiteral("=dword:%1").arg(dword) : QStringLiteral("=") + text);
    }
};

class FakeRegistry : public Registry {
public:
    void setDword(const QString& keyPath, const QString& name, std::uint32_t value) override {
        writes.push_back({keyPath, name, true, value, {}});
        if (journal) journal->push_back(QStringLiteral("registry ") + name);
    }
    void setString(const QString& keyPath, const QString& name, const QString& value) override {
        writes.push_back({keyPath, name, false, 0, value});
        if (journal) journal->push_back(QStringLiteral("registry ") + name);
    }
    std::vector<QString> briefs() const {
        std::vector<QString> out;
        for (const auto& w : writes)
            out.push_back(w.brief());
        return out;
    }
    std::vector<RegistryWrite> writes;
    std::vector<QString>* journal = nullptr;
};

// Associations the test sets; extensions by lower-case name without the dot.
class FakeAssociations : public Associations {
public:
    QString commandFor(const QString& extension) override { return extensions.value(extension.toLower()); }
    QString program(const QString& name) override { return programs.value(name); }
    QMap<QString, QString> extensions;
    QMap<QString, QString> programs;
};

// The real file system: tests build real trees in their temporary folder.
class FakeHost {
public:
    explicit FakeHost(const QString& scriptFolder);
    Host& host() { return host_; }

    FakeDialogs dialogs;
    FakeProcesses processes;
    FakeScripts scripts;
    FakeClock clock;
    FakeKeyboard keyboard;
    FakeRegistry registry;
    FakeAssociations associations;
    FakeWindows windows;
    // What left the process, in order, across the registry, the scripts and the processes.
    std::vector<QString> journal;

private:
    std::unique_ptr<FileSystem> fileSystem_;
    Host host_;
};

} // namespace ql::test
