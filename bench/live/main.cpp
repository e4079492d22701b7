// SPDX-License-Identifier: GPL-3.0-or-later

// What the Live tab costs beside the two commands that it runs: reading their output, and bringing
// the table up to date.

#include "live/FolderDelegate.h"
#include "live/LiveModel.h"
#include "live/ProcessScanner.h"
#include "live/StopDelegate.h"
#include "support/BenchOptions.h"
#include "support/Figures.h"
#include "ui/TableView.h"

#include <QApplication>
#include <QFile>
#include <QHeaderView>

#include <cstdio>
#include <optional>

namespace {

constexpr int processes = 5000;
constexpr int rows = 1000;
constexpr int changedRows = 10;
constexpr int rounds = 200;
constexpr double mostScan = 5;
constexpr double mostRefresh = 2;

/// Lines of the kinds that a developer's machine has, from kernel threads to a browser's children.
QStringList sampleLines()
{
    const QString flags =
        QStringLiteral(" --enable-features=Abc,Def --field-trial-handle=0,i,1234");
    return {QStringLiteral("  0.0 12-03:04:05 [kworker/0:0H-events_highpri]"),
            QStringLiteral("  0.0    03:04:05 /usr/lib/systemd/systemd --user"),
            QStringLiteral("  0.3    01:02:03 /usr/bin/bash -c make -j8 all"),
            QStringLiteral(" 12.5       04:05 /opt/browser/browser --type=renderer") +
                flags.repeated(20),
            QStringLiteral("  1.0       59:59 node /opt/tools/language server/main.js --stdio"),
            QStringLiteral("  2.5    10:00:00 java -Xmx4g -cp ") +
                QStringLiteral("/home/dev/.cache/lib/some-library-1.2.3.jar:").repeated(60)};
}

/// Of every hundred processes one is an agent.
QString psOutput(const QStringList &lines)
{
    QString output;
    for (int i = 0; i < processes; ++i) {
        output += QString::number(10'000 + i).rightJustified(8);
        output += i % 100 == 0 ? QStringLiteral("  %1    01:02:03 node /usr/local/bin/claude")
                                     .arg(i % 7 / 10.0, 0, 'f', 1)
                               : lines[i % lines.size()];
        output += u'\n';
    }
    return output;
}

QString lsofOutput(const QList<AgentProcess> &agents)
{
    QString output;
    for (const AgentProcess &agent : agents)
        output += QStringLiteral("p%1\nfcwd\nn/home/dev/src/project\n").arg(agent.pid);
    return output;
}

/// A recording of what ps printed, without the pids.
QStringList recordedLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines;
    const QStringList all = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : all)
        lines.append(line.mid(line.indexOf(u' ', line.indexOf(line.trimmed().left(1)))));
    return lines;
}

Series scans(const QStringList &lines)
{
    const QString ps = psOutput(lines);
    const QString lsof = lsofOutput(ProcessScanner::parsePs(ps, 1));
    // The bytes come from pipes, so that making text of them is part of it.
    const QByteArray psBytes = ps.toUtf8();
    const QByteArray lsofBytes = lsof.toUtf8();
    Series milliseconds;
    for (int round = 0; round < rounds; ++round) {
        qsizetype found = 0;
        qsizetype argumentCount = 0;
        milliseconds.push_back(
            1000 *
            elapsed([&] {
                QList<AgentProcess> agents = ProcessScanner::parsePs(QString::fromUtf8(psBytes), 1);
                argumentCount = ProcessScanner::lsofArguments(agents).size();
                agents = ProcessScanner::withFolders(
                    std::move(agents), ProcessScanner::parseLsof(QString::fromUtf8(lsofBytes)));
                found = agents.size();
            }).wall);
        if (found < processes / 100 || argumentCount != 6)
            return {};
    }
    return milliseconds;
}

QList<AgentProcess> someAgents()
{
    QList<AgentProcess> agents;
    for (int i = 0; i < rows; ++i)
        agents.append({10'000 + i, QStringLiteral("claude"),
                       QStringLiteral("/home/dev/src/project %1").arg(i), double(rows - i),
                       QStringLiteral("01:02:03")});
    return agents;
}

/// Ten rows change, and what has changed is painted. Everything that is to be seen is painted when
/// one of them also changes places.
Series refreshes(bool alsoMove)
{
    LiveModel model;
    TableView table;
    table.setModel(&model);
    table.setItemDelegateForColumn(LiveModel::Folder, new FolderDelegate(&table));
    table.setItemDelegateForColumn(LiveModel::Stop, new StopDelegate(&table));
    table.horizontalHeader()->setSectionResizeMode(LiveModel::Folder, QHeaderView::Stretch);
    table.resize(1000, 640);
    QList<AgentProcess> agents = someAgents();
    model.setRows(agents);
    table.selectRow(20);
    table.show();
    QApplication::processEvents();
    Series milliseconds;
    for (int round = 0; round < rounds; ++round) {
        for (int i = 0; i < changedRows; ++i)
            agents[(round * 37 + i * 97) % rows].uptime = QString::number(round);
        if (alsoMove)
            agents.move(round % rows, (round * 13) % rows);
        milliseconds.push_back(1000 * elapsed([&] {
                                          model.setRows(agents);
                                          QApplication::processEvents();
                                      }).wall);
    }
    return milliseconds;
}

void add(Report &report, const QString &what, const Series &milliseconds,
         std::optional<double> most = std::nullopt)
{
    report.add({.what = what,
                .comparedWith = QString(),
                .unit = QStringLiteral("ms"),
                .best = least(milliseconds),
                .usual = median(milliseconds),
                .target = most});
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures what the Live tab costs."));
    options.addOption({QStringLiteral("ps"),
                       QStringLiteral("Lines of \"ps -axo pid=,pcpu=,etime=,command=\" to use."),
                       QStringLiteral("file")});
    options.process(application);
    const QStringList lines = options.isSet(QStringLiteral("ps"))
                                  ? recordedLines(options.value(QStringLiteral("ps")))
                                  : sampleLines();
    const Series scan = lines.isEmpty() ? Series() : scans(lines);
    if (scan.empty()) {
        std::fputs("no agents found in the lines\n", stderr);
        return 1;
    }
    Report report(QStringLiteral("Live tab"));
    add(report, QStringLiteral("reading ps and lsof output of %1 processes").arg(processes), scan,
        mostScan);
    add(report, QStringLiteral("refreshing %1 rows of which %2 changed").arg(rows).arg(changedRows),
        refreshes(false), mostRefresh);
    add(report, QStringLiteral("the same when one changed places, so that all is painted"),
        refreshes(true));
    return options.finish(report);
}
