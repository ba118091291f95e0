#include "LinuxHost.h"
#include "VirtualKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QInputDialog>
#include <QMessageBox>
#include <QProcess>
#include <QSaveFile>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <dirent.h>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

namespace ql {

namespace {
QString xdgFolder(const char* variable, const char* fallbackUnderHome) {
    QString base = qEnvironmentVariable(variable);
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::homePath() + QLatin1Char('/') + QLatin1String(fallbackUnderHome);
    return base + QStringLiteral("/quaylight");
}
} // namespace

QString configFolder() {
    return xdgFolder("XDG_CONFIG_HOME", ".config");
}
QString stateFolder() {
    return xdgFolder("XDG_STATE_HOME", ".local/state");
}

void LinuxDialogs::message(const QString& text) {
    QMessageBox box(QMessageBox::NoIcon, QString(), text, QMessageBox::Ok);
    box.exec();
}

bool LinuxDialogs::askYesNo(const QString& text) {
    QMessageBox box(QMessageBox::Question, QString(), text, QMessageBox::Yes | QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

QString LinuxDialogs::inputBox(const QString& prompt, const QString& defaultText) {
    bool ok = false;
    const QString text =
        QInputDialog::getText(nullptr, QString(), prompt, QLineEdit::Normal, defaultText, &ok);
    return ok ? text : QString();
}

bool LinuxProcesses::startDetached(const QString& program, const QStringList& args,
                                   const QString& workingDir) {
    return QProcess::startDetached(program, args, workingDir);
}

QString LinuxScripts::folder() {
    const QString path = stateFolder();
    QDir().mkpath(path);
    // Scripts hold paths of the user's files and are executed: nobody else may read or swap them.
    ::chmod(QFile::encodeName(path).constData(), 0700);
    return path;
}

QString LinuxScripts::write(const QString& baseName, const QByteArray& text) {
    const QString path = folder() + QLatin1Char('/') + baseName;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        throw std::runtime_error("Cannot write " + path.toStdString() + ": " +
                                 file.errorString().toStdString());
    ::chmod(QFile::encodeName(path).constData(), 0700);
    return path;
}

bool LinuxScripts::remove(const QString& fullPath) {
    return QFile::remove(fullPath) || !QFile::exists(fullPath);
}

double LinuxClock::now() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

void LinuxClock::pumpEvents(double maxSeconds) {
    // Rounded up, so the last fraction of a millisecond of a wait sleeps too instead of spinning.
    const int ms = std::clamp(static_cast<int>(std::ceil(maxSeconds * 1000.0)), 0, 20);
    if (!QCoreApplication::instance()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::max(ms, 1)));
        return;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    if (ms > 0) {
        // Sleeps in the event loop rather than spinning, so a long pause costs no CPU.
        QEventLoop loop;
        QTimer::singleShot(ms, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

std::optional<int> LinuxFileSystem::attributes(const QString& path) {
    QString p = path;
    while (p.size() > 1 && p.endsWith(QLatin1Char('/')))
        p.chop(1);
    const QByteArray native = QFile::encodeName(p);
    struct stat link {};
    if (::lstat(native.constData(), &link) != 0) return std::nullopt;
    struct stat target = link;
    const bool isLink = S_ISLNK(link.st_mode);
    if (isLink && ::stat(native.constData(), &target) != 0)
        return std::nullopt; // a dangling link is as good as missing
    int word = 0;
    if (S_ISDIR(target.st_mode)) {
        word = attr::PlainFolder;
        if (isLink) word |= attr::ReparsePoint; // so that no walk follows it, and none can loop
    } else if (!(target.st_mode & S_IWUSR)) {
        word |= attr::ReadOnly;
    }
    const int slash = p.lastIndexOf(QLatin1Char('/'));
    if (p.mid(slash + 1).startsWith(QLatin1Char('.'))) word |= attr::Hidden;
    return word;
}

std::vector<DirEntry> LinuxFileSystem::list(const QString& folder) {
    std::vector<DirEntry> entries;
    QString base = folder;
    if (!base.endsWith(QLatin1Char('/'))) base += QLatin1Char('/');
    DIR* dir = ::opendir(QFile::encodeName(base).constData());
    if (!dir) return entries;
    while (const dirent* e = ::readdir(dir)) {
        const QString name = QFile::decodeName(e->d_name);
        if (name == QLatin1String(".") || name == QLatin1String("..")) continue;
        if (auto word = attributes(base + name)) entries.push_back({name, *word});
    }
    ::closedir(dir);
    std::sort(entries.begin(), entries.end(), [](const DirEntry& a, const DirEntry& b) {
        const int c = a.name.compare(b.name, Qt::CaseInsensitive);
        return c != 0 ? c < 0 : a.name < b.name;
    });
    return entries;
}

LinuxHost::LinuxHost()
    : host_(std::make_unique<Host>(Host{dialogs_, processes_, scripts_, clock_, fileSystem_, keyboard_,
                                        registry_, associations_, windows_})) {}

} // namespace ql
