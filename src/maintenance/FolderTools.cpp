#include "FolderTools.h"
#include "Crc32.h"
#include "Store.h"
#include "StringFuncs.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <numeric>
#include <ranges>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <unordered_set>
#include <zlib.h>

namespace ql {

namespace {

constexpr int kSystem = 4; // no folder of this system reports it, but a listing by mask 0 leaves it out

// What a listing with the attribute mask 0 gives: no folders, no hidden or system files.
bool isPlainFile(const DirEntry& e) {
    return !(e.attributes & (attr::Directory | attr::Hidden | kSystem));
}

// A file spec as the platform's listing matches it: "*" any run, "?" one character, case ignored;
// "*.*" takes names without a dot too.
bool matchesFileSpec(QStringView name, QStringView pattern) {
    if (pattern == u"*.*" || pattern == u"*") return true;
    qsizetype n = 0, p = 0, starP = -1, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            starP = p++;
            starN = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == u'?' || pattern[p].toCaseFolded() == name[n].toCaseFolded())) {
            ++p;
            ++n;
        } else if (starP >= 0) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

bool hasBracket(const QString& name) {
    return name.contains(QLatin1Char('(')) || name.contains(QLatin1Char(')'));
}

QString errnoText(int err) {
    return QString::fromLocal8Bit(std::strerror(err));
}

enum class Outcome { Done, Taken, Same, Failed };

// A rename that never replaces: a taken name leaves both files as they are.
Outcome renameNoReplace(const QString& from, const QString& to, QString& why) {
    const QByteArray f = QFile::encodeName(from), t = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, f.constData(), AT_FDCWD, t.constData(), RENAME_NOREPLACE) == 0)
        return Outcome::Done;
    int err = errno;
    if (err == EINVAL || err == ENOSYS || err == ENOTSUP) { // a file system without the flag
        struct stat st {};
        if (::lstat(t.constData(), &st) == 0)
            err = EEXIST;
        else if (::rename(f.constData(), t.constData()) == 0)
            return Outcome::Done;
        else
            err = errno;
    }
    if (err == EEXIST) return Outcome::Taken;
    why = errnoText(err);
    return Outcome::Failed;
}

bool copyBytes(int in, int out) {
    bool ranged = true; // in the kernel, from the page cache, when the file systems allow it
    std::vector<char> buffer;
    for (std::int64_t copied = 0;;) {
        if (ranged) {
            const ssize_t n = ::copy_file_range(in, nullptr, out, nullptr, std::size_t{1} << 30, 0);
            if (n > 0) {
                copied += n;
                continue;
            }
            if (n == 0) return true;
            if (errno == EINTR) continue;
            if (copied > 0 || (errno != EXDEV && errno != ENOSYS && errno != EINVAL && errno != EOPNOTSUPP))
                return false;
            ranged = false;
            buffer.resize(64 * 1024);
        }
        const ssize_t n = ::read(in, buffer.data(), buffer.size());
        if (n == 0) return true;
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        for (ssize_t done = 0; done < n;) {
            const ssize_t w = ::write(out, buffer.data() + done, static_cast<size_t>(n - done));
            if (w < 0 && errno != EINTR) return false;
            if (w > 0) done += w;
        }
        copied += n;
    }
}

// The copy of a batch "copy": a file of the target's name is replaced; the copy keeps the
// source's permissions and time of last change. Copying a file onto itself would destroy it.
Outcome copyReplacing(const QString& from, const QString& to, QString& why) {
    const QByteArray f = QFile::encodeName(from), t = QFile::encodeName(to);
    const int in = ::open(f.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (in < 0) {
        why = errnoText(errno);
        return Outcome::Failed;
    }
    const auto fail = [&](int err, int out) {
        why = errnoText(err);
        ::close(in);
        if (out >= 0) {
            ::close(out);
            ::unlink(t.constData()); // no half copy stays behind
        }
        return Outcome::Failed;
    };
    struct stat st {};
    if (::fstat(in, &st) != 0) return fail(errno, -1);
    if (!S_ISREG(st.st_mode)) return fail(S_ISDIR(st.st_mode) ? EISDIR : EINVAL, -1);
    struct stat old {};
    if (::stat(t.constData(), &old) == 0) {
        if (old.st_dev == st.st_dev && old.st_ino == st.st_ino) {
            ::close(in);
            return Outcome::Same;
        }
        if (S_ISDIR(old.st_mode)) return fail(EISDIR, -1);
    }
    if (::unlink(t.constData()) != 0 && errno != ENOENT) return fail(errno, -1);
    ::fcntl(in, F_SETFL, ::fcntl(in, F_GETFL) & ~O_NONBLOCK);
    const int out = ::open(t.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (out < 0) return fail(errno, -1);
    if (!copyBytes(in, out)) return fail(errno, out);
    const struct timespec times[2] = {st.st_atim, st.st_mtim};
    ::futimens(out, times);
    ::fchmod(out, st.st_mode & 0777);
    if (::close(out) != 0) {
        const int err = errno;
        ::unlink(t.constData());
        return fail(err, -1);
    }
    ::close(in);
    return Outcome::Done;
}

// The walks' shape: a folder's own listing is handed over before any of its sub-folders is
// listed, and the sub-folders follow depth first in listing order. Only plain folders (8208) are
// entered: a link, a hidden folder or one with any other flag is not, so no walk leaves the tree
// or loops.
void walkTree(FileSystem& fileSystem, const QString& root,
              const std::function<void(const QString& folder, const std::vector<DirEntry>& entries)>& visit) {
    std::vector<QString> stack{root};
    while (!stack.empty()) {
        const QString folder = std::move(stack.back());
        stack.pop_back();
        const std::vector<DirEntry> entries = fileSystem.list(folder);
        visit(folder, entries);
        const size_t mark = stack.size();
        for (const DirEntry& e : entries) {
            if (e.attributes == attr::PlainFolder && !e.name.startsWith(QLatin1Char('.')))
                stack.push_back(folder + e.name + folder.back());
        }
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(mark), stack.end());
    }
}

struct CrcResult {
    std::int32_t crc = 0;
    QString error; // null when the file was read
};

// The value that cCRC32 gives a file, with no more calls into the kernel than opening, reading and
// closing it take: over a walk of small files each further call shows. A file that is not a plain
// file (a named pipe, a device) is refused, and one that grows while it is read counts as long as
// it was when opened. A stop ends even the read of a file of many gigabytes within one chunk.
CrcResult fileCrc(const QString& path, std::vector<char>& buffer, const std::atomic<bool>& stop) {
    CrcResult r;
    const auto failed = [&](const char* what, int err) {
        r.error = QStringLiteral("%1 %2: %3").arg(QLatin1String(what), path, errnoText(err));
        return r;
    };
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return failed("Cannot open", errno);
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        const int err = st.st_mode == 0 ? errno : S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
        ::close(fd);
        return failed("Cannot open", err);
    }
    uLong crc = crc32(0L, Z_NULL, 0);
    for (off_t left = st.st_size; left > 0 && !stop.load(std::memory_order_relaxed);) {
        const ssize_t n =
            ::read(fd, buffer.data(), static_cast<size_t>(std::min<off_t>(left, buffer.size())));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int err = errno;
            ::close(fd);
            return failed("Cannot read", err);
        }
        if (n == 0) break; // it shrank since it was opened
        crc = crc32(crc, reinterpret_cast<const Bytef*>(buffer.data()), static_cast<uInt>(n));
        left -= n;
    }
    ::close(fd);
    r.crc = static_cast<std::int32_t>(static_cast<std::uint32_t>(crc));
    return r;
}

// Reads the CRCs of a walk's files on a thread of its own while the caller lists, renames, looks up
// and copies: the files in the order they are found while the walk goes on, the rest in the order
// in which the caller will take them. A file is read before the caller takes its value and so
// before anything renames it. Either side that has to wait sleeps until a batch of files has moved
// on: a wake-up per file costs more than reading a small one.
class CrcReader {
public:
    static constexpr size_t kBatch = 16;

    CrcReader() : worker_([this] { work(); }) {}
    ~CrcReader() {
        {
            std::lock_guard lock(mutex_);
            stop_ = true;
        }
        more_.notify_all();
        worker_.join();
    }
    CrcReader(const CrcReader&) = delete;
    CrcReader& operator=(const CrcReader&) = delete;

    // Queues a file and gives its number.
    size_t add(const QString& path) {
        std::unique_lock lock(mutex_);
        paths_.push_back(path);
        results_.emplace_back();
        ready_.push_back(0);
        const size_t number = paths_.size() - 1;
        const bool wake = workerWaiting_ && paths_.size() >= workerNeeds_;
        lock.unlock();
        if (wake) more_.notify_one();
        return number;
    }
    // No file follows; the files will be taken by number in this order, all of them (none given:
    // in the order they were added).
    void close(std::vector<size_t> order = {}) {
        std::unique_lock lock(mutex_);
        if (order.empty()) {
            order.resize(paths_.size());
            std::iota(order.begin(), order.end(), size_t{0});
        }
        order_ = std::move(order);
        closed_ = true;
        lock.unlock();
        more_.notify_one();
    }
    // The value of the file at this place of the order; the places are taken in turn.
    CrcResult take(size_t place) {
        std::unique_lock lock(mutex_);
        Q_ASSERT(closed_);
        const size_t number = order_[place];
        if (!ready_[number]) {
            callerNeeds_ = std::min(place + kBatch, order_.size());
            callerWaiting_ = true;
            read_.wait(lock, [&] { return passed_ >= callerNeeds_; });
            callerWaiting_ = false;
        }
        return std::move(results_[number]);
    }

private:
    // Moves past the places of the order whose files are read; true when the caller is to wake.
    bool pass() {
        while (passed_ < order_.size() && ready_[order_[passed_]])
            ++passed_;
        return callerWaiting_ && passed_ >= callerNeeds_;
    }

    void work() {
        std::vector<char> buffer(static_cast<size_t>(cCRC32::kChunkSize));
        for (size_t found = 0;;) {
            size_t number = 0;
            QString path;
            {
                std::unique_lock lock(mutex_);
                if (!closed_ && found >= paths_.size()) {
                    workerNeeds_ = found + kBatch;
                    workerWaiting_ = true;
                    more_.wait(lock, [&] { return stop_ || closed_ || paths_.size() >= workerNeeds_; });
                    workerWaiting_ = false;
                }
                if (stop_) return;
                if (!closed_) {
                    number = found++;
                } else {
                    const bool wake = pass();
                    if (passed_ < order_.size()) number = order_[passed_];
                    const bool done = passed_ == order_.size();
                    lock.unlock();
                    if (wake) read_.notify_one();
                    if (done) return;
                    lock.lock();
                }
                path = paths_[number];
            }
            CrcResult r = fileCrc(path, buffer, stop_);
            if (stop_) return;
            bool wake = false;
            {
                std::lock_guard lock(mutex_);
                results_[number] = std::move(r);
                ready_[number] = 1;
                wake = closed_ && pass();
            }
            if (wake) read_.notify_one();
        }
    }

    std::vector<QString> paths_;
    std::vector<CrcResult> results_;
    std::vector<char> ready_;
    std::vector<size_t> order_;
    size_t passed_ = 0;      // places of the order whose files are read
    size_t callerNeeds_ = 0; // the caller sleeps until this many places are passed
    size_t workerNeeds_ = 0; // the worker sleeps until this many files are queued
    bool callerWaiting_ = false;
    bool workerWaiting_ = false;
    bool closed_ = false;
    std::atomic<bool> stop_{false};
    std::mutex mutex_;
    std::condition_variable read_, more_;
    std::thread worker_; // last: it starts once everything above is there
};

// A typed folder without its closing separator still means that folder.
QString folderOf(const QString& typed) {
    return WithTrailingSeparator(typed);
}

const QString kNoFolder = QStringLiteral("No folder was given.");

// Copies into a folder that is not there would each fail; the run is not started instead.
bool destinationMissing(const QString& dest, ToolCounts& counts) {
    struct stat st {};
    if (::stat(QFile::encodeName(dest).constData(), &st) == 0 && S_ISDIR(st.st_mode)) return false;
    counts.problems << QStringLiteral("The folder %1 does not exist.").arg(dest);
    return true;
}

// Takes the brackets out of a file's name as a batch "Ren" would, and counts it; a failure is left
// to the caller to count, once for the file.
Outcome renameWithoutBrackets(const QString& folder, const QString& name, QString& newName,
                              ToolCounts& counts) {
    newName = nameWithoutBrackets(name);
    const QString path = folder + name;
    QString why = QStringLiteral("no name left");
    const Outcome outcome =
        newName.isEmpty() ? Outcome::Failed : renameNoReplace(path, folder + newName, why);
    if (outcome == Outcome::Done) {
        ++counts.renamed;
    } else if (outcome == Outcome::Taken) {
        ++counts.skipped;
        counts.problems << QStringLiteral("%1: not renamed, %2 exists already").arg(path, newName);
    } else {
        counts.problems << QStringLiteral("%1: cannot be renamed to \"%2\": %3").arg(path, newName, why);
    }
    return outcome;
}

// Copies a file as a batch "copy" would, and counts it; a failure is left to the caller to count.
Outcome copyCounted(const QString& from, const QString& to, ToolCounts& counts) {
    QString why;
    const Outcome outcome = copyReplacing(from, to, why);
    if (outcome == Outcome::Done) {
        ++counts.copied;
    } else if (outcome == Outcome::Same) {
        ++counts.skipped;
        counts.problems << QStringLiteral("%1: not copied, it is %2 itself").arg(from, to);
    } else {
        counts.problems << QStringLiteral("%1: cannot be copied to %2: %3").arg(from, to, why);
    }
    return outcome;
}

} // namespace

QString nameWithoutBrackets(const QString& name) {
    return ReplaceString(ReplaceString(name, QStringLiteral("("), QString()), QStringLiteral(")"), QString());
}

const QStringList& newFileSpecs() {
    static const QStringList fileSpecs = {"*.atr", "*.exe", "*.xex", "*.bas", "*.lst",
                                          "*.bin", "*.com", "*.dcm", "*.pro"};
    return fileSpecs;
}

QString newFileTargetName(const QString& name) {
    const QString ending = name.right(4).toLower();
    const QString xex = QStringLiteral(".xex");
    if (ending == QLatin1String(".exe"))
        return ReplaceString(ReplaceString(name, QStringLiteral(".exe"), xex), QStringLiteral(".EXE"), xex);
    if (ending == QLatin1String(".com"))
        return ReplaceString(ReplaceString(name, QStringLiteral(".com"), xex), QStringLiteral(".COM"), xex);
    return name;
}

ToolCounts findNewFiles(const QString& cataloguePath, const QString& sourceDir, const QString& destDir,
                        FileSystem& fileSystem, const ToolProgressFn& progress) {
    ToolCounts counts;
    if (IsBlank(sourceDir) || IsBlank(destDir)) {
        counts.problems << kNoFolder;
        return counts;
    }
    // The run adds nothing to the catalogue, so what it knows is read once. A CRC is known when an
    // Everything row holds its text; a text that is not the plain form of a value holds none.
    std::unordered_set<std::int32_t> known;
    for (const QString& text : Catalogue(cataloguePath).crcsByTabNumber(kEverythingTabNumber)) {
        bool ok = false;
        const std::int32_t value = text.toInt(&ok);
        if (ok && crcText(value) == text) known.insert(value);
    }
    const QString source = folderOf(sourceDir), dest = folderOf(destDir);
    if (destinationMissing(dest, counts)) return counts;

    // The tree is listed once, and its files are read as they are found; each file spec's pass then
    // takes its files in the walk's order. A file that a pass renames keeps its extension, so no
    // other pass would have seen it.
    const QStringList& fileSpecs = newFileSpecs();
    struct Job {
        QString folder;
        QString name;
        QString path;
        size_t crc = 0; // the reader's number
    };
    std::vector<std::vector<Job>> passes(static_cast<size_t>(fileSpecs.size()));
    CrcReader crcs;
    walkTree(fileSystem, source, [&](const QString& folder, const std::vector<DirEntry>& entries) {
        if (progress) progress(folder, counts.scanned);
        for (const DirEntry& e : entries) {
            if (!isPlainFile(e)) continue;
            for (qsizetype k = 0; k < fileSpecs.size(); ++k) {
                if (matchesFileSpec(e.name, fileSpecs[k])) {
                    const QString path = folder + e.name;
                    passes[static_cast<size_t>(k)].push_back({folder, e.name, path, crcs.add(path)});
                    break;
                }
            }
        }
    });
    std::vector<Job> jobs;
    std::vector<size_t> order;
    for (const Job& job : std::views::join(passes)) {
        jobs.push_back(job);
        order.push_back(job.crc);
    }
    crcs.close(std::move(order));

    for (size_t place = 0; place < jobs.size(); ++place) {
        const Job& job = jobs[place];
        QString name = job.name;
        QString path = job.path;
        if (progress) progress(path, counts.scanned);
        ++counts.scanned;
        const CrcResult crc = crcs.take(place);
        bool failed = false;
        if (hasBracket(name)) {
            QString newName;
            const Outcome renamed = renameWithoutBrackets(job.folder, name, newName, counts);
            if (renamed == Outcome::Done) {
                name = newName;
                path = job.folder + newName;
            }
            failed = renamed == Outcome::Failed;
        }
        if (!crc.error.isNull()) {
            failed = true;
            counts.problems << crc.error;
        } else if (crc.crc != 0 && !known.contains(crc.crc)) {
            failed = copyCounted(path, dest + newFileTargetName(name), counts) == Outcome::Failed || failed;
        }
        if (failed) ++counts.failed;
    }
    return counts;
}

std::vector<DuplicateGroup> collectDuplicateGroups(const QString& cataloguePath, const QString& sourceDir,
                                                   FileSystem& fileSystem, const ToolProgressFn& progress,
                                                   ToolCounts* scan) {
    ToolCounts counts;
    std::vector<DuplicateGroup> groups;
    if (IsBlank(sourceDir)) {
        counts.problems << kNoFolder;
        if (scan) *scan = counts;
        return groups;
    }
    Catalogue catalogue(cataloguePath); // a missing catalogue fails before the long walk
    std::vector<QString> paths;
    CrcReader crcs;
    walkTree(fileSystem, folderOf(sourceDir),
             [&](const QString& folder, const std::vector<DirEntry>& entries) {
                 if (progress) progress(folder, counts.scanned);
                 for (const DirEntry& e : entries) {
                     if (!isPlainFile(e)) continue;
                     paths.push_back(folder + e.name);
                     crcs.add(paths.back());
                 }
             });
    crcs.close();

    struct Scanned {
        QString path;
        QString filename; // as the table keeps it
        QString crc;
    };
    std::vector<Scanned> files;
    files.reserve(paths.size());
    for (size_t i = 0; i < paths.size(); ++i) {
        if (progress) progress(paths[i], counts.scanned);
        ++counts.scanned;
        const CrcResult crc = crcs.take(i);
        if (!crc.error.isNull()) {
            ++counts.failed;
            counts.problems << crc.error;
            continue;
        }
        files.push_back(
            {paths[i], ReplaceString(paths[i], QStringLiteral(","), QString()), crcText(crc.crc)});
    }
    {
        Transaction transaction(catalogue);
        catalogue.deleteDiskFiles();
        for (const Scanned& f : files)
            catalogue.addDiskFile({f.crc, f.filename, false});
        transaction.commit();
    }

    // The groups as the table's queries give them: by CRC text, the longest Filename first.
    QHash<QString, size_t> groupOf;
    std::vector<std::vector<const Scanned*>> members;
    for (const Scanned& f : files) {
        auto it = groupOf.constFind(f.crc);
        if (it == groupOf.cend()) {
            it = groupOf.insert(f.crc, members.size());
            members.emplace_back();
        }
        members[*it].push_back(&f);
    }
    groups.reserve(members.size());
    for (auto& group : members) {
        std::stable_sort(group.begin(), group.end(), [](const Scanned* a, const Scanned* b) {
            return a->filename.size() > b->filename.size();
        });
        DuplicateGroup g;
        g.crc = group.front()->crc;
        for (const Scanned* f : group)
            g.files << f->path;
        groups.push_back(std::move(g));
    }
    if (scan) *scan = counts;
    return groups;
}

ToolCounts copyUniqueFiles(const std::vector<DuplicateGroup>& groups, const QString& destDir,
                           const ToolProgressFn& progress) {
    ToolCounts counts;
    if (IsBlank(destDir)) {
        counts.problems << kNoFolder;
        return counts;
    }
    const QString dest = folderOf(destDir);
    if (destinationMissing(dest, counts)) return counts;
    for (const DuplicateGroup& group : groups) {
        if (group.files.isEmpty()) continue;
        const QString& kept = group.files.front();
        if (progress) progress(kept, counts.scanned);
        ++counts.scanned;
        if (copyCounted(kept, dest + GetFileName(kept), counts) == Outcome::Failed) ++counts.failed;
    }
    return counts;
}

QStringList duplicatesToRemove(const std::vector<DuplicateGroup>& groups, const QString& targetDir) {
    QStringList doomed;
    if (IsBlank(targetDir)) return doomed;
    const QString target = folderOf(targetDir);
    // A file a group keeps is never offered for deletion, whatever name another group's file has.
    QSet<QString> listed;
    for (const DuplicateGroup& group : groups)
        if (!group.files.isEmpty()) listed.insert(group.files.front());
    for (const DuplicateGroup& group : groups) {
        for (qsizetype i = 1; i < group.files.size(); ++i) {
            const QString path = target + GetFileName(group.files[i]);
            struct stat st {};
            if (listed.contains(path) || ::lstat(QFile::encodeName(path).constData(), &st) != 0 ||
                S_ISDIR(st.st_mode))
                continue;
            listed.insert(path);
            doomed << path;
        }
    }
    return doomed;
}

ToolCounts removeFiles(const QStringList& files, const ToolProgressFn& progress) {
    ToolCounts counts;
    for (const QString& path : files) {
        if (progress) progress(path, counts.scanned);
        ++counts.scanned;
        if (::unlink(QFile::encodeName(path).constData()) == 0) {
            ++counts.deleted;
        } else {
            ++counts.failed;
            counts.problems << QStringLiteral("%1: cannot be deleted: %2").arg(path, errnoText(errno));
        }
    }
    return counts;
}

ToolCounts removeBracketsFromNames(const QString& folder, const QString& fileSpec, FileSystem& fileSystem,
                                   const ToolProgressFn& progress) {
    ToolCounts counts;
    if (IsBlank(folder)) {
        counts.problems << kNoFolder;
        return counts;
    }
    walkTree(fileSystem, folderOf(folder), [&](const QString& dir, const std::vector<DirEntry>& entries) {
        if (progress) progress(dir, counts.scanned);
        for (const DirEntry& e : entries) {
            if (!isPlainFile(e) || !matchesFileSpec(e.name, fileSpec)) continue;
            const QString path = dir + e.name;
            if (progress) progress(path, counts.scanned);
            ++counts.scanned;
            QString newName;
            if (hasBracket(e.name) && renameWithoutBrackets(dir, e.name, newName, counts) == Outcome::Failed)
                ++counts.failed;
        }
    });
    return counts;
}

std::vector<FolderRow> buildFolderTable(const QString& root, FileSystem& fileSystem) {
    std::vector<FolderRow> rows;
    if (IsBlank(root)) return rows;
    // A folder's sub-folders get their rows side by side when it is listed; each one's own
    // sub-folders follow when its turn comes, so its row is known as their parent.
    struct Pending {
        QString folder;
        int row = 0;
    };
    std::vector<Pending> stack{{folderOf(root), 0}};
    while (!stack.empty()) {
        const Pending at = std::move(stack.back());
        stack.pop_back();
        const size_t mark = stack.size();
        for (const DirEntry& e : fileSystem.list(at.folder)) {
            if (e.name.startsWith(QLatin1Char('.'))) continue;
            if (e.attributes != attr::Directory && e.attributes != attr::PlainFolder) continue;
            const int row = static_cast<int>(rows.size()) + 1;
            rows.push_back({row, at.row, e.name});
            stack.push_back({at.folder + e.name + at.folder.back(), row});
        }
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(mark), stack.end());
    }
    return rows;
}

} // namespace ql
