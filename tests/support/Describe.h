// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "model/Session.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>
#include <optional>

/// Model values as text with every field in it. Tests compare the texts, so that a failure shows
/// what differs.

inline QString describe(TimePoint time)
{
    return QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count(), Qt::UTC)
        .toString(Qt::ISODateWithMs);
}

inline QString describe(const QString &text)
{
    return u'"' + text + u'"';
}

inline QString describe(const UsageRecord &record)
{
    return QStringLiteral("%1 %2 %3/%4/%5/%6")
        .arg(describe(record.date), describe(record.model))
        .arg(record.input)
        .arg(record.output)
        .arg(record.cacheWrite)
        .arg(record.cacheRead);
}

template <typename T>
QString describe(const std::optional<T> &value)
{
    return value ? describe(*value) : QStringLiteral("nothing");
}

template <typename T>
QString describe(const QList<T> &values)
{
    QStringList texts;
    for (const T &value : values)
        texts.append(describe(value));
    return texts.join(QStringLiteral("\n  "));
}

inline QString describe(const Session &session)
{
    return QStringLiteral("%1 from %2 to %3, %4 turns, %5\n  ")
               .arg(session.id, describe(session.start), describe(session.end))
               .arg(session.turns)
               .arg(describe(session.firstPrompt)) +
           describe(session.records);
}

inline QString describe(const Project &project)
{
    return QStringLiteral("%1 logs %2%3")
        .arg(describe(project.path), describe(project.claudeDir),
             project.added ? QStringLiteral(" added") : QString());
}

inline QString describe(const SessionMap &sessions)
{
    QStringList texts;
    for (auto it = sessions.cbegin(); it != sessions.cend(); ++it)
        texts.append(describe(it.key()) + QStringLiteral(": ") + describe(it.value()));
    std::sort(texts.begin(), texts.end());
    return texts.join(u'\n');
}
