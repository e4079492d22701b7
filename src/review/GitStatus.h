// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/GitFile.h"

#include <QList>

#include <stop_token>

/// What git knows about a project's folder at one moment.
struct GitSnapshot {
    bool isRepo = false;  ///< whether git works in the folder at all
    QList<GitFile> files; ///< the changed files, in git's order
    bool hasHead = false; ///< whether there is a commit yet
    bool isCut = false;   ///< whether there are more files than are read

    bool operator==(const GitSnapshot &) const = default;
};

/// Asks git. For background threads. When `stop` is requested, git is ended and the result is of no
/// use.
GitSnapshot gitStatusSnapshot(const QString &projectPath, const std::stop_token &stop = {});

/// The changed files out of what `git status --porcelain=v1 -z` printed.
QList<GitFile> parseStatus(const QString &text);
