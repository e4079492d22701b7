// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>

/// What a path ends with: the name of its file or folder, without slashes; "/" for the root.
QStringView lastPathComponent(QStringView path);

/// The system's own words for an error number.
QString systemText(int error);

/// A file descriptor that is closed with its owner.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) : m_fd(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept;
    FileDescriptor &operator=(FileDescriptor &&other) noexcept;
    ~FileDescriptor();

    bool isOpen() const { return m_fd >= 0; }
    int get() const { return m_fd; }

private:
    int m_fd;
};

/// Opens a file for reading if it is a regular file (or a link to one). A FIFO, socket, device or
/// folder is never opened, so that it can neither block the caller nor be disturbed by it.
FileDescriptor openRegularFile(const char *path);
/// The same for a path that has been seen to be a regular file a moment ago: asks the system once
/// less, which counts for tens of thousands of files.
FileDescriptor openSeenFile(const char *path);

/// Whether a path leads to a regular file (or to a link to one).
bool isRegularFile(const char *path);

/// The size of an open file in bytes; 0 when the system does not tell.
qint64 sizeOf(const FileDescriptor &file);

/// read() that is repeated when a signal interrupts it: bytes read, 0 at the end, -1 on an error.
qint64 readSome(const FileDescriptor &file, char *to, qint64 most);
/// The same from a place of a regular file, which several threads may read at once.
qint64 readSomeAt(const FileDescriptor &file, qint64 place, char *to, qint64 most);

/// The whole of a small regular file; nothing when it cannot be read or is larger than `limit`.
/// Never the half of what another window is just writing with writeInPlace().
std::optional<QByteArray> readSmallFile(const QString &path, qint64 limit);

/// Replaces a regular file's content in place, making the file if it is missing. False when that
/// fails: for want of room the old content stays, otherwise what was written until then.
bool writeInPlace(const QString &path, const QByteArray &bytes);
