// SPDX-License-Identifier: GPL-3.0-or-later

// The Review tab on a repository with very many changed files, in the real window: how long after
// the click the list is shown, compared with `git status` itself, and how long the interface thread
// is away from its event loop meanwhile.

#include "app/Environment.h"
#include "interface/OpenWindow.h"
#include "review/ScratchRepository.h"
#include "support/BenchOptions.h"
#include "support/ScratchHome.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QListView>
#include <QToolButton>

#include <cstdio>
#include <memory>

namespace {

constexpr double mostTimesStatus = 1.3;

bool writeFiles(const ScratchRepository &repository, int begin, int end, const QByteArray &bytes)
{
    constexpr int filesPerFolder = 500;
    for (int i = begin; i < end; ++i) {
        const QString name = QStringLiteral("src/part-%1/component-%2.cpp")
                                 .arg(i / filesPerFolder, 4, 10, QLatin1Char('0'))
                                 .arg(i);
        if (!repository.write(name, bytes))
            return false;
    }
    return true;
}

/// Half of the files are modified, the others untracked.
bool makeRepository(const ScratchRepository &repository, int files)
{
    return repository.create() && writeFiles(repository, 0, files / 2, "one\n") &&
           repository.commitAll() && writeFiles(repository, 0, files / 2, "another\n") &&
           writeFiles(repository, files / 2, files, "new\n");
}

double statusSeconds(const ScratchRepository &repository)
{
    return elapsed([&repository] {
               repository.git({QStringLiteral("status"), QStringLiteral("--porcelain=v1"),
                               QStringLiteral("-z"), QStringLiteral("-uall")});
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
    std::vector<BusyProbe::Stretch> longest;
};

/// Does something to the list of files and waits until it has painted so many.
template <typename Act>
void measure(Times &times, OpenWindow &open, const ScratchRepository &repository, int rows, Act act)
{
    times.ratioTo.push_back(statusSeconds(repository));
    std::unique_ptr<PaintWatch> watch;
    times.longest.push_back(longestBusy(
        [&] {
            act();
            watch = std::make_unique<PaintWatch>(
                open.window().findChild<QListView *>(QStringLiteral("changes")), rows);
        },
        [&watch] { return watch && watch->seconds() > 0; }));
    times.shown.push_back(watch->seconds());
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
    addLongestBusy(report, what, times.longest);
}

struct AllTimes {
    Times open;
    Times fewer;
    Times more;
    Times moved;
};

void measureRound(AllTimes &times, const ScratchHome &home, const ScratchRepository &repository,
                  int files)
{
    OpenWindow open(home.claudeProjects());
    measure(times.open, open, repository, files, [&open] { open.show(Tab::Review); });
    const auto refresh = [&open] { open.shown<QToolButton>(QStringLiteral("refresh"))->click(); };
    const QString restored = QStringLiteral("src/part-0000/component-0.cpp");
    repository.write(restored, "one\n");
    measure(times.fewer, open, repository, files - 1, refresh);
    repository.write(restored, "another\n");
    measure(times.more, open, repository, files, refresh);
    // The last untracked file becomes a tracked one and moves up the list.
    const QString staged = QStringLiteral("*/component-%1.cpp").arg(files - 1);
    repository.git({QStringLiteral("add"), QStringLiteral("--"), staged});
    measure(times.moved, open, repository, files, refresh);
    repository.git({QStringLiteral("reset"), QStringLiteral("-q"), QStringLiteral("--"), staged});
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    prepareEnvironment();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures the Review tab with very many changed files."));
    options.addNumber(QStringLiteral("files"), QStringLiteral("Files."), 100000);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 5);
    options.process(application);
    if (!BusyProbe::works()) {
        std::fprintf(stderr, "the probe does not see the interface thread\n");
        return 1;
    }
    const int files = int(options.number(QStringLiteral("files")));
    const ScratchRepository repository(QDir::homePath() + QStringLiteral("/project"));
    if (!makeRepository(repository, files)) {
        std::fprintf(stderr, "the repository could not be made\n");
        return 1;
    }
    Store(home.claudeProjects()).addProject(repository.folder());
    statusSeconds(repository); // so that the cache is warm
    AllTimes times;
    for (int round = 0; round < int(options.number(QStringLiteral("rounds"))); ++round)
        measureRound(times, home, repository, files);
    Report report(QStringLiteral("Review tab with %1 changed files, %2")
                      .arg(files)
                      .arg(QGuiApplication::platformName()));
    addFigures(report, QStringLiteral("opening the tab"), times.open);
    addFigures(report, QStringLiteral("refresh, a file less"), times.fewer);
    addFigures(report, QStringLiteral("refresh, a file more"), times.more);
    addFigures(report, QStringLiteral("refresh, a file moved"), times.moved);
    return options.finish(report);
}
