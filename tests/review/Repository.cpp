// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/Repository.h"

#include "support/PrivateHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray linkTarget(const QByteArray &path)
{
    QByteArray target(4096, '\0');
    const ssize_t size =
        ::readlink(path.constData(), target.data(), static_cast<size_t>(target.size()));
    target.truncate(std::max<ssize_t>(size, 0));
    return target;
}

QByteArray content(const QByteArray &path)
{
    QFile file(QFile::decodeName(path));
    if (file.open(QIODevice::ReadOnly))
        return file.readAll();
    // A name that is no text.
    QByteArray bytes;
    if (FILE *const raw = std::fopen(path.constData(), "rb")) {
        char buffer[4096];
        while (const size_t count = std::fread(buffer, 1, sizeof buffer, raw))
            bytes.append(buffer, static_cast<qsizetype>(count));
        std::fclose(raw);
    }
    return bytes;
}

/// What git keeps of its own at the top is left out.
void readDisk(const QByteArray &folder, const QByteArray &relative,
              QMap<QByteArray, QByteArray> &disk)
{
    DIR *const stream = ::opendir((folder + '/' + relative).constData());
    if (!stream)
        qFatal("cannot list %s", (folder + '/' + relative).constData());
    while (const dirent *const entry = ::readdir(stream)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == ".." || (relative.isEmpty() && name == ".git"))
            continue;
        const QByteArray path = relative + name;
        const QByteArray whole = folder + '/' + path;
        struct stat info = {};
        ::lstat(whole.constData(), &info);
        if (S_ISDIR(info.st_mode)) {
            readDisk(folder, path + '/', disk);
            continue;
        }
        disk[path] = QByteArray::number(info.st_mode, 8) + ' ' +
                     (S_ISLNK(info.st_mode) ? linkTarget(whole) : content(whole));
    }
    ::closedir(stream);
}

void addDifferences(QStringList &differences, const char *where,
                    const QMap<QByteArray, QByteArray> &before,
                    const QMap<QByteArray, QByteArray> &after)
{
    QByteArrayList paths = before.keys();
    for (const QByteArray &path : after.keys()) {
        if (!before.contains(path))
            paths.append(path);
    }
    for (const QByteArray &path : std::as_const(paths)) {
        if (before.value(path) != after.value(path)) {
            differences.append(QStringLiteral("%1 of %2: was \"%3\", is \"%4\"")
                                   .arg(QLatin1String(where), QString::fromUtf8(path),
                                        QString::fromUtf8(before.value(path)),
                                        QString::fromUtf8(after.value(path))));
        }
    }
}

} // namespace

RepositoryState RepositoryState::without(const QByteArray &path) const
{
    RepositoryState state = *this;
    for (auto *part : {&state.disk, &state.index, &state.status})
        part->remove(path);
    return state;
}

QString RepositoryState::differenceFrom(const RepositoryState &before) const
{
    QStringList differences;
    addDifferences(differences, "disk", before.disk, disk);
    addDifferences(differences, "index", before.index, index);
    addDifferences(differences, "status", before.status, status);
    return differences.mid(0, 5).join(u'\n');
}

void writeGitIdentity()
{
    writeFile(qEnvironmentVariable("GIT_CONFIG_GLOBAL"),
              "[user]\n name = A. Developer\n email = developer@example.org\n"
              "[init]\n defaultBranch = main\n"
              "[gc]\n auto = 0\n"
              "[protocol \"file\"]\n allow = always\n");
}

QByteArray git(const QString &folder, const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("/usr/bin/git"),
                  QStringList{QStringLiteral("-C"), folder} + arguments);
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        qFatal("git %s: %s", qPrintable(arguments.join(u' ')),
               process.readAllStandardError().constData());
    return process.readAllStandardOutput();
}

Repository::Repository(const QString &folder) : m_folder(folder)
{
    QDir().mkpath(folder);
    if (!QFileInfo::exists(path(QStringLiteral(".git"))))
        git({QStringLiteral("init"), QStringLiteral("-q")});
}

QString Repository::path(const QString &relative) const
{
    return relative.isEmpty() ? m_folder : m_folder + u'/' + relative;
}

void Repository::write(const QString &relative, const QByteArray &bytes) const
{
    writeFile(path(relative), bytes);
}

void Repository::link(const QString &relative, const QByteArray &target) const
{
    QDir().mkpath(QFileInfo(path(relative)).path());
    if (::symlink(target.constData(), QFile::encodeName(path(relative)).constData()) != 0)
        qFatal("cannot link %s", qPrintable(relative));
}

void Repository::makeExecutable(const QString &relative) const
{
    if (::chmod(QFile::encodeName(path(relative)).constData(), 0755) != 0)
        qFatal("cannot change %s", qPrintable(relative));
}

void Repository::remove(const QString &relative) const
{
    const QFileInfo info(path(relative));
    const bool removed = info.isDir() && !info.isSymLink()
                             ? QDir(path(relative)).removeRecursively()
                             : QFile::remove(path(relative));
    if (!removed)
        qFatal("cannot remove %s", qPrintable(relative));
}

void Repository::commitAll() const
{
    git({QStringLiteral("add"), QStringLiteral("-A")});
    git({QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("--allow-empty"),
         QStringLiteral("-m"), QStringLiteral("all")});
}

RepositoryState Repository::stateWithoutStatus() const
{
    RepositoryState state;
    readDisk(QFile::encodeName(m_folder), {}, state.disk);
    for (const QByteArray &entry :
         git({QStringLiteral("ls-files"), QStringLiteral("-s"), QStringLiteral("-z")})
             .split('\0')) {
        const qsizetype tab = entry.indexOf('\t');
        if (tab >= 0)
            state.index[entry.mid(tab + 1)] += entry.first(tab) + '\n';
    }
    return state;
}

RepositoryState Repository::state() const
{
    RepositoryState state = stateWithoutStatus();
    for (const QByteArray &entry :
         git({QStringLiteral("status"), QStringLiteral("--porcelain=v1"), QStringLiteral("-z"),
              QStringLiteral("-uall"), QStringLiteral("--no-renames")})
             .split('\0')) {
        if (entry.size() > 3)
            state.status[entry.mid(3)] = entry.first(2);
    }
    return state;
}

GitFile find(const QList<GitFile> &files, const QString &path)
{
    const auto found = std::find_if(files.begin(), files.end(),
                                    [&](const GitFile &file) { return file.path == path; });
    return found == files.end() ? GitFile() : *found;
}
