// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AgentDouble.h"

#include "support/PrivateHome.h"

#include <QFile>
#include <QThread>

AgentDouble::AgentDouble(const QString &name, const QString &workingFolder,
                         const QStringList &options)
    : AgentDouble(QString(), name, workingFolder, options)
{
}

AgentDouble::AgentDouble(const QString &runtime, const QString &name, const QString &workingFolder,
                         const QStringList &options)
{
    // Links, since a program that is just being copied cannot be started.
    if (!QFile::link(QStringLiteral(AGENT_DOUBLE), path(runtime.isEmpty() ? name : runtime)))
        qFatal("cannot make an agent");
    if (!runtime.isEmpty()) {
        writeFile(path(name), "#!" + path(runtime).toUtf8() + '\n');
        QFile::setPermissions(path(name), QFile::ReadOwner | QFile::ExeOwner);
    }
    start(path(name), workingFolder, options);
}

AgentDouble::~AgentDouble()
{
    end();
}

AgentDouble AgentDouble::script(const QString &runtime, const QString &name,
                                const QString &workingFolder)
{
    return AgentDouble(runtime, name, workingFolder, {});
}

bool AgentDouble::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

void AgentDouble::end()
{
    m_process.kill();
    m_process.waitForFinished(-1);
}

void AgentDouble::start(const QString &program, const QString &workingFolder,
                        const QStringList &options)
{
    m_process.setWorkingDirectory(workingFolder);
    // A script cannot be started while a child of another thread still holds it open for writing.
    for (int attempt = 0; attempt < 100; ++attempt) {
        m_process.start(program, options);
        if (m_process.waitForReadyRead(60'000)) {
            m_pid = static_cast<qint32>(m_process.processId());
            return;
        }
        QThread::msleep(20);
    }
    qFatal("cannot start %s: %s", qPrintable(program), qPrintable(m_process.errorString()));
}
