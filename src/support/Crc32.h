#pragma once
// The CRC-32 of IEEE 802.3 (the zip and PNG one) as the catalogue stores it: the bit pattern read
// as a signed 32-bit number, written in plain decimal.

#include "BinaryFileStream.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

namespace ql {

class cCRC32 {
public:
    // Bytes read per call: large enough that calls cost nothing, small enough that the bytes are
    // still in the core's own cache when the CRC runs over them (1 MiB reads are a third slower).
    static constexpr std::int64_t kChunkSize = 64 * 1024;

    cCRC32();
    std::int32_t GetByteArrayCrc32(const QByteArray& bytes) const;
    // Reads the stream's open file to its end, which closes it. Errors of the read pass through.
    std::int32_t GetFileCrc32(cBinaryFileStream& stream);
    // The same, but a set stop ends the read before its next chunk: the file is closed and there is
    // no value. A file read to its end gives what the call above gives.
    std::optional<std::int32_t> GetFileCrc32(cBinaryFileStream& stream, const std::atomic<bool>& stop);
    // The reflected table, entry i for the byte i.
    const std::array<std::int32_t, 256>& table() const { return table_; }

private:
    std::array<std::int32_t, 256> table_{};
    std::vector<char> buffer_;
};

// The stored text of a CRC value: "-873187034", "0", "891568578".
inline QString crcText(std::int32_t value) {
    return QString::number(value);
}

// The value of a file, or 0 when it cannot be opened or read; the walkers want no error here.
std::int32_t fileCrcOrZero(cCRC32& crc, cBinaryFileStream& stream, const QString& path);
// The same, with nothing when stop ended the read first.
std::optional<std::int32_t> fileCrcOrZero(cCRC32& crc, cBinaryFileStream& stream, const QString& path,
                                          const std::atomic<bool>& stop);

} // namespace ql
