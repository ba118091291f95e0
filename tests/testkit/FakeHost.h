#pragma once
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
};

class FakeKeyboard : public Keyboard {
public:
    void tapVirtualKey(std::uint8_t vk) override { taps.push_back(vk); }
    std::vector<std::uint8_t> taps;
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

private:
    std::unique_ptr<FileSystem> fileSystem_;
    Host host_;
};

} // namespace ql::test
