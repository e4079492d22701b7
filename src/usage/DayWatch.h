// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/TimePoint.h"

#include <QObject>
#include <QTimeZone>
#include <QTimer>

#include <functional>

/// Where the present comes from.
struct Clock {
    std::function<TimePoint()> now = currentTime;
    std::function<QTimeZone()> zone = [] { return QTimeZone::systemTimeZone(); };
};

/// Tells when it is another day. It does not rely on one long timer: those stand still while the
/// computer sleeps and know nothing of clocks that are set.
class DayWatch : public QObject {
    Q_OBJECT
public:
    /// `longestSleep` is how long a change of the clock may go unnoticed.
    explicit DayWatch(Clock clock, QObject *parent = nullptr,
                      std::chrono::milliseconds longestSleep = std::chrono::seconds(30));

    /// Begins to watch, and looks at once. Before, and after stop(), nothing is told.
    void start();
    void stop();

Q_SIGNALS:
    /// The day or the time zone is another than at the last start() or dayChanged().
    void dayChanged();

private:
    void look();

    const Clock m_clock;
    const std::chrono::milliseconds m_longestSleep;
    QTimer m_timer;
    QDate m_today;
    QTimeZone m_zone;
};
