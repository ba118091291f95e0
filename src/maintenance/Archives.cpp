#include "Archives.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSet>

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace ql {

namespace {

// An ARC file takes milliseconds; the bound only keeps a hung tool from holding a command forever.
constexpr int kArcxTimeoutMs = 5 * 60 * 1000;
constexpr int kArcxPollMs = 50;

// Dir's wildcards: "*" any run, "?" one character, case ignored; an empty pattern matches all.
bool specMatches(const QString& name, const QString& pattern) {
    if (pattern.isEmpty()) return true;
    qsizetype n = 0, p = 0, starP = -1, starN = 0;
    const auto same = [](QChar a, QChar b) { return a.toCaseFolded() == b.toCaseFolded(); };
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == QLatin1Char('*')) {
            starP = ++p;
            starN = n;
        } else if (p < pattern.size() && (pattern[p] == QLatin1Char('?') || same(pattern[p], name[n]))) {
            ++p;
            ++n;
        } else if (starP >= 0) {
            p = starP;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == QLatin1Char('*'))
        ++p;
    return p == pattern.size();
}

// A listing of folder-and-pattern text: the entries of the text's folder whose names match its last part.
std::vector<DirEntry> listMatching(FileSystem& fileSystem, const QString& pathPattern) {
    const qsizetype slash = pathPattern.lastIndexOf(QLatin1Char('/'));
    QString folder = pathPattern.left(slash + 1);
    if (folder.isEmpty()) folder = QStringLiteral("./");
    const QString pattern = pathPattern.mid(slash + 1);
    std::vector<DirEntry> entries;
    for (DirEntry& e : fileSystem.list(folder))
        if (specMatches(e.name, pattern)) entries.push_back(std::move(e));
    return entries;
}

using FileAction = std::function<void(const QString& folder, const QString& name, ToolCounts& counts)>;

// Files of a level first, then its sub-folders gathered, then one walk per sub-folder: folders that
// the file pass made are listed by the folder pass and walked too.
void walk(const QString& folder, const QString& spec, const QString& filter, FileSystem& fileSystem,
          const ToolProgressFn& progress, const FileAction& action, ToolCounts& counts) {
    for (const DirEntry& e : listMatching(fileSystem, folder + spec)) {
        // Attribute mask 0: plain and read-only files, no folders and no hidden files.
        if (e.attributes & (attr::Directory | attr::Hidden)) continue;
        if (!filter.isEmpty() && !e.name.contains(filter)) continue;
        ++counts.scanned;
        if (progress) progress(folder + e.name, counts.scanned);
        action(folder, e.name, counts);
    }
    QStringList subfolders;
    for (const DirEntry& e : listMatching(fileSystem, folder)) {
        if (e.name.startsWith(QLatin1Char('.'))) continue;
        // Any flag beyond the plain folder's (a link, hidden, read-only) keeps the walk out.
        const std::optional<int> word = fileSystem.attributes(folder + e.name);
        if (word && (*word == attr::Directory || *word == attr::PlainFolder)) subfolders << e.name;
    }
    for (const QString& name : subfolders)
        walk(folder + name + QLatin1Char('/'), spec, filter, fileSystem, progress, action, counts);
}

struct ToolRun {
    bool ok = false;
    QString message;
};

// A command that is an executable file as it stands runs directly; anything else is the user's shell
// text, run by sh with the arguments as its parameters, so that no file name is ever read as code.
ToolRun runArcx(const QString& arcx, const QStringList& args, const QString& workingDir,
                const QString& archivePath, int filesDone, const ToolProgressFn& progress) {
    QProcess process;
    const QFileInfo direct(arcx);
    if (direct.isAbsolute() && direct.isFile() && direct.isExecutable()) {
        process.setProgram(arcx);
        process.setArguments(args);
    } else {
        process.setProgram(QStringLiteral("/bin/sh"));
        process.setArguments(
            QStringList{QStringLiteral("-c"), arcx + QStringLiteral(" \"$@\""), QStringLiteral("sh")} + args);
    }
    process.setWorkingDirectory(workingDir);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start();
    if (!process.waitForStarted())
        return {false, QStringLiteral("cannot start %1: %2").arg(arcx, process.errorString())};
    const auto stop = [&process] {
        process.kill();
        process.waitForFinished(5000);
    };
    QElapsedTimer clock;
    clock.start();
    while (process.state() != QProcess::NotRunning && !process.waitForFinished(kArcxPollMs)) {
        if (clock.elapsed() > kArcxTimeoutMs) {
            stop();
            return {
                false,
                QStringLiteral("%1 did not finish within %2 seconds").arg(arcx).arg(kArcxTimeoutMs / 1000)};
        }
        // The form stays live while the tool works; a stop there ends the tool too.
        try {
            if (progress) progress(archivePath, filesDone);
        } catch (...) {
            stop();
            throw;
        }
    }
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) return {true, {}};
    const QStringList lines =
        QString::fromLocal8Bit(process.readAllStandardError()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QString message = lines.isEmpty() ? QString() : lines.last().trimmed();
    if (message.isEmpty())
        message = process.exitStatus() == QProcess::NormalExit
                      ? QStringLiteral("%1 ended with exit code %2").arg(arcx).arg(process.exitCode())
                      : QStringLiteral("%1 crashed").arg(arcx);
    return {false, message};
}

void deleteArchive(const QString& path, ToolCounts& counts) {
    QFile file(path);
    if (file.remove()) {
        ++counts.deleted;
    } else {
        ++counts.failed;
        counts.problems << QStringLiteral("%1: not deleted: %2").arg(path, file.errorString());
    }
}

// --- ZIP --------------------------------------------------------------------------------------------

// The named path's parts without empty and "." parts: "a//./b" gives a, b.
QList<QByteArray> pathParts(const QByteArray& path) {
    QList<QByteArray> parts;
    for (const QByteArray& part : path.split('/'))
        if (!part.isEmpty() && part != ".") parts << part;
    return parts;
}

bool isLinkOnDisk(const QByteArray& relative) {
    struct stat st {};
    return ::lstat(relative.constData(), &st) == 0 && S_ISLNK(st.st_mode);
}

// Whether a path under the current folder goes through a link: one on disk, or a link entry of the
// archive that was skipped (what was meant to go through it is skipped as well). The last part
// counts only when asked.
bool passesThroughLink(const QList<QByteArray>& parts, bool includeLast,
                       const QSet<QByteArray>& skippedLinks) {
    QByteArray prefix;
    const qsizetype end = includeLast ? parts.size() : parts.size() - 1;
    for (qsizetype i = 0; i < end; ++i) {
        if (!prefix.isEmpty()) prefix += '/';
        prefix += parts[i];
        if (skippedLinks.contains(prefix) || isLinkOnDisk(prefix)) return true;
    }
    return false;
}

// Why an entry may not be written into the current folder; empty when it may.
QString refusal(archive_entry* entry, const QSet<QByteArray>& skippedLinks) {
    const char* name = archive_entry_pathname(entry);
    if (!name || !*name) return QStringLiteral("name cannot be read");
    const QByteArray path(name);
    if (path.startsWith('/')) return QStringLiteral("absolute path");
    const QList<QByteArray> parts = pathParts(path);
    if (parts.contains("..")) return QStringLiteral("climbs out with \"..\"");
    if (parts.isEmpty()) return QStringLiteral("names the folder itself");

    if (const char* hardlink = archive_entry_hardlink(entry)) {
        const QByteArray target(hardlink);
        const QList<QByteArray> targetParts = pathParts(target);
        if (target.startsWith('/') || targetParts.contains("..") || targetParts.isEmpty())
            return QStringLiteral("hard link to a file outside the folder");
        if (passesThroughLink(targetParts, true, skippedLinks))
            return QStringLiteral("hard link through a link");
        if (passesThroughLink(parts, true, skippedLinks)) return QStringLiteral("passes through a link");
        return {};
    }
    const auto type = archive_entry_filetype(entry);
    if (type == AE_IFLNK) {
        const char* symlink = archive_entry_symlink(entry);
        const QByteArray target(symlink ? symlink : "");
        if (target.isEmpty() || target.startsWith('/'))
            return QStringLiteral("link pointing outside the folder");
        // Only leading ".." parts, resolved against the entry's own folders (real folders: nothing
        // passes through a link), so that no later link can turn the target outward.
        qsizetype ups = 0;
        bool named = false;
        for (const QByteArray& part : pathParts(target)) {
            if (part != "..") {
                named = true;
            } else if (named) {
                return QStringLiteral("link pointing outside the folder");
            } else {
                ++ups;
            }
        }
        if (ups > parts.size() - 1) return QStringLiteral("link pointing outside the folder");
        if (passesThroughLink(parts, false, skippedLinks)) return QStringLiteral("passes through a link");
        return {};
    }
    if (type != AE_IFREG && type != AE_IFDIR) return QStringLiteral("neither a file nor a folder");
    if (passesThroughLink(parts, true, skippedLinks)) return QStringLiteral("passes through a link");
    return {};
}

// libarchive writes relative to the current folder only (absolute names are what it refuses), so the
// unpacking runs inside the target folder and goes back to where it was whatever happens.
class FolderChange {
public:
    explicit FolderChange(const QString& folder) : back_(::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        entered_ = back_ >= 0 && ::chdir(QFile::encodeName(folder).constData()) == 0;
    }
    ~FolderChange() {
        if (back_ < 0) return;
        if (entered_ && ::fchdir(back_) != 0) qWarning("Cannot return to the previous current folder");
        ::close(back_);
    }
    FolderChange(const FolderChange&) = delete;
    FolderChange& operator=(const FolderChange&) = delete;
    bool entered() const { return entered_; }

private:
    int back_;
    bool entered_ = false;
};

struct ReadDeleter {
    void operator()(archive* a) const { archive_read_free(a); }
};
struct WriteDeleter {
    void operator()(archive* a) const { archive_write_free(a); }
};

QString archiveMessage(archive* a) {
    const char* text = archive_error_string(a);
    return text ? QString::fromLocal8Bit(text) : QStringLiteral("unknown archive error");
}

// Copies an entry's data; empty when it went well.
QString copyData(archive* in, archive* out) {
    const void* block = nullptr;
    size_t size = 0;
    la_int64_t offset = 0;
    for (;;) {
        const int r = archive_read_data_block(in, &block, &size, &offset);
        if (r == ARCHIVE_EOF) return {};
        if (r < ARCHIVE_WARN) return archiveMessage(in);
        if (archive_write_data_block(out, block, size, offset) < ARCHIVE_WARN) return archiveMessage(out);
    }
}

} // namespace

QString arcxCommand(Associations& associations) {
    const QString configured = associations.program(QStringLiteral("arcx"));
    if (!configured.trimmed().isEmpty()) return configured;
    const QFileInfo beside(QCoreApplication::applicationDirPath() + QStringLiteral("/arcx"));
    if (beside.isFile() && beside.isExecutable()) return beside.absoluteFilePath();
    return QStringLiteral("arcx");
}

ZipOutcome unpackZip(const QString& archivePath, const QString& intoFolder) {
    ZipOutcome outcome;
    const auto fail = [&](const QString& where, const QString& cause) {
        if (outcome.error.isEmpty()) outcome.error = cause;
        outcome.problems << QStringLiteral("%1: %2").arg(where, cause);
    };
    std::unique_ptr<archive, ReadDeleter> in(archive_read_new());
    std::unique_ptr<archive, WriteDeleter> out(archive_write_disk_new());
    archive_read_support_format_zip(in.get());
    archive_write_disk_set_options(out.get(), ARCHIVE_EXTRACT_TIME | ARCHIVE_EXTRACT_SECURE_NODOTDOT |
                                                  ARCHIVE_EXTRACT_SECURE_SYMLINKS |
                                                  ARCHIVE_EXTRACT_SECURE_NOABSOLUTEPATHS);
    const QString absoluteArchive = QFileInfo(archivePath).absoluteFilePath();
    if (archive_read_open_filename(in.get(), QFile::encodeName(absoluteArchive).constData(), 64 * 1024) !=
        ARCHIVE_OK) {
        fail(archivePath, archiveMessage(in.get()));
        return outcome;
    }
    FolderChange inside(intoFolder);
    if (!inside.entered()) {
        fail(archivePath, QStringLiteral("cannot enter %1").arg(intoFolder));
        return outcome;
    }
    QSet<QByteArray> skippedLinks;
    for (;;) {
        archive_entry* entry = nullptr;
        const int r = archive_read_next_header(in.get(), &entry);
        if (r == ARCHIVE_EOF) {
            outcome.ok = true;
            break;
        }
        if (r < ARCHIVE_WARN) { // the rest of the archive cannot be trusted to be found
            fail(archivePath, archiveMessage(in.get()));
            break;
        }
        const QByteArray name(archive_entry_pathname(entry) ? archive_entry_pathname(entry) : "");
        const QString where = archivePath + QStringLiteral(": ") + QFile::decodeName(name);
        if (archive_entry_filetype(entry) == AE_IFDIR && !name.isEmpty() && !name.startsWith('/') &&
            pathParts(name).isEmpty())
            continue; // "./": the folder itself, there already
        const QString why = refusal(entry, skippedLinks);
        if (!why.isEmpty()) {
            ++outcome.skipped;
            outcome.problems << QStringLiteral("%1: skipped: %2").arg(where, why);
            if (archive_entry_filetype(entry) == AE_IFLNK) skippedLinks.insert(pathParts(name).join('/'));
            continue;
        }
        if (archive_write_header(out.get(), entry) < ARCHIVE_WARN) {
            fail(where, archiveMessage(out.get()));
            continue;
        }
        QString cause = copyData(in.get(), out.get());
        if (archive_write_finish_entry(out.get()) < ARCHIVE_WARN && cause.isEmpty())
            cause = archiveMessage(out.get());
        if (cause.isEmpty())
            ++outcome.extracted;
        else
            fail(where, cause);
    }
    if (archive_write_close(out.get()) < ARCHIVE_WARN) fail(archivePath, archiveMessage(out.get()));
    return outcome;
}

ToolCounts expandArcFiles(const QString& folder, const QString& spec, const QString& filter,
                          const QString& arcx, FileSystem& fileSystem, const ToolProgressFn& progress) {
    ToolCounts counts;
    const FileAction action = [&](const QString& dir, const QString& name, ToolCounts& c) {
        const QString base = name.left(std::max<qsizetype>(0, name.size() - 4));
        QDir().mkdir(dir + base); // one there already takes the files as well
        const QString archivePath = dir + name;
        const ToolRun run =
            runArcx(arcx, {QStringLiteral("-r"), name, base}, dir, archivePath, c.scanned, progress);
        if (!run.ok) {
            ++c.failed;
            c.problems << QStringLiteral("%1: %2").arg(archivePath, run.message);
            return;
        }
        ++c.unpacked;
        deleteArchive(archivePath, c);
    };
    walk(folder, spec, filter, fileSystem, progress, action, counts);
    return counts;
}

ToolCounts unpackArchives(const QString& folder, const QString& spec, const QString& filter,
                          const QString& arcx, FileSystem& fileSystem, const ToolProgressFn& progress) {
    ToolCounts counts;
    const FileAction action = [&](const QString& dir, const QString& name, ToolCounts& c) {
        const QString archivePath = dir + name;
        const QString kind = name.right(4).toLower();
        if (kind == QLatin1String(".zip")) {
            const ZipOutcome zip = unpackZip(archivePath, dir);
            c.skipped += zip.skipped;
            c.problems << zip.problems;
            if (!zip.ok || !zip.error.isEmpty()) {
                ++c.failed;
                return;
            }
            ++c.unpacked;
            // A ZIP with skipped entries stays: its contents are not all on disk.
            if (zip.skipped == 0 && !name.contains(QLatin1Char('('))) deleteArchive(archivePath, c);
        } else if (kind == QLatin1String(".arc")) {
            const ToolRun run =
                runArcx(arcx, {QStringLiteral("-r"), name}, dir, archivePath, c.scanned, progress);
            if (run.ok) {
                ++c.unpacked;
            } else {
                ++c.failed;
                c.problems << QStringLiteral("%1: %2").arg(archivePath, run.message);
            }
        }
    };
    walk(folder, spec, filter, fileSystem, progress, action, counts);
    return counts;
}

} // namespace ql
