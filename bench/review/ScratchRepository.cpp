// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ScratchRepository.h"

#include "review/RunProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

bool ScratchRepository::create() const
{
    return QDir().mkpath(m_folder) && git({QStringLiteral("init"), QStringLiteral("-q")});
}

bool ScratchRepository::git(const QStringList &arguments) const
{
    const ShellResult result =
        runProcess(QStringLiteral("/usr/bin/git"),
                   QStringList{QStringLiteral("-C"), m_folder, QStringLiteral("-c"),
                               QStringLiteral("user.name=Bench"), QStringLiteral("-c"),
                               QStringLiteral("user.email=bench@localhost")} +
                       arguments);
    if (result.status != 0)
        std::fprintf(stderr, "%s\n", qPrintable(result.err));
    return result.status == 0;
}

bool ScratchRepository::commitAll() const
{
    return git({QStringLiteral("add"), QStringLiteral(".")}) &&
           git({QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("-m"),
                QStringLiteral("first")});
}

bool ScratchRepository::write(const QString &name, const QByteArray &bytes) const
{
    QFile file(m_folder + u'/' + name);
    if (QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
        file.write(bytes) == bytes.size())
        return true;
    std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()), qPrintable(file.errorString()));
    return false;
}
