// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/ProcessHandle.h"

#include "support/AgentDouble.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>

#include <cerrno>
#include <memory>
#include <unistd.h>

using By = ProcessHandle::By;
Q_DECLARE_METATYPE(By)

class ProcessHandleTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void startTimeOfAStat_data();
    void startTimeOfAStat();
    void ticksAreTheKernels();

    void terminates_data() { addKinds(); }
    void terminates();
    void goneBeforeItWasTaken_data() { addKinds(); }
    void goneBeforeItWasTaken();
    void goneAfterItWasTaken_data() { addKinds(); }
    void goneAfterItWasTaken();
    void anotherProcessThanTheOneSeen_data() { addKinds(); }
    void anotherProcessThanTheOneSeen();
    void groupsAreNoProcesses_data() { addKinds(); }
    void groupsAreNoProcesses();
    void notAllowed_data() { addKinds(); }
    void notAllowed();
    void descriptorsAreClosed();

private:
    static void addKinds();
};

void ProcessHandleTest::addKinds()
{
    QTest::addColumn<By>("by");
    QTest::newRow("descriptor") << By::Descriptor;
    QTest::newRow("start time") << By::StartTime;
}

void ProcessHandleTest::startTimeOfAStat_data()
{
    QTest::addColumn<QByteArray>("stat");
    QTest::addColumn<qint64>("ticks"); // -1: none
    const QByteArray tail = " S 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 987654 20 21\n";
    QTest::newRow("usual") << "42 (claude)" + tail << qint64(987654);
    QTest::newRow("name with brackets and blanks") << "42 (a) R 1 (b) c)" + tail << qint64(987654);
    QTest::newRow("name with a line feed") << "42 (a\n) )" + tail << qint64(987654);
    QTest::newRow("empty") << QByteArray() << qint64(-1);
    QTest::newRow("cut") << QByteArray("42 (claude) S 1 2 3") << qint64(-1);
    QTest::newRow("no number") << QByteArray(
                                      "42 (c) S 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 x")
                               << qint64(-1);
}

void ProcessHandleTest::startTimeOfAStat()
{
    QFETCH(const QByteArray, stat);
    QFETCH(const qint64, ticks);
    const std::optional<BootTicks> start = startTime(stat);
    QCOMPARE(start ? qint64(*start) : -1, ticks);
}

void ProcessHandleTest::ticksAreTheKernels()
{
    const BootTicks before = bootTicks();
    const AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    const BootTicks after = bootTicks();
    const std::optional<BootTicks> start =
        startTime(readFile(QStringLiteral("/proc/%1/stat").arg(process.pid())));
    QVERIFY(start);
    QVERIFY(before <= *start);
    QVERIFY(*start <= after);
}

void ProcessHandleTest::terminates()
{
    QFETCH(const By, by);
    AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    AgentDouble bystander(QStringLiteral("claude"), QDir::tempPath());
    const ProcessHandle handle(process.pid(), bootTicks(), by);
    QVERIFY(process.isRunning());
    QCOMPARE(handle.terminate(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!process.isRunning(), 60'000);
    QVERIFY(bystander.isRunning());
}

void ProcessHandleTest::goneBeforeItWasTaken()
{
    QFETCH(const By, by);
    AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    const BootTicks seenAt = bootTicks();
    process.end();
    QCOMPARE(ProcessHandle(process.pid(), seenAt, by).terminate(), ESRCH);
}

void ProcessHandleTest::goneAfterItWasTaken()
{
    QFETCH(const By, by);
    AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    const ProcessHandle handle(process.pid(), bootTicks(), by);
    process.end();
    QCOMPARE(handle.terminate(), ESRCH);
}

void ProcessHandleTest::anotherProcessThanTheOneSeen()
{
    // For the number that a scan has seen to belong to another process by now is the same as for
    // this process to have started after the scan.
    QFETCH(const By, by);
    AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    const std::optional<BootTicks> start =
        startTime(readFile(QStringLiteral("/proc/%1/stat").arg(process.pid())));
    QVERIFY(start);
    QCOMPARE(ProcessHandle(process.pid(), *start - 1, by).terminate(), ESRCH);
    QTest::qWait(100);
    QVERIFY(process.isRunning());
}

void ProcessHandleTest::groupsAreNoProcesses()
{
    // kill() would take these for this program's group, for everything there is and for a group.
    QFETCH(const By, by);
    AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    for (const qint32 pid : {0, -1, -process.pid()})
        QCOMPARE(ProcessHandle(pid, bootTicks(), by).terminate(), ESRCH);
    QTest::qWait(100);
    QVERIFY(process.isRunning());
}

void ProcessHandleTest::notAllowed()
{
    QFETCH(const By, by);
    if (::geteuid() != 0)
        QSKIP("only root can start a process of another user");
    const AgentDouble process(QStringLiteral("claude"), QDir::tempPath(),
                              {QStringLiteral("--user=12345")});
    const Unprivileged nobody;
    QCOMPARE(ProcessHandle(process.pid(), bootTicks(), by).terminate(), EPERM);
    QVERIFY(process.isRunning());
}

void ProcessHandleTest::descriptorsAreClosed()
{
    const AgentDouble process(QStringLiteral("claude"), QDir::tempPath());
    const auto files = [] {
        return QDir(QStringLiteral("/proc/self/fd"))
            .entryList(QDir::AllEntries | QDir::System)
            .size();
    };
    const qsizetype before = files();
    for (int i = 0; i < 100; ++i)
        ProcessHandle(process.pid(), bootTicks());
    auto handle = std::make_unique<ProcessHandle>(process.pid(), bootTicks());
    QCOMPARE(files(), before + 1);
    const ProcessHandle moved(std::move(*handle));
    handle.reset();
    QCOMPARE(files(), before + 1);
}

PLINTHAR_TEST_MAIN(ProcessHandleTest)
#include "ProcessHandleTest.moc"
