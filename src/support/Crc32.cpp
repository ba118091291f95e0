#include "Crc32.h"

#include <zlib.h>

namespace ql {

namespace {
std::int32_t asSigned(uLong crc) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(crc));
}
} // namespace

cCRC32::cCRC32() {
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int bit = 0; bit < 8; ++bit)
            c = (c & 1) ? (c >> 1) ^ 0xEDB88320u : c >> 1;
        table_[i] = static_cast<std::int32_t>(c);
    }
}

std::int32_t cCRC32::GetByteArrayCrc32(const QByteArray& bytes) const {
    // zlib gives the same bits as the table above, several times faster.
    uLong crc = crc32(0L, Z_NULL, 0);
    const auto* p = reinterpret_cast<const Bytef*>(bytes.constData());
    for (qsizetype left = bytes.size(); left > 0;) {
        const uInt n = static_cast<uInt>(std::min<qsizetype>(left, 1 << 30));
        crc = crc32(crc, p, n);
        p += n;
        left -= n;
    }
    return asSigned(crc);
}

std::int32_t cCRC32::GetFileCrc32(cBinaryFileStream& stream) {
    static const std::atomic<bool> never{false};
    return *GetFileCrc32(stream, never);
}

std::optional<std::int32_t> cCRC32::GetFileCrc32(cBinaryFileStream& stream, const std::atomic<bool>& stop) {
    buffer_.resize(static_cast<size_t>(kChunkSize));
    uLong crc = crc32(0L, Z_NULL, 0);
    for (bool first = true;; first = false) {
        // Asked between chunks, so a file of many gigabytes gives way within one chunk's read.
        if (stop.load(std::memory_order_relaxed)) {
            stream.Dispose();
            return std::nullopt;
        }
        const std::int64_t n = stream.Read(buffer_.data(), kChunkSize, first);
        if (n <= 0) break;
        crc = crc32(crc, reinterpret_cast<const Bytef*>(buffer_.data()), static_cast<uInt>(n));
    }
    return asSigned(crc);
}

std::optional<std::int32_t> fileCrcOrZero(cCRC32& crc, cBinaryFileStream& stream, const QString& path,
                                          const std::atomic<bool>& stop) {
    try {
        stream.file(path);
        return crc.GetFileCrc32(stream, stop);
    } catch (const FileError&) {
        stream.Dispose();
        return 0;
    }
}

std::int32_t fileCrcOrZero(cCRC32& crc, cBinaryFileStream& stream, const QString& path) {
    static const std::atomic<bool> never{false};
    return *fileCrcOrZero(crc, stream, path, never);
}

} // namespace ql
