// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/TimePoint.h"

#include <QDate>
#include <QTimeZone>

#include <optional>

/// Calendar days as the clocks on the wall of a time zone show them. A day may have 23 or 25 hours
/// and no midnight, or two of them, or be missing altogether.
namespace LocalDays {

/// A stretch of time that lies in one day and in which the clocks are not changed.
struct Span {
    TimePoint begin;
    TimePoint end; ///< the first instant that is no longer part of it
    QDate date;
};

/// The day of an instant.
QDate dateOf(TimePoint time, const QTimeZone &zone);

/// The longest span around an instant.
Span spanOf(TimePoint time, const QTimeZone &zone);

/// The first instant of a day; nothing when the zone has left that day out.
std::optional<TimePoint> startOf(const QDate &date, const QTimeZone &zone);

/// The first instant after `time` that lies in a later day.
TimePoint nextStart(TimePoint time, const QTimeZone &zone);

} // namespace LocalDays
