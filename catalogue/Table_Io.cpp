#include "Table_Io.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morvane {

namespace {

QString systemWords(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

QString tooLarge() {
    return QStringLiteral("the file is larger than %1 MiB, too large for a table file")
        .arg(TableFile_MaxBytes / (1024 * 1024));
}

// Closes the descriptor on every way out; close() reports its own error where it matters.
struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
    int release() { return std::exchange(fd, -1); }
};

// 0 or the errno of the write that failed; short writes and interruptions are continued.
int writeAll(int fd, const QByteArray& bytes) {
    const char* data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, static_cast<size_t>(left));
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        data += written;
        left -= written;
    }
    return 0;
}

int writeDirect(const QByteArray& target, const QByteArray& bytes) {
    Descriptor file{::open(target.constData(), O_WRONLY | O_CLOEXEC)};
    if (file.fd < 0) return errno;
    if (const int error = writeAll(file.fd, bytes)) return error;
    return ::close(file.release()) == 0 ? 0 : errno;
}

// The rename is only lasting once the folder itself is on the disk; a failure here changes nothing
// that the caller could act on.
void syncFolder(const QByteArray& target) {
    const QByteArray folder = QFile::encodeName(QFileInfo(QFile::decodeName(target)).absolutePath());
    Descriptor dir{::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (dir.fd >= 0) ::fsync(dir.fd);
}

} // namespace

QString Read_TableBytes(const QString& path, QByteArray& bytes) {
    bytes.clear();
    Descriptor file{::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC)};
    struct stat info {};
    if (file.fd < 0 || ::fstat(file.fd, &info) != 0) return systemWords(errno);
    if (S_ISDIR(info.st_mode)) return systemWords(EISDIR);
    if (S_ISREG(info.st_mode)) {
        if (info.st_size > TableFile_MaxBytes) return tooLarge();
        bytes.reserve(static_cast<qsizetype>(info.st_size));
    }
    // Pipes and devices tell no size: the count read so far keeps to the limit.
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t got = ::read(file.fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {
            const int error = errno;
            bytes.clear();
            return systemWords(error);
        }
        if (got == 0) return QString();
        if (bytes.size() + got > TableFile_MaxBytes) {
            bytes.clear();
            return tooLarge();
        }
        bytes.append(buffer, got);
    }
}

QString Write_TableBytes(const QString& path, const QByteArray& bytes) {
    QByteArray target = QFile::encodeName(path);
    struct stat info {};
    const bool exists = ::stat(target.constData(), &info) == 0;
    if (exists && S_ISDIR(info.st_mode)) return systemWords(EISDIR);
    if (exists && !S_ISREG(info.st_mode)) {
        const int error = writeDirect(target, bytes);
        return error == 0 ? QString() : systemWords(error);
    }
    if (exists) {
        // Through a link: replace the file it names and keep the link.
        if (char* real = ::realpath(target.constData(), nullptr)) {
            target = real;
            std::free(real);
        }
    }

    QByteArray temporary;
    Descriptor file;
    for (int attempt = 0; file.fd < 0; ++attempt) {
        temporary = target + ".tmp-" + QByteArray::number(QRandomGenerator::global()->generate(), 36);
        file.fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file.fd < 0 && (errno != EEXIST || attempt >= 100)) return systemWords(errno);
    }
    int error = writeAll(file.fd, bytes);
    // A file of someone else keeps our default permissions; that is no reason to fail the save.
    if (error == 0 && exists) (void)::fchmod(file.fd, info.st_mode & 07777);
    if (error == 0 && ::fsync(file.fd) != 0) error = errno;
    if (::close(file.release()) != 0 && error == 0) error = errno;
    if (error == 0 && ::rename(temporary.constData(), target.constData()) != 0) error = errno;
    if (error != 0) {
        ::unlink(temporary.constData());
        return systemWords(error);
    }
    syncFolder(target);
    return QString();
}

} // namespace morvane
