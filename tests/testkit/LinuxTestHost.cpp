#include "LinuxTestHost.h"

#include <QDeadlineTimer>
#include <QFile>
#include <algorithm>

namespace ql::test {

bool LinuxTestHost::waitFor(const std::function<bool()>& done, double seconds) {
    const QDeadlineTimer deadline(std::max<qint64>(0, static_cast<qint64>(seconds * 1000))); // < 0 is forever
    while (!done()) {
        if (deadline.hasExpired()) return false;
        clock.pumpEvents(0.02); // sleeps in the event loop, so the wait costs no CPU
    }
    return true;
}

bool LinuxTestHost::windowOpen(const QString& title) {
    try {
        windows.activate(title);
        return true;
    } catch (const HostError& e) {
        return !std::string(e.what()).starts_with("No window titled");
    }
}

QStringList fileLines(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

} // namespace ql::test
