// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Manifest.h"
#include "support/PrivateHome.h"

#include <optional>

/// A file of a repository: git's name for its content on the disk, in the index and in HEAD.
struct TrackedFile {
    std::optional<QByteArray> disk = {};
    std::optional<QByteArray> index = {};
    std::optional<QByteArray> head = {};

    bool isChanged() const { return disk != index || index != head; }
    bool isStaged() const { return index != head; }
    bool isWhollyStaged() const { return isStaged() && disk == index; }

    bool operator==(const TrackedFile &) const = default;
};

/// A home with projects and repositories, and what has to be in it. Everything below "ours" in a
/// repository is the soak's; what is below "theirs", and the logs, are the neighbour's.
class Scratch {
public:
    Scratch();

    const PrivateHome &home() const { return m_home; }
    /// The folders of the projects; those of the first ones are repositories.
    const QStringList &projects() const { return m_projects; }
    QStringList repositories() const;
    /// A folder that becomes a project only when it is added.
    const QString &spareFolder() const { return m_spare; }
    /// The neighbour's part, in which nothing of ours is.
    QString neighbourFolder() const { return m_home.path(QStringLiteral("neighbour")); }

    /// What has to be in a repository, by the path in it.
    QMap<QString, TrackedFile> &tracked(const QString &repository) { return m_tracked[repository]; }
    /// Puts a file of a repository on the disk, or takes it away.
    void put(const QString &repository, const QString &path,
             const std::optional<QByteArray> &content);
    /// A file of a repository as it is now; what HEAD holds is taken from what has to be.
    TrackedFile look(const QString &repository, const QString &path);

    /// What a file outside of the repositories has to hold.
    void expect(const QString &path, const QByteArray &content);

    /// Compares everything with what has to be. Throws a Finding.
    void check() const;

private:
    void makeRepository(const QString &folder);
    Manifest expectedFiles() const;
    Manifest actualFiles() const;
    void checkGit(const QString &repository) const;

    PrivateHome m_home;
    QStringList m_projects;
    QString m_spare;
    QMap<QString, QMap<QString, TrackedFile>> m_tracked;
    Manifest m_others;
};
