// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChar>
#include <QString>

/// A changed file of a work tree, as `git status` tells it. Its identity is its path.
struct GitFile {
    QString path;   ///< from the top of the work tree; a nested repository's ends with a slash
    QChar x = u' '; ///< the status column of the index
    QChar y = u' '; ///< the status column of the work tree

    const QString &key() const { return path; }
    /// What stands before the path in the list of files: "U" for an untracked file, otherwise the
    /// columns that say something.
    QString badge() const;
    bool isUntracked() const { return x == u'?'; }
    /// Whether a commit would take something of it.
    bool isStaged() const { return x != u' ' && x != u'?'; }
    /// Whether a commit would take all of it.
    bool isWhollyStaged() const { return isStaged() && y == u' '; }

    bool operator==(const GitFile &) const = default;
};

size_t qHash(const GitFile &file, size_t seed = 0);
