// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitFile.h"

#include <QHash>

QString GitFile::badge() const
{
    if (isUntracked())
        return QStringLiteral("U");
    QString columns;
    for (const QChar column : {x, y}) {
        if (column != u' ')
            columns.append(column);
    }
    return columns;
}

size_t qHash(const GitFile &file, size_t seed)
{
    return qHashMulti(seed, file.path, file.x, file.y);
}
