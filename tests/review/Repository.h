// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/GitFile.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

/// Everything that an action on one file could change of a repository, with bytes for names.
struct RepositoryState {
    QMap<QByteArray, QByteArray> disk;   ///< kind, permissions and content of every file
    QMap<QByteArray, QByteArray> index;  ///< mode, object and stage of every entry
    QMap<QByteArray, QByteArray> status; ///< both columns of every changed file

    /// The same without one file.
    RepositoryState without(const QByteArray &path) const;
    /// The first differences, for people; empty when there is none.
    QString differenceFrom(const RepositoryState &before) const;

    bool operator==(const RepositoryState &) const = default;
};

/// Name and address of who commits, and the name of the first branch, in the home folder's
/// configuration. To be called in the private home of a test.
void writeGitIdentity();

/// Runs git in a folder and ends the program if it fails, which no test expects of it.
QByteArray git(const QString &folder, const QStringList &arguments);

/// A git work tree in a folder.
class Repository {
public:
    /// The work tree that is at `folder` or, when there is none, a new one.
    explicit Repository(const QString &folder);

    QString path(const QString &relative = {}) const;
    QByteArray git(const QStringList &arguments) const { return ::git(m_folder, arguments); }

    void write(const QString &relative, const QByteArray &bytes) const;
    void link(const QString &relative, const QByteArray &target) const;
    void makeExecutable(const QString &relative) const;
    void remove(const QString &relative) const;
    /// Commits the whole work tree.
    void commitAll() const;

    RepositoryState state() const;
    RepositoryState stateWithoutStatus() const;

private:
    QString m_folder;
};

/// The file of a list that has this path; one without path when there is none.
GitFile find(const QList<GitFile> &files, const QString &path);
