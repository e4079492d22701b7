// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

/// One coding agent that is running.
struct AgentProcess {
    qint32 pid = 0;
    QString agent;  ///< "claude", "codex", "gemini" or "cursor-agent"
    QString folder; ///< its working folder, an absolute path; an em dash where that is not known
    double cpu = 0; ///< percent of one core, over the life of the process
    QString uptime; ///< as ps prints it: [[days-]hours:]minutes:seconds

    qint32 key() const { return pid; }
    bool operator==(const AgentProcess &) const = default;
};

/// Those that work in a folder or below it, in their order.
QList<AgentProcess> agentsInside(const QList<AgentProcess> &agents, const QString &folder);

/// A share of the CPU as 12.5%, whatever the locale.
QString fmtCpu(double percent);
