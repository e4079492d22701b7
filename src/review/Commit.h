// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// The line that every commit made here ends with.
QString commitTrailer();

/// What is committed for a message that was typed: without the blanks and line breaks around it,
/// and with the trailer unless it ends with that already.
QString commitMessage(const QString &typed);

/// Commits what is staged with the message that was typed. Waits for git, its hooks and a
/// signature, so it is for background threads, and nothing interrupts it. Nothing on success;
/// otherwise what git (or a hook) said, without escape codes, possibly empty.
std::optional<QString> commit(const QString &projectPath, const QString &typed);
