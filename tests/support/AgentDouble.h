// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A harmless program that runs under any name until it is stopped, at the latest when its owner or
/// the test program ends. Its options: --ignore-term, and --user=NUMBER to become another user.
class AgentDouble {
public:
    AgentDouble(const QString &name, const QString &workingFolder, const QStringList &options = {});
    ~AgentDouble();

    /// The same as a script that is run by a program named `runtime`.
    static AgentDouble script(const QString &runtime, const QString &name,
                              const QString &workingFolder);

    qint32 pid() const { return m_pid; }
    /// Whether it is still there.
    bool isRunning() const;
    /// Ends it at once, and returns when its number is free.
    void end();

private:
    AgentDouble(const QString &runtime, const QString &name, const QString &workingFolder,
                const QStringList &options);
    QString path(const QString &name) const { return m_folder.filePath(name); }
    void start(const QString &program, const QString &workingFolder, const QStringList &options);

    QTemporaryDir m_folder;
    QProcess m_process;
    qint32 m_pid = 0;
};
