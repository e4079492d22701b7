// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Background.h"

#include "support/HeldBackground.h"
#include "support/TestMain.h"

#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <memory>

using namespace std::chrono_literals;

namespace {

constexpr int patience = 60'000; // milliseconds; only a failure takes that long

/// What works of a test share with it. They may outlive the test's function.
struct Shared {
    QSemaphore started;
    QSemaphore mayEnd;
    QSemaphore ended;
    std::atomic<int> stopped = 0;
};

/// Work that runs until it is allowed to end, whatever it is told.
auto hangingWork(const std::shared_ptr<Shared> &shared, int result = 1)
{
    return [shared, result](const std::stop_token &stop) {
        shared->started.release();
        shared->mayEnd.acquire();
        shared->stopped += stop.stop_requested() ? 1 : 0;
        shared->ended.release();
        return result;
    };
}

/// Work that runs until it is told to stop.
auto obedientWork(const std::shared_ptr<Shared> &shared)
{
    return [shared](const std::stop_token &stop) {
        shared->started.release();
        while (!stop.stop_requested())
            QThread::yieldCurrentThread();
        ++shared->stopped;
        shared->ended.release();
        return 1;
    };
}

/// Everything that is on its way to this thread has arrived.
void deliverAll()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace

class BackgroundTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { QVERIFY(Background::finish(1min)); }

    void worksElsewhereAndDeliversHere();
    void deliversWhatCannotBeCopied();
    void worksRunTogether();
    void moreWorksThanThreadsAllEnd();
    void nothingIsDeliveredWhenTheContextIsGone();
    void nothingIsDeliveredWhenTheContextGoesBeforeTheStart();
    void nothingIsDeliveredWhenTheContextGoesBetweenEndAndDelivery();
    void requestToStopReachesItsWorkOnly();
    void finishWaitsForTheLastWork();
    void finishDoesNotWaitForWorkThatHangs();
    void finishStartsNothingOfTheQueue();
    void waitingSavesAreDoneAtTheEndAllTheSame();
    void otherWorkIsNotInTheWayOfSaving();
    void valuesAreDestroyedElsewhere();
};

void BackgroundTest::worksElsewhereAndDeliversHere()
{
    QObject context;
    QThread *worker = nullptr;
    QThread *receiver = nullptr;
    int result = 0;
    Background::run(
        &context, {},
        [&worker](const std::stop_token &stop) {
            worker = QThread::currentThread();
            return stop.stop_requested() ? 0 : 42;
        },
        [&](int value) {
            receiver = QThread::currentThread();
            result = value;
        });
    QCOMPARE(result, 0); // run() itself delivers nothing
    QTRY_COMPARE_WITH_TIMEOUT(result, 42, patience);
    QVERIFY(worker != QThread::currentThread());
    QCOMPARE(receiver, QThread::currentThread());
}

void BackgroundTest::deliversWhatCannotBeCopied()
{
    QObject context;
    std::unique_ptr<int> result;
    Background::run(
        &context, {}, [](const std::stop_token &) { return std::make_unique<int>(7); },
        [&](std::unique_ptr<int> &&value) { result = std::move(value); });
    QTRY_VERIFY_WITH_TIMEOUT(result, patience);
    QCOMPARE(*result, 7);
}

void BackgroundTest::worksRunTogether()
{
    QObject context;
    const auto shared = std::make_shared<Shared>();
    QList<int> results;
    for (int i = 0; i < 3; ++i)
        Background::run(&context, {}, hangingWork(shared, i),
                        [&](int value) { results.append(value); });
    QVERIFY(shared->started.tryAcquire(3, patience)); // none waits for another one's end
    shared->mayEnd.release(3);
    QTRY_COMPARE_WITH_TIMEOUT(results.size(), 3, patience);
    std::sort(results.begin(), results.end());
    QCOMPARE(results, QList<int>({0, 1, 2}));
}

void BackgroundTest::moreWorksThanThreadsAllEnd()
{
    QObject context;
    int sum = 0;
    for (int i = 1; i <= 100; ++i)
        Background::run(
            &context, {}, [i](const std::stop_token &) { return i; },
            [&](int value) { sum += value; });
    QTRY_COMPARE_WITH_TIMEOUT(sum, 5050, patience);
}

void BackgroundTest::nothingIsDeliveredWhenTheContextIsGone()
{
    const auto shared = std::make_shared<Shared>();
    auto context = std::make_unique<QObject>();
    bool delivered = false;
    Background::run(context.get(), {}, hangingWork(shared), [&](int) { delivered = true; });
    shared->started.acquire();
    context.reset();
    shared->mayEnd.release();
    shared->ended.acquire();
    deliverAll();
    QVERIFY(!delivered);
}

void BackgroundTest::nothingIsDeliveredWhenTheContextGoesBeforeTheStart()
{
    auto held = std::make_unique<HeldBackground>();
    auto context = std::make_unique<QObject>();
    const auto shared = std::make_shared<Shared>();
    shared->mayEnd.release();
    bool delivered = false;
    Background::run(context.get(), {}, hangingWork(shared), [&](int) { delivered = true; });
    context.reset();
    held.reset();
    QVERIFY(Background::finish(1min));
    deliverAll();
    QVERIFY(!delivered);
}

void BackgroundTest::nothingIsDeliveredWhenTheContextGoesBetweenEndAndDelivery()
{
    const auto shared = std::make_shared<Shared>();
    shared->mayEnd.release();
    auto context = std::make_unique<QObject>();
    bool delivered = false;
    Background::run(context.get(), {}, hangingWork(shared), [&](int) { delivered = true; });
    QVERIFY(Background::pool().waitForDone(patience));
    context.reset();
    deliverAll();
    QVERIFY(!delivered);
}

void BackgroundTest::requestToStopReachesItsWorkOnly()
{
    const auto shared = std::make_shared<Shared>();
    QObject context;
    std::stop_source stop;
    std::stop_source other;
    int delivered = 0;
    Background::run(&context, stop.get_token(), obedientWork(shared), [&](int) { ++delivered; });
    Background::run(&context, other.get_token(), hangingWork(shared), [&](int) { ++delivered; });
    shared->started.acquire(2);
    stop.request_stop();
    QTRY_COMPARE_WITH_TIMEOUT(delivered, 1,
                              patience); // the context is there and gets what there is
    shared->mayEnd.release();
    QTRY_COMPARE_WITH_TIMEOUT(delivered, 2, patience);
    QCOMPARE(shared->stopped.load(), 1);
}

void BackgroundTest::finishWaitsForTheLastWork()
{
    const auto shared = std::make_shared<Shared>();
    QObject context;
    std::stop_source stop;
    for (int i = 0; i < 5; ++i)
        Background::run(&context, stop.get_token(), obedientWork(shared), [](int) {});
    shared->started.acquire(5);
    stop.request_stop();
    QVERIFY(Background::finish(1min));
    QCOMPARE(shared->stopped.load(), 5);
    QVERIFY(Background::finish(0ms)); // and there is nothing left
}

void BackgroundTest::finishDoesNotWaitForWorkThatHangs()
{
    const auto shared = std::make_shared<Shared>();
    auto context = std::make_unique<QObject>();
    bool delivered = false;
    Background::run(context.get(), {}, hangingWork(shared), [&](int) { delivered = true; });
    shared->started.acquire();
    context.reset();
    QVERIFY(!Background::finish(1ms));
    shared->mayEnd.release();
    QVERIFY(Background::finish(1min));
    deliverAll();
    QVERIFY(!delivered);
}

void BackgroundTest::finishStartsNothingOfTheQueue()
{
    QObject context;
    auto held = std::make_unique<HeldBackground>();
    const auto shared = std::make_shared<Shared>();
    shared->mayEnd.release(100);
    bool delivered = false;
    for (int i = 0; i < 100; ++i)
        Background::run(&context, {}, hangingWork(shared), [&](int) { delivered = true; });
    QVERIFY(!Background::finish(1ms));
    held.reset();
    QVERIFY(Background::finish(1min));
    QCOMPARE(shared->started.available(), 0);
    deliverAll(); // the context is still there
    QVERIFY(!delivered);
}

void BackgroundTest::waitingSavesAreDoneAtTheEndAllTheSame()
{
    QObject context;
    const auto held = std::make_shared<Shared>();
    const auto saved = std::make_shared<Shared>();
    saved->mayEnd.release();
    QThreadPool &pool = Background::savingPool();
    for (int i = 0; i < pool.maxThreadCount(); ++i)
        Background::run(
            &context, {}, hangingWork(held), [](int) {}, pool);
    held->started.acquire(pool.maxThreadCount());
    Background::run(
        &context, {}, hangingWork(saved), [](int) {}, pool);
    QVERIFY(!Background::finish(1ms));
    QCOMPARE(saved->started.available(), 0);
    held->mayEnd.release(pool.maxThreadCount());
    QVERIFY(Background::finish(1min));
    QCOMPARE(saved->ended.available(), 1);
}

void BackgroundTest::otherWorkIsNotInTheWayOfSaving()
{
    QObject context;
    const HeldBackground held;
    const auto saved = std::make_shared<Shared>();
    saved->mayEnd.release();
    Background::run(
        &context, {}, hangingWork(saved), [](int) {}, Background::savingPool());
    QVERIFY(saved->ended.tryAcquire(1, 60'000));
}

void BackgroundTest::valuesAreDestroyedElsewhere()
{
    struct Watched {
        ~Watched()
        {
            thread = QThread::currentThread();
            ended.release();
        }
        std::atomic<QThread *> &thread;
        QSemaphore &ended;
    };
    std::atomic<QThread *> thread = nullptr;
    QSemaphore ended;
    Background::destroy(std::shared_ptr<Watched>(new Watched{thread, ended}));
    QVERIFY(ended.tryAcquire(1, patience));
    QVERIFY(thread != QThread::currentThread());
}

PLINTHAR_TEST_MAIN(BackgroundTest)
#include "BackgroundTest.moc"
