// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

enum class FileKind { Missing, Folder, Other };

/// A look at a file system: all that the catalogue wants to know of one.
struct FileLook {
    /// What stands at a path. A link counts as what it leads to.
    std::function<FileKind(const QString &path)> kindOf;
    /// The names in a folder in any order; none when it is missing or cannot be read.
    std::function<QStringList(const QString &folder)> namesIn;

    /// The real one. Names that are not UTF-8 are left out, since text cannot say them: saving
    /// under what would be shown in their place would make another file.
    static FileLook disk();
};
