// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A home folder of a test's own. While it lives, HOME and everything that is found by it or by an
/// XDG variable lies inside it, so that no test reads or writes the real one.
class PrivateHome {
public:
    PrivateHome();

    /// Absolute path of something in the home folder.
    QString path(const QString &relative = {}) const;
    /// Absolute path of something in the folder with Claude Code's log folders.
    QString claude(const QString &relative = {}) const;
    /// Absolute path of something in the program's support folder.
    QString support(const QString &relative = {}) const;

private:
    QTemporaryDir m_folder;
};

/// Writes a file, making missing folders. Fails the program when it cannot.
void writeFile(const QString &path, const QByteArray &bytes);

/// The content of a file; empty when there is none.
QByteArray readFile(const QString &path);
