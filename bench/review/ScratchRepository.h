// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// A git repository that a benchmark makes for itself.
class ScratchRepository {
public:
    explicit ScratchRepository(QString folder) : m_folder(std::move(folder)) {}

    const QString &folder() const { return m_folder; }

    /// Makes the folder and its repository. Like everything here: false, with what git or the
    /// system says on standard error, when that fails.
    bool create() const;
    bool git(const QStringList &arguments) const;
    /// Commits everything that there is.
    bool commitAll() const;
    /// Writes a file, and the folders it lies in.
    bool write(const QString &name, const QByteArray &bytes) const;

private:
    QString m_folder;
};
