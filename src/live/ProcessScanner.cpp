// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/ProcessScanner.h"

#include "model/Files.h"
#include "model/Words.h"
#include "review/RunProcess.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <unistd.h>

namespace {

constexpr std::array<QStringView, 4> agentNames{u"claude", u"codex", u"gemini", u"cursor-agent"};
constexpr std::array<QStringView, 3> scriptRuntimes{u"node", u"bun", u"deno"};

template <size_t Count>
bool isOneOf(const std::array<QStringView, Count> &names, QStringView name)
{
    return std::find(names.cbegin(), names.cend(), name) != names.cend();
}

/// A decimal number with an optional sign and nothing else, not even a blank.
std::optional<qint32> toPid(QStringView text)
{
    if (text.startsWith(u'+') && !text.startsWith(u"+-"))
        text = text.mid(1);
    std::array<char, 32> digits;
    if (text.isEmpty() || text.size() > qsizetype(digits.size()))
        return std::nullopt;
    std::transform(text.cbegin(), text.cend(), digits.begin(),
                   [](QChar c) { return c.toLatin1(); });
    const char *const end = digits.data() + text.size();
    qint32 pid = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, pid);
    return error == std::errc() && stop == end ? std::optional(pid) : std::nullopt;
}

/// The number of ps's pcpu column; 0 when it is none.
double toCpu(QStringView text)
{
    const double cpu = text.toDouble();
    return std::isnan(cpu) ? 0 : cpu; // which could not be sorted
}

/// What a command line is an instance of: the program, or the script that a runtime runs.
QStringView commandName(QStringView commandLine)
{
    const QStringView name = lastPathComponent(takeWord(commandLine));
    if (!isOneOf(scriptRuntimes, name))
        return name;
    const QStringView script = takeWord(commandLine);
    return script.isEmpty() ? name : lastPathComponent(script);
}

std::optional<AgentProcess> parsePsLine(QStringView line, qint32 ownPid)
{
    const std::optional<qint32> pid = toPid(takeWord(line));
    if (!pid || *pid == ownPid)
        return std::nullopt;
    const QStringView cpu = takeWord(line);
    const QStringView uptime = takeWord(line);
    const QStringView agent = commandName(line);
    if (!isOneOf(agentNames, agent))
        return std::nullopt;
    return AgentProcess{*pid, agent.toString(), QString(), toCpu(cpu), uptime.toString()};
}

/// On Linux lsof gives its excuse in the place of a folder that it may not see.
bool isExcuse(qint32 pid, const QString &folder)
{
    return folder.startsWith(QStringLiteral("/proc/%1/cwd (readlink: ").arg(pid));
}

QString lsofOf(const ProcessScanner::Tools &tools)
{
    return QFileInfo::exists(tools.lsof) ? tools.lsof : tools.lsofElsewhere;
}

} // namespace

namespace ProcessScanner {

QList<AgentProcess> scan(const Tools &tools, BootTicks *seenAt, const std::stop_token &stop)
{
    const auto run = [&](const QString &tool, const QStringList &arguments) {
        return runProcess(tool, arguments, std::nullopt, std::nullopt, stop);
    };
    const ShellResult ps = run(tools.ps, psArguments());
    if (seenAt) // before lsof, which a dead network folder can hold up for as long as it likes
        *seenAt = bootTicks();
    if (ps.status != 0)
        return {};
    QList<AgentProcess> agents = parsePs(ps.out, ::getpid());
    if (agents.isEmpty())
        return {};
    // Its status says nothing: it is a failure as soon as one of the processes has ended.
    const ShellResult lsof = run(lsofOf(tools), lsofArguments(agents));
    return withFolders(std::move(agents), parseLsof(lsof.out));
}

QStringList psArguments()
{
    return {QStringLiteral("-axo"), QStringLiteral("pid=,pcpu=,etime=,command=")};
}

QStringList lsofArguments(const QList<AgentProcess> &agents)
{
    QStringList pids;
    pids.reserve(agents.size());
    for (const AgentProcess &agent : agents)
        pids.append(QString::number(agent.pid));
    return {QStringLiteral("-a"),   QStringLiteral("-d"), QStringLiteral("cwd"),
            QStringLiteral("-Fpn"), QStringLiteral("-p"), pids.join(u',')};
}

QList<AgentProcess> parsePs(const QString &output, qint32 ownPid)
{
    QList<AgentProcess> agents;
    for (const QStringView line : QStringView(output).tokenize(u'\n'))
        if (std::optional<AgentProcess> agent = parsePsLine(line, ownPid))
            agents.append(*std::move(agent));
    return agents;
}

QHash<qint32, QString> parseLsof(const QString &output)
{
    QHash<qint32, QString> folders;
    std::optional<qint32> pid;
    for (const QStringView line : QStringView(output).tokenize(u'\n')) {
        if (line.startsWith(u'p'))
            pid = toPid(line.mid(1));
        else if (line.startsWith(u'n') && pid)
            folders.insert(*pid, line.mid(1).toString());
    }
    return folders;
}

QList<AgentProcess> withFolders(QList<AgentProcess> agents, const QHash<qint32, QString> &folders)
{
    for (AgentProcess &agent : agents) {
        const auto found = folders.constFind(agent.pid);
        const bool known = found != folders.cend() && !isExcuse(agent.pid, *found);
        agent.folder = known ? *found : QStringLiteral("\u2014");
    }
    std::stable_sort(agents.begin(), agents.end(),
                     [](const AgentProcess &a, const AgentProcess &b) { return a.cpu > b.cpu; });
    return agents;
}

} // namespace ProcessScanner
