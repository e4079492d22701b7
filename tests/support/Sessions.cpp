// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Sessions.h"

#include "model/Discovery.h"
#include "model/PriceStore.h"

#include <QDir>

namespace {

QString logPath(const PrivateHome &home, const QString &project, const QString &id)
{
    return home.claude(Discovery::encodeClaudeDir(project) + u'/' + id + QStringLiteral(".jsonl"));
}

} // namespace

QString writeSession(const PrivateHome &home, const LoggedSession &session)
{
    const QString path = logPath(home, session.project, session.id);
    const QByteArray prompt = LogLines::user(session.start, session.prompt, session.project);
    writeFile(path, LogLines::log(QList{prompt} + session.answers));
    return path;
}

void removeSession(const PrivateHome &home, const QString &project, const QString &id)
{
    if (!QFile::remove(logPath(home, project, id)))
        qFatal("no log of session %s", qPrintable(id));
}

QStringList addByHand(const PrivateHome &home, const QStringList &names)
{
    QStringList paths;
    for (const QString &name : names) {
        paths.append(home.path(QStringLiteral("code/") + name));
        QDir().mkpath(paths.constLast());
    }
    writeFile(home.support(QStringLiteral("projects.json")), PriceStore::encodeAdded(paths));
    return paths;
}
