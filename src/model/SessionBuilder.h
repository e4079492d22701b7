// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Session.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <simdjson.h>

#include <optional>
#include <string_view>

/// Makes a Session out of the lines of its log, one line after the other.
class SessionBuilder {
public:
    /// `now` dates a usage record when neither its line nor any line before it has a time.
    explicit SessionBuilder(TimePoint now) : m_now(now) {}

    /// Takes the next line of the log.
    void add(const simdjson::dom::object &line);

    /// The earliest and the latest time so far.
    std::optional<TimePoint> start() const { return m_start; }
    std::optional<TimePoint> end() const { return m_end; }

    /// Takes the lines that another builder has taken, as if they followed here.
    void append(SessionBuilder &&later);

    /// The session, or nothing when no line had a usable timestamp. Empties the builder.
    std::optional<Session> finish(const QString &id);

private:
    struct Records {
        QList<UsageRecord> list;
        // Places of those without a time of their own. Their date is the earliest time of all lines
        // before them; farFuture as long as there is none.
        QSet<qsizetype> undated;
    };

    std::optional<TimePoint> addTime(std::optional<TimePoint> date);
    void addTurn(const simdjson::dom::object &message);
    void addUsage(const simdjson::dom::object &message, std::optional<TimePoint> date);
    void store(UsageRecord &&record, bool dated, std::optional<std::string_view> messageId);
    void datesFollow(Records &records) const;
    QString shared(QAnyStringView model);

    TimePoint m_now;
    std::optional<TimePoint> m_start;
    std::optional<TimePoint> m_end;
    QString m_firstPrompt;
    qint64 m_turns = 0;
    QHash<QByteArray, qsizetype> m_placeOfId; // where in m_withId a message's record stands
    Records m_withId;
    Records m_withoutId;
    QList<QString> m_models; // names met so far: the records of a session share a few strings
};
