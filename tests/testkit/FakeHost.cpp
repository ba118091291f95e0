#include "FakeHost.h"
#include "LinuxHost.h"

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

FakeHost::FakeHost(const QString& scriptFolder)
    : scripts(scriptFolder),
      fileSystem_(std::make_unique<LinuxFileSystem>()), host_{dialogs,  processes,    scripts,
                                                              clock,    *fileSystem_, keyboard,
                                                              registry, associations} {
    processes.journal = &journal;
    scripts.journal = &journal;
    registry.journal = &journal;
}

} // namespace ql::test
