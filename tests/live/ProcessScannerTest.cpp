// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/ProcessScanner.h"

#include "support/AgentDouble.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <thread>
#include <unistd.h>

using namespace ProcessScanner;

namespace {

const QString dash = QStringLiteral("\u2014");

QString describe(const QList<AgentProcess> &agents)
{
    QStringList texts;
    for (const AgentProcess &agent : agents)
        texts.append(QStringLiteral("%1 %2 %3 %4 [%5]")
                         .arg(agent.pid)
                         .arg(agent.agent)
                         .arg(agent.cpu)
                         .arg(agent.uptime, agent.folder));
    return texts.join(u'\n');
}

/// What is found on a line of ps's output.
QString found(const QString &line)
{
    return describe(parsePs(line, 2));
}

/// scan() on a thread of its own, as the program does it.
QList<AgentProcess> scanWith(const Tools &tools = {})
{
    QList<AgentProcess> agents;
    std::thread([&] { agents = scan(tools); }).join();
    return agents;
}

std::optional<AgentProcess> withPid(const QList<AgentProcess> &agents, qint32 pid)
{
    for (const AgentProcess &agent : agents)
        if (agent.pid == pid)
            return agent;
    return std::nullopt;
}

/// Tools that are scripts, and write down their arguments.
class StubTools {
public:
    explicit StubTools(const QString &folder) : m_folder(folder)
    {
        QDir().mkpath(folder);
        tools = {path("ps"), path("lsof"), path("lsof elsewhere")};
    }

    QString path(const char *name) const { return m_folder + u'/' + QString::fromLatin1(name); }
    void make(const char *name, const QByteArray &output, int status = 0) const
    {
        writeFile(path(name), "#!/bin/sh\nprintf '[%s]' \"$@\" >>'" + path(name).toUtf8() +
                                  ".calls'\ncat <<'END'\n" + output + "END\nexit " +
                                  QByteArray::number(status) + '\n');
        QFile::setPermissions(path(name), QFile::ReadOwner | QFile::ExeOwner);
    }
    QByteArray calls(const char *name) const
    {
        return readFile(path(name) + QStringLiteral(".calls"));
    }

    Tools tools;

private:
    QString m_folder;
};

} // namespace

class ProcessScannerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void commands();
    void psLine_data();
    void psLine();
    void psLinesKeepTheirOrder();
    void ownProcessIsLeftOut();
    void hugePsOutput();
    void lsofOutput_data();
    void lsofOutput();
    void foldersAndOrder();
    void notANumberCanBeSorted();
    void noAgentsNoLsof();
    void bothToolsRunOnce();
    void lsofFails();
    void lsofElsewhereOnlyWhereThereIsNone();
    void psFails_data();
    void psFails();
    void realAgents();
    void realAgentOfAnotherUser();
    void realAgentThatEnds();
    void knowsWhenTheAgentsWereSeen();
};

void ProcessScannerTest::commands()
{
    QCOMPARE(Tools().ps, QStringLiteral("/bin/ps"));
    QCOMPARE(Tools().lsof, QStringLiteral("/usr/sbin/lsof"));
    QCOMPARE(Tools().lsofElsewhere, QStringLiteral("/usr/bin/lsof"));
    QCOMPARE(psArguments(),
             (QStringList{QStringLiteral("-axo"), QStringLiteral("pid=,pcpu=,etime=,command=")}));
    QList<AgentProcess> agents(2);
    agents[0].pid = 812;
    agents[1].pid = 1930;
    QCOMPARE(
        lsofArguments(agents),
        (QStringList{QStringLiteral("-a"), QStringLiteral("-d"), QStringLiteral("cwd"),
                     QStringLiteral("-Fpn"), QStringLiteral("-p"), QStringLiteral("812,1930")}));
}

void ProcessScannerTest::psLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("agent");
    const auto row = [](const char *name, const QString &line, const QString &agent = {}) {
        QTest::newRow(name) << line << agent;
    };
    const auto command = [&row](const char *name, const char16_t *text, const char *agent = "") {
        const QString found = QString::fromLatin1(agent);
        row(name, QStringLiteral("7 1.5 00:01 ") + QString::fromUtf16(text),
            found.isEmpty() ? QString() : QStringLiteral("7 %1 1.5 00:01 []").arg(found));
    };
    row("as ps prints it",
        QStringLiteral("  4711   12.5    01:02:03 /usr/local/bin/claude --resume"),
        QStringLiteral("4711 claude 12.5 01:02:03 []"));
    row("days", QStringLiteral("1 0.0 12-01:02:03 codex"),
        QStringLiteral("1 codex 0 12-01:02:03 []"));

    command("bare name", u"claude", "claude");
    command("every agent: codex", u"codex", "codex");
    command("every agent: gemini", u"/opt/gemini -m x", "gemini");
    command("every agent: cursor-agent", u"/a/b/cursor-agent", "cursor-agent");
    command("blanks before the command", u"    claude", "claude");
    command("a slash behind", u"/usr/bin/claude/", "claude");
    command("slashes behind", u"/usr/bin/claude///", "claude");
    command("only a slash", u"/");
    command("a relative path", u"./codex", "codex");
    command("other case", u"/usr/bin/Claude");
    command("longer name", u"claude-wrapper");
    command("with extension", u"/x/codex.js");
    command("only as an argument", u"vim claude");
    command("only as a folder", u"/opt/claude/run");
    command("login shell's dash", u"-claude");
    command("kernel thread", u"[claude]");
    command("program in a folder with a blank", u"/my tools/claude");
    command("a folder with an agent's name and a blank", u"/opt/claude code/x", "claude");
    command("no-break space is no blank", u"node\u00a0claude");
    command("tab is no blank", u"claude\t--x");

    command("node runs a script", u"node /usr/local/bin/codex", "codex");
    command("node by path", u"/usr/bin/node   /usr/local/bin/gemini --x", "gemini");
    command("bun runs a script", u"bun claude", "claude");
    command("deno runs a script", u"deno /x/cursor-agent", "cursor-agent");
    command("node runs something else", u"node /opt/lib/node_modules/codex/bin/codex.js");
    command("node with an option first", u"node --inspect /usr/local/bin/codex");
    command("env is no runtime", u"/usr/bin/env node claude");
    command("bun alone", u"bun");
    command("deno's own command first", u"deno run gemini");
    command("a runtime runs a runtime", u"node bun claude");
    command("other case of a runtime", u"Node claude");

    row("decimal comma", QStringLiteral("7 12,5 00:01 claude"),
        QStringLiteral("7 claude 0 00:01 []"));
    row("cpu is no number", QStringLiteral("7 - 00:01 claude"),
        QStringLiteral("7 claude 0 00:01 []"));
    row("cpu with an exponent", QStringLiteral("7 1e2 00:01 claude"),
        QStringLiteral("7 claude 100 00:01 []"));
    row("largest pid", QStringLiteral("2147483647 0 1 claude"),
        QStringLiteral("2147483647 claude 0 1 []"));
    row("pid with a sign", QStringLiteral("+7 0 1 claude"), QStringLiteral("7 claude 0 1 []"));
    row("pid too large", QStringLiteral("2147483648 0 1 claude"));
    row("pid far too large", QStringLiteral("%1 0 1 claude").arg(QString(5000, u'9')));
    for (const char *pid : {"x", "7x", "0x7", "7.0", "+", "-", "+-7", "++7", "1,000"})
        row(pid, QStringLiteral("%1 0 1 claude").arg(QString::fromLatin1(pid)));
    row("pid in Arabic digits", QStringLiteral("\u0667 0 1 claude"));
    row("pid behind a tab", QStringLiteral("\t7 0 1 claude"));

    row("empty", QString());
    row("only blanks", QStringLiteral("      "));
    row("three columns", QStringLiteral("7 0.0 00:01"));
    row("three columns and blanks", QStringLiteral("7 0.0 00:01    "));
    row("the name in a wrong column", QStringLiteral("7 0.0 claude"));
    row("carriage return", QStringLiteral("7 0.0 00:01 claude\r"));
}

void ProcessScannerTest::psLine()
{
    QFETCH(const QString, line);
    QFETCH(const QString, agent);
    QCOMPARE(found(line), agent);
}

void ProcessScannerTest::psLinesKeepTheirOrder()
{
    const QString output = QStringLiteral("\n\n 9 1.0 01:00 claude\n"
                                          " 3 9.0 1-00:00:00 vim claude\n"
                                          "garbage\n"
                                          " 8 2.0 02:00 codex x\n\n"
                                          " 4 0.5 03:00 node gemini");
    QCOMPARE(describe(parsePs(output, 1)), QStringLiteral("9 claude 1 01:00 []\n"
                                                          "8 codex 2 02:00 []\n"
                                                          "4 gemini 0.5 03:00 []"));
}

void ProcessScannerTest::ownProcessIsLeftOut()
{
    QCOMPARE(parsePs(QStringLiteral("5 0 1 claude"), 5).size(), 0);
    QCOMPARE(parsePs(QStringLiteral("5 0 1 claude"), 6).size(), 1);
}

void ProcessScannerTest::hugePsOutput()
{
    QString output;
    for (int i = 0; i < 20'000; ++i)
        output +=
            QStringLiteral("%1 0.1 00:01 claude ").arg(i + 2) + QString(i % 500, u'x') + u'\n';
    output += QStringLiteral("1000000 0.1 00:01 claude ") + QString(5 << 20, u'y');
    QCOMPARE(parsePs(output, 1).size(), 20'001);
}

void ProcessScannerTest::lsofOutput_data()
{
    using Folders = QHash<qint32, QString>;
    QTest::addColumn<QString>("output");
    QTest::addColumn<Folders>("folders");
    QTest::newRow("two processes")
        << QStringLiteral("p812\nfcwd\nn/Users/dev/src/app\np1930\nfcwd\nn/tmp\n")
        << Folders{{812, QStringLiteral("/Users/dev/src/app")}, {1930, QStringLiteral("/tmp")}};
    QTest::newRow("blanks") << QStringLiteral("p1\nn /a  b \n")
                            << Folders{{1, QStringLiteral(" /a  b ")}};
    QTest::newRow("name without a process")
        << QStringLiteral("n/a\np1\nn/b") << Folders{{1, QStringLiteral("/b")}};
    QTest::newRow("process that is no number")
        << QStringLiteral("p1\nn/a\npx\nn/b\np\nn/c\n") << Folders{{1, QStringLiteral("/a")}};
    QTest::newRow("the last name counts")
        << QStringLiteral("p1\nn/a\nf9\nn/b\n") << Folders{{1, QStringLiteral("/b")}};
    QTest::newRow("process without a name") << QStringLiteral("p1\nfcwd\n") << Folders{};
    QTest::newRow("empty name") << QStringLiteral("p1\nn\n") << Folders{{1, QString()}};
    QTest::newRow("nothing") << QString() << Folders{};
}

void ProcessScannerTest::lsofOutput()
{
    QFETCH(const QString, output);
    using Folders = QHash<qint32, QString>;
    QFETCH(const Folders, folders);
    QCOMPARE(parseLsof(output), folders);
}

void ProcessScannerTest::foldersAndOrder()
{
    const QString output = QStringLiteral("10 3.0 a claude\n11 7.5 b codex\n12 0.0 c gemini\n"
                                          "13 0.0 d claude\n14 7.5 e codex\n");
    const QHash<qint32, QString> folders{
        {10, QStringLiteral("/a b")},
        {12, QStringLiteral("/proc/12/cwd (readlink: Permission denied)")},
        {13, QStringLiteral("/proc/12/cwd (readlink: no excuse of 13's)")},
        {99, QStringLiteral("/x")}};
    QCOMPARE(describe(withFolders(parsePs(output, 1), folders)),
             QStringLiteral("11 codex 7.5 b [\u2014]\n"
                            "14 codex 7.5 e [\u2014]\n"
                            "10 claude 3 a [/a b]\n"
                            "12 gemini 0 c [\u2014]\n"
                            "13 claude 0 d [/proc/12/cwd (readlink: no excuse of 13's)]"));
}

void ProcessScannerTest::notANumberCanBeSorted()
{
    QString output;
    for (int i = 0; i < 200; ++i)
        output += QStringLiteral("%1 %2 a claude\n")
                      .arg(i + 2)
                      .arg(i % 3 == 0 ? QStringLiteral("nan") : QString::number(i));
    const QList<AgentProcess> agents = withFolders(parsePs(output, 1), {});
    QCOMPARE(agents.size(), 200);
    for (qsizetype i = 1; i < agents.size(); ++i)
        QVERIFY(agents[i - 1].cpu >= agents[i].cpu);
}

void ProcessScannerTest::noAgentsNoLsof()
{
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    stubs.make("ps", "1 0.0 00:01 /sbin/init\n");
    stubs.make("lsof", "p1\nn/\n");
    QVERIFY(scanWith(stubs.tools).isEmpty());
    QCOMPARE(stubs.calls("ps"), QByteArray("[-axo][pid=,pcpu=,etime=,command=]"));
    QCOMPARE(stubs.calls("lsof"), QByteArray());
}

void ProcessScannerTest::bothToolsRunOnce()
{
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    stubs.make("ps", "30 1.0 00:01 claude\n20 0.5 00:02 node codex\n" +
                         QByteArray::number(::getpid()) +
                         " 0.5 00:02 codex\n10 2.0 00:03 gemini\n");
    stubs.make("lsof", "p30\nfcwd\nn/a\np10\nfcwd\nn/b c\n");
    QCOMPARE(describe(scanWith(stubs.tools)), QStringLiteral("10 gemini 2 00:03 [/b c]\n"
                                                             "30 claude 1 00:01 [/a]\n"
                                                             "20 codex 0.5 00:02 [\u2014]"));
    QCOMPARE(stubs.calls("lsof"), QByteArray("[-a][-d][cwd][-Fpn][-p][30,20,10]"));
}

void ProcessScannerTest::lsofFails()
{
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    stubs.make("ps", "30 1.0 00:01 claude\n20 0.5 00:02 codex\n");
    // Neither it nor the other one is there.
    QCOMPARE(describe(scanWith(stubs.tools)), QStringLiteral("30 claude 1 00:01 [\u2014]\n"
                                                             "20 codex 0.5 00:02 [\u2014]"));
    // It fails because one process has ended, and still tells about the other.
    stubs.make("lsof", "p20\nfcwd\nn/x\n", 1);
    QCOMPARE(describe(scanWith(stubs.tools)), QStringLiteral("30 claude 1 00:01 [\u2014]\n"
                                                             "20 codex 0.5 00:02 [/x]"));
}

void ProcessScannerTest::lsofElsewhereOnlyWhereThereIsNone()
{
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    stubs.make("ps", "30 1.0 00:01 claude\n");
    stubs.make("lsof elsewhere", "p30\nn/elsewhere\n");
    QCOMPARE(scanWith(stubs.tools).constFirst().folder, QStringLiteral("/elsewhere"));
    QCOMPARE(stubs.calls("lsof elsewhere"), QByteArray("[-a][-d][cwd][-Fpn][-p][30]"));

    stubs.make("lsof", "p30\nn/here\n");
    QCOMPARE(scanWith(stubs.tools).constFirst().folder, QStringLiteral("/here"));
    // One that is there and cannot be run is not replaced.
    QFile::setPermissions(stubs.tools.lsof, QFile::ReadOwner);
    QCOMPARE(scanWith(stubs.tools).constFirst().folder, dash);
    QCOMPARE(stubs.calls("lsof elsewhere").count("[-a]"), 1);
}

void ProcessScannerTest::psFails_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("missing") << -1;
    QTest::newRow("a failure") << 1;
}

void ProcessScannerTest::psFails()
{
    QFETCH(const int, status);
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    if (status >= 0)
        stubs.make("ps", "30 1.0 00:01 claude\n", status);
    stubs.make("lsof", "p30\nn/here\n");
    QVERIFY(scanWith(stubs.tools).isEmpty());
    QCOMPARE(stubs.calls("lsof"), QByteArray());
}

void ProcessScannerTest::realAgents()
{
    const PrivateHome home;
    const QString plain = QFileInfo(home.path()).canonicalFilePath();
    const QString blanks = plain + QStringLiteral("/my  projects/gr\u00fcn and blue");
    QVERIFY(QDir().mkpath(blanks));
    const AgentDouble claude(QStringLiteral("claude"), plain);
    const AgentDouble codex(QStringLiteral("codex"), blanks);
    const AgentDouble gemini =
        AgentDouble::script(QStringLiteral("node"), QStringLiteral("gemini"), blanks);
    const AgentDouble cursor(QStringLiteral("cursor-agent"), plain,
                             {QStringLiteral("two words"), QString()});
    const AgentDouble other(QStringLiteral("claude-code"), plain);
    const AgentDouble script =
        AgentDouble::script(QStringLiteral("node"), QStringLiteral("x.js"), plain);
    const QList<AgentProcess> agents = scanWith();
    const auto check = [&agents](const AgentDouble &process, const char *name,
                                 const QString &folder) {
        const std::optional<AgentProcess> agent = withPid(agents, process.pid());
        return agent && agent->agent == QString::fromLatin1(name) && agent->folder == folder &&
               agent->uptime.contains(u':') && agent->cpu >= 0;
    };
    QVERIFY2(check(claude, "claude", plain), qPrintable(describe(agents)));
    QVERIFY2(check(codex, "codex", blanks), qPrintable(describe(agents)));
    QVERIFY2(check(gemini, "gemini", blanks), qPrintable(describe(agents)));
    QVERIFY2(check(cursor, "cursor-agent", plain), qPrintable(describe(agents)));
    QVERIFY(!withPid(agents, other.pid()));
    QVERIFY(!withPid(agents, script.pid()));
    QVERIFY(!withPid(agents, ::getpid()));
}

void ProcessScannerTest::realAgentOfAnotherUser()
{
    // Nobody looks at a process of root: lsof says that it may not, and that is no folder.
    if (::geteuid() != 0)
        QSKIP("only root can run tools as somebody else");
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    const AgentDouble agent(QStringLiteral("claude"), home.path());
    writeFile(stubs.tools.lsof, "#!/bin/sh\nexec /usr/bin/setpriv --reuid=65534 --clear-groups "
                                "/usr/bin/lsof \"$@\"\n");
    QFile::setPermissions(stubs.tools.lsof, QFile::ReadOwner | QFile::ExeOwner);
    Tools tools = stubs.tools;
    tools.ps = Tools().ps;
    const std::optional<AgentProcess> seen = withPid(scanWith(tools), agent.pid());
    QVERIFY(seen);
    QCOMPARE(seen->folder, dash);
}

void ProcessScannerTest::realAgentThatEnds()
{
    // It ends between the two commands: the stub runs the real ps and then waits for its end.
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    AgentDouble agent(QStringLiteral("codex"), home.path());
    const qint32 pid = agent.pid();
    writeFile(stubs.tools.lsof, "#!/bin/sh\nwhile [ -e /proc/" + QByteArray::number(pid) +
                                    " ]; do sleep 0.02; done\nexec /usr/bin/lsof \"$@\"\n");
    QFile::setPermissions(stubs.tools.lsof, QFile::ReadOwner | QFile::ExeOwner);
    Tools tools = stubs.tools;
    tools.ps = Tools().ps;
    QList<AgentProcess> agents;
    std::jthread thread([&] { agents = scan(tools); });
    // lsof's turn has come when its stub is there as a process; to be sure, wait for its start.
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            const QStringList pids = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
            return std::any_of(pids.cbegin(), pids.cend(), [&](const QString &each) {
                return readFile(QStringLiteral("/proc/%1/cmdline").arg(each))
                    .contains(stubs.tools.lsof.toUtf8());
            });
        }(),
        60'000);
    agent.end();
    thread.join();
    const std::optional<AgentProcess> seen = withPid(agents, pid);
    QVERIFY(seen);
    QCOMPARE(seen->folder, dash);
}

void ProcessScannerTest::knowsWhenTheAgentsWereSeen()
{
    // A process that is started while lsof runs may have got the number of an agent that has ended
    // since ps has seen it. It must not pass for that agent.
    const PrivateHome home;
    const StubTools stubs(home.path(QStringLiteral("tools")));
    stubs.make("ps", "30 1.0 00:01 claude\n");
    const QString begun = home.path(QStringLiteral("begun"));
    const QString mayEnd = home.path(QStringLiteral("may end"));
    writeFile(stubs.tools.lsof, "#!/bin/sh\n: >'" + begun.toUtf8() + "'\nwhile [ ! -e '" +
                                    mayEnd.toUtf8() + "' ]; do sleep 0.02; done\n");
    QFile::setPermissions(stubs.tools.lsof, QFile::ReadOwner | QFile::ExeOwner);
    const AgentDouble before(QStringLiteral("claude"), home.path());
    BootTicks seenAt = 0;
    std::jthread thread([&] { scan(stubs.tools, &seenAt); });
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(begun), 60'000);
    QTest::qWait(50); // several of the kernel's ticks
    AgentDouble during(QStringLiteral("claude"), home.path());
    writeFile(mayEnd, "");
    thread.join();
    QCOMPARE(ProcessHandle(during.pid(), seenAt).terminate(), ESRCH);
    QTest::qWait(100);
    QVERIFY(during.isRunning());
    QCOMPARE(ProcessHandle(before.pid(), seenAt).terminate(), 0);
}

PLINTHAR_TEST_MAIN(ProcessScannerTest)
#include "ProcessScannerTest.moc"
