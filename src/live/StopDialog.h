// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "live/AgentProcess.h"

#include <QMessageBox>

/// Asks whether a process is to be stopped. Everything but the button that says so means no.
class StopDialog : public QMessageBox {
    Q_OBJECT
public:
    StopDialog(const AgentProcess &agent, QWidget *parent);

Q_SIGNALS:
    /// The dialog has been closed, in one way or another.
    void answered(bool yes);

private:
    void setUpLabels(const QString &title);
};
