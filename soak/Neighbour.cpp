// SPDX-License-Identifier: GPL-3.0-or-later

// The process beside the window in a soak: writes logs, changes files of the repositories and
// starts and ends agents, and looks whether somebody else has changed what is its own.
//
//   plinthar_soak_neighbour SEED LOG-FOLDERS PROJECT...
//
// Reads from standard input: "rest" (everything as at first; answers "resting") and "go on". Ends
// with the input, or with a line about what it has found.

#include "model/Discovery.h"
#include "support/AgentDouble.h"
#include "support/LogLines.h"
#include "support/PrivateHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace {

class Neighbour {
public:
    Neighbour(quint32 seed, const QString &logs, const QStringList &projects)
        : m_random(seed)
        , m_logs(logs)
        , m_projects(projects)
    {
        for (const QString &project : m_projects)
            startLog(logOf(project, 0), project);
        m_first = m_files;
    }

    int waitingTime() { return 5 + below(60); }

    /// Does something. Gives what somebody else has done.
    std::optional<QString> act()
    {
        const auto found = look();
        switch (below(8)) {
        case 0:
            startOrEndAgent();
            break;
        case 1:
        case 2:
        case 3:
            changeRepository();
            break;
        default:
            changeLog();
        }
        return found;
    }

    void rest()
    {
        m_agents.clear();
        for (const QString &path : m_files.keys()) {
            if (!m_first.contains(path))
                remove(path);
        }
        for (auto it = m_first.cbegin(); it != m_first.cend(); ++it)
            write(it.key(), it.value());
    }

private:
    int below(int count) { return int(m_random.bounded(count)); }
    QString project() { return m_projects.at(below(int(m_projects.size()))); }
    QString logOf(const QString &folder, int number) const
    {
        return QStringLiteral("%1/%2/log-%3.jsonl")
            .arg(m_logs, Discovery::encodeClaudeDir(folder), QString::number(number));
    }

    void write(const QString &path, const QByteArray &content)
    {
        writeFile(path, content);
        m_files[path] = content;
    }

    void remove(const QString &path)
    {
        QFile::remove(path);
        m_files.remove(path);
    }

    /// As an agent does: the rest of a line may come later.
    void append(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (file.open(QIODevice::Append) && file.write(bytes) == bytes.size())
            m_files[path] += bytes;
    }

    QByteArray answer()
    {
        return LogLines::assistant(QStringLiteral("2026-03-%1T%2:00:00.000Z")
                                       .arg(1 + below(28), 2, 10, QLatin1Char('0'))
                                       .arg(below(24), 2, 10, QLatin1Char('0')),
                                   QStringLiteral("claude-opus-4"),
                                   {below(1000), below(1000), below(1000), below(1000)},
                                   QStringLiteral("message-%1").arg(m_messages++)) +
               '\n';
    }

    void startLog(const QString &path, const QString &folder)
    {
        write(path, LogLines::user(QStringLiteral("2026-03-05T10:00:00.000Z"),
                                   QStringLiteral("Please do that"), folder) +
                        '\n' + answer());
    }

    void changeLog()
    {
        const QString folder = project();
        const QString path = logOf(folder, below(6));
        const QByteArray content = m_files.value(path);
        if (!m_files.contains(path) || content.size() > 400'000)
            return startLog(path, folder);
        switch (below(12)) {
        case 0:
            if (!m_first.contains(path)) // or the project would be gone from the list
                remove(path);
            break;
        case 1:
            write(path, content.first(content.size() / 2));
            break;
        case 2: {
            const QByteArray line = answer();
            append(path, line.first(below(int(line.size()))));
            break;
        }
        default:
            for (int i = below(20); i >= 0; --i)
                append(path, answer());
        }
    }

    void changeRepository()
    {
        const QString repository = m_projects.at(below(2));
        const QString path =
            QStringLiteral("%1/theirs/%2.txt").arg(repository, QString::number(below(12)));
        if (m_files.contains(path) && below(3) == 0)
            return remove(path);
        QByteArray content;
        for (int line = below(40); line >= 0; --line)
            content += QByteArray::number(m_random.generate64(), 36) + '\n';
        write(path, content);
    }

    void startOrEndAgent()
    {
        if (m_agents.size() > 3 || (!m_agents.empty() && below(2) == 0)) {
            m_agents.erase(m_agents.begin() + below(int(m_agents.size())));
            return;
        }
        m_agents.push_back(std::make_unique<AgentDouble>(QStringLiteral("claude"), project()));
    }

    std::optional<QString> look() const
    {
        for (auto it = m_files.cbegin(); it != m_files.cend(); ++it) {
            if (!QFileInfo::exists(it.key()) || readFile(it.key()) != it.value())
                return it.key() + QStringLiteral(" was changed by somebody else");
        }
        for (const auto &agent : m_agents) {
            if (::kill(agent->pid(), 0) != 0 || !agent->isRunning())
                return QStringLiteral("agent %1 was ended by somebody else").arg(agent->pid());
        }
        return {};
    }

    QRandomGenerator m_random;
    const QString m_logs;
    const QStringList m_projects;
    int m_messages = 0;
    QMap<QString, QByteArray> m_files;
    QMap<QString, QByteArray> m_first;
    std::vector<std::unique_ptr<AgentDouble>> m_agents;
};

/// A line of the input, without its end; nothing while there is none.
std::optional<QByteArray> nextLine(QByteArray &read)
{
    const qsizetype end = read.indexOf('\n');
    if (end < 0)
        return {};
    const QByteArray line = read.first(end);
    read.remove(0, end + 1);
    return line;
}

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 5)
        return 2;
    Neighbour neighbour(arguments.at(1).toUInt(), arguments.at(2), arguments.mid(3));
    bool resting = true;
    QByteArray read;
    for (;;) {
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        if (::poll(&input, 1, resting ? -1 : neighbour.waitingTime()) > 0) {
            char buffer[256];
            const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
            if (count <= 0)
                return 0;
            read.append(buffer, count);
            while (const auto line = nextLine(read)) {
                resting = *line == "rest";
                if (!resting)
                    continue;
                neighbour.rest();
                say(QStringLiteral("resting"));
            }
        }
        // So that it learns of agents that have ended.
        QCoreApplication::processEvents();
        if (resting)
            continue;
        if (const auto found = neighbour.act()) {
            say(*found);
            return 1;
        }
    }
}
