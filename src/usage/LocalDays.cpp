// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/LocalDays.h"

#include <QDateTime>

#include <algorithm>

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// No clock is farther from UTC than this.
constexpr hours farthestOffset{16};

QDateTime utc(TimePoint time)
{
    return QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count(), Qt::UTC);
}

/// Midnight at the beginning of a day, were the zone UTC.
TimePoint utcMidnight(const QDate &date)
{
    constexpr qint64 epoch = 2'440'588; // the Julian day of 1970-01-01
    return TimePoint(std::chrono::days(date.toJulianDay() - epoch));
}

std::optional<TimePoint> instantOf(const QTimeZone::OffsetData &transition)
{
    if (!transition.atUtc.isValid())
        return std::nullopt;
    return TimePoint(milliseconds(transition.atUtc.toMSecsSinceEpoch()));
}

} // namespace

namespace LocalDays {

QDate dateOf(TimePoint time, const QTimeZone &zone)
{
    return utc(time + seconds(zone.offsetFromUtc(utc(time)))).date();
}

Span spanOf(TimePoint time, const QTimeZone &zone)
{
    const seconds offset(zone.offsetFromUtc(utc(time)));
    const QDate date = utc(time + offset).date();
    Span span{utcMidnight(date) - offset, utcMidnight(date.addDays(1)) - offset, date};
    // The transition looked for is the last one not after `time`; Qt looks strictly before.
    const auto last = instantOf(zone.previousTransition(utc(time + milliseconds(1))));
    const auto next = instantOf(zone.nextTransition(utc(time)));
    if (last && *last <= time)
        span.begin = std::max(span.begin, *last);
    if (next && *next > time)
        span.end = std::min(span.end, *next);
    return span;
}

std::optional<TimePoint> startOf(const QDate &date, const QTimeZone &zone)
{
    Span span = spanOf(utcMidnight(date) - farthestOffset, zone);
    while (span.date < date)
        span = spanOf(span.end, zone);
    return span.date == date ? std::optional(span.begin) : std::nullopt;
}

TimePoint nextStart(TimePoint time, const QTimeZone &zone)
{
    Span span = spanOf(time, zone);
    const QDate today = span.date;
    while (span.date <= today)
        span = spanOf(span.end, zone);
    return span.begin;
}

} // namespace LocalDays
