#include "Shell.h"
#include "StringFuncs.h"

#include <exception>
#include <functional>

namespace ql {

void Pause(Clock& clock, double seconds) {
    const double end = clock.now() + seconds;
    for (;;) {
        const double now = clock.now();
        if (now > end) return;
        clock.pumpEvents(end - now);
    }
}

namespace {
constexpr int kAttempts = 5;

// Runs a step until it succeeds, pausing a second between tries; false after the last try.
bool withRetries(Clock& clock, const std::function<bool()>& step, QString& error) {
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        try {
            if (step()) return true;
        } catch (const std::exception& e) {
            error = QString::fromUtf8(e.what());
        }
        if (attempt < kAttempts) Pause(clock, 1.0);
    }
    return false;
}
} // namespace

void RunDosCommand(Host& host, const QString& commandLine) {
    const QByteArray text = "#!/bin/sh\n" + commandLine.toUtf8() + "\n\nexit\n";
    QString path;
    QString error;
    const auto fail = [&](const QString& what) {
        host.dialogs.message(
            QStringLiteral("Could not %1 a command script in %2.%3")
                .arg(what, host.scripts.folder(), error.isEmpty() ? QString() : " " + error));
    };
    if (!withRetries(
            host.clock,
            [&] {
                path = host.scripts.write(QStringLiteral("rundos.sh"), text);
                return true;
            },
            error))
        return fail(QStringLiteral("write"));
    if (!withRetries(
            host.clock, [&] { return host.processes.startDetached(QStringLiteral("/bin/sh"), {path}); },
            error))
        return fail(QStringLiteral("start"));
    host.clock.pumpEvents(0);
    Pause(host.clock, 1.0);
    if (!withRetries(
            host.clock, [&] { return host.scripts.remove(path); }, error))
        return fail(QStringLiteral("delete"));
}

bool FileExists(FileSystem& fs, const QString& path) {
    if (IsBlank(path)) return false;
    const auto word = fs.attributes(path);
    return word && *word != attr::Directory;
}

} // namespace ql
