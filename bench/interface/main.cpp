// SPDX-License-Identifier: GPL-3.0-or-later

// The interface thread during reloads, in the real window: the longest time that it is away from
// its event loop.

#include "app/ContentView.h"
#include "interface/BusyProbe.h"
#include "interface/RunUntil.h"
#include "model/Store.h"
#include "support/BenchOptions.h"
#include "support/CorpusOptions.h"
#include "support/Figures.h"
#include "support/Memory.h"
#include "support/ScratchHome.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QJsonArray>

#include <algorithm>
#include <cstdio>

namespace {

using BusyProbe::Stretch;

constexpr double mostMilliseconds = 16;
constexpr qsizetype listed = 10;

/// Whether the sessions stand on the screen.
bool tableIsFilled(const ContentView &window)
{
    const auto *table = window.findChild<QAbstractItemView *>(QStringLiteral("sessionsTable"));
    return table && table->isVisible() && table->model()->rowCount() > 0;
}

std::vector<Stretch> recordUntilFilled(const Store &store, const ContentView &window)
{
    bool finished = false;
    const auto connection =
        QObject::connect(&store, &Store::reloadFinished, &store, [&finished] { finished = true; });
    runUntil([&] { return finished && tableIsFilled(window); });
    QObject::disconnect(connection);
    return BusyProbe::stop();
}

std::vector<double> largest(const std::vector<Stretch> &stretches, double Stretch::*time)
{
    std::vector<double> milliseconds;
    for (const Stretch &stretch : stretches)
        milliseconds.push_back(stretch.*time * 1000);
    std::sort(milliseconds.begin(), milliseconds.end(), std::greater());
    milliseconds.resize(std::min<size_t>(milliseconds.size(), listed));
    return milliseconds;
}

QJsonArray toJson(const std::vector<double> &numbers)
{
    QJsonArray array;
    for (const double number : numbers)
        array.append(number);
    return array;
}

void printLargest(const char *what, const std::vector<double> &milliseconds)
{
    std::printf("  %s:", what);
    for (const double value : milliseconds)
        std::printf(" %.1f", value);
    std::printf("\n");
}

/// The longest stretches of the reloads, by one of the two clocks.
void addLongest(Report &report, const QString &reload, const QString &clock,
                const std::vector<std::vector<Stretch>> &rounds, double Stretch::*time)
{
    Series longest;
    for (const std::vector<Stretch> &stretches : rounds)
        longest.push_back(largest(stretches, time).front());
    report.add({.what = QStringLiteral("longest busy, %1, %2").arg(reload, clock),
                .comparedWith = {},
                .unit = QStringLiteral("ms"),
                .best = least(longest),
                .usual = median(longest),
                .target = mostMilliseconds});
}

void addReloads(Report &report, const QString &reload,
                const std::vector<std::vector<Stretch>> &rounds)
{
    addLongest(report, reload, QStringLiteral("wall"), rounds, &Stretch::wall);
    addLongest(report, reload, QStringLiteral("CPU"), rounds, &Stretch::cpu);
    for (const std::vector<Stretch> &stretches : rounds) {
        std::printf("%s\n", qPrintable(reload));
        printLargest("longest, wall ms", largest(stretches, &Stretch::wall));
        printLargest("longest, CPU ms", largest(stretches, &Stretch::cpu));
    }
    report.addDetail(reload + QStringLiteral(", largest wall ms"),
                     toJson(largest(rounds.front(), &Stretch::wall)));
    report.addDetail(reload + QStringLiteral(", largest CPU ms"),
                     toJson(largest(rounds.front(), &Stretch::cpu)));
}

/// What the reload leaves and needs in the window's process, without the sessions themselves.
void addMemory(Report &report, qint64 idlePeak, const Store &store)
{
    constexpr double megabyte = 1e6;
    const double above = static_cast<double>(peakMemory() - idlePeak - sizeOf(store.sessions()));
    report.add({.what = QStringLiteral("peak memory of the first reload"),
                .comparedWith = QStringLiteral("minus idle window and results"),
                .unit = QStringLiteral("MB"),
                .best = above / megabyte,
                .usual = above / megabyte,
                .target = 30});
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    BenchOptions options(
        QStringLiteral("Measures how long the interface thread is busy during reloads."));

    addCorpusOptions(options);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Reloads after the first one."), 5);
    options.process(application);
    if (!BusyProbe::works()) {
        std::fprintf(stderr, "the probe does not see the interface thread\n");
        return 1;
    }
    const corpus::Shape shape = corpusShape(options);
    const corpus::Truth truth = corpus::write(home.claudeProjects().toStdString(), shape);
    Report report(QStringLiteral("Interface thread during a reload of %1 MB in %2 logs, %3")
                      .arg(truth.bytes / 1'000'000)
                      .arg(truth.sessions)
                      .arg(QGuiApplication::platformName()));
    report.addDetail(QStringLiteral("corpus"), toJson(shape));

    Store store(home.claudeProjects());
    ContentView window(store);
    qint64 idlePeak = 0;
    QObject::connect(&store, &Store::loadingChanged, &window, [&] {
        if (idlePeak > 0)
            return;
        idlePeak = peakMemory();
        BusyProbe::start();
    });
    window.show(); // which starts the first reload
    const std::vector<Stretch> first = recordUntilFilled(store, window);
    addMemory(report, idlePeak, store);
    std::vector<std::vector<Stretch>> again;
    const int rounds = int(options.number(QStringLiteral("rounds")));
    for (int round = 0; round < rounds; ++round) {
        BusyProbe::start();
        store.reload();
        again.push_back(recordUntilFilled(store, window));
    }
    addReloads(report, QStringLiteral("first reload"), {first});
    if (!again.empty())
        addReloads(report, QStringLiteral("later reloads"), again);
    return options.finish(report);
}
