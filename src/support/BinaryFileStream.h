#pragma once
// Reads a file front to back in chunks of the caller's choosing. The object counts the position
// itself; sizes and positions are 64-bit, so files of 2 GiB and more read like any other.

#include <QString>
#include <cstdint>
#include <stdexcept>

namespace ql {

// A file that cannot be opened or read.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class cBinaryFileStream {
public:
    cBinaryFileStream() = default;
    ~cBinaryFileStream() { Dispose(); }
    cBinaryFileStream(const cBinaryFileStream&) = delete;
    cBinaryFileStream& operator=(const cBinaryFileStream&) = delete;

    QString file() const { return file_; }
    // Closes a file left open, then opens this one; throws FileError when it cannot. The position
    // stays where it was until a Read with pInitial set restarts it.
    void file(const QString& sFile);
    // The size taken when the file was opened.
    std::int64_t Length() const { return length_; }
    std::int64_t Position() const { return position_; }
    bool isOpen() const { return fd_ >= 0; }

    // Puts up to readSize bytes into buffer (which holds at least readSize) and returns how many.
    // A result of 0 means the end, and that same call closes the file. Throws FileError on a file
    // that is not open while bytes are left, or one that fails to read.
    std::int64_t Read(char* buffer, std::int64_t readSize, bool pInitial);
    void Dispose();

private:
    QString file_;
    int fd_ = -1;
    std::int64_t length_ = 0;
    std::int64_t position_ = 0;
};

} // namespace ql
