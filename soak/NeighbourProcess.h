// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Scratch.h"

#include <QProcess>

/// The process beside the window: it appends to logs, changes the repositories and starts and ends
/// agents, and sees to it that nobody else changes what is its own.
class NeighbourProcess {
public:
    NeighbourProcess(const Scratch &scratch, quint64 seed);
    ~NeighbourProcess();

    /// Lets it put its part as it was at first, and do nothing until goOn().
    void rest();
    void goOn();
    /// Throws a Finding when it has found something, or is gone.
    void check();

private:
    QProcess m_process;
};
