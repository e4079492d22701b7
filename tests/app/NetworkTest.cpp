// SPDX-License-Identifier: GPL-3.0-or-later

// The program reaches no network: every socket that it or one of its children makes is a local one,
// as displays and message buses have them.

#include "RealProgram.h"
#include "support/AgentDouble.h"
#include "support/TestMain.h"

namespace {

QProcessEnvironment recording(const QString &file)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    preload(environment, QStringLiteral(RECORDER));
    environment.insert(QStringLiteral("RECORD_SOCKETS"), file);
    return environment;
}

QList<QByteArray> recorded(const QString &file)
{
    return readFile(file).split('\n');
}

QList<QByteArray> others(const QList<QByteArray> &records)
{
    QList<QByteArray> others;
    for (const QByteArray &record : records) {
        if (record.contains(" other "))
            others.append(record);
    }
    return others;
}

/// A repository with a change in it.
void makeRepository(const QString &folder)
{
    QProcess git;
    git.setWorkingDirectory(folder);
    git.start(QStringLiteral("git"), {QStringLiteral("init"), QStringLiteral("-q")});
    if (!git.waitForFinished(60'000) || git.exitCode() != 0)
        qFatal("no repository");
    writeFile(folder + QStringLiteral("/new.txt"), "new\n");
}

} // namespace

class NetworkTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theRecorderSeesANetworkSocket();
    void noTabReachesANetwork();
};

void NetworkTest::theRecorderSeesANetworkSocket()
{
    const PrivateHome home;
    const QString file = home.path(QStringLiteral("sockets"));
    QProcess shell;
    shell.setProcessEnvironment(recording(file));
    shell.start(QStringLiteral("bash"),
                {QStringLiteral("-c"), QStringLiteral("exec 3<>/dev/tcp/127.0.0.1/1")});
    QVERIFY(shell.waitForFinished(60'000));
    QCOMPARE(others(recorded(file)), QList<QByteArray>{"bash other 2"});
}

void NetworkTest::noTabReachesANetwork()
{
    const PrivateHome home;
    const QString folder = addProject(home);
    const QString file = home.path(QStringLiteral("sockets"));
    makeRepository(folder);
    const AgentDouble agent(QStringLiteral("claude"), folder);

    RealProgram program(home, recording(file));
    program.pressKeys(QStringLiteral("Ctrl+2;Ctrl+3;Ctrl+4;Ctrl+5"));
    QVERIFY(program.begin());
    // Every tab with a tool has been open when its tool has run.
    for (const char *tool : {"plinthar", "ps", "lsof", "git"})
        QTRY_VERIFY2_WITH_TIMEOUT(recorded(file).contains(tool), tool, 120'000);
    QTest::qWait(1500); // every key once more, and what follows from it
    QCOMPARE(program.state(), QProcess::Running);
    QCOMPARE(others(recorded(file)), QList<QByteArray>());
}

PLINTHAR_TEST_MAIN(NetworkTest)
#include "NetworkTest.moc"
