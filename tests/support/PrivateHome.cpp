// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PrivateHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

QString below(const QString &folder, const QString &relative)
{
    return relative.isEmpty() ? folder : folder + u'/' + relative;
}

} // namespace

PrivateHome::PrivateHome()
{
    if (!m_folder.isValid())
        qFatal("no temporary folder: %s", qPrintable(m_folder.errorString()));
    qputenv("HOME", path().toUtf8());
    qputenv("XDG_DATA_HOME", path(QStringLiteral(".local/share")).toUtf8());
    qputenv("XDG_CONFIG_HOME", path(QStringLiteral(".config")).toUtf8());
    qputenv("XDG_CACHE_HOME", path(QStringLiteral(".cache")).toUtf8());
    qputenv("GIT_CONFIG_GLOBAL", path(QStringLiteral(".gitconfig")).toUtf8());
    qputenv("GIT_CONFIG_NOSYSTEM", "1");
}

QString PrivateHome::path(const QString &relative) const
{
    return below(m_folder.path(), relative);
}

QString PrivateHome::claude(const QString &relative) const
{
    return below(path(QStringLiteral(".claude/projects")), relative);
}

QString PrivateHome::support(const QString &relative) const
{
    return below(path(QStringLiteral(".local/share/Plinthar")), relative);
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
