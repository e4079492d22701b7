// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"

#include <QList>
#include <QStringList>

#include <stop_token>
#include <string>
#include <vector>

/// Finds the project folders: those for which Claude Code keeps logs, and those added by hand.
namespace Discovery {

/// The folder in which Claude Code keeps one folder of logs per project: .claude/projects in the
/// user's home. Looked up once per run.
const QString &claudeProjectsRoot();

/// The name that Claude Code gives a project's log folder: the path with every character (as a
/// user perceives characters) that is no letter or digit replaced by "-".
QString encodeClaudeDir(const QString &path);

/// The paths of the session logs in a folder, by name: of its regular files *.jsonl, and of links
/// to such files. None when it cannot be listed.
std::vector<std::string> logsIn(const std::string &folder);

/// Every project once, by name. Reads no more of the logs than it takes to learn their folder.
/// When two log folders belong to one project, the one whose name sorts last wins.
QList<Project> projects(const QStringList &added, const QString &root = claudeProjectsRoot(),
                        const std::stop_token &stop = {});

} // namespace Discovery
