// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/UsageRecord.h"

#include <QHash>
#include <QList>
#include <QString>

/// A sum of token counts. Counts that a damaged log makes absurd wrap round instead of being
/// undefined; real ones never come near.
inline qint64 addTokens(qint64 a, qint64 b)
{
    return static_cast<qint64>(static_cast<quint64>(a) + static_cast<quint64>(b));
}

/// One Claude Code session, read from one log file.
struct Session {
    QString id; ///< the log file's name without its extension
    TimePoint start;
    TimePoint end;
    QString firstPrompt;        ///< the first real prompt, trimmed; empty when the session has none
    qint64 turns = 0;           ///< number of real prompts
    QList<UsageRecord> records; ///< oldest first

    /// Cache-write plus cache-read tokens over all records.
    qint64 cache() const
    {
        qint64 sum = 0;
        for (const UsageRecord &record : records)
            sum = addTokens(sum, addTokens(record.cacheWrite, record.cacheRead));
        return sum;
    }
};

/// The sessions of every project, newest first, by the project's path.
using SessionMap = QHash<QString, QList<Session>>;
