// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "usage/Usage.h"
#include "usage/ValueScale.h"

#include <QLocale>

/// One bar of a chart.
struct ChartBar {
    double place = 0; ///< along the chart; bars of one place continue one another
    double value = 0;
    QString name;    ///< what it is about, in full: a date, or a project's name
    QString figures; ///< its exact numbers
};

/// What a chart shows: the bars, and the labels of their places.
struct ChartContents {
    struct Label {
        double place = 0;
        QString text;
    };

    QList<ChartBar> bars;
    QList<Label> labels;
};

/// Everything that the Usage tab shows.
struct UsageCharts {
    /// Figures and charts of the days in one scope.
    struct Days {
        bool isEmpty = true; ///< whether the whole tab has nothing to show in this scope
        DayUsage total;
        ChartContents tokens;
        ChartContents cost;
    };

    Days project;
    Days all;
    qsizetype projectCount = 0; ///< how many projects have a bar
    ChartContents projectTokens;
    ChartContents projectCost;

    const Days &days(bool everything) const { return everything ? all : project; }
};

/// A chart of days. A day takes one place on the axis, whether it has 23, 24 or 25 hours; of a long
/// time without an entry (before a day far in the future) only a gap remains.
ChartContents dayChart(const QList<DayUsage> &days, Measure measure, const QTimeZone &zone,
                       const QLocale &locale);

/// A chart of projects, in their order. Projects of one name share a place.
ChartContents projectChart(const QList<ProjectUsage> &projects, Measure measure,
                           const QLocale &locale);

/// makeUsage() and the charts of its figures.
UsageCharts makeUsageCharts(const UsageInput &input, const QLocale &locale,
                            const std::stop_token &stop = {});
