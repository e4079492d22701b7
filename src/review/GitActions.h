// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/GitFile.h"
#include "review/RunProcess.h"

/// Decisions about one changed file. Both wait for git, so they are for background threads. Status
/// 0 is success; otherwise `err` says why (possibly nothing, possibly with escape codes, see
/// withoutEscapeCodes()). Where git would touch another file than the one named, it is not run and
/// `err` says so.

/// Stages the file as it is in the work tree.
ShellResult approve(const QString &projectPath, const GitFile &file);

/// Throws the file's changes away: an untracked file is deleted, one that is only in the index (or
/// any, when there is no HEAD) is removed from index and disk, any other becomes what HEAD has.
ShellResult reject(const QString &projectPath, const GitFile &file, bool hasHead);
