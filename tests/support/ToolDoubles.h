// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/PrivateHome.h"

#include <QList>
#include <QStringList>

/// Stand-ins for the tools that the program runs from fixed paths: git, ps and lsof. While this
/// lives, scripts of the test's are run in their places, by this process if it links
/// plinthar_test_exec and by a program into which plinthar_test_preload is loaded. A tool without a
/// stand-in is the real one. What was started meanwhile can be told from all other processes.
class ToolDoubles {
public:
    ToolDoubles();
    /// Kills what is left of what was started.
    ~ToolDoubles();
    ToolDoubles(const ToolDoubles &) = delete;
    ToolDoubles &operator=(const ToolDoubles &) = delete;

    /// From now on the shell runs this instead of the tool.
    void play(const QString &tool, const QString &script);
    /// The same for one command of git's only.
    void playGit(const QString &command, const QString &script);
    /// From now on there is no such tool.
    void remove(const QString &tool);
    /// From now on the tool is the real one.
    void giveBack(const QString &tool);

    /// The arguments of every run of a stand-in, in the order in which they began.
    QStringList begun(const QString &tool) const;
    /// The commands of what was started, here or by a program that was started here, and still
    /// runs; without one process.
    QString left(qint64 except = 0) const;
    /// A path for a file of the test's, in a folder of its own.
    QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    struct Started {
        pid_t pid;
        QString command;
    };
    QList<Started> running(qint64 except = 0) const;

    QTemporaryDir m_folder;
    QByteArray m_mark;
};
