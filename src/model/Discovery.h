// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"

#include <QList>
#include <QStringList>

#include <filesystem>
#include <stop_token>
#include <vector>

/// Finds the project folders: those for which Claude Code keeps logs, and those added by hand.
namespace Discovery {

/// The folder in which Claude Code keeps one folder of logs per project: .claude/projects in the
/// user's home. Looked up once per run.
const QString &claudeProjectsRoot();

/// The name that Claude Code gives a project's log folder: the path with every character (as a
/// user perceives characters) that is no letter or digit replaced by "-".
QString encodeClaudeDir(const QString &path);

/// The session logs (*.jsonl) in a folder, by name; none when it cannot be listed. Whether they are
/// files shows when they are read.
std::vector<std::filesystem::path> logsIn(const std::filesystem::path &folder);

/// Every project once, by name. Reads no more of the logs than it takes to learn their folder.
/// When two log folders belong to one project, the one whose name sorts last wins.
QList<Project> projects(const QStringList &added, const QString &root = claudeProjectsRoot(),
                        const std::stop_token &stop = {});

} // namespace Discovery
