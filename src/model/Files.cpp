// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Files.h"

#include <QFile>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

QStringView lastPathComponent(QStringView path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path == u"/" ? path : path.mid(path.lastIndexOf(u'/') + 1);
}

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::generic_category().message(error));
}

FileDescriptor::FileDescriptor(FileDescriptor &&other) noexcept
    : m_fd(std::exchange(other.m_fd, -1))
{
}

FileDescriptor &FileDescriptor::operator=(FileDescriptor &&other) noexcept
{
    std::swap(m_fd, other.m_fd);
    return *this;
}

FileDescriptor::~FileDescriptor()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

namespace {

bool isRegular(const FileDescriptor &file)
{
    struct stat info = {};
    return file.isOpen() && ::fstat(file.get(), &info) == 0 && S_ISREG(info.st_mode);
}

/// Waits until no other window writes the file, or reads it when this one writes. That takes much
/// less than a millisecond: who keeps the file longer is no window of ours and not waited for.
void takeTurn(const FileDescriptor &file, int operation)
{
    for (int tries = 0; tries < 100; ++tries) {
        if (::flock(file.get(), operation | LOCK_NB) == 0 || errno != EWOULDBLOCK)
            return;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

/// Whether so many bytes can be written to the file, as far as the system knows beforehand.
bool makeRoom(const FileDescriptor &file, qint64 size)
{
    const qint64 before = sizeOf(file);
    if (size <= before)
        return true;
    const int error = ::posix_fallocate(file.get(), before, size - before);
    if (error != ENOSPC && error != EDQUOT && error != EFBIG)
        return true; // or the file system cannot tell
    (void)!::ftruncate(file.get(), before);
    return false;
}

} // namespace

FileDescriptor openRegularFile(const char *path)
{
    // Looked at before it is opened, since opening some devices already does something.
    return isRegularFile(path) ? openSeenFile(path) : FileDescriptor();
}

FileDescriptor openSeenFile(const char *path)
{
    // Another file may stand there by now. O_NONBLOCK covers the time between.
    FileDescriptor file(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    return isRegular(file) ? std::move(file) : FileDescriptor();
}

bool isRegularFile(const char *path)
{
    struct stat info = {};
    return ::stat(path, &info) == 0 && S_ISREG(info.st_mode);
}

qint64 sizeOf(const FileDescriptor &file)
{
    struct stat info = {};
    return ::fstat(file.get(), &info) == 0 ? info.st_size : 0;
}

qint64 readSome(const FileDescriptor &file, char *to, qint64 most)
{
    ssize_t count = 0;
    do
        count = ::read(file.get(), to, static_cast<size_t>(most));
    while (count < 0 && errno == EINTR);
    return count;
}

qint64 readSomeAt(const FileDescriptor &file, qint64 place, char *to, qint64 most)
{
    ssize_t count = 0;
    do
        count = ::pread(file.get(), to, static_cast<size_t>(most), place);
    while (count < 0 && errno == EINTR);
    return count;
}

std::optional<QByteArray> readSmallFile(const QString &path, qint64 limit)
{
    const FileDescriptor file = openRegularFile(QFile::encodeName(path).constData());
    takeTurn(file, LOCK_SH);
    struct stat info = {};
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0 || info.st_size > limit)
        return std::nullopt;
    QByteArray bytes;
    char buffer[16384];
    for (;;) {
        const qint64 count = readSome(file, buffer, sizeof buffer);
        if (count < 0 || bytes.size() + count > limit)
            return std::nullopt;
        if (count == 0)
            return bytes;
        bytes.append(buffer, count);
    }
}

bool writeInPlace(const QString &path, const QByteArray &bytes)
{
    const FileDescriptor file(::open(QFile::encodeName(path).constData(),
                                     O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666));
    if (!isRegular(file))
        return false;
    takeTurn(file, LOCK_EX);
    if (!makeRoom(file, bytes.size()))
        return false;
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            ::write(file.get(), bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += count;
    }
    return ::ftruncate(file.get(), bytes.size()) == 0;
}
