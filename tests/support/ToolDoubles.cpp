// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ToolDoubles.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <filesystem>
#include <sys/types.h>
#include <unistd.h>

namespace {

constexpr const char *markName = "PLINTHAR_TEST_MARK";

QByteArray environmentOf(const QString &pid)
{
    return readFile(QStringLiteral("/proc/%1/environ").arg(pid));
}

QString commandOf(const QString &pid)
{
    QByteArray command = readFile(QStringLiteral("/proc/%1/cmdline").arg(pid));
    return QString::fromUtf8(command.replace('\0', ' ')).trimmed();
}

} // namespace

ToolDoubles::ToolDoubles() : m_mark(QByteArray(markName) + '=' + m_folder.path().toUtf8())
{
    qputenv("PLINTHAR_TEST_TOOLS", m_folder.path().toUtf8());
    qputenv(markName, m_folder.path().toUtf8());
}

ToolDoubles::~ToolDoubles()
{
    qunsetenv("PLINTHAR_TEST_TOOLS");
    qunsetenv(markName);
    for (const Started &left : running())
        ::kill(left.pid, SIGKILL);
}

void ToolDoubles::play(const QString &tool, const QString &script)
{
    const QString begun = m_folder.filePath(tool + QStringLiteral(".begun"));
    const QByteArray text =
        QStringLiteral("#!/bin/sh\necho \"$*\" >> '%1'\n%2\n").arg(begun, script).toUtf8();
    // Moved into its place, so that it is never run half written, and never written while it runs.
    const QString made = m_folder.filePath(QStringLiteral("made"));
    writeFile(made, text);
    QFile::setPermissions(made, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    std::filesystem::rename(made.toStdString(), m_folder.filePath(tool).toStdString());
}

void ToolDoubles::playGit(const QString &command, const QString &script)
{
    play(QStringLiteral("git"),
         QStringLiteral("case \" $* \" in *' %1 '*) ;; *) exec /usr/bin/git \"$@\" ;; esac\n%2")
             .arg(command, script));
}

void ToolDoubles::remove(const QString &tool)
{
    QFile::remove(m_folder.filePath(tool));
    QFile::link(QStringLiteral("/nonexistent/") + tool, m_folder.filePath(tool));
}

void ToolDoubles::giveBack(const QString &tool)
{
    QFile::remove(m_folder.filePath(tool));
}

QStringList ToolDoubles::begun(const QString &tool) const
{
    const QByteArray lines = readFile(m_folder.filePath(tool + QStringLiteral(".begun")));
    return QString::fromUtf8(lines).split(u'\n', Qt::SkipEmptyParts);
}

QList<ToolDoubles::Started> ToolDoubles::running(qint64 except) const
{
    QList<Started> all;
    const QStringList pids = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")});
    for (const QString &pid : pids) {
        const bool ours = environmentOf(pid).split('\0').contains(m_mark);
        if (ours && pid.toLongLong() != except && pid.toLongLong() != ::getpid())
            all.append({static_cast<pid_t>(pid.toLongLong()), commandOf(pid)});
    }
    return all;
}

QString ToolDoubles::left(qint64 except) const
{
    QStringList commands;
    for (const Started &started : running(except))
        commands.append(started.command);
    return commands.join(QStringLiteral(" | "));
}
