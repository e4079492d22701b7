// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "usage/LocalDays.h"
#include "usage/Usage.h"

#include <QHash>

#include <map>
#include <vector>

/// The days of the window of 30 days, and those beyond that turn out to be needed, by number. Finds
/// the day of an instant without asking the calendar again, for millions of instants.
class DayFinder {
public:
    DayFinder(TimePoint now, const QTimeZone &zone);

    /// Whether there is a window at all.
    bool isValid() const { return m_windowSize > 0; }
    /// The first instant of the window.
    TimePoint cutoff() const { return m_starts.front(); }
    /// The number of an instant's day. Numbers below windowSize() are those of the window in order.
    size_t dayOf(TimePoint time)
    {
        if (time < m_latest.begin || time >= m_latest.end)
            m_latest = find(time);
        return m_latest.day;
    }
    size_t windowSize() const { return m_windowSize; }
    /// The first instant of the day with that number.
    TimePoint startOf(size_t day) const { return m_starts[day]; }

private:
    struct Part {
        TimePoint begin;
        TimePoint end;
        size_t day = 0;
    };

    Part find(TimePoint time);

    QTimeZone m_zone;
    size_t m_windowSize = 0;
    std::vector<TimePoint> m_starts; // by number
    QHash<QDate, size_t> m_dayOfDate;
    std::map<TimePoint, Part> m_parts; // by beginning
    Part m_latest;
};

/// Tokens and cost by the number of the day.
class DayTable {
public:
    void add(size_t day, qint64 tokens, double cost);
    /// The days of the window and the other days that something was added to, in order of time.
    QList<DayUsage> days(const DayFinder &finder) const;

private:
    struct Sum {
        qint64 tokens = 0;
        double cost = 0;
        bool used = false;
    };

    std::vector<Sum> m_sums;
};
