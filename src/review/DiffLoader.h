// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffRow.h"
#include "review/GitFile.h"

#include <optional>
#include <stop_token>

/// What is shown of a file's changes: rows, or a note in their place.
struct LoadedDiff {
    DiffRows rows;
    std::optional<QString> note;

    bool operator==(const LoadedDiff &) const = default;
};

/// The unified diff of one changed file: all that differs from HEAD, or from nothing when there is
/// no HEAD or the file is untracked. Empty when git has nothing to say or fails. For background
/// threads.
QString diffText(const QString &projectPath, const GitFile &file, bool hasHead,
                 const std::stop_token &stop = {});

/// What is shown of a unified diff.
LoadedDiff readDiff(const QString &text);

/// The whole background job of a selection: diffText() read by readDiff(). Nothing without a file.
/// When `stop` is requested, git is ended and the result is of no use.
LoadedDiff loadDiff(const QString &projectPath, const std::optional<GitFile> &file, bool hasHead,
                    const std::stop_token &stop = {});
