// SPDX-License-Identifier: GPL-3.0-or-later

// Going from project to project and from tab to tab where there are very many sessions: the longest
// time that the interface thread is away from its event loop.

#include "interface/OpenWindow.h"
#include "support/BenchOptions.h"
#include "support/ScratchHome.h"
#include "support/UsageLogs.h"
#include "usage/BarChart.h"

#include <QAbstractItemView>
#include <QTabWidget>

#include <array>
#include <cstdio>

namespace {

using Stretches = std::vector<BusyProbe::Stretch>;

struct Times {
    Stretches project;
    std::array<Stretches, 5> tab;
    Stretches back; // to a tab that has been open
};

bool isFilled(const OpenWindow &open)
{
    const auto *table = open.shown<QAbstractItemView>(QStringLiteral("sessionsTable"));
    return table && table->model()->rowCount() > 0;
}

bool isOpen(const OpenWindow &open, Tab tab)
{
    if (tab == Tab::Sessions)
        return isFilled(open);
    if (tab == Tab::Usage)
        return open.shown<BarChart>(QStringLiteral("dayTokens"));
    return open.shown<QTabWidget>()->currentIndex() == static_cast<int>(tab);
}

void measureRound(Times &times, OpenWindow &open, int project)
{
    times.project.push_back(longestBusy(
        [&] { open.store().setSelection(open.store().projects()[project].path); },
        [&] {
            return open.window().windowTitle() == open.store().selected()->name() && isFilled(open);
        }));
    for (const Tab tab : {Tab::Live, Tab::Review, Tab::Usage, Tab::Context})
        times.tab[size_t(tab)].push_back(
            longestBusy([&] { open.show(tab); }, [&] { return isOpen(open, tab); }));
    times.back.push_back(longestBusy([&] { open.show(Tab::Sessions); },
                                     [&] { return isOpen(open, Tab::Sessions); }));
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    BenchOptions options(QStringLiteral(
        "Measures how long changing projects and tabs keeps the interface thread busy."));
    options.addNumber(QStringLiteral("projects"), QStringLiteral("Projects."), 10);
    options.addNumber(QStringLiteral("sessions"), QStringLiteral("Sessions of each project."),
                      5000);
    options.addNumber(QStringLiteral("records"), QStringLiteral("Records of each session."), 40);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 5);
    options.process(application);
    const UsageLogs logs{.projects = int(options.number(QStringLiteral("projects"))),
                         .sessions = int(options.number(QStringLiteral("sessions"))),
                         .records = int(options.number(QStringLiteral("records")))};
    if (!BusyProbe::works() || logs.projects < 2 || !logs.write(home.claudeProjects())) {
        std::fprintf(stderr, "the probe or the logs do not work\n");
        return 1;
    }
    OpenWindow open(home.claudeProjects());
    Times times;
    for (int round = 0; round < int(options.number(QStringLiteral("rounds"))); ++round)
        measureRound(times, open, (round + 1) % logs.projects);
    Report report(QStringLiteral("Changing projects and tabs, %1 sessions, %2 records, %3")
                      .arg(logs.projects * logs.sessions)
                      .arg(logs.projects * logs.sessions * logs.records)
                      .arg(QGuiApplication::platformName()));
    addLongestBusy(report, QStringLiteral("to another project"), times.project);
    addLongestBusy(report, QStringLiteral("opening Live"), times.tab[size_t(Tab::Live)]);
    addLongestBusy(report, QStringLiteral("opening Review"), times.tab[size_t(Tab::Review)]);
    addLongestBusy(report, QStringLiteral("opening Usage"), times.tab[size_t(Tab::Usage)], 50);
    addLongestBusy(report, QStringLiteral("opening Context"), times.tab[size_t(Tab::Context)]);
    addLongestBusy(report, QStringLiteral("back to Sessions"), times.back);
    return options.finish(report);
}
