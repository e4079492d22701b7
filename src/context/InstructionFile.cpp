// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/InstructionFile.h"

#include "context/FileAttributes.h"
#include "model/Files.h"

#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// Beyond, the editor would need gigabytes of memory. No instructions are that long.
constexpr qint64 largestFile = 64 * 1024 * 1024;

QString shownEmpty(const char16_t *why)
{
    return QString::fromUtf16(why) +
           QStringLiteral(" It is shown empty, and saving replaces what it holds.");
}

/// Why a file that could not be read could not be read.
QString problemOf(const QByteArray &path)
{
    struct stat info = {};
    if (::stat(path.constData(), &info) != 0)
        return errno == ENOENT || errno == ENOTDIR ? QString()
                                                   : shownEmpty(u"This file cannot be reached.");
    if (S_ISDIR(info.st_mode))
        return QStringLiteral("This is a folder, so there is no text to show.");
    if (!S_ISREG(info.st_mode))
        return QStringLiteral("This is not a regular file, so it is not read.");
    if (info.st_size > largestFile)
        return shownEmpty(u"This file is larger than 64 MB.");
    return shownEmpty(u"This file cannot be read.");
}

int makeFolders(const fs::path &folder)
{
    if (::mkdir(folder.c_str(), 0777) == 0)
        return 0;
    const int error = errno;
    if (error == ENOENT && folder.has_relative_path() && folder.has_parent_path()) {
        const int above = makeFolders(folder.parent_path());
        return above == 0 && ::mkdir(folder.c_str(), 0777) != 0 ? errno : above;
    }
    std::error_code ignored;
    return fs::is_directory(folder, ignored) ? 0 : error;
}

/// Where the links lead to, be there a file or not.
fs::path behindLinks(fs::path path)
{
    constexpr int mostLinks = 40; // as for the system itself
    for (int i = 0; i < mostLinks; ++i) {
        std::error_code error;
        const fs::path next = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / next;
    }
    return path;
}

bool writeAt(int file, QByteArrayView bytes, qsizetype offset)
{
    while (!bytes.isEmpty()) {
        const ssize_t count =
            ::pwrite(file, bytes.data(), static_cast<size_t>(bytes.size()), offset);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes = bytes.sliced(count);
        offset += count;
    }
    return true;
}

/// Writes into the file itself. The part beyond the old end comes first: it is the one that a full
/// disk refuses, and cutting it off again leaves the old file. Returns an error number or 0.
int overwrite(int file, qsizetype oldSize, QByteArrayView bytes)
{
    const qsizetype common = qMin(oldSize, bytes.size());
    if (!writeAt(file, bytes.sliced(common), common) || ::fsync(file) != 0) {
        const int error = errno;
        (void)!::ftruncate(file, oldSize);
        return error;
    }
    const bool done = writeAt(file, bytes.first(common), 0) &&
                      ::ftruncate(file, bytes.size()) == 0 && ::fsync(file) == 0;
    return done ? 0 : errno;
}

int writeNew(const fs::path &path, const QByteArray &bytes)
{
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen())
        return errno;
    const int error = overwrite(file.get(), 0, bytes);
    if (error != 0)
        ::unlink(path.c_str());
    return error;
}

/// The file that is to be replaced.
struct OldFile {
    const FileDescriptor &file;
    struct stat info = {};
};

/// Gives a new file everything but the content of the one that it will replace.
bool makeAlike(int file, const OldFile &old)
{
    struct stat now = {};
    if (::fstat(file, &now) != 0)
        return false;
    if ((now.st_uid != old.info.st_uid || now.st_gid != old.info.st_gid) &&
        ::fchown(file, old.info.st_uid, old.info.st_gid) != 0)
        return false;
    // The mode at the end: a change of owner takes bits from it, and an access list is part of it.
    return copyAttributes(old.file.get(), file) && ::fchmod(file, old.info.st_mode & 07777) == 0 &&
           ::fstat(file, &now) == 0 && now.st_mode == old.info.st_mode;
}

/// Writes a side file that then takes the place of the file, which exists if there is an `old`.
/// False when there can be no such side file: then nothing has happened. Otherwise `error` is an
/// error number or 0.
bool replace(const fs::path &path, const OldFile *old, const QByteArray &bytes, int *error)
{
    // Without the fallback of QSaveFile: it empties the file before it writes, so that on a full
    // disk both texts would be lost. And written by hand, since it tells no reason for a write that
    // is cut short and ignores what the disk says at the end.
    QSaveFile side(QFile::decodeName(path.c_str()));
    if (!side.open(QIODevice::WriteOnly) || (old && !makeAlike(side.handle(), *old)))
        return false;
    *error = writeAt(side.handle(), bytes, 0) && ::fsync(side.handle()) == 0 ? 0 : errno;
    return *error != 0 || side.commit();
}

int saveNew(const fs::path &path, const QByteArray &bytes)
{
    int error = 0;
    return replace(path, nullptr, bytes, &error) ? error : writeNew(path, bytes);
}

int saveExisting(const fs::path &path, const QByteArray &bytes)
{
    // Replacing asks for rights on the folder only, so ask for those on the file.
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    OldFile old{file};
    if (!file.isOpen() || ::fstat(file.get(), &old.info) != 0)
        return errno;
    int error = 0;
    // A side file would take over one of several names and leave the others with the old text.
    if (old.info.st_nlink == 1 && replace(path, &old, bytes, &error))
        return error;
    return overwrite(file.get(), old.info.st_size, bytes);
}

int save(const fs::path &path, const QByteArray &bytes)
{
    const fs::path target = behindLinks(path);
    for (const fs::path &file : {path, target}) {
        if (const int error = makeFolders(file.parent_path()))
            return error;
    }
    struct stat old = {};
    if (::stat(target.c_str(), &old) != 0)
        return errno == ENOENT ? saveNew(target, bytes) : errno;
    if (S_ISDIR(old.st_mode))
        return EISDIR;
    // Of a FIFO, a socket or a device the system would say much the same when asked to seek.
    return S_ISREG(old.st_mode) ? saveExisting(target, bytes) : ESPIPE;
}

} // namespace

InstructionText readInstructions(const QString &path)
{
    const std::optional<QByteArray> bytes = readSmallFile(path, largestFile);
    if (!bytes)
        return {{}, problemOf(QFile::encodeName(path))};
    if (auto file = decodeText(*bytes))
        return {std::move(*file), {}};
    return {{}, shownEmpty(u"This file is not valid UTF-8 text.")};
}

std::optional<QString> saveInstructions(const QString &path, const QByteArray &bytes)
{
    const int error = save(path.toStdString(), bytes);
    return error == 0 ? std::nullopt : std::optional(systemText(error).simplified());
}
