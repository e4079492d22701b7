// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/DayWatch.h"

#include "usage/LocalDays.h"

#include <algorithm>

using std::chrono::milliseconds;

DayWatch::DayWatch(Clock clock, QObject *parent, milliseconds longestSleep)
    : QObject(parent)
    , m_clock(std::move(clock))
    , m_longestSleep(longestSleep)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &DayWatch::look);
}

void DayWatch::start()
{
    look();
}

void DayWatch::stop()
{
    m_timer.stop();
}

void DayWatch::look()
{
    const TimePoint now = m_clock.now();
    const QTimeZone zone = m_clock.zone();
    const QDate today = LocalDays::dateOf(now, zone);
    const milliseconds left = LocalDays::nextStart(now, zone) - now;
    // A coarse timer may come early by a twentieth; near midnight it has to be exact.
    m_timer.setTimerType(left > 2 * m_longestSleep ? Qt::CoarseTimer : Qt::PreciseTimer);
    m_timer.start(std::clamp(left, milliseconds(1), m_longestSleep));
    const bool changed = m_today.isValid() && (today != m_today || zone != m_zone);
    m_today = today;
    m_zone = zone;
    if (changed)
        Q_EMIT dayChanged();
}
