// SPDX-License-Identifier: GPL-3.0-or-later

// A diff of very many rows in the real window, from git's first byte to its last row: the longest
// time that the interface thread is away from its event loop while the diff arrives, while it is
// scrolled, and while it makes room for another one.

#include "app/Environment.h"
#include "interface/OpenWindow.h"
#include "review/DiffView.h"
#include "review/ScratchRepository.h"
#include "support/BenchOptions.h"
#include "support/ScratchHome.h"

#include <QDir>
#include <QKeyEvent>
#include <QListView>
#include <QScrollBar>

#include <cstdio>

namespace {

using Stretches = std::vector<BusyProbe::Stretch>;

struct Times {
    Stretches arriving;
    Stretches pages;
    Stretches jumps;
    Stretches leaving;
};

/// Every second line differs.
QByteArray lines(int count, const char *odd)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "    " + QByteArray(i % 2 ? odd : "return") + " value_of(row, " +
                QByteArray::number(i) + ");\n";
    return text;
}

bool makeRepository(const ScratchRepository &repository, int rows)
{
    const QString large = QStringLiteral("large.cpp");
    const QString small = QStringLiteral("small.cpp");
    return repository.create() && repository.write(large, lines(rows, "before")) &&
           repository.write(small, "before\n") && repository.commitAll() &&
           repository.write(large, lines(rows, "after")) && repository.write(small, "after\n");
}

void selectFile(const OpenWindow &open, int row)
{
    auto *files = open.shown<QListView>(QStringLiteral("changes"));
    files->setCurrentIndex(files->model()->index(row, 0));
}

qsizetype shownRows(const OpenWindow &open)
{
    const auto *view = open.shown<DiffView>();
    return view && view->document() ? view->document()->rows().size() : 0;
}

/// Presses a key many times, each when the one before has been handled and painted.
void pressRepeatedly(DiffView *view, int key, int times)
{
    if (times == 0)
        return;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &press);
    QTimer::singleShot(1, view, [=] { pressRepeatedly(view, key, times - 1); });
}

/// Drags the scroll bar through the whole diff.
void dragThrough(DiffView *view, int step)
{
    constexpr int steps = 100;
    QScrollBar *bar = view->verticalScrollBar();
    bar->setValue(int(qint64(bar->maximum()) * step / steps));
    if (step < steps)
        QTimer::singleShot(1, view, [=] { dragThrough(view, step + 1); });
}

void measureRound(Times &times, const OpenWindow &open, int rows)
{
    times.arriving.push_back(
        longestBusy([&] { selectFile(open, 0); }, [&] { return shownRows(open) >= rows; }));
    auto *view = open.shown<DiffView>();
    constexpr int pages = 100;
    times.pages.push_back(longestBusy([&] { pressRepeatedly(view, Qt::Key_PageDown, pages); },
                                      [&] { return view->verticalScrollBar()->value() > 0; }));
    times.jumps.push_back(longestBusy([&] { dragThrough(view, 1); },
                                      [&] {
                                          const QScrollBar *bar = view->verticalScrollBar();
                                          return bar->value() == bar->maximum();
                                      }));
    times.leaving.push_back(longestBusy(
        [&] { selectFile(open, 1); }, [&] { return shownRows(open) > 0 && shownRows(open) < 9; }));
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    prepareEnvironment();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    BenchOptions options(
        QStringLiteral("Measures a large diff in the Review tab, from git to the screen."));
    options.addNumber(QStringLiteral("rows"), QStringLiteral("Rows."), 600000);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 5);
    options.process(application);
    const int rows = int(options.number(QStringLiteral("rows")));
    const ScratchRepository repository(QDir::homePath() + QStringLiteral("/project"));
    if (!BusyProbe::works() || !makeRepository(repository, rows)) {
        std::fprintf(stderr, "the probe or the repository does not work\n");
        return 1;
    }
    Store(home.claudeProjects()).addProject(repository.folder());
    OpenWindow open(home.claudeProjects());
    open.show(Tab::Review);
    runUntil([&] {
        const auto *files = open.shown<QListView>(QStringLiteral("changes"));
        return files && files->model()->rowCount() == 2;
    });
    selectFile(open, 1); // away from the first one, which was selected by itself
    runUntil([&open] { return shownRows(open) > 0 && shownRows(open) < 9; });
    Times times;
    for (int round = 0; round < int(options.number(QStringLiteral("rounds"))); ++round)
        measureRound(times, open, rows);
    Report report(QStringLiteral("Diff of %1 rows from git, %2")
                      .arg(rows)
                      .arg(QGuiApplication::platformName()));
    addLongestBusy(report, QStringLiteral("while it arrives"), times.arriving);
    addLongestBusy(report, QStringLiteral("page by page"), times.pages);
    addLongestBusy(report, QStringLiteral("dragged through the whole"), times.jumps);
    addLongestBusy(report, QStringLiteral("to another file"), times.leaving);
    return options.finish(report);
}
