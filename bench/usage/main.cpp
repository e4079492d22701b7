// SPDX-License-Identifier: GPL-3.0-or-later

// The Usage tab with very many records, in the real window: how long the interface thread is away
// from its event loop when the tab is opened, when its scope is changed and when prices change, and
// how long the figures take.

#include "interface/OpenWindow.h"
#include "support/BenchOptions.h"
#include "support/ScratchHome.h"
#include "support/UsageLogs.h"
#include "ui/SegmentedSwitch.h"
#include "usage/BarChart.h"
#include "usage/Usage.h"

#include <QApplication>

#include <cstdio>

namespace {

constexpr double mostMilliseconds = 50;

double sumOf(const BarChart *chart)
{
    double sum = 0;
    for (const ChartBar &bar : chart->contents().bars)
        sum += bar.value;
    return sum;
}

/// What the chart of the days shows; nothing before it is there.
double shownSum(const OpenWindow &open, const QString &chart)
{
    const auto *found = open.shown<BarChart>(chart);
    return found ? sumOf(found) : 0;
}

using Stretches = std::vector<BusyProbe::Stretch>;

struct Times {
    Stretches open;
    Stretches scope;
    Stretches prices;
};

void measureRound(Times &times, OpenWindow &open, int project)
{
    Store &store = open.store();
    store.setSelection(store.projects()[project].path);
    runUntil([] { return true; });
    const QString tokens = QStringLiteral("dayTokens");
    const QString cost = QStringLiteral("dayCost");
    times.open.push_back(
        longestBusy([&] { open.show(Tab::Usage); }, [&] { return shownSum(open, tokens) > 0; }));
    double before = shownSum(open, tokens);
    times.scope.push_back(longestBusy(
        [&] { open.shown<SegmentedSwitch>(QStringLiteral("usageScope"))->setCurrent(0); },
        [&] { return shownSum(open, tokens) > before; }));
    before = shownSum(open, cost);
    QList<PriceRow> prices = store.prices();
    for (PriceRow &row : prices)
        row.output *= 1.5;
    times.prices.push_back(longestBusy([&] { store.setPrices(prices); },
                                       [&] { return shownSum(open, cost) > before; }));
}

void addFigures(Report &report, const Store &store, int rounds)
{
    Series seconds;
    const UsageInput input{.projects = store.projects(),
                           .sessions = store.sessions(),
                           .prices = store.prices(),
                           .path = store.projects().constFirst().path};
    for (int round = 0; round < rounds; ++round)
        seconds.push_back(elapsed([&] { (void)makeUsage(input); }).cpu * 1000);
    report.add({.what = QStringLiteral("all figures, in the background, CPU"),
                .comparedWith = {},
                .unit = QStringLiteral("ms"),
                .best = least(seconds),
                .usual = median(seconds)});
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    BenchOptions options(
        QStringLiteral("Measures how long the Usage tab keeps the interface thread busy."));
    options.addNumber(QStringLiteral("records"), QStringLiteral("Records."), 2000000);
    options.addNumber(QStringLiteral("projects"), QStringLiteral("Projects."), 500);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 5);
    options.process(application);
    if (!BusyProbe::works()) {
        std::fprintf(stderr, "the probe does not see the interface thread\n");
        return 1;
    }
    const int projects = int(options.number(QStringLiteral("projects")));
    const int records = int(options.number(QStringLiteral("records")));
    const int rounds = int(options.number(QStringLiteral("rounds")));
    if (rounds < 1 || projects < rounds || records < projects ||
        !UsageLogs{projects, 1, records / projects}.write(home.claudeProjects())) {
        std::fprintf(stderr, "the logs could not be made\n");
        return 1;
    }
    OpenWindow open(home.claudeProjects());
    Times times;
    for (int round = 0; round < rounds; ++round)
        measureRound(times, open, round);
    Report report(QStringLiteral("Usage tab with %1 records in %2 projects, %3")
                      .arg(records)
                      .arg(projects)
                      .arg(QGuiApplication::platformName()));
    addLongestBusy(report, QStringLiteral("opening the tab"), times.open, mostMilliseconds);
    addLongestBusy(report, QStringLiteral("changing the scope"), times.scope, mostMilliseconds);
    addLongestBusy(report, QStringLiteral("changing prices"), times.prices, mostMilliseconds);
    addFigures(report, open.store(), rounds);
    return options.finish(report);
}
