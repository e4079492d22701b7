// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/ScanLoop.h"

#include "model/Background.h"
#include "support/TestMain.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>

#include <atomic>
#include <memory>
#include <unistd.h>

namespace {

/// A scanner whose every call waits until it is let go, and which numbers its results.
class HeldScanner {
public:
    ScanLoop::Scanner scanner()
    {
        return [state = m_state](const std::stop_token &) {
            const int now = ++state->running;
            state->mostAtOnce = qMax(state->mostAtOnce.load(), now);
            if (QThread::currentThread() == state->interfaceThread)
                state->wasOnInterfaceThread = true;
            const qint32 number = ++state->calls;
            state->gate.acquire();
            --state->running;
            return Scan{{{number, QStringLiteral("claude"), QString(), 0, QString()}}, bootTicks()};
        };
    }
    void letGo(int calls = 1) { m_state->gate.release(calls); }
    int calls() const { return m_state->calls; }
    int running() const { return m_state->running; }
    int mostAtOnce() const { return m_state->mostAtOnce; }
    bool wasOnInterfaceThread() const { return m_state->wasOnInterfaceThread; }

private:
    struct State {
        QSemaphore gate;
        std::atomic<int> calls = 0;
        std::atomic<int> running = 0;
        std::atomic<int> mostAtOnce = 0;
        std::atomic<bool> wasOnInterfaceThread = false;
        const QThread *const interfaceThread = QThread::currentThread();
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

constexpr int patience = 60'000;

/// The pids of all results.
QList<qint32> results(const QSignalSpy &spy)
{
    QList<qint32> pids;
    for (const QList<QVariant> &call : spy)
        pids.append(call.constFirst().value<Scan>().agents.constFirst().pid);
    return pids;
}

} // namespace

class ScanLoopTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nothingBeforeStart();
    void scansAgainAndAgain();
    void neverAheadOfTheResult();
    void noMoreScansAfterStop();
    void resultFromBeforeTheStopIsDropped();
    void startsAgainAfterTheScanUnderWay();
    void startingTwiceIsOneLoop();
    void scanNowDoesNotWait();
    void scanNowNeverOverlaps();
    void mayGoDuringAScan();
};

void ScanLoopTest::nothingBeforeStart()
{
    HeldScanner held;
    ScanLoop loop(held.scanner());
    loop.scanNow();
    QTest::qWait(50);
    QCOMPARE(held.calls(), 0);
}

void ScanLoopTest::scansAgainAndAgain()
{
    HeldScanner held;
    held.letGo(3);
    ScanLoop loop(held.scanner());
    QSignalSpy spy(&loop, &ScanLoop::scanned);
    const BootTicks before = bootTicks();
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 3, patience);
    QCOMPARE(results(spy), (QList<qint32>{1, 2, 3}));
    QVERIFY(!held.wasOnInterfaceThread());
    for (const QList<QVariant> &call : std::as_const(spy)) {
        const BootTicks at = call.constFirst().value<Scan>().at;
        QVERIFY(before <= at);
        QVERIFY(at <= bootTicks());
    }
    // Two pauses of two seconds lie between.
    const BootTicks second = BootTicks(::sysconf(_SC_CLK_TCK));
    QVERIFY(spy[2].constFirst().value<Scan>().at - spy[0].constFirst().value<Scan>().at >=
            4 * second - 2);
}

void ScanLoopTest::neverAheadOfTheResult()
{
    HeldScanner held;
    ScanLoop loop(held.scanner());
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(held.running(), 1, patience);
    QTest::qWait(2500); // longer than the pause
    QCOMPARE(held.calls(), 1);
    held.letGo();
}

void ScanLoopTest::noMoreScansAfterStop()
{
    HeldScanner held;
    held.letGo(100);
    ScanLoop loop(held.scanner());
    QSignalSpy spy(&loop, &ScanLoop::scanned);
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, patience);
    loop.stop();
    loop.scanNow();
    QTest::qWait(2500);
    QCOMPARE(held.calls(), 1);
}

void ScanLoopTest::resultFromBeforeTheStopIsDropped()
{
    HeldScanner held;
    ScanLoop loop(held.scanner());
    QSignalSpy spy(&loop, &ScanLoop::scanned);
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(held.running(), 1, patience);
    loop.stop();
    held.letGo();
    QTRY_COMPARE_WITH_TIMEOUT(held.running(), 0, patience);
    QTest::qWait(100);
    QCOMPARE(spy.count(), 0);
}

void ScanLoopTest::startsAgainAfterTheScanUnderWay()
{
    HeldScanner held;
    ScanLoop loop(held.scanner());
    QSignalSpy spy(&loop, &ScanLoop::scanned);
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(held.running(), 1, patience);
    for (int i = 0; i < 50; ++i) { // someone leafs through the tabs
        loop.stop();
        loop.start();
    }
    QTest::qWait(50);
    QCOMPARE(held.calls(), 1);
    held.letGo(2);
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, patience);
    QCOMPARE(results(spy), QList<qint32>{2});
    QCOMPARE(held.mostAtOnce(), 1);
}

void ScanLoopTest::startingTwiceIsOneLoop()
{
    HeldScanner held;
    held.letGo(100);
    ScanLoop loop(held.scanner());
    QSignalSpy spy(&loop, &ScanLoop::scanned);
    loop.start();
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, patience);
    loop.start();
    QTest::qWait(100);
    QCOMPARE(held.calls(), 1);
}

void ScanLoopTest::scanNowDoesNotWait()
{
    HeldScanner held;
    held.letGo(100);
    ScanLoop loop(held.scanner());
    QSignalSpy spy(&loop, &ScanLoop::scanned);
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, patience);
    const auto begin = spy[0].constFirst().value<Scan>().at;
    for (int i = 2; i <= 20; ++i) {
        loop.scanNow();
        QTRY_COMPARE_WITH_TIMEOUT(spy.count(), i, patience);
    }
    // With the pauses these would have taken 38 seconds.
    const BootTicks second = BootTicks(::sysconf(_SC_CLK_TCK));
    QVERIFY(spy[19].constFirst().value<Scan>().at - begin < 38 * second);
}

void ScanLoopTest::scanNowNeverOverlaps()
{
    HeldScanner held;
    ScanLoop loop(held.scanner());
    loop.start();
    QTRY_COMPARE_WITH_TIMEOUT(held.running(), 1, patience);
    for (int i = 0; i < 10; ++i)
        loop.scanNow();
    QTest::qWait(50);
    QCOMPARE(held.calls(), 1);
    held.letGo();
}

void ScanLoopTest::mayGoDuringAScan()
{
    HeldScanner held;
    auto loop = std::make_unique<ScanLoop>(held.scanner());
    loop->start();
    QTRY_COMPARE_WITH_TIMEOUT(held.running(), 1, patience);
    loop.reset();
    held.letGo();
    QVERIFY(Background::finish(std::chrono::milliseconds(patience)));
    QCoreApplication::processEvents();
    QCOMPARE(held.calls(), 1);
}

PLINTHAR_TEST_MAIN(ScanLoopTest)
#include "ScanLoopTest.moc"
