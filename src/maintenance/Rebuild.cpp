#include "Rebuild.h"
#include "Crc32.h"
#include "ProgramList.h"
#include "Store.h"
#include "StringFuncs.h"

#include <QFile>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <sys/stat.h>
#include <thread>

namespace ql {

QString programNameFor(const QString& fileName) {
    const qsizetype n = fileName.size();
    if (n >= 4 && fileName[n - 4] == QLatin1Char('.')) return fileName.left(n - 4);
    return fileName;
}

int programTypeFor(const QString& fileName) {
    static const std::pair<const char*, int> kTypes[] = {
        {".xex", 0}, {".bin", 0}, {".cas", 0}, {".bas", 0}, {".rom", 0}, {".lst", 0}, {".atr", 1},
        {".dcm", 1}, {".xfd", 1}, {".xfz", 1}, {".atz", 1}, {".pro", 1}, {".msa", 3}, {".st", 3},
        {".a26", 4}, {".a52", 5}, {".a78", 6}, {".jag", 7}, {".lnx", 8}};
    for (const auto& [ending, type] : kTypes)
        if (fileName.endsWith(QLatin1String(ending), Qt::CaseInsensitive)) return type;
    return -1;
}

bool isBasicName(const QString& fileName) {
    const QString f = fileName.toLower();
    return f.contains(QLatin1String("basic")) || f.contains(QLatin1String(" bas")) ||
           f.contains(QLatin1String("-bas"));
}

namespace {

bool isCatalogueFile(const QString& fileName) {
    const QString f = fileName.toLower();
    return f == QLatin1String("atari.mdb") || f == QLatin1String("atari.ldb");
}

bool extensionIn(const QString& fileName, const QString& list) {
    return list.contains(GetExtension(fileName).toLower());
}

} // namespace

bool isKnownProgramFile(const QString& fileName) {
    return !isCatalogueFile(fileName) && extensionIn(fileName, KnownExtensions);
}

bool isCartridgeFile(const QString& fileName) {
    return !isCatalogueFile(fileName) && extensionIn(fileName, QStringLiteral(".rom,.bin"));
}

QString cartridgeNameFor(const QString& fileName) {
    // A name too short to have an extension of three letters keeps what it has.
    return fileName.size() >= 4 ? fileName.left(fileName.size() - 4) : fileName;
}

QString everythingRoot(const QString& atariDir) {
    const bool windows = HasDriveLetter(atariDir) ||
                         (atariDir.contains(QLatin1Char('\\')) && !atariDir.contains(QLatin1Char('/')));
    return atariDir + (windows ? QLatin1Char('\\') : QLatin1Char('/'));
}

namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr auto kProgressInterval = std::chrono::milliseconds(40);

struct FoundFile {
    QString folder; // ends in a separator
    QString name;
    std::int64_t size = 0;
};

struct Target {
    int id = 0; // kCartridgeRow, a tab row, or kEverythingTabNumber
    QString category;
    QString root;
    bool cartridges = false;
    std::vector<FoundFile> files;
    size_t firstJob = 0; // index of its first file among all files that need a CRC
};

std::int64_t sizeOf(const QString& path) {
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_size : 0;
}

// One level: its own files first, then each sub-folder depth first. The sub-folders are gathered
// before any is entered. Only plain folders are entered: a link, a hidden folder or one with any
// other flag is not, so a walk never leaves the tree and never loops.
class Walker {
public:
    Walker(FileSystem& fs, bool cartridges, const std::function<void(size_t)>& found)
        : fs_(fs), cartridges_(cartridges), found_(found) {}

    void walk(const QString& folder, std::vector<FoundFile>& out) {
        if (folder.contains(QLatin1String("__"))) return;
        if (IsBlank(folder)) return;
        const std::vector<DirEntry> entries = fs_.list(folder);
        found_(out.size()); // a tree of folders without a single program still shows its progress
        for (const DirEntry& e : entries) {
            if (e.attributes & (attr::Directory | attr::Hidden)) continue;
            if (!(cartridges_ ? isCartridgeFile(e.name) : isKnownProgramFile(e.name))) continue;
            const QString path = folder + e.name;
            out.push_back({folder, e.name, sizeOf(path)});
            found_(out.size());
        }
        std::vector<QString> subFolders;
        for (const DirEntry& e : entries) {
            if (!(e.attributes & attr::Directory) || e.name.startsWith(QLatin1Char('.'))) continue;
            if (e.attributes == attr::Directory || e.attributes == attr::PlainFolder)
                subFolders.push_back(e.name);
        }
        for (const QString& name : subFolders)
            walk(folder + name + separatorOf(folder), out);
    }

private:
    static QChar separatorOf(const QString& folder) {
        return folder.endsWith(QLatin1Char('\\')) ? QLatin1Char('\\') : QLatin1Char('/');
    }

    FileSystem& fs_;
    bool cartridges_;
    const std::function<void(size_t)>& found_;
};

// Takes the CRCs of a list of files on worker threads, in any order; the caller collects them in
// list order. The UI thread only waits for a result, a few tens of milliseconds at a time.
class CrcPool {
public:
    CrcPool(std::vector<QString> paths, int threads)
        : paths_(std::move(paths)), results_(paths_.size()), ready_(paths_.size(), 0) {
        for (int i = 0; i < threads && !paths_.empty(); ++i)
            workers_.emplace_back([this] { work(); });
    }
    ~CrcPool() {
        stop_ = true;
        for (auto& w : workers_)
            w.join();
    }
    CrcPool(const CrcPool&) = delete;
    CrcPool& operator=(const CrcPool&) = delete;

    // The CRC of job i, or nothing if it is not done within the wait.
    std::optional<std::int32_t> result(size_t i, std::chrono::milliseconds wait) {
        std::unique_lock lock(mutex_);
        waiting_ = true;
        const bool ready = done_.wait_for(lock, wait, [&] { return ready_[i] != 0; });
        waiting_ = false;
        if (!ready) return std::nullopt;
        return results_[i];
    }

private:
    void work() {
        cCRC32 crc;
        cBinaryFileStream stream;
        for (size_t i = next_++; i < paths_.size() && !stop_; i = next_++) {
            // A stop ends even a read of many gigabytes, so a failed rebuild gives the form back at once.
            const std::optional<std::int32_t> value = fileCrcOrZero(crc, stream, paths_[i], stop_);
            if (!value) return;
            bool wake = false;
            {
                std::lock_guard lock(mutex_);
                results_[i] = *value;
                ready_[i] = 1;
                wake = waiting_;
            }
            if (wake) done_.notify_all(); // a wake-up per file would cost more than the file
        }
    }

    std::vector<QString> paths_;
    std::vector<std::int32_t> results_;
    std::vector<char> ready_;
    std::atomic<size_t> next_{0};
    std::atomic<bool> stop_{false};
    std::mutex mutex_;
    bool waiting_ = false;
    std::condition_variable done_;
    std::vector<std::thread> workers_;
};

int crcThreadCount(int asked) {
    if (asked > 0) return asked;
    const unsigned cores = std::thread::hardware_concurrency();
    return static_cast<int>(std::clamp(cores, 1u, 4u));
}

} // namespace

RebuildResult rebuildCatalogue(const RebuildRequest& request, FileSystem& fileSystem,
                               const RebuildProgressFn& progress) {
    RebuildProgress p;
    const auto report = [&](RebuildProgress::Event event, int target = -1) {
        p.event = event;
        p.target = target;
        if (progress) progress(p);
    };
    auto lastReport = SteadyClock::now();
    const auto reportNowAndThen = [&](RebuildProgress::Event event) {
        if (SteadyClock::now() - lastReport < kProgressInterval) return;
        lastReport = SteadyClock::now();
        report(event);
    };

    // Everything is listed first, so the bar knows the whole way; the files are read after.
    std::vector<Target> targets;
    // A typed folder without its closing separator still means that folder.
    const auto root = [](const QString& source) {
        return IsBlank(source) ? source : WithTrailingSeparator(source);
    };
    if (request.cartridgeSource)
        targets.push_back({kCartridgeRow, QString(), root(*request.cartridgeSource), true, {}, 0});
    for (const TabTarget& tab : request.tabs)
        targets.push_back({tab.row, tab.name, root(tab.source), false, {}, 0});
    if (request.everything) {
        Catalogue catalogue(request.cataloguePath);
        const auto config = catalogue.config();
        // Blanks around a stored AtariDir are no part of the folder, as everywhere else it is read.
        const QString atariDir = config ? config->atariDir.trimmed() : QString();
        // Without an AtariDir there is no tree to walk; the root of the disk is not meant.
        const QString top = atariDir.isEmpty() ? QString() : everythingRoot(atariDir);
        targets.push_back({kEverythingTabNumber, kEverything, top, false, {}, 0});
    }
    std::vector<QString> jobs;
    for (Target& t : targets) {
        const std::int64_t before = p.filesTotal;
        const std::function<void(size_t)> found = [&](size_t n) {
            p.filesTotal = before + static_cast<std::int64_t>(n);
            reportNowAndThen(RebuildProgress::Event::Walking);
        };
        Walker(fileSystem, t.cartridges, found).walk(t.root, t.files);
        t.firstJob = jobs.size();
        for (const FoundFile& f : t.files) {
            if (!t.cartridges) {
                jobs.push_back(f.folder + f.name);
                p.bytesTotal += f.size;
            }
        }
        p.filesTotal = before + static_cast<std::int64_t>(t.files.size());
    }
    report(RebuildProgress::Event::Walking);

    CrcPool pool(std::move(jobs), crcThreadCount(request.crcThreads));
    Catalogue catalogue(request.cataloguePath);
    RebuildResult result;
    bool tabsBegun = false;
    const auto beginTabs = [&] {
        if (tabsBegun) return;
        tabsBegun = true;
        report(RebuildProgress::Event::TabsBegin);
    };
    for (const Target& t : targets) {
        if (!t.cartridges) beginTabs();
        if (t.id == kEverythingTabNumber) report(RebuildProgress::Event::TabsEnd);
        report(RebuildProgress::Event::TargetStarted, t.id);
        Transaction transaction(catalogue);
        if (t.cartridges) {
            catalogue.deleteCartridges();
            for (const FoundFile& f : t.files) {
                catalogue.addCartridge(cartridgeNameFor(f.name), f.folder + f.name);
                ++result.cartridges;
                ++p.filesDone;
            }
        } else {
            catalogue.deleteProgramsByTabNumber(t.id);
            for (size_t i = 0; i < t.files.size(); ++i) {
                const FoundFile& f = t.files[i];
                std::optional<std::int32_t> crc;
                while (!(crc = pool.result(t.firstJob + i, kProgressInterval)))
                    report(RebuildProgress::Event::Files);
                ProgramRecord r;
                r.type = programTypeFor(f.name);
                r.tabNumber = t.id;
                r.category = t.category;
                r.crc = crcText(*crc);
                r.name = programNameFor(f.name);
                r.fileName1 = ReplaceString(f.folder + f.name, QStringLiteral(","), QString());
                r.fileName2 = r.fileName3 = r.fileName4 = QStringLiteral(" ");
                r.rating = 0;
                r.machineType = 1;
                r.basic = isBasicName(f.name);
                catalogue.addProgram(r);
                ++result.programs;
                ++p.filesDone;
                p.bytesDone += f.size;
                result.bytes += f.size;
                reportNowAndThen(RebuildProgress::Event::Files);
            }
        }
        report(RebuildProgress::Event::Files);
        transaction.commit();
        result.files += static_cast<std::int64_t>(t.files.size());
        report(RebuildProgress::Event::TargetDone, t.id);
    }
    beginTabs();
    if (!request.everything) report(RebuildProgress::Event::TabsEnd);
    return result;
}

RebuildRequest savedTabsRequest(const QString& cataloguePath, const std::vector<int>& rows, bool cartridges,
                                bool everything) {
    RebuildRequest request;
    request.cataloguePath = cataloguePath;
    request.everything = everything;
    Catalogue catalogue(cataloguePath);
    std::vector<TabRecord> tabs = catalogue.tabs();
    std::sort(tabs.begin(), tabs.end(), [](const auto& a, const auto& b) { return a.tabCode < b.tabCode; });
    for (const TabRecord& tab : tabs) {
        const int row = tab.tabCode - 1;
        if (row == kCartridgeRow) {
            if (cartridges && !IsBlank(tab.tabSource)) request.cartridgeSource = tab.tabSource;
        } else if (row >= 0 && row <= kLastTabRow) {
            const bool chosen = rows.empty() ? !IsBlank(tab.tabSource)
                                             : std::find(rows.begin(), rows.end(), row) != rows.end();
            if (chosen) request.tabs.push_back({row, tab.tabName, tab.tabSource});
        }
    }
    return request;
}

} // namespace ql
