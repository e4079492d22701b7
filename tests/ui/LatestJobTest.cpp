// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/LatestJob.h"

#include "support/HeldBackground.h"
#include "support/TestMain.h"

#include <atomic>
#include <memory>
#include <optional>

namespace {

// The jobs are on the heap because g++ 12 takes a stop_source on the stack for uninitialized.

/// Lets everything that has been started come to its end, delivery included.
void settle()
{
    Background::pool().waitForDone();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

auto giving(int value)
{
    return [value](const std::stop_token &) { return value; };
}

} // namespace

class LatestJobTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { settle(); }

    void deliversOnTheContextsThread()
    {
        const auto job = std::make_unique<LatestJob>(this);
        QThread *worked = nullptr;
        QThread *delivered = nullptr;
        QVERIFY(!job->busy());
        job->start([](const std::stop_token &) { return QThread::currentThread(); },
                   [&](QThread *thread) {
                       worked = thread;
                       delivered = QThread::currentThread();
                   });
        QVERIFY(job->busy());
        QTRY_VERIFY(delivered);
        QCOMPARE(delivered, thread());
        QVERIFY(worked != thread());
        QVERIFY(!job->busy());
    }

    void isNoLongerBusyWhenItDelivers()
    {
        const auto job = std::make_unique<LatestJob>(this);
        std::optional<bool> busy;
        job->start(giving(1), [&](int) { busy = job->busy(); });
        QTRY_VERIFY(busy);
        QVERIFY(!*busy);
    }

    void onlyTheNewestResultArrives()
    {
        const auto job = std::make_unique<LatestJob>(this);
        QList<int> results;
        {
            const HeldBackground held;
            for (int i = 1; i <= 10; ++i)
                job->start(giving(i), [&results](int value) { results.append(value); });
            QVERIFY(job->busy());
        }
        QTRY_VERIFY(!job->busy());
        settle();
        QCOMPARE(results, QList<int>{10});
    }

    /// The older job ends last.
    void anOldResultThatComesLateIsDropped()
    {
        const auto job = std::make_unique<LatestJob>(this);
        const auto gate = std::make_shared<QSemaphore>();
        QList<int> results;
        const auto deliver = [&results](int value) { results.append(value); };
        job->start(
            [gate](const std::stop_token &) {
                gate->acquire();
                return 1;
            },
            deliver);
        job->start(giving(2), deliver);
        QTRY_COMPARE(results, QList<int>{2});
        gate->release();
        settle();
        QCOMPARE(results, QList<int>{2});
        QVERIFY(!job->busy());
    }

    void aResultThatWaitsToBeDeliveredIsDroppedToo()
    {
        const auto job = std::make_unique<LatestJob>(this);
        QList<int> results;
        const auto deliver = [&results](int value) { results.append(value); };
        job->start(giving(1), deliver);
        Background::pool().waitForDone(); // its end is posted, and no event has been handled
        job->start(giving(2), deliver);
        QTRY_COMPARE(results, QList<int>{2});
        settle();
        QCOMPARE(results, QList<int>{2});
    }

    void cancelDropsTheResult()
    {
        const auto job = std::make_unique<LatestJob>(this);
        bool delivered = false;
        job->start(giving(1), [&delivered](int) { delivered = true; });
        job->cancel();
        QVERIFY(!job->busy());
        settle();
        QVERIFY(!delivered);
        job->start(giving(1), [&delivered](int) { delivered = true; });
        QTRY_VERIFY(delivered);
        job->cancel(); // nothing is under way
        QVERIFY(!job->busy());
    }

    void cancelAndStartTellTheOldJobToStop()
    {
        const auto job = std::make_unique<LatestJob>(this);
        std::atomic<int> stopped = 0;
        std::atomic<int> started = 0;
        const auto untilStopped = [&stopped, &started](const std::stop_token &stop) {
            ++started;
            while (!stop.stop_requested())
                QThread::msleep(1);
            ++stopped;
            return 0;
        };
        job->start(untilStopped, [](int) {});
        QTRY_COMPARE(started.load(), 1);
        job->start(untilStopped, [](int) {});
        QTRY_COMPARE(stopped.load(), 1);
        QTRY_COMPARE(started.load(), 2);
        job->cancel();
        QTRY_COMPARE(stopped.load(), 2);
    }

    void itsEndTellsTheJobToStop()
    {
        std::atomic<bool> stopped = false;
        bool delivered = false;
        {
            const auto job = std::make_unique<LatestJob>(this);
            job->start(
                [&stopped](const std::stop_token &stop) {
                    while (!stop.stop_requested())
                        QThread::msleep(1);
                    stopped = true;
                    return 0;
                },
                [&delivered](int) { delivered = true; });
        }
        QTRY_VERIFY(stopped);
        settle();
        QVERIFY(!delivered);
    }

    void nothingArrivesWhenTheContextIsGone()
    {
        bool delivered = false;
        auto context = std::make_unique<QObject>();
        const auto job = std::make_unique<LatestJob>(context.get());
        {
            const HeldBackground held;
            job->start(giving(1), [&delivered](int) { delivered = true; });
            context.reset();
        }
        settle();
        QVERIFY(!delivered);
    }

    void aDeliveryMayStartTheNext()
    {
        const auto job = std::make_unique<LatestJob>(this);
        int second = 0;
        job->start(giving(1), [&](int first) {
            job->start(giving(first + 1), [&second](int value) { second = value; });
            QVERIFY(job->busy());
        });
        QTRY_COMPARE(second, 2);
        QVERIFY(!job->busy());
    }

    void aDeliveryMayEndTheContextAndTheJob()
    {
        struct Screen : QObject {
            LatestJob job{this};
        };
        auto *screen = new Screen;
        bool delivered = false;
        screen->job.start(giving(1), [&delivered, screen](int) {
            delivered = true;
            screen->deleteLater();
        });
        QTRY_VERIFY(delivered);
        settle();
    }

    void aResultNeedNotBeCopyable()
    {
        const auto job = std::make_unique<LatestJob>(this);
        std::unique_ptr<int> result;
        job->start([](const std::stop_token &) { return std::make_unique<int>(7); },
                   [&result](std::unique_ptr<int> value) { result = std::move(value); });
        QTRY_VERIFY(result);
        QCOMPARE(*result, 7);
    }
};

PLINTHAR_TEST_MAIN(LatestJobTest)
#include "LatestJobTest.moc"
