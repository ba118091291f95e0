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

namespace {

// The byte-at-a-time loop over the table, as an independent reference for zlib: a wrong table entry
// shows as a mismatch, since pattern() holds every byte value.
std::int32_t tableCrc(const cCRC32& crc, const QByteArray& bytes) {
    std::uint32_t c = 0xFFFFFFFFu;
    for (char b : bytes)
        c = (c >> 8) ^ static_cast<std::uint32_t>(crc.table()[(c ^ static_cast<std::uint8_t>(b)) & 0xFF]);
    return static_cast<std::int32_t>(~c);
}

QByteArray pattern(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 131 + i / 251) & 0xFF);
    return bytes;
}

// A file of head, a hole of zeros the disk does not hold, and tail.
void writeSparse(const QString& path, const QByteArray& head, std::int64_t zeros, const QByteArray& tail) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    ASSERT_EQ(f.write(head), head.size());
    ASSERT_EQ(::ftruncate(f.handle(), head.size() + zeros), 0);
    ASSERT_TRUE(f.seek(head.size() + zeros));
    ASSERT_EQ(f.write(tail), tail.size());
}

} // namespace

TEST(Crc32Test, KnownValuesAsSignedDecimal) {
    TestWorld world;
    cCRC32 crc;
    cBinaryFileStream stream;
    for (const auto& [data, text] :
         {std::pair<QByteArray, const char*>{"", "0"}, {"abc", "891568578"}, {"123456789", "-873187034"}}) {
        EXPECT_EQ(crcText(crc.GetByteArrayCrc32(data)), text) << data.constData();
        stream.file(world.writeFile("f" + QString::number(data.size()), data));
        EXPECT_EQ(crcText(crc.GetFileCrc32(stream)), text) << data.constData();
    }
}

TEST(Crc32Test, FilesAroundChunkBoundariesMatchTheTableLoop) {
    TestWorld world;
    const qsizetype chunk = cCRC32::kChunkSize;
    const qsizetype sizes[] = {1,         8195,  8196,      8197,      16392,
                               chunk - 1, chunk, chunk + 1, 2 * chunk, 2 * chunk + 3};
    cCRC32 crc;
    cBinaryFileStream stream; // one stream for every file, as a walker keeps it
    for (qsizetype size : sizes) {
        const QByteArray bytes = pattern(size);
        const QString path = world.writeFile(QStringLiteral("chunk_%1").arg(size), bytes);
        stream.file(path);
        EXPECT_EQ(crc.GetFileCrc32(stream), tableCrc(crc, bytes)) << size;
        EXPECT_FALSE(stream.isOpen()) << "reading to the end closes the file";
        EXPECT_EQ(stream.Length(), size) << "the length outlives the file";
    }
}

TEST(Crc32Test, ReadHandsOutTheTailAndKeepsTheRestOfTheBuffer) {
    TestWorld world;
    cBinaryFileStream stream;
    stream.file(world.writeFile("ten", "0123456789"));
    char buffer[8];
    EXPECT_EQ(stream.Read(buffer, 8, true), 8);
    EXPECT_EQ(QByteArray(buffer, 8), "01234567");
    EXPECT_EQ(stream.Read(buffer, 8, false), 2);
    EXPECT_EQ(QByteArray(buffer, 8), "89234567");
    EXPECT_TRUE(stream.isOpen());
    EXPECT_EQ(stream.Read(buffer, 8, false), 0);
    EXPECT_FALSE(stream.isOpen());

    // A new file on the same stream: the position restarts only with pInitial.
    stream.file(world.writeFile("four", "abcd"));
    EXPECT_EQ(stream.Position(), 10);
    EXPECT_EQ(stream.Read(buffer, 8, true), 4);
    EXPECT_EQ(QByteArray(buffer, 4), "abcd");
}

TEST(Crc32Test, SettingAFileClosesOneReadInPart) {
    TestWorld world;
    cCRC32 crc;
    cBinaryFileStream stream;
    stream.file(world.writeFile("first", pattern(100)));
    char buffer[10];
    ASSERT_EQ(stream.Read(buffer, 10, true), 10);
    stream.file(world.writeFile("second", pattern(50)));
    EXPECT_EQ(crc.GetFileCrc32(stream), crc.GetByteArrayCrc32(pattern(50)));
}

TEST(Crc32Test, SameContentsSameValueAndMissingFilesGiveZero) {
    TestWorld world;
    cCRC32 crc;
    cBinaryFileStream stream;
    const QByteArray bytes = pattern(5000);
    const std::int32_t a = fileCrcOrZero(crc, stream, world.writeFile("Star Raiders.atr", bytes));
    const std::int32_t b = fileCrcOrZero(crc, stream, world.writeFile("copy/other name.xex", bytes));
    EXPECT_EQ(a, b);
    EXPECT_NE(a, 0);
    EXPECT_EQ(fileCrcOrZero(crc, stream, world.path("missing.atr")), 0);
    EXPECT_EQ(fileCrcOrZero(crc, stream, world.path("copy")), 0) << "a folder is no file";
    ASSERT_EQ(::mkfifo(QFile::encodeName(world.path("pipe.atr")).constData(), 0600), 0);
    EXPECT_EQ(fileCrcOrZero(crc, stream, world.path("pipe.atr")), 0) << "a pipe neither blocks nor counts";
    EXPECT_THROW(stream.file(world.path("missing.atr")), FileError);
}

TEST(Crc32Test, FileOfMoreThan2GiBIsReadWhole) {
    // In memory when it can be, where reading a hole costs no page of its own.
    TestWorld world;
    const QString shm = QStringLiteral("/dev/shm");
    QTemporaryDir fast(QDir(shm).exists() ? shm + "/quaylight-XXXXXX" : world.path("huge-XXXXXX"));
    ASSERT_TRUE(fast.isValid());
    const QByteArray head = "ATARI", tail = "END";
    const std::int64_t zeros = (std::int64_t(1) << 31) + 1;
    const QString path = fast.filePath("huge.atr");
    writeSparse(path, head, zeros, tail);
    // The reference: zlib over the pieces, the zeros by doubling a 1 MiB block.
    const auto z = [](uLong crc, const QByteArray& b) {
        return crc32(crc, reinterpret_cast<const Bytef*>(b.constData()), static_cast<uInt>(b.size()));
    };
    std::int64_t zeroLen = 1 << 20;
    uLong zeroCrc = z(0, QByteArray(zeroLen, '\0'));
    for (; zeroLen * 2 <= zeros; zeroLen *= 2)
        zeroCrc = crc32_combine(zeroCrc, zeroCrc, zeroLen);
    zeroCrc = crc32_combine(zeroCrc, z(0, QByteArray(zeros - zeroLen, '\0')), zeros - zeroLen);
    const uLong expected = z(crc32_combine(z(0, head), zeroCrc, zeros), tail);

    cCRC32 crc;
    cBinaryFileStream stream;
    stream.file(path);
    EXPECT_EQ(stream.Length(), head.size() + zeros + tail.size());
    EXPECT_EQ(crc.GetFileCrc32(stream), static_cast<std::int32_t>(static_cast<std::uint32_t>(expected)));
}

TEST(Crc32Test, StopEndsTheReadBeforeItsNextChunk) {
    TestWorld world;
    const QString huge = world.path("huge.atr");
    writeSparse(huge, "ATARI", std::int64_t(4) << 30, "");
    const QByteArray bytes = pattern(2 * cCRC32::kChunkSize + 3);
    const QString small = world.writeFile("small.atr", bytes);
    cCRC32 crc;
    cBinaryFileStream stream;
    std::atomic<bool> stop{true};

    stream.file(huge);
    EXPECT_EQ(crc.GetFileCrc32(stream, stop), std::nullopt) << "read whole, this would take seconds";
    EXPECT_FALSE(stream.isOpen());
    EXPECT_EQ(stream.Position(), 0);
    EXPECT_EQ(fileCrcOrZero(crc, stream, huge, stop), std::nullopt);
    EXPECT_EQ(fileCrcOrZero(crc, stream, world.path("missing.atr"), stop), 0)
        << "a file that cannot be opened is still 0, not stopped";

    stop = false;
    EXPECT_EQ(fileCrcOrZero(crc, stream, small, stop), tableCrc(crc, bytes));
}
