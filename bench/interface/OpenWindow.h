// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ContentView.h"
#include "interface/BusyProbe.h"
#include "interface/RunUntil.h"
#include "model/Store.h"
#include "support/Figures.h"

#include <QApplication>
#include <QTimer>

/// The tabs of a project.
enum class Tab { Sessions, Live, Review, Usage, Context };

/// The real window with the real store, opened and filled.
class OpenWindow {
public:
    explicit OpenWindow(const QString &claudeProjects);

    Store &store() { return m_store; }
    ContentView &window() { return m_window; }

    /// Selects a tab of the project that is shown.
    void show(Tab tab);

    /// The widget of that name (of that kind, without a name) that is to be seen; null without one.
    template <typename Widget>
    Widget *shown(const QString &name = {}) const
    {
        for (auto *widget : m_window.findChildren<Widget *>(name)) {
            if (widget->isVisible())
                return widget;
        }
        return nullptr;
    }

private:
    Store m_store;
    ContentView m_window;
};

/// The longest time, by either clock, that the interface thread is away from its event loop from
/// something that a user does until a condition holds and what follows from it is done.
template <typename Act, typename Condition>
BusyProbe::Stretch longestBusy(Act act, Condition done)
{
    BusyProbe::start();
    QTimer::singleShot(0, qApp, act); // from the event loop, as everything is that a user does
    runUntil(done);
    return BusyProbe::longest(BusyProbe::stop());
}

/// Adds the stretches that were measured round by round, in milliseconds by both clocks.
void addLongestBusy(Report &report, const QString &what,
                    const std::vector<BusyProbe::Stretch> &stretches, double mostMilliseconds = 16);
