// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "live/AgentProcess.h"
#include "live/ProcessHandle.h"

#include <QHash>
#include <QStringList>

#include <stop_token>

/// Finds the coding agents that are running on this machine.
namespace ProcessScanner {

/// Where the tools are. Nothing is searched for.
struct Tools {
    QString ps = QStringLiteral("/bin/ps");
    QString lsof = QStringLiteral("/usr/sbin/lsof");
    QString lsofElsewhere = QStringLiteral("/usr/bin/lsof"); ///< run where `lsof` does not exist
};

/// Runs ps, and lsof if there are agents. Highest CPU share first; empty when ps fails. Takes as
/// long as the two commands do: for background threads only. `seenAt` becomes the time by which ps
/// had seen the agents: a process that was started later is none of them, whatever its number. When
/// `stop` is requested the commands are ended and the result is of no use.
QList<AgentProcess> scan(const Tools &tools = {}, BootTicks *seenAt = nullptr,
                         const std::stop_token &stop = {});

/// ps's arguments, for every process with what parsePs() reads.
QStringList psArguments();

/// lsof's arguments, for the working folders of exactly these processes.
QStringList lsofArguments(const QList<AgentProcess> &agents);

/// The agents in ps's output, in its order and still without their folders. `ownPid` is left out.
QList<AgentProcess> parsePs(const QString &output, qint32 ownPid);

/// The working folder of every process in lsof's output.
QHash<qint32, QString> parseLsof(const QString &output);

/// The agents with their folders, highest CPU share first, otherwise in their order.
QList<AgentProcess> withFolders(QList<AgentProcess> agents, const QHash<qint32, QString> &folders);

} // namespace ProcessScanner
