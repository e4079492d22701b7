// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <stop_token>

/// A changed file as one project's folder has it, so that git can be told of it and of no other.
struct GitTarget {
    QString error;    ///< why git cannot be told; empty when it can
    QString prefix;   ///< the place of the project's folder in the work tree; empty at the top
    QString top;      ///< a path of the work tree's top, with a slash at its end
    QString pathspec; ///< the argument for commands that take patterns
};

/// Asks git where the project's folder lies. For background threads.
GitTarget findTarget(const QString &projectPath, const QString &path,
                     const std::stop_token &stop = {});

/// Whether a folder, and no link to one, stands there.
bool isRealFolder(const QString &path);
