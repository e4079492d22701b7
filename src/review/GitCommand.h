// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/RunProcess.h"

#include <stop_token>

/// Runs git for a project's folder, to its end or until `stop` is requested. For background
/// threads.
ShellResult runGit(const QString &projectPath, const QStringList &arguments,
                   const std::stop_token &stop = {});
