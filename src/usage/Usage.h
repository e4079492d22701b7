// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/PriceRow.h"
#include "model/Project.h"
#include "model/Session.h"

#include <QList>
#include <QString>
#include <QTimeZone>

#include <stop_token>

/// What was used on one calendar day.
struct DayUsage {
    TimePoint day; ///< its first instant in the local time zone, which is its identity
    qint64 tokens = 0;
    double cost = 0; ///< in US dollars

    bool operator==(const DayUsage &) const = default;
};

/// What one project used.
struct ProjectUsage {
    QString name; ///< the folder's name, which is its identity here: folders may share one
    qint64 tokens = 0;
    double cost = 0; ///< in US dollars

    bool operator==(const ProjectUsage &) const = default;
};

/// What the figures are made from. Copies are cheap, since the containers share their contents.
struct UsageInput {
    QList<Project> projects;
    SessionMap sessions;
    QList<PriceRow> prices;
    QString path; ///< of the project that is shown
    TimePoint now = currentTime();
    QTimeZone zone = QTimeZone::systemTimeZone();
};

/// The figures of the last 30 calendar days, today being the last.
struct Usage {
    /// One entry for each of the 30 days, and for every day after today that has records: clocks
    /// may have been wrong. In the order of time.
    QList<DayUsage> projectDays; ///< of the project that is shown
    QList<DayUsage> allDays;     ///< of all projects
    /// The projects that used any tokens; the most expensive first, otherwise in the list's order.
    QList<ProjectUsage> perProject;

    const QList<DayUsage> &days(bool all) const { return all ? allDays : projectDays; }
    /// Whether there is nothing worth a chart, seen from one scope.
    bool isEmpty(bool all) const;
};

/// Input, output, cache writes and cache reads together.
qint64 tokensOf(const UsageRecord &record);

/// The sum over days.
DayUsage totalOf(const QList<DayUsage> &days);

/// Goes through all records once. What it returns after a stop was requested is of no use.
Usage makeUsage(const UsageInput &input, const std::stop_token &stop = {});
