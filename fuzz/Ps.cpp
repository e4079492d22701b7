// SPDX-License-Identifier: GPL-3.0-or-later
// The agents among known processes are found in what ps would print of these, and nothing else is;
// of any text every line counts for itself.

#include "Choices.h"
#include "Property.h"
#include "Target.h"
#include "live/ProcessScanner.h"

#include <QStringList>

#include <array>
#include <cmath>

namespace {

constexpr qint32 ownPid = 4'242;
constexpr std::array<const char *, 4> agents{"claude", "codex", "gemini", "cursor-agent"};
constexpr std::array<const char *, 6> strangers{"bash", "claude-x", "xcodex",
                                                "node", "-",        "(sd-pam)"};
constexpr std::array<const char *, 4> folders{"", "/usr/bin/", "./", "/opt/a.b//"};
constexpr std::array<const char *, 4> runtimes{"", "node ", "/usr/bin/bun  ", "deno "};

QString described(const QList<AgentProcess> &processes)
{
    QStringList texts;
    for (const AgentProcess &process : processes)
        texts.append(QStringLiteral("%1 %2 \"%3\" %4 %5")
                         .arg(process.pid)
                         .arg(process.agent, process.folder)
                         .arg(process.cpu, 0, 'g', 17)
                         .arg(process.uptime));
    return texts.join(u'\n');
}

void checkText(const QString &text)
{
    const QList<AgentProcess> found = ProcessScanner::parsePs(text, ownPid);
    QList<AgentProcess> oneByOne;
    for (const QString &line : text.split(u'\n'))
        oneByOne += ProcessScanner::parsePs(line, ownPid);
    same(described(found), described(oneByOne), "every line counts for itself");
    for (const AgentProcess &process : found) {
        const auto isName = [&](const char *name) {
            return process.agent == QLatin1StringView(name);
        };
        holds(std::any_of(agents.begin(), agents.end(), isName), "an agent is one of the four");
        holds(process.pid != ownPid, "the program itself is none");
        holds(!std::isnan(process.cpu), "shares can be sorted");
        holds(!process.uptime.contains(u' '), "the uptime is a word");
        holds(fmtCpu(process.cpu).endsWith(u'%'), "a share can be shown");
    }
    const QList<AgentProcess> sorted = ProcessScanner::withFolders(found, {});
    holds(sorted.size() == found.size(), "sorting loses nothing");
    for (qsizetype i = 1; i < sorted.size(); ++i)
        holds(sorted[i - 1].cpu >= sorted[i].cpu, "the largest share comes first");
}

void checkProcesses(Choices choices)
{
    QString text;
    QList<AgentProcess> expected;
    while (!choices.atEnd()) {
        const auto word = [](const char *latin1) { return QString::fromLatin1(latin1); };
        AgentProcess process;
        process.pid = choices.below(32'768) + (choices.below(2) ? 4'000'000 : 1);
        process.cpu = choices.below(65'536) / 10.0;
        process.uptime =
            QStringLiteral("%1-0%2:59:07").arg(choices.below(400)).arg(choices.below(10));
        const bool isAgent = choices.below(2) == 0;
        process.agent = word(isAgent ? choices.oneOf(agents) : choices.oneOf(strangers));
        const QString runtime = word(choices.oneOf(runtimes));
        const QString arguments = choices.textWithout(u'\n');
        text += QStringLiteral("%1 %2 %3 ")
                    .arg(process.pid, 7)
                    .arg(process.cpu, 4, 'f', 1)
                    .arg(process.uptime, 11) +
                runtime + word(choices.oneOf(folders)) + process.agent;
        // A stranger's first argument may be an agent where the stranger is itself a runtime.
        if (isAgent || process.agent != QStringLiteral("node"))
            text += u' ' + arguments;
        text += u'\n';
        if (isAgent && process.pid != ownPid)
            expected.append(process);
    }
    same(described(ProcessScanner::parsePs(text, ownPid)), described(expected),
         "the agents are found");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    checkText(QString::fromUtf8(input));
    checkProcesses(Choices(input));
}

QByteArrayList seeds()
{
    return {"    101  0.5    01:02 claude --resume\n",
            " 4242 0.0 00:01 claude\n+7 1.5 1-02:03:04 /usr/bin/node /x/codex -p\n",
            "-5 nan 1 gemini\n6 inf 2 cursor-agent\n7 -1e5 3 bun\n8 1,5 4 deno claude",
            "2147483648 1 1 claude\n2147483647 1 1 claude\n",
            "1 1 claude\n\n   \n1\n",
            "\t1 1 1 claude\n1\t1 1 claude\n1 1 1 a/claude/\n",
            QByteArray("\0\7\0\1\2\0\3\4\0\1\2\5hello\1\2", 17)};
}

QByteArrayList words()
{
    return {"claude", "codex", "gemini", "cursor-agent", "node ", "/bun ", "deno ",      "\n",
            " 1 1 1", "+-",    "nan",    "inf",          "1e400", "4242",  "2147483648", "/"};
}

} // namespace Target
