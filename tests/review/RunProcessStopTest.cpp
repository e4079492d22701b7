// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/RunProcess.h"
#include "support/TestMain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <memory>
#include <thread>

namespace {

/// A shell's script that runs until it is stopped; it writes its number into a file first.
struct Script {
    explicit Script(const QString &text, const std::stop_token &stop)
    {
        const QString script = QStringLiteral("echo $$ > '%1.new'; mv '%1.new' '%1'; echo out; "
                                              "echo err >&2; ")
                                   .arg(pidFile()) +
                               text;
        m_thread = std::thread([this, script, stop] {
            result = runProcess(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script},
                                std::nullopt, std::nullopt, stop);
        });
    }

    QString pidFile() const { return m_folder.filePath(QStringLiteral("pid")); }
    /// Waits until the script has begun.
    pid_t pid() const
    {
        while (!QFile::exists(pidFile()))
            QThread::msleep(5);
        return static_cast<pid_t>(readFile(pidFile()).trimmed().toLongLong());
    }
    void join() { m_thread.join(); }

    ShellResult result;

private:
    QTemporaryDir m_folder;
    std::thread m_thread;
};

bool isGone(pid_t pid)
{
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

const QString endless = QStringLiteral("while :; do sleep 0.05; done");

} // namespace

class RunProcessStopTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { m_stop = std::make_unique<std::stop_source>(); }
    void endsTheProgram();
    void killsWhatDoesNotEnd();
    void endsWhatFloodsBothStreams();
    void startsNothingWhenStoppedBefore();
    void notStoppedIsAsEver();
    void stoppedAfterTheEndIsNothing();

private:
    std::unique_ptr<std::stop_source> m_stop;
};

void RunProcessStopTest::endsTheProgram()
{
    Script script(endless, m_stop->get_token());
    const pid_t pid = script.pid();
    m_stop->request_stop();
    script.join();
    QVERIFY(isGone(pid));
    QCOMPARE(script.result,
             (ShellResult{SIGTERM, QStringLiteral("out\n"), QStringLiteral("err\n")}));
}

void RunProcessStopTest::killsWhatDoesNotEnd()
{
    Script script(QStringLiteral("trap '' TERM; echo deaf; ") + endless, m_stop->get_token());
    const pid_t pid = script.pid();
    QThread::msleep(200); // for the trap
    m_stop->request_stop();
    script.join();
    QVERIFY(isGone(pid));
    QCOMPARE(script.result.status, SIGKILL);
    QCOMPARE(script.result.out, QStringLiteral("out\ndeaf\n"));
}

void RunProcessStopTest::endsWhatFloodsBothStreams()
{
    Script script(QStringLiteral("while :; do echo flood; echo flood >&2; done"),
                  m_stop->get_token());
    const pid_t pid = script.pid();
    QThread::msleep(50);
    m_stop->request_stop();
    script.join();
    QVERIFY(isGone(pid));
    QCOMPARE(script.result.status, SIGTERM);
}

void RunProcessStopTest::startsNothingWhenStoppedBefore()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("started"));
    m_stop->request_stop();
    const ShellResult result = runProcess(QStringLiteral("/usr/bin/touch"), {file}, std::nullopt,
                                          std::nullopt, m_stop->get_token());
    QCOMPARE(result.status, -1);
    QVERIFY(!result.err.isEmpty());
    QVERIFY(!QFile::exists(file));
}

void RunProcessStopTest::notStoppedIsAsEver()
{
    // More than a pipe holds on both streams, and input, over several turns of waiting.
    const QString script =
        QStringLiteral("cat; head -c 300000 /dev/zero | tr '\\0' e >&2; sleep 0.1; "
                       "head -c 300000 /dev/zero | tr '\\0' o; exit 7");
    const QStringList arguments{QStringLiteral("-c"), script};
    const QString input = QString(u'i').repeated(200000);
    const ShellResult result =
        runProcess(QStringLiteral("/bin/sh"), arguments, std::nullopt, input, m_stop->get_token());
    QCOMPARE(result, (ShellResult{7, input + QString(u'o').repeated(300000),
                                  QString(u'e').repeated(300000)}));
    QCOMPARE(
        runProcess(QStringLiteral("/nowhere"), {}, std::nullopt, std::nullopt, m_stop->get_token())
            .status,
        -1);
}

void RunProcessStopTest::stoppedAfterTheEndIsNothing()
{
    const ShellResult result = runProcess(QStringLiteral("/bin/true"), {}, std::nullopt,
                                          std::nullopt, m_stop->get_token());
    m_stop->request_stop();
    QCOMPARE(result, (ShellResult{0, QString(), QString()}));
}

PLINTHAR_TEST_MAIN(RunProcessStopTest)
#include "RunProcessStopTest.moc"
