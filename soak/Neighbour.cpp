// SPDX-License-Identifier: GPL-3.0-or-later

// The process beside the window in a soak: writes logs, changes, stages and commits files of the
// repositories, and starts and ends agents, and looks whether somebody else has changed what is its
// own.
//
//   plinthar_soak_neighbour SEED LOG-FOLDERS PROJECT...
//
// Reads from standard input: "rest" (everything as at first; answers "resting") and "go on". Ends
// with the input, or with a line about what it has found.

#include "GitObjects.h"
#include "model/Discovery.h"
#include "support/AgentDouble.h"
#include "support/LogLines.h"
#include "support/PrivateHome.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int repositoryCount = 2;
const QString theirs = QStringLiteral("theirs");

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
        for (const QString &repository : m_projects.first(repositoryCount))
            m_staged[repository] = objectsInIndex(repository, theirs);
    }

    int waitingTime() { return 5 + below(60); }

    /// Does something. Gives what somebody else has done.
    std::optional<QString> act()
    {
        look();
        if (below(3) == 0)
            letGo();
        const int choice = below(20);
        if (choice < 2)
            startOrEndAgent();
        else if (choice < 8)
            changeRepository();
        else if (choice < 10)
            useGit(m_projects.at(below(repositoryCount)));
        else if (choice < 11)
            hold(m_projects.at(below(repositoryCount)));
        else
            changeLog();
        return m_found;
    }

    /// Puts everything as it was at first. Nobody else uses git meanwhile.
    std::optional<QString> rest()
    {
        letGo();
        m_agents.clear();
        for (const QString &path : m_files.keys()) {
            if (!m_first.contains(path))
                remove(path);
        }
        for (auto it = m_first.cbegin(); it != m_first.cend(); ++it)
            write(it.key(), it.value());
        for (const QString &repository : m_projects.first(repositoryCount)) {
            if (!m_found && !(stage(repository) && commit(repository)))
                m_found = QStringLiteral("a lock was left behind in ") + repository;
        }
        return m_found;
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
        const QDateTime time = m_start.addSecs(-below(40 * 24 * 3600));
        return LogLines::assistant(time.toString(Qt::ISODateWithMs),
                                   QStringLiteral("claude-opus-4"),
                                   {below(1000), below(1000), below(1000), below(1000)},
                                   QStringLiteral("message-%1").arg(m_messages++)) +
               '\n';
    }

    void startLog(const QString &path, const QString &folder)
    {
        write(path, LogLines::user(m_start.toString(Qt::ISODateWithMs),
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
        const QString path =
            QStringLiteral("%1/%2/%3.txt")
                .arg(m_projects.at(below(repositoryCount)), theirs, QString::number(below(12)));
        if (m_files.contains(path) && below(3) == 0)
            return remove(path);
        QByteArray content;
        for (int line = below(40); line >= 0; --line)
            content += QByteArray::number(m_random.generate64(), 36) + '\n';
        write(path, content);
    }

    /// As an agent does that commits its own work and leaves alone what else is staged.
    void useGit(const QString &repository)
    {
        if (objectsInIndex(repository, theirs) != m_staged.value(repository))
            m_found = repository + QStringLiteral(": what is staged was changed by somebody else");
        else if (below(3) == 0)
            tryGit(repository, {QStringLiteral("status"), QStringLiteral("--short")});
        else if (stage(repository) && below(2) == 0 && commit(repository) &&
                 objectsInHead(repository, theirs) != m_staged.value(repository))
            m_found = repository + QStringLiteral(": what was committed is not there");
    }

    bool stage(const QString &repository)
    {
        if (!tryGit(repository, {QStringLiteral("add"), QStringLiteral("-A"), theirs}))
            return false;
        const QString folder = repository + u'/';
        GitObjects &staged = m_staged[repository];
        staged = {{theirs + QStringLiteral("/.keep"), objectName({})}};
        for (auto it = m_files.cbegin(); it != m_files.cend(); ++it) {
            if (it.key().startsWith(folder))
                staged[it.key().mid(folder.size())] = objectName(it.value());
        }
        return true;
    }

    bool commit(const QString &repository)
    {
        return tryGit(repository,
                      {QStringLiteral("commit"), QStringLiteral("-q"),
                       QStringLiteral("--allow-empty"), QStringLiteral("-m"),
                       QStringLiteral("The neighbour's"), QStringLiteral("--"), theirs});
    }

    /// Whether git did it. It may find the window's lock, or a branch that has just been moved on.
    bool tryGit(const QString &repository, const QStringList &arguments)
    {
        QProcess git;
        git.setProcessChannelMode(QProcess::MergedChannels);
        git.start(QStringLiteral("/usr/bin/git"),
                  QStringList{QStringLiteral("-C"), repository} + arguments);
        git.waitForFinished(-1);
        if (git.exitStatus() == QProcess::NormalExit && git.exitCode() == 0)
            return true;
        const QString said = QString::fromUtf8(git.readAll());
        if (!said.contains(u".lock") && !said.contains(u"cannot lock"))
            m_found = repository + QStringLiteral(": git failed: ") + said;
        return false;
    }

    /// As git does for as long as it takes.
    void hold(const QString &repository)
    {
        if (!m_held.isEmpty())
            return;
        const QString lock = repository + QStringLiteral("/.git/index.lock");
        const int file =
            ::open(QFile::encodeName(lock).constData(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        if (file < 0)
            return;
        ::close(file);
        m_held = lock;
    }

    void letGo()
    {
        if (m_held.isEmpty())
            return;
        if (!QFile::remove(m_held))
            m_found = m_held + QStringLiteral(" was removed by somebody else");
        m_held.clear();
    }

    void startOrEndAgent()
    {
        if (m_agents.size() > 3 || (!m_agents.empty() && below(2) == 0)) {
            m_agents.erase(m_agents.begin() + below(int(m_agents.size())));
            return;
        }
        m_agents.push_back(std::make_unique<AgentDouble>(QStringLiteral("claude"), project()));
    }

    void look()
    {
        for (auto it = m_files.cbegin(); it != m_files.cend(); ++it) {
            if (!QFileInfo::exists(it.key()) || readFile(it.key()) != it.value())
                m_found = it.key() + QStringLiteral(" was changed by somebody else");
        }
        for (const auto &agent : m_agents) {
            if (::kill(agent->pid(), 0) != 0 || !agent->isRunning())
                m_found = QStringLiteral("agent %1 was ended by somebody else").arg(agent->pid());
        }
    }

    QRandomGenerator m_random;
    const QString m_logs;
    const QStringList m_projects;
    const QDateTime m_start = QDateTime::currentDateTimeUtc();
    int m_messages = 0;
    QMap<QString, QByteArray> m_files;
    QMap<QString, QByteArray> m_first;
    QMap<QString, GitObjects> m_staged; ///< by repository
    QString m_held;                     ///< the lock file
    std::vector<std::unique_ptr<AgentDouble>> m_agents;
    std::optional<QString> m_found;
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
                say(neighbour.rest().value_or(QStringLiteral("resting")));
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
