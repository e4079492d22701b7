// SPDX-License-Identifier: GPL-3.0-or-later

// The Review tab on a repository with very many changed files, in the real window: how long after
// the click the list is shown, compared with `git status` itself, and how long the interface thread
// is away from its event loop meanwhile.

#include "app/ContentView.h"
#include "app/Environment.h"
#include "interface/BusyProbe.h"
#include "interface/RunUntil.h"
#include "model/Store.h"
#include "review/RunProcess.h"
#include "support/Figures.h"
#include "support/ScratchHome.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

constexpr double mostTimesStatus = 1.3;
constexpr double mostMilliseconds = 16;
constexpr int reviewTab = 2;

bool git(const QString &folder, const QStringList &arguments)
{
    const ShellResult result =
        runProcess(QStringLiteral("/usr/bin/git"),
                   QStringList{QStringLiteral("-C"), folder, QStringLiteral("-c"),
                               QStringLiteral("user.name=Bench"), QStringLiteral("-c"),
                               QStringLiteral("user.email=bench@localhost")} +
                       arguments);
    if (result.status != 0)
        std::fprintf(stderr, "%s\n", qPrintable(result.err));
    return result.status == 0;
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

bool writeFiles(const QString &folder, int begin, int end, const QByteArray &bytes)
{
    constexpr int filesPerFolder = 500;
    for (int i = begin; i < end; ++i) {
        const QString place =
            folder +
            QStringLiteral("/src/part-%1").arg(i / filesPerFolder, 4, 10, QLatin1Char('0'));
        if (!QDir().mkpath(place) ||
            !write(place + QStringLiteral("/component-%1.cpp").arg(i), bytes))
            return false;
    }
    return true;
}

/// Half of the files are modified, the others untracked.
bool makeRepository(const QString &folder, int files)
{
    return QDir().mkpath(folder) && git(folder, {QStringLiteral("init"), QStringLiteral("-q")}) &&
           writeFiles(folder, 0, files / 2, "one\n") &&
           git(folder, {QStringLiteral("add"), QStringLiteral(".")}) &&
           git(folder, {QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("-m"),
                        QStringLiteral("first")}) &&
           writeFiles(folder, 0, files / 2, "another\n") &&
           writeFiles(folder, files / 2, files, "new\n");
}

double statusSeconds(const QString &folder)
{
    return elapsed([&folder] {
               (void)runProcess(QStringLiteral("/usr/bin/git"),
                                {QStringLiteral("-C"), folder, QStringLiteral("status"),
                                 QStringLiteral("--porcelain=v1"), QStringLiteral("-z"),
                                 QStringLiteral("-uall")});
           })
        .wall;
}

/// Notes when a list has painted so many rows.
class PaintWatch : public QObject {
public:
    PaintWatch(QListView *list, int rows) : m_list(list), m_rows(rows)
    {
        list->viewport()->installEventFilter(this);
        m_clock.start();
    }
    double seconds() const { return m_seconds; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && m_seconds == 0 && m_list->isVisible() &&
            m_list->model()->rowCount() == m_rows)
            QTimer::singleShot(0, this, [this] { // after the painting
                if (m_seconds == 0)
                    m_seconds = static_cast<double>(m_clock.nsecsElapsed()) * 1e-9;
            });
        return false;
    }

private:
    QListView *m_list;
    const int m_rows;
    QElapsedTimer m_clock;
    double m_seconds = 0;
};

struct Times {
    Series shown;
    Series ratioTo; ///< `git status` in the same rounds
    Series wall;
    Series cpu;
};

/// Does something to the list of files and waits until it has painted so many.
template <typename Act>
void measure(Times &times, QWidget &window, const QString &folder, int rows, Act act)
{
    times.ratioTo.push_back(statusSeconds(folder));
    BusyProbe::start();
    std::unique_ptr<PaintWatch> watch;
    // From the event loop, as everything is that a user does.
    QTimer::singleShot(0, &window, [&] {
        act();
        watch = std::make_unique<PaintWatch>(
            window.findChild<QListView *>(QStringLiteral("changes")), rows);
    });
    runUntil([&watch] { return watch && watch->seconds() > 0; });
    BusyProbe::Stretch longest;
    for (const BusyProbe::Stretch &stretch : BusyProbe::stop()) {
        longest.wall = std::max(longest.wall, stretch.wall);
        longest.cpu = std::max(longest.cpu, stretch.cpu);
    }
    times.shown.push_back(watch->seconds());
    times.wall.push_back(longest.wall * 1000);
    times.cpu.push_back(longest.cpu * 1000);
}

void addFigures(Report &report, const QString &what, const Times &times)
{
    report.add({.what = what + QStringLiteral(": list shown"),
                .comparedWith = {},
                .unit = QStringLiteral("ms"),
                .best = least(times.shown) * 1000,
                .usual = median(times.shown) * 1000});
    report.add(ratio(what + QStringLiteral(": list shown"), times.shown,
                     QStringLiteral("git status"), times.ratioTo, mostTimesStatus));
    for (const auto &[clock, series] : {std::pair{QStringLiteral("wall"), times.wall},
                                        std::pair{QStringLiteral("CPU"), times.cpu}})
        report.add({.what = QStringLiteral("%1: longest busy, %2").arg(what, clock),
                    .comparedWith = {},
                    .unit = QStringLiteral("ms"),
                    .best = least(series),
                    .usual = median(series),
                    .target = mostMilliseconds});
}

struct AllTimes {
    Times open;
    Times fewer;
    Times more;
    Times moved;
};

void measureRound(AllTimes &times, const ScratchHome &home, const QString &folder, int files)
{
    Store store(home.claudeProjects());
    ContentView window(store);
    bool loaded = false;
    QObject::connect(&store, &Store::reloadFinished, &window, [&loaded] { loaded = true; });
    window.resize(1000, 640);
    window.show();
    runUntil([&loaded] { return loaded; });
    measure(times.open, window, folder, files,
            [&window] { window.findChild<QTabWidget *>()->setCurrentIndex(reviewTab); });
    const auto refresh = [&window] {
        window.findChild<QToolButton *>(QStringLiteral("refresh"))->click();
    };
    const QString restored = folder + QStringLiteral("/src/part-0000/component-0.cpp");
    write(restored, "one\n");
    measure(times.fewer, window, folder, files - 1, refresh);
    write(restored, "another\n");
    measure(times.more, window, folder, files, refresh);
    // The last untracked file becomes a tracked one and moves up the list.
    const QString staged = QStringLiteral("*/component-%1.cpp").arg(files - 1);
    git(folder, {QStringLiteral("add"), QStringLiteral("--"), staged});
    measure(times.moved, window, folder, files, refresh);
    git(folder, {QStringLiteral("reset"), QStringLiteral("-q"), QStringLiteral("--"), staged});
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    prepareEnvironment();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    const QString number = QStringLiteral("number");
    parser.setApplicationDescription(
        QStringLiteral("Measures the Review tab with very many changed files."));
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("files"), QStringLiteral("Files."), number, QStringLiteral("100000")},
         {QStringLiteral("rounds"), QStringLiteral("Rounds."), number, QStringLiteral("5")},
         {QStringLiteral("json"), QStringLiteral("Where to write the figures."),
          QStringLiteral("file")}});
    parser.process(application);
    if (!BusyProbe::works()) {
        std::fprintf(stderr, "the probe does not see the interface thread\n");
        return 1;
    }
    const int files = parser.value(QStringLiteral("files")).toInt();
    const QString folder = QDir::homePath() + QStringLiteral("/project");
    if (!makeRepository(folder, files)) {
        std::fprintf(stderr, "the repository could not be made\n");
        return 1;
    }
    Store(home.claudeProjects()).addProject(folder);
    statusSeconds(folder); // so that the cache is warm
    AllTimes times;
    for (int round = 0; round < parser.value(QStringLiteral("rounds")).toInt(); ++round)
        measureRound(times, home, folder, files);
    Report report(QStringLiteral("Review tab with %1 changed files, %2")
                      .arg(files)
                      .arg(QGuiApplication::platformName()));
    addFigures(report, QStringLiteral("opening the tab"), times.open);
    addFigures(report, QStringLiteral("refresh, a file less"), times.fewer);
    addFigures(report, QStringLiteral("refresh, a file more"), times.more);
    addFigures(report, QStringLiteral("refresh, a file moved"), times.moved);
    report.print();
    return report.writeJson(parser.value(QStringLiteral("json"))) ? 0 : 1;
}
