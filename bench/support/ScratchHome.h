// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

/// A home folder of its own for a bench program and the programs it starts: nothing of the user's
/// is read or written, and nothing is left behind.
class ScratchHome {
public:
    ScratchHome();

    bool isValid() const { return m_folder.isValid(); }
    /// Where the session logs belong, one folder per project.
    QString claudeProjects() const { return m_folder.filePath(QStringLiteral(".claude/projects")); }

    /// The environment of a program that is to live in this home.
    QProcessEnvironment environment() const;
    /// Makes it the home of this program. To be called before anything asks for the home.
    void enter() const;

private:
    QTemporaryDir m_folder;
};
