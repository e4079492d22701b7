// SPDX-License-Identifier: GPL-3.0-or-later

// The Usage tab with very many records, in the real window: how long the interface thread is away
// from its event loop when the tab is opened, when its scope is changed and when prices change, and
// how long the figures take.

#include "app/ContentView.h"
#include "interface/BusyProbe.h"
#include "interface/RunUntil.h"
#include "model/Store.h"
#include "support/Figures.h"
#include "support/ScratchHome.h"
#include "ui/SegmentedSwitch.h"
#include "usage/BarChart.h"
#include "usage/Usage.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr double mostMilliseconds = 50;
constexpr int usageTab = 3;

const std::array<const char *, 3> models{"claude-opus-4-1", "claude-sonnet-4", "claude-haiku-4"};

/// One session per project, with its records spread over the last 35 days.
bool writeLog(const QString &folder, const QString &project, int records, int number)
{
    if (!QDir().mkpath(folder))
        return false;
    QFile file(folder + QStringLiteral("/session.jsonl"));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QDateTime begin = QDateTime::currentDateTimeUtc().addDays(-35);
    const qint64 step = 35LL * 24 * 3600 * 1000 / records;
    QByteArray bytes = "{\"type\":\"user\",\"cwd\":\"" + project.toUtf8() + "\"}\n";
    for (int i = 0; i < records; ++i) {
        const QByteArray time = begin.addMSecs(i * step).toString(Qt::ISODateWithMs).toLatin1();
        bytes += "{\"type\":\"assistant\",\"timestamp\":\"" + time + "\",\"message\":{\"id\":\"" +
                 QByteArray::number(i) + "\",\"model\":\"" +
                 models[size_t(number + i) % models.size()] +
                 "\",\"usage\":{\"input_tokens\":" + QByteArray::number(i % 97) +
                 ",\"output_tokens\":" + QByteArray::number(i % 1009) +
                 ",\"cache_read_input_tokens\":" + QByteArray::number(i % 50'021) + "}}}\n";
    }
    return file.write(bytes) == bytes.size();
}

bool writeLogs(const ScratchHome &home, int projects, int records)
{
    for (int i = 0; i < projects; ++i) {
        const QString name = QStringLiteral("project-%1").arg(i, 3, 10, QLatin1Char('0'));
        if (!writeLog(home.claudeProjects() + QStringLiteral("/-code-") + name,
                      QStringLiteral("/code/") + name, records / projects, i))
            return false;
    }
    return true;
}

template <typename Widget>
Widget *shown(const QWidget &window, const QString &name)
{
    for (auto *widget : window.findChildren<Widget *>(name)) {
        if (widget->isVisible())
            return widget;
    }
    return nullptr;
}

double sumOf(const BarChart *chart)
{
    double sum = 0;
    for (const ChartBar &bar : chart->contents().bars)
        sum += bar.value;
    return sum;
}

/// What the chart of the days shows; nothing before it is there.
double shownSum(const QWidget &window, const QString &chart)
{
    const auto *found = shown<BarChart>(window, chart);
    return found ? sumOf(found) : 0;
}

/// The longest stretch, by either clock, that something kept the interface thread busy.
template <typename Act, typename Condition>
BusyProbe::Stretch longestOf(Act act, Condition done)
{
    BusyProbe::start();
    // From the event loop, as everything is that a user does.
    QTimer::singleShot(0, qApp, act);
    runUntil(done);
    BusyProbe::Stretch longest;
    for (const BusyProbe::Stretch &stretch : BusyProbe::stop()) {
        longest.wall = std::max(longest.wall, stretch.wall);
        longest.cpu = std::max(longest.cpu, stretch.cpu);
    }
    return longest;
}

using Stretches = std::vector<BusyProbe::Stretch>;

struct Times {
    Stretches open;
    Stretches scope;
    Stretches prices;
};

void measureRound(Times &times, Store &store, ContentView &window, int project)
{
    store.setSelection(store.projects()[project].path);
    runUntil([] { return true; });
    const QString tokens = QStringLiteral("dayTokens");
    const QString cost = QStringLiteral("dayCost");
    times.open.push_back(
        longestOf([&] { shown<QTabWidget>(window, {})->setCurrentIndex(usageTab); },
                  [&] { return shownSum(window, tokens) > 0; }));
    double before = shownSum(window, tokens);
    times.scope.push_back(longestOf(
        [&] { shown<SegmentedSwitch>(window, QStringLiteral("usageScope"))->setCurrent(0); },
        [&] { return shownSum(window, tokens) > before; }));
    before = shownSum(window, cost);
    QList<PriceRow> prices = store.prices();
    for (PriceRow &row : prices)
        row.output *= 1.5;
    times.prices.push_back(longestOf([&] { store.setPrices(prices); },
                                     [&] { return shownSum(window, cost) > before; }));
}

void addLongest(Report &report, const QString &what, const Stretches &longest)
{
    Series wall;
    Series cpu; // which other programs hardly disturb
    for (const BusyProbe::Stretch &stretch : longest) {
        wall.push_back(stretch.wall * 1000);
        cpu.push_back(stretch.cpu * 1000);
    }
    for (const auto &[clock, milliseconds] :
         {std::pair{QStringLiteral("wall"), wall}, std::pair{QStringLiteral("CPU"), cpu}})
        report.add({.what = QStringLiteral("longest busy, %1, %2").arg(what, clock),
                    .comparedWith = {},
                    .unit = QStringLiteral("ms"),
                    .best = least(milliseconds),
                    .usual = median(milliseconds),
                    .target = mostMilliseconds});
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
    QCommandLineParser parser;
    const QString number = QStringLiteral("number");
    parser.setApplicationDescription(
        QStringLiteral("Measures how long the Usage tab keeps the interface thread busy."));
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("records"), QStringLiteral("Records."), number, QStringLiteral("2000000")},
         {QStringLiteral("projects"), QStringLiteral("Projects."), number, QStringLiteral("500")},
         {QStringLiteral("rounds"), QStringLiteral("Rounds."), number, QStringLiteral("5")},
         {QStringLiteral("json"), QStringLiteral("Where to write the figures."),
          QStringLiteral("file")}});
    parser.process(application);
    if (!BusyProbe::works()) {
        std::fprintf(stderr, "the probe does not see the interface thread\n");
        return 1;
    }
    const int projects = parser.value(QStringLiteral("projects")).toInt();
    const int records = parser.value(QStringLiteral("records")).toInt();
    const int rounds = parser.value(QStringLiteral("rounds")).toInt();
    if (rounds < 1 || projects < rounds || records < projects ||
        !writeLogs(home, projects, records)) {
        std::fprintf(stderr, "the logs could not be made\n");
        return 1;
    }
    Store store(home.claudeProjects());
    ContentView window(store);
    bool loaded = false;
    QObject::connect(&store, &Store::reloadFinished, &window, [&loaded] { loaded = true; });
    window.resize(1000, 640);
    window.show(); // which starts the first reload
    runUntil([&loaded] { return loaded; });

    Times times;
    for (int round = 0; round < rounds; ++round)
        measureRound(times, store, window, round);
    Report report(QStringLiteral("Usage tab with %1 records in %2 projects, %3")
                      .arg(records)
                      .arg(projects)
                      .arg(QGuiApplication::platformName()));
    addLongest(report, QStringLiteral("opening the tab"), times.open);
    addLongest(report, QStringLiteral("changing the scope"), times.scope);
    addLongest(report, QStringLiteral("changing prices"), times.prices);
    addFigures(report, store, rounds);
    report.print();
    return report.writeJson(parser.value(QStringLiteral("json"))) ? 0 : 1;
}
