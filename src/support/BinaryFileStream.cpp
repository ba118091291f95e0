#include "BinaryFileStream.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ql {

namespace {
FileError fileError(const QString& what, const QString& path, int err) {
    return FileError(QStringLiteral("%1 %2: %3")
                         .arg(what, path, QString::fromLocal8Bit(std::strerror(err)))
                         .toStdString());
}
} // namespace

void cBinaryFileStream::file(const QString& sFile) {
    Dispose();
    file_ = sFile;
    // Non-blocking, so that a named pipe in a collection cannot stop the program waiting for a
    // writer; it is refused below with every other kind of file that has no contents to read.
    const int fd = ::open(QFile::encodeName(sFile).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) throw fileError(QStringLiteral("Cannot open"), sFile, errno);
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        const int err = S_ISDIR(st.st_mode) ? EISDIR : !S_ISREG(st.st_mode) ? EINVAL : errno;
        ::close(fd);
        throw fileError(QStringLiteral("Cannot open"), sFile, err);
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    // One pass from front to back: let the kernel read ahead generously.
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    fd_ = fd;
    length_ = st.st_size;
}

std::int64_t cBinaryFileStream::Read(char* buffer, std::int64_t readSize, bool pInitial) {
    if (pInitial) position_ = 0;
    const std::int64_t wanted = std::min(readSize, length_ - position_);
    if (wanted <= 0) {
        Dispose();
        return 0;
    }
    if (fd_ < 0) throw FileError(QStringLiteral("%1 is not open").arg(file_).toStdString());
    std::int64_t got = 0;
    while (got < wanted) {
        const ssize_t n = ::read(fd_, buffer + got, static_cast<size_t>(wanted - got));
        if (n < 0) {
            if (errno == EINTR) continue;
            throw fileError(QStringLiteral("Cannot read"), file_, errno);
        }
        if (n == 0) break; // the file shrank since it was opened
        got += n;
    }
    if (got == 0) {
        Dispose();
        return 0;
    }
    position_ += got;
    return got;
}

void cBinaryFileStream::Dispose() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

} // namespace ql
