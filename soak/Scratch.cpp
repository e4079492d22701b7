// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "Finding.h"
#include "GitObjects.h"
#include "review/Repository.h"
#include "support/Sessions.h"

#include <QDir>
#include <QFile>

namespace {

constexpr int repositoryCount = 2;
const QString ours = QStringLiteral("ours");

/// What of a repository's ".git" changes with every use. The index and HEAD are looked at through
/// git, and a lock that is left behind is in the neighbour's way.
bool isGitsOwn(const QString &path)
{
    for (const auto *changing :
         {u"objects", u"logs", u"index", u"COMMIT_EDITMSG", u"refs/heads/main"}) {
        if (path == QString::fromUtf16(changing))
            return true;
    }
    return path.endsWith(u".lock");
}

/// What the neighbour changes, and what Qt's fonts and git keep for themselves.
bool isLeftOut(const QString &path)
{
    for (const auto *folder : {u".cache", u".claude/projects", u"neighbour"}) {
        if (path == QString::fromUtf16(folder))
            return true;
    }
    const QString git = QStringLiteral("/.git/");
    const qsizetype inGit = path.indexOf(git);
    return path.endsWith(u"/theirs") || (inGit >= 0 && isGitsOwn(path.mid(inGit + git.size())));
}

GitObjects expectedObjects(const QMap<QString, TrackedFile> &files,
                           std::optional<QByteArray> TrackedFile::*where)
{
    GitObjects objects;
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        if ((*it).*where)
            objects[it.key()] = *((*it).*where);
    }
    return objects;
}

void requireSame(const Manifest &expected, const Manifest &actual, const QString &where)
{
    const QStringList found = differences(expected, actual);
    require(found.isEmpty(), where + QStringLiteral(":\n  ") + found.join(QStringLiteral("\n  ")));
}

} // namespace

Scratch::Scratch()
{
    for (const auto *name : {u"first", u"second", u"third"})
        m_projects.append(m_home.path(QStringLiteral("code/") + QString::fromUtf16(name)));
    m_spare = m_home.path(QStringLiteral("code/spare"));
    // What the window leaves there is found like everything else.
    QDir().mkpath(m_home.path(QStringLiteral("tmp")));
    qputenv("TMPDIR", m_home.path(QStringLiteral("tmp")).toUtf8());
    QDir().mkpath(neighbourFolder());
    writeGitIdentity();
    addByHand(m_home, {QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")});
    for (const QString &repository : repositories())
        makeRepository(repository);
    writeFile(m_projects.constLast() + QStringLiteral("/CLAUDE.md"), "Be kind.\n");
    writeFile(m_spare + QStringLiteral("/notes.txt"), "nothing\n");
    m_others = actualFiles();
    for (const QString &repository : repositories())
        for (const QString &path : m_tracked[repository].keys())
            m_others.remove(QDir(m_home.path()).relativeFilePath(repository + u'/' + path));
}

QStringList Scratch::repositories() const
{
    return m_projects.mid(0, repositoryCount);
}

void Scratch::makeRepository(const QString &folder)
{
    const Repository repository(folder);
    repository.write(QStringLiteral(".gitignore"), "CLAUDE.md\nAGENTS.md\nGEMINI.md\n");
    repository.write(QStringLiteral("theirs/.keep"), "");
    for (int i = 0; i < 4; ++i) {
        const QString path = QStringLiteral("ours/%1.txt").arg(i);
        const QByteArray content = QByteArray::number(i) + " at first\n";
        repository.write(path, content);
        const QByteArray name = objectName(content);
        m_tracked[folder][path] = {name, name, name};
    }
    // Which keeps the folder where it is.
    repository.write(QStringLiteral("ours/kept"), "");
    const QByteArray name = objectName({});
    m_tracked[folder][QStringLiteral("ours/kept")] = {name, name, name};
    repository.commitAll();
}

void Scratch::put(const QString &repository, const QString &path,
                  const std::optional<QByteArray> &content)
{
    const QString whole = repository + u'/' + path;
    if (content)
        writeFile(whole, *content);
    else
        QFile::remove(whole);
    m_tracked[repository][path].disk = content ? std::optional(objectName(*content)) : std::nullopt;
}

TrackedFile Scratch::look(const QString &repository, const QString &path)
{
    TrackedFile file;
    const QString whole = repository + u'/' + path;
    if (QFile::exists(whole))
        file.disk = objectName(readFile(whole));
    const GitObjects index = objectsInIndex(repository, path);
    if (index.contains(path))
        file.index = index.value(path);
    file.head = m_tracked[repository][path].head;
    return file;
}

void Scratch::expect(const QString &path, const QByteArray &content)
{
    m_others[QDir(m_home.path()).relativeFilePath(path)] = fileEntry(objectName(content));
}

Manifest Scratch::expectedFiles() const
{
    Manifest files = m_others;
    for (auto repository = m_tracked.cbegin(); repository != m_tracked.cend(); ++repository) {
        const QString folder = QDir(m_home.path()).relativeFilePath(repository.key()) + u'/';
        for (auto it = repository->cbegin(); it != repository->cend(); ++it) {
            if (it->disk)
                files[folder + it.key()] = fileEntry(*it->disk);
        }
    }
    return files;
}

Manifest Scratch::actualFiles() const
{
    return takeManifest(m_home.path(), isLeftOut);
}

void Scratch::check() const
{
    requireSame(expectedFiles(), actualFiles(), QStringLiteral("files of the home folder"));
    for (const QString &repository : repositories())
        checkGit(repository);
}

void Scratch::checkGit(const QString &repository) const
{
    const QMap<QString, TrackedFile> files = m_tracked.value(repository);
    requireSame(expectedObjects(files, &TrackedFile::index), objectsInIndex(repository, ours),
                QStringLiteral("index of ") + repository);
    requireSame(expectedObjects(files, &TrackedFile::head), objectsInHead(repository, ours),
                QStringLiteral("HEAD of ") + repository);
}
