#include "Crc32.h"
#include "TestWorld.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

using namespace ql;
using namespace ql::test;

TEST(Crc32Test, KnownValuesAndFilesAroundChunkBoundaries) {
    cCRC32 crc;
    for (const auto& [data, text] :
         {std::pair<QByteArray, const char*>{"", "0"}, {"abc", "891568578"}, {"123456789", "-873187034"}})
        EXPECT_EQ(crcText(crc.GetByteArrayCrc32(data)), text) << data.constData();

    TestWorld world;
    cBinaryFileStream stream; // one stream for every file, as a walker keeps it: each read restarts
    const std::atomic<bool> stop{false};
    const qsizetype chunk = cCRC32::kChunkSize;
    for (qsizetype size : {qsizetype(0), chunk - 1, chunk, chunk + 1, 2 * chunk + 3}) {
        QByteArray bytes(size, Qt::Uninitialized); // every byte value, in no simple order
        for (qsizetype i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 131 + i / 251);
        const QString path = world.writeFile(QString::number(size), bytes);
        EXPECT_EQ(fileCrcOrZero(crc, stream, path, stop), crc.GetByteArrayCrc32(bytes)) << size;
        EXPECT_FALSE(stream.isOpen()) << "reading to the end closes the file";
        EXPECT_EQ(stream.Length(), size) << "the length outlives the file";
    }
}

TEST(Crc32Test, NoFileGivesZeroNotAnError) {
    TestWorld world;
    ASSERT_TRUE(QDir().mkpath(world.path("folder")));
    ASSERT_EQ(::mkfifo(QFile::encodeName(world.path("pipe.atr")).constData(), 0600), 0);
    cCRC32 crc;
    cBinaryFileStream stream;
    const std::atomic<bool> stop{true};
    for (const char* name : {"missing.atr", "folder", "pipe.atr"}) { // a pipe neither blocks nor counts
        EXPECT_EQ(fileCrcOrZero(crc, stream, world.path(name)), 0) << name;
        EXPECT_EQ(fileCrcOrZero(crc, stream, world.path(name), stop), 0) << name << ": 0, not stopped";
    }
    EXPECT_THROW(stream.file(world.path("missing.atr")), FileError);
}

TEST(Crc32Test, FileOfMoreThan2GiBIsReadWholeUnlessStopped) {
    // In memory when it can be, where reading a hole costs no page of its own.
    TestWorld world;
    QTemporaryDir fast(QDir("/dev/shm").exists() ? "/dev/shm/quaylight-XXXXXX" : world.path("huge-XXXXXX"));
    const QString path = fast.filePath("huge.atr");
    const std::int64_t zeros = std::int64_t(1) << 31; // a hole the disk does not hold
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly) && f.write("ATARI") == 5 &&
                ::ftruncate(f.handle(), 5 + zeros) == 0 && f.seek(5 + zeros) && f.write("END") == 3);
    f.close();

    cCRC32 crc;
    cBinaryFileStream stream;
    const std::atomic<bool> stop{true};
    EXPECT_EQ(fileCrcOrZero(crc, stream, path, stop), std::nullopt) << "stopped before the first chunk";
    EXPECT_FALSE(stream.isOpen());

    // The reference: zlib over the pieces, the zeros by doubling a 1 MiB block.
    const auto z = [](uLong c, const QByteArray& b) {
        return crc32(c, reinterpret_cast<const Bytef*>(b.constData()), static_cast<uInt>(b.size()));
    };
    uLong zeroCrc = z(0, QByteArray(1 << 20, '\0'));
    for (std::int64_t len = 1 << 20; len < zeros; len *= 2)
        zeroCrc = crc32_combine(zeroCrc, zeroCrc, len);
    const uLong expected = z(crc32_combine(z(0, "ATARI"), zeroCrc, zeros), "END");
    stream.file(path);
    EXPECT_EQ(stream.Length(), 8 + zeros);
    EXPECT_EQ(crc.GetFileCrc32(stream), static_cast<std::int32_t>(static_cast<std::uint32_t>(expected)));
}
