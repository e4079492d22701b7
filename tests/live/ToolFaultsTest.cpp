// SPDX-License-Identifier: GPL-3.0-or-later

// What is found of the running agents when ps or lsof fails.

#include "live/ProcessScanner.h"
#include "live/ScanLoop.h"
#include "model/Background.h"
#include "support/MemoryPeak.h"
#include "support/TestMain.h"
#include "support/ToolDoubles.h"

#include <memory>
#include <vector>

namespace {

const QString oneAgent = QStringLiteral("echo ' 4711  1.5 01:00 claude --resume'");
const QString flood = QStringLiteral("yes '  812  0.0 01:00 /bin/true' | head -c 1000000000");

} // namespace

class ToolFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { m_tools = std::make_unique<ToolDoubles>(); }
    void cleanup();

    void withoutPsThereIsNoAgent_data();
    void withoutPsThereIsNoAgent();
    void withoutLsofThereIsNoFolder_data();
    void withoutLsofThereIsNoFolder();
    void aGigabyteFillsNoMemory_data();
    void aGigabyteFillsNoMemory();

    void hangingToolsEndWhenNobodyLooks_data();
    void hangingToolsEndWhenNobodyLooks();
    void hangingToolsLeaveRoomForOtherWork();
    void lookingAgainIsNotHeldUpByWhatHung();

private:
    void playOrRemove(const QString &tool, const QString &script)
    {
        if (script.isEmpty())
            m_tools->remove(tool);
        else
            m_tools->play(tool, script);
    }

    std::unique_ptr<ToolDoubles> m_tools;
};

void ToolFaultsTest::cleanup()
{
    const QString left = m_tools->left();
    m_tools.reset();
    QCOMPARE(left, QString());
    QVERIFY(Background::pool().waitForDone(60'000));
}

void ToolFaultsTest::withoutPsThereIsNoAgent_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("missing") << QString();
    QTest::newRow("killed before the end") << oneAgent + QStringLiteral("; kill -KILL $$");
    QTest::newRow("fails") << oneAgent + QStringLiteral("; exit 1");
    QTest::newRow("silent") << QStringLiteral("exit 0");
    QTest::newRow("garbage") << QStringLiteral("head -c 1000000 /dev/urandom");
    QTest::newRow("garbage of letters") << QStringLiteral("head -c 750000 /dev/urandom | base64");
    QTest::newRow("zeros") << QStringLiteral("head -c 1000000 /dev/zero");
    QTest::newRow("one long line")
        << QStringLiteral("head -c 10000000 /dev/zero | tr '\\0' ' '; echo claude");
}

void ToolFaultsTest::withoutPsThereIsNoAgent()
{
    QFETCH(const QString, script);
    playOrRemove(QStringLiteral("ps"), script);
    m_tools->play(QStringLiteral("lsof"), QStringLiteral("echo p4711; echo n/folder"));
    QCOMPARE(ProcessScanner::scan(), QList<AgentProcess>());
    QCOMPARE(m_tools->begun(QStringLiteral("lsof")), QStringList());
}

void ToolFaultsTest::withoutLsofThereIsNoFolder_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("folder");
    const QString none = QStringLiteral("\u2014");
    QTest::newRow("missing") << QString() << none;
    QTest::newRow("killed") << QStringLiteral("echo p4711; kill -KILL $$") << none;
    QTest::newRow("killed behind the folder")
        << QStringLiteral("echo p4711; echo n/folder; kill -KILL $$") << QStringLiteral("/folder");
    QTest::newRow("garbage") << QStringLiteral("head -c 1000000 /dev/urandom | tr -d pn") << none;
    QTest::newRow("another process's")
        << QStringLiteral("echo p4712; echo n/folder; echo p; echo n/folder") << none;
}

void ToolFaultsTest::withoutLsofThereIsNoFolder()
{
    QFETCH(const QString, script);
    m_tools->play(QStringLiteral("ps"), oneAgent);
    playOrRemove(QStringLiteral("lsof"), script);
    QFETCH(const QString, folder);
    QCOMPARE(ProcessScanner::scan(), (QList<AgentProcess>{{4711, QStringLiteral("claude"), folder,
                                                           1.5, QStringLiteral("01:00")}}));
}

void ToolFaultsTest::aGigabyteFillsNoMemory_data()
{
    QTest::addColumn<QString>("tool");
    QTest::newRow("ps") << QStringLiteral("ps");
    QTest::newRow("lsof") << QStringLiteral("lsof");
}

void ToolFaultsTest::aGigabyteFillsNoMemory()
{
    SKIP_WITHOUT_MEMORY_PEAK();
    QFETCH(const QString, tool);
    m_tools->play(QStringLiteral("ps"), oneAgent);
    m_tools->play(tool, oneAgent + u';' + flood);
    const MemoryPeak memory;
    const std::stop_source stop;
    const QList<AgentProcess> agents = ProcessScanner::scan({}, nullptr, stop.get_token());
    QCOMPARE(agents.size(), tool == u"ps" ? 0 : 1);
    QVERIFY2(memory.megabytes() < 400, QByteArray::number(memory.megabytes()));
}

void ToolFaultsTest::hangingToolsEndWhenNobodyLooks_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("script");
    const QString deaf = QStringLiteral("trap '' TERM; while :; do sleep 0.1; done");
    QTest::newRow("ps") << QStringLiteral("ps") << QStringLiteral("exec sleep 600");
    QTest::newRow("ps that is deaf") << QStringLiteral("ps") << deaf;
    QTest::newRow("lsof") << QStringLiteral("lsof") << QStringLiteral("exec sleep 600");
    QTest::newRow("lsof that prints for ever")
        << QStringLiteral("lsof") << QStringLiteral("echo p4711; yes n/folder");
}

void ToolFaultsTest::hangingToolsEndWhenNobodyLooks()
{
    QFETCH(const QString, tool);
    QFETCH(const QString, script);
    m_tools->play(QStringLiteral("ps"), oneAgent);
    m_tools->play(tool, script);
    ScanLoop loop;
    loop.start();
    QTRY_COMPARE(m_tools->begun(tool).size(), 1);
    loop.stop();
    QTRY_COMPARE(m_tools->left(), QString());
}

/// As when the user walks through the projects with the Live tab in front.
void ToolFaultsTest::hangingToolsLeaveRoomForOtherWork()
{
    m_tools->play(QStringLiteral("ps"), QStringLiteral("exec sleep 600"));
    for (int i = 0; i < Background::pool().maxThreadCount() + 1; ++i) {
        ScanLoop loop;
        loop.start();
        QTRY_VERIFY(m_tools->begun(QStringLiteral("ps")).size() > i);
    }
    bool done = false;
    Background::run(
        this, {}, [](const std::stop_token &) { return true; },
        [&done](bool result) { done = result; });
    QTRY_VERIFY(done);
    QTRY_COMPARE(m_tools->left(), QString());
}

void ToolFaultsTest::lookingAgainIsNotHeldUpByWhatHung()
{
    m_tools->play(QStringLiteral("ps"), QStringLiteral("exec sleep 600"));
    ScanLoop loop;
    QList<AgentProcess> found;
    connect(&loop, &ScanLoop::scanned, this, [&found](const Scan &scan) { found = scan.agents; });
    loop.start();
    QTRY_COMPARE(m_tools->begun(QStringLiteral("ps")).size(), 1);
    loop.stop();
    m_tools->play(QStringLiteral("ps"), oneAgent);
    loop.start();
    QTRY_COMPARE(found.size(), 1);
}

PLINTHAR_TEST_MAIN(ToolFaultsTest)
#include "ToolFaultsTest.moc"
