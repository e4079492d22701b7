// SPDX-License-Identifier: GPL-3.0-or-later
#include "interface/OpenWindow.h"

#include <QTabWidget>

OpenWindow::OpenWindow(const QString &claudeProjects) : m_store(claudeProjects), m_window(m_store)
{
    bool loaded = false;
    QObject::connect(&m_store, &Store::reloadFinished, &m_window, [&loaded] { loaded = true; });
    m_window.resize(1000, 640);
    m_window.show(); // which starts the first reload
    runUntil([&loaded] { return loaded; });
}

void OpenWindow::show(Tab tab)
{
    shown<QTabWidget>()->setCurrentIndex(static_cast<int>(tab));
}

void addLongestBusy(Report &report, const QString &what,
                    const std::vector<BusyProbe::Stretch> &stretches, double mostMilliseconds)
{
    const auto add = [&](const QString &clock, double BusyProbe::Stretch::*time) {
        Series milliseconds;
        for (const BusyProbe::Stretch &stretch : stretches)
            milliseconds.push_back(stretch.*time * 1000);
        report.add({.what = QStringLiteral("longest busy, %1, %2").arg(what, clock),
                    .comparedWith = {},
                    .unit = QStringLiteral("ms"),
                    .best = least(milliseconds),
                    .usual = median(milliseconds),
                    .target = mostMilliseconds});
    };
    add(QStringLiteral("wall"), &BusyProbe::Stretch::wall);
    add(QStringLiteral("CPU"), &BusyProbe::Stretch::cpu); // which other programs hardly disturb
}
