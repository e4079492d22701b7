// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "Finding.h"
#include "model/PriceStore.h"
#include "review/Repository.h"
#include "support/Sessions.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

namespace {

constexpr int repositoryCount = 2;

/// What the neighbour changes, and what Qt and git keep for themselves. Of git's own files those
/// are looked at through git.
bool isLeftOut(const QString &path)
{
    for (const auto *folder : {u".cache", u".claude/projects", u"neighbour"}) {
        if (path == QString::fromUtf16(folder))
            return true;
    }
    const bool isGits = path.endsWith(u"/.git") || path.contains(u"/.git/");
    return path.endsWith(u"/theirs") || path == u".config/QtProject.conf" || isGits;
}

/// The name that git gives a content.
QByteArray objectName(const QByteArray &content)
{
    const QByteArray header = "blob " + QByteArray::number(content.size());
    return QCryptographicHash::hash(header + '\0' + content, QCryptographicHash::Sha1).toHex();
}

/// Paths with the names of their contents, from lines as "MODE [KIND] OBJECT [STAGE]<Tab>PATH".
Manifest entries(const QByteArray &output, int objectColumn)
{
    Manifest found;
    for (const QByteArray &line : output.split('\0')) {
        const qsizetype tab = line.indexOf('\t');
        if (tab >= 0)
            found[QString::fromUtf8(line.mid(tab + 1))] +=
                line.first(tab).split(' ').value(objectColumn);
    }
    return found;
}

Manifest named(const QMap<QString, TrackedFile> &files,
               std::optional<QByteArray> TrackedFile::*where)
{
    Manifest names;
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        if ((*it).*where)
            names[it.key()] = objectName(*((*it).*where));
    }
    return names;
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
        m_tracked[folder][path] = {content, content, content};
    }
    // Which keeps the folder where it is.
    repository.write(QStringLiteral("ours/kept"), "");
    m_tracked[folder][QStringLiteral("ours/kept")] = {"", "", ""};
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
    m_tracked[repository][path].disk = content;
}

void Scratch::expect(const QString &path, const std::optional<QByteArray> &content)
{
    const QString relative = QDir(m_home.path()).relativeFilePath(path);
    if (content)
        m_others[relative] = fileEntry(*content);
    else
        m_others.remove(relative);
}

void Scratch::expectAsItIs(const QString &path)
{
    expect(path, readFile(path));
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
    const QByteArray index = git(
        repository, {QStringLiteral("ls-files"), QStringLiteral("-sz"), QStringLiteral("ours")});
    requireSame(named(files, &TrackedFile::index), entries(index, 1),
                QStringLiteral("index of ") + repository);
    const QByteArray head = git(repository, {QStringLiteral("ls-tree"), QStringLiteral("-rz"),
                                             QStringLiteral("HEAD"), QStringLiteral("ours/")});
    requireSame(named(files, &TrackedFile::head), entries(head, 2),
                QStringLiteral("HEAD of ") + repository);
}
