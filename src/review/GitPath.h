// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// How a changed file is named to git. `git status` prints paths from the top of the work tree,
/// other commands read them from the project's folder, and take some characters for a pattern.
namespace GitPath {

/// The argument that means the file `path` for commands that take patterns. `prefix` is the place
/// of the project's folder in the work tree ("sub/folder/"; empty at the top). Where git reads the
/// plain path as just this file, it is the plain path. Note that for git a path means everything
/// below it, too, where a folder stands.
QString pathspec(const QString &path, const QString &prefix);

/// A second argument for the same command: takes back everything below `path`.
QString nothingBelow(const QString &path);

/// The path of the file from the project's folder, for `git diff --no-index`, which knows no
/// patterns.
QString fromProject(const QString &path, const QString &prefix);

} // namespace GitPath
