// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffParser.h"
#include "review/DiffView.h"
#include "review/SampleDiffs.h"
#include "support/BenchOptions.h"
#include "support/Figures.h"

#include <QApplication>
#include <QScrollBar>

#include <cstdio>

// How long a diff view keeps the interface thread: from having the rows to having painted them, and
// for every painting while it is scrolled.

namespace {

using SampleDiffs::Script;

constexpr double mostForFirstPaint = 50;
constexpr double mostForPaint = 8;
constexpr double milliseconds = 1000;

struct Sample {
    QString what;
    QString text;
};

/// Everything that the interface thread does between getting a document and having painted it.
double firstPaint(DiffView &view, const SharedDocument &document)
{
    return milliseconds * elapsed([&] {
                              view.setDocument(document);
                              view.viewport()->repaint();
                          }).wall;
}

/// Paints the whole view at places from one end to the other. Scrolling by less than a page moves
/// what has been painted, which costs less.
Series paintsWhileScrolling(DiffView &view, QScrollBar *bar, int paints)
{
    Series series;
    for (int i = 0; i < paints; ++i) {
        const auto to = static_cast<int>(qint64(bar->maximum()) * i / paints);
        series.push_back(milliseconds * elapsed([&view, bar, to] {
                                            bar->setValue(to);
                                            view.viewport()->repaint();
                                        }).wall);
    }
    return series;
}

void addPaints(Report &report, const QString &what, const Series &series)
{
    report.add({.what = what,
                .comparedWith = {},
                .unit = QStringLiteral("ms"),
                .best = least(series),
                .usual = median(series),
                .target = mostForPaint});
}

void measure(Report &report, DiffView &view, const Sample &sample, int rounds)
{
    DiffRows rows = DiffParser::parse(sample.text);
    std::printf("%s: %lld rows\n", qPrintable(sample.what), static_cast<long long>(rows.size()));
    SharedDocument document;
    const Elapsed preparing =
        elapsed([&] { document = std::make_shared<DiffDocument>(std::move(rows)); });
    report.add({.what = QStringLiteral("%1: preparing, in the background").arg(sample.what),
                .comparedWith = {},
                .unit = QStringLiteral("ms"),
                .best = preparing.wall * milliseconds,
                .usual = preparing.wall * milliseconds});
    Series first;
    for (int round = 0; round < rounds; ++round) {
        view.setDocument(nullptr);
        view.viewport()->repaint();
        first.push_back(firstPaint(view, document));
    }
    report.add({.what = QStringLiteral("%1: first paint").arg(sample.what),
                .comparedWith = {},
                .unit = QStringLiteral("ms"),
                .best = least(first),
                .usual = median(first),
                .target = mostForFirstPaint});
    if (view.verticalScrollBar()->maximum() > 0)
        addPaints(report, QStringLiteral("%1: paint, scrolling down").arg(sample.what),
                  paintsWhileScrolling(view, view.verticalScrollBar(), 100));
    if (view.textBar()->maximum() > 0)
        addPaints(report, QStringLiteral("%1: paint, scrolling sideways").arg(sample.what),
                  paintsWhileScrolling(view, view.textBar(), 100));
    view.selectAll();
    view.viewport()->repaint();
    addPaints(report, QStringLiteral("%1: paint, all selected").arg(sample.what),
              paintsWhileScrolling(view, view.verticalScrollBar(), 20));
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures how long a diff takes to paint."));
    options.addNumber(QStringLiteral("rows"), QStringLiteral("Rows of the large diffs."), 600000);
    options.addNumber(QStringLiteral("line"), QStringLiteral("Characters of the long lines."),
                      2000000);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("First paints."), 10);
    options.process(application);
    const qsizetype rows = options.number(QStringLiteral("rows"));
    const qsizetype line = options.number(QStringLiteral("line"));
    const int rounds = int(options.number(QStringLiteral("rounds")));

    Report report(
        QStringLiteral("Diff view of 1200 x 900, %1").arg(QGuiApplication::platformName()));
    DiffView view;
    view.resize(1200, 900);
    view.show();
    QCoreApplication::processEvents();
    for (const auto &[name, script] : {std::pair{QStringLiteral("Latin"), Script::Latin},
                                       std::pair{QStringLiteral("ideographs"), Script::Ideographs},
                                       std::pair{QStringLiteral("mixed"), Script::Mixed}}) {
        measure(report, view,
                {QStringLiteral("rows, %1").arg(name), SampleDiffs::rows(rows, script)}, rounds);
        measure(report, view,
                {QStringLiteral("long line, %1").arg(name), SampleDiffs::longLine(line, script)},
                rounds);
    }
    return options.finish(report);
}
