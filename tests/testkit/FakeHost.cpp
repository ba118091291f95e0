#include "FakeHost.h"
#include "LinuxHost.h"
#include "SendKeysText.h"
#include "VirtualKeys.h"

#include <QFile>
#include <stdexcept>

namespace ql::test {

bool FakeDialogs::askYesNo(const QString& text) {
    prompts.push_back(text);
    if (yesNoAnswers.empty()) return true;
    const bool answer = yesNoAnswers.front();
    yesNoAnswers.pop_front();
    return answer;
}

QString FakeDialogs::inputBox(const QString& prompt, const QString&) {
    prompts.push_back(prompt);
    if (inputAnswers.empty()) return QString();
    QString answer = inputAnswers.front();
    inputAnswers.pop_front();
    return answer;
}

bool FakeProcesses::startDetached(const QString& program, const QStringList& args,
                                  const QString& workingDir) {
    if (failuresToGo > 0) {
        --failuresToGo;
        return false;
    }
    started.push_back({program, args, workingDir});
    if (journal) journal->push_back(QStringLiteral("start ") + program);
    return true;
}

QString FakeScripts::write(const QString& baseName, const QByteArray& text) {
    if (writeFailuresToGo > 0) {
        --writeFailuresToGo;
        throw std::runtime_error("disk full");
    }
    QDir().mkpath(folder_);
    const QString path = folder_ + "/" + baseName;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        throw std::runtime_error("cannot write script");
    written[baseName] = text;
    if (journal) journal->push_back(QStringLiteral("script ") + baseName);
    return path;
}

bool FakeScripts::remove(const QString& fullPath) {
    ++removals;
    return QFile::remove(fullPath) || !QFile::exists(fullPath);
}

void FakeClock::pumpEvents(double maxSeconds) {
    ++pumps;
    time += std::max(maxSeconds, 0.001);
    if (onPump) onPump();
}

void FakeKeyboard::tapVirtualKey(std::uint8_t vk) {
    if (!failure.isEmpty()) throw HostError(failure.toStdString());
    taps.push_back(vk);
    if (journal) journal->push_back(QStringLiteral("tap %1").arg(vk));
}

void FakeKeyboard::keyEvent(std::uint8_t vk, bool down, bool extended) {
    if (!failure.isEmpty()) throw HostError(failure.toStdString());
    events.push_back({vk, down, extended});
}

int FakeKeyboard::keyScan(char16_t character) {
    return usLayoutKeyScan(character);
}

void FakeKeyboard::sendKeys(const QString& keys, bool wait) {
    if (!failure.isEmpty()) throw HostError(failure.toStdString());
    parseSendKeys(keys);
    sent.push_back(keys);
    if (journal) journal->push_back((wait ? QStringLiteral("keys(wait) ") : QStringLiteral("keys ")) + keys);
    if (onSendKeys) onSendKeys(keys);
}

void FakeKeyboard::beep() {
    if (!failure.isEmpty()) throw HostError(failure.toStdString());
    ++beeps;
    if (journal) journal->push_back(QStringLiteral("beep"));
}

void FakeWindows::activate(const QString& title) {
    QString found;
    for (const QString& t : titles)
        if (found.isEmpty() && t == title) found = t;
    for (const QString& t : titles)
        if (found.isEmpty() && t.startsWith(title)) found = t;
    if (found.isEmpty()) throw HostError("No window titled " + title.toStdString());
    active = found;
    if (journal) journal->push_back(QStringLiteral("activate ") + title);
}

FakeHost::FakeHost(const QString& scriptFolder)
    : scripts(scriptFolder),
      fileSystem_(std::make_unique<LinuxFileSystem>()), host_{dialogs,  processes,    scripts,
                                                              clock,    *fileSystem_, keyboard,
                                                              registry, associations, windows} {
    processes.journal = &journal;
    keyboard.journal = &journal;
    windows.journal = &journal;
    scripts.journal = &journal;
    registry.journal = &journal;
}

} // namespace ql::test
