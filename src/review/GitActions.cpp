// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitActions.h"

#include "review/GitCommand.h"
#include "review/GitPath.h"
#include "review/GitStatus.h"
#include "review/GitTarget.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

ShellResult refused(const QString &why)
{
    ShellResult result;
    result.err = why;
    return result;
}

bool exists(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

bool holdsRepository(const QString &folder)
{
    return exists(folder + QStringLiteral("/.git"));
}

bool isEmptyFolder(const QString &path)
{
    return QDir(path).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System |
                              QDir::NoDotAndDotDot);
}

/// The folders that a path leads through, from the top down.
QStringList foldersAbove(const QString &path)
{
    QStringList folders;
    for (qsizetype slash = path.indexOf(u'/'); slash >= 0; slash = path.indexOf(u'/', slash + 1))
        folders.append(path.first(slash));
    return folders;
}

/// Whether the path leads through a link. Git would follow it and remove a file elsewhere.
bool leadsThroughLink(const QString &top, const QString &path)
{
    const QStringList folders = foldersAbove(path);
    return std::any_of(folders.begin(), folders.end(),
                       [&](const QString &folder) { return QFileInfo(top + folder).isSymLink(); });
}

ShellResult isFolderNow(const QString &path)
{
    return refused(QStringLiteral("“%1” has become a folder. Nothing was done, since other files "
                                  "would be lost.")
                       .arg(path));
}

/// What kind of entry HEAD has at a path: "blob", "tree", "commit", or nothing.
QString kindInHead(const QString &projectPath, const QString &path)
{
    const ShellResult entry =
        runGit(projectPath, {QStringLiteral("--literal-pathspecs"), QStringLiteral("ls-tree"),
                             QStringLiteral("--full-tree"), QStringLiteral("-z"),
                             QStringLiteral("HEAD"), QStringLiteral("--"), path});
    return entry.out.section(u' ', 1, 1);
}

bool isBelow(const QString &path, const QString &folder)
{
    return path.size() > folder.size() && path.startsWith(folder) && path[folder.size()] == u'/';
}

/// Another changed file that cannot be in the index together with this one, since one path leads
/// through the other.
QString rival(const QString &projectPath, const QString &path)
{
    for (const GitFile &other : gitStatusSnapshot(projectPath).files) {
        if (other.isStaged() && other.x != u'D' &&
            (isBelow(other.path, path) || isBelow(path, other.path)))
            return other.path;
    }
    return {};
}

/// Why restoring a file from HEAD would touch others; empty when it would not. Git makes room for
/// what it restores: a file where a folder was goes, and a folder with all that is in it.
QString restoreObstacle(const QString &projectPath, const GitTarget &target, const GitFile &file)
{
    const QString lost = QStringLiteral("Restoring “%1” would destroy “%2”. Nothing was done: move "
                                        "it away or reject it first.");
    for (const QString &folder : foldersAbove(file.path)) {
        if (exists(target.top + folder) && !isRealFolder(target.top + folder))
            return lost.arg(file.path, folder);
    }
    const QString kind = kindInHead(projectPath, file.path);
    if (kind == u"tree")
        return QStringLiteral("“%1” is a folder in HEAD. Nothing was done, since other files would "
                              "be restored.")
            .arg(file.path);
    const QString there = target.top + file.path;
    if (kind != u"commit" && isRealFolder(there) && !isEmptyFolder(there))
        return lost.arg(file.path, file.path + u'/');
    if (file.x != u'D') // what is in the index has no rival there
        return {};
    const QString other = rival(projectPath, file.path);
    return other.isEmpty() ? QString() : lost.arg(file.path, other);
}

ShellResult restore(const QString &projectPath, const GitTarget &target, const GitFile &file)
{
    const QString obstacle = restoreObstacle(projectPath, target, file);
    if (!obstacle.isEmpty())
        return refused(obstacle);
    return runGit(projectPath, {QStringLiteral("checkout"), QStringLiteral("HEAD"),
                                QStringLiteral("--"), target.pathspec});
}

ShellResult removeAdded(const QString &projectPath, const GitTarget &target, const GitFile &file)
{
    QStringList arguments{QStringLiteral("rm"), QStringLiteral("-f"), QStringLiteral("--"),
                          target.pathspec};
    if (leadsThroughLink(target.top, file.path)) // the file itself is gone from the disk
        arguments.insert(1, QStringLiteral("--cached"));
    return runGit(projectPath, arguments);
}

ShellResult clean(const QString &projectPath, const GitTarget &target, const GitFile &file)
{
    const QString there = target.top + file.path;
    const bool wasRepository = file.path.endsWith(u'/');
    if (wasRepository ? !holdsRepository(there) : isRealFolder(there))
        return isFolderNow(file.path);
    return runGit(projectPath, {QStringLiteral("clean"), QStringLiteral("-f"), QStringLiteral("--"),
                                target.pathspec});
}

} // namespace

ShellResult approve(const QString &projectPath, const GitFile &file)
{
    const GitTarget target = findTarget(projectPath, file.path);
    if (!target.error.isEmpty())
        return refused(target.error);
    QStringList arguments{QStringLiteral("add"), QStringLiteral("--"), target.pathspec};
    const QString there = target.top + file.path;
    if (file.path.endsWith(u'/')) {
        if (!holdsRepository(there))
            return isFolderNow(file.path);
    } else if (isRealFolder(there) && (file.y == u'D' || !holdsRepository(there))) {
        // What is approved is that the file is gone, and not what is in the folder.
        arguments.append(GitPath::nothingBelow(file.path));
    }
    return runGit(projectPath, arguments);
}

ShellResult reject(const QString &projectPath, const GitFile &file, bool hasHead)
{
    const GitTarget target = findTarget(projectPath, file.path);
    if (!target.error.isEmpty())
        return refused(target.error);
    if (file.isUntracked())
        return clean(projectPath, target, file);
    if (file.x == u'A' || !hasHead)
        return removeAdded(projectPath, target, file);
    return restore(projectPath, target, file);
}
