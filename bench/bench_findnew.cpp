// Find-new against a bare CRC pass over the same files, both from the page cache, in CPU time and
// wall time. Most files are known to the catalogue and one in fifty is new, as when a downloaded
// batch is checked against a large library.
// Usage: bench_findnew [FOLDER]   (default: a temporary folder, removed at the end)
#include "FolderTools.h"
#include "LinuxHost.h"
#include "Startup.h"
#include "Store.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

namespace {

constexpr int kFiles = 20000;
const char* const kExtensions[] = {"atr", "xex", "dcm", "bas", "bin", "com", "exe", "pro", "lst"};

void generate(const QString& root) {
    QRandomGenerator rng(5200);
    QByteArray block(1 << 20, Qt::Uninitialized);
    rng.fillRange(reinterpret_cast<quint32*>(block.data()), block.size() / 4);
    for (int i = 0; i < kFiles; ++i) {
        const QString dir =
            QStringLiteral("%1/__NEW/%2/Batch %3/").arg(root).arg(QChar('A' + (i / 1000) % 26)).arg(i / 40);
        if (i % 40 == 0) QDir().mkpath(dir);
        // 8-bit sizes: disk images about 90-140 KB, programs 4-64 KB.
        const qint64 size = i % 3 ? 90'000 + rng.bounded(50'000) : 4'000 + rng.bounded(60'000);
        QFile f(dir + QStringLiteral("Program %1.%2").arg(i).arg(QLatin1String(kExtensions[i % 9])));
        if (!f.open(QIODevice::WriteOnly)) throw std::runtime_error("cannot write the tree");
        block[0] = static_cast<char>(i);
        block[1] = static_cast<char>(i >> 8);
        const qint64 offset = rng.bounded(static_cast<quint32>(block.size() / 2));
        f.write(block.constData() + offset, size);
    }
}

quint32 fileCrc(const QString& path, std::vector<char>& buffer, qint64& bytes) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd < 0) return 0;
    uLong crc = crc32(0L, Z_NULL, 0);
    ssize_t n;
    while ((n = ::read(fd, buffer.data(), buffer.size())) > 0) {
        crc = crc32(crc, reinterpret_cast<const Bytef*>(buffer.data()), static_cast<uInt>(n));
        bytes += n;
    }
    ::close(fd);
    return static_cast<quint32>(crc);
}

struct Times {
    double cpu = 0, wall = 0;
};

double cpuNow() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

template <typename F> Times timed(F&& f) {
    const double cpu = cpuNow();
    const auto wall = std::chrono::steady_clock::now();
    f();
    return {cpuNow() - cpu, std::chrono::duration<double>(std::chrono::steady_clock::now() - wall).count()};
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir temp;
    const QString root = argc > 1 ? QDir(QString::fromLocal8Bit(argv[1])).absolutePath() : temp.path();
    const QString source = root + QStringLiteral("/__NEW/");
    if (!QDir(source).exists()) {
        std::printf("generating %d files under %s ...\n", kFiles, qPrintable(source));
        generate(root);
    }
    QStringList paths;
    for (QDirIterator it(source, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        paths << it.next();
    std::sort(paths.begin(), paths.end());

    // The library knows 49 files in 50: their CRCs are Everything rows.
    const QString catalogue = root + "/" + ql::kCatalogueFileName;
    for (const char* end : {"", "-wal", "-shm"})
        QFile::remove(catalogue + QLatin1String(end));
    ql::Catalogue::create(catalogue);
    std::vector<char> buffer(64 * 1024);
    qint64 bytes = 0;
    {
        ql::Catalogue c(catalogue);
        c.addConfig({QStringLiteral("XP"), root + "/"});
        ql::Transaction t(c);
        for (int i = 0; i < paths.size(); ++i) {
            const quint32 crc = fileCrc(paths[i], buffer, bytes);
            if (i % 50 == 0) continue;
            ql::ProgramRecord r;
            r.category = ql::kEverything;
            r.tabNumber = ql::kEverythingTabNumber;
            r.name = QStringLiteral("P%1").arg(i);
            r.fileName1 = paths[i];
            r.crc = QString::number(static_cast<qint32>(crc));
            c.addProgram(r);
        }
        t.commit();
    }

    const QString dest = root + QStringLiteral("/_Unique/");
    ql::LinuxFileSystem fs;
    Times bare{1e9, 1e9}, tool{1e9, 1e9};
    ql::ToolCounts counts;
    // Best of three of each, taken in turns, so a noisy moment does not decide.
    for (int round = 0; round < 3; ++round) {
        QDir(dest).removeRecursively();
        QDir().mkpath(dest);
        const Times b = timed([&] {
            bytes = 0;
            quint32 sink = 0;
            for (const QString& p : paths)
                sink ^= fileCrc(p, buffer, bytes);
            if (sink == 42) std::puts("");
        });
        const Times t = timed([&] { counts = ql::findNewFiles(catalogue, source, dest, fs); });
        bare = {std::min(bare.cpu, b.cpu), std::min(bare.wall, b.wall)};
        tool = {std::min(tool.cpu, t.cpu), std::min(tool.wall, t.wall)};
    }
    std::printf("files %lld, %.2f GB; find-new looked at %d, copied %d\n",
                static_cast<long long>(paths.size()), bytes / 1e9, counts.scanned, counts.copied);
    std::printf("bare CRC pass   cpu %7.3f s  wall %7.3f s\n", bare.cpu, bare.wall);
    std::printf("find-new        cpu %7.3f s  wall %7.3f s\n", tool.cpu, tool.wall);
    std::printf("ratio           cpu %7.2fx   wall %7.2fx   (target: at most 1.20x)\n", tool.cpu / bare.cpu,
                tool.wall / bare.wall);
    return 0;
}
