// SPDX-License-Identifier: GPL-3.0-or-later
#include "GitObjects.h"

#include "review/Repository.h"

#include <QCryptographicHash>

namespace {

/// From lines as "MODE [KIND] OBJECT [STAGE]<Tab>PATH".
GitObjects objects(const QByteArray &output, int objectColumn)
{
    GitObjects found;
    for (const QByteArray &line : output.split('\0')) {
        const qsizetype tab = line.indexOf('\t');
        if (tab >= 0)
            found[QString::fromUtf8(line.mid(tab + 1))] +=
                line.first(tab).split(' ').value(objectColumn);
    }
    return found;
}

} // namespace

QByteArray objectName(const QByteArray &content)
{
    const QByteArray header = "blob " + QByteArray::number(content.size());
    return QCryptographicHash::hash(header + '\0' + content, QCryptographicHash::Sha1).toHex();
}

GitObjects objectsInIndex(const QString &repository, const QString &folder)
{
    return objects(git(repository, {QStringLiteral("ls-files"), QStringLiteral("-sz"), folder}), 1);
}

GitObjects objectsInHead(const QString &repository, const QString &folder)
{
    return objects(git(repository, {QStringLiteral("ls-tree"), QStringLiteral("-rz"),
                                    QStringLiteral("HEAD"), folder + u'/'}),
                   2);
}
