// SPDX-License-Identifier: GPL-3.0-or-later
#include "Manifest.h"

#include "GitObjects.h"

#include <QFile>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t usualMode = S_IFREG | 0644;

QByteArray entry(mode_t mode, const QByteArray &objectName)
{
    return QByteArray::number(mode, 8) + ' ' + objectName;
}

QByteArray entryAt(const QString &path, mode_t mode)
{
    if (S_ISLNK(mode))
        return entry(mode, objectName(QFile::symLinkTarget(path).toUtf8()));
    QFile file(path);
    if (!S_ISREG(mode) || !file.open(QIODevice::ReadOnly))
        return entry(mode, "not to be read");
    return entry(mode, objectName(file.readAll()));
}

using LeftOut = std::function<bool(const QString &)>;

void look(const QString &folder, const QString &relative, const LeftOut &leftOut,
          Manifest &manifest)
{
    DIR *const stream = ::opendir(QFile::encodeName(folder + relative).constData());
    if (!stream)
        return;
    bool isEmpty = true;
    while (const dirent *const found = ::readdir(stream)) {
        const QString name = QFile::decodeName(found->d_name);
        if (name == u"." || name == u"..")
            continue;
        isEmpty = false;
        const QString path = relative + name;
        struct stat info = {};
        if (leftOut(path) || ::lstat(QFile::encodeName(folder + path).constData(), &info) != 0)
            continue;
        if (S_ISDIR(info.st_mode))
            look(folder, path + u'/', leftOut, manifest);
        else
            manifest[path] = entryAt(folder + path, info.st_mode);
    }
    ::closedir(stream);
    if (isEmpty)
        manifest[relative] = "empty folder";
}

} // namespace

Manifest takeManifest(const QString &folder, const LeftOut &leftOut)
{
    Manifest manifest;
    look(folder + u'/', {}, leftOut, manifest);
    return manifest;
}

QByteArray fileEntry(const QByteArray &objectName)
{
    return entry(usualMode, objectName);
}

QStringList differences(const Manifest &expected, const Manifest &actual)
{
    constexpr qsizetype most = 8;
    QStringList found;
    Manifest all = expected;
    all.insert(actual);
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        const QByteArray before = expected.value(it.key(), "nothing");
        const QByteArray now = actual.value(it.key(), "nothing");
        if (before != now)
            found.append(QStringLiteral("%1: expected %2, is %3")
                             .arg(it.key(), QString::fromUtf8(before), QString::fromUtf8(now)));
    }
    return found.mid(0, most);
}
