// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Parallel.h"

#include "support/TestMain.h"

class ParallelTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyPlaceOnce_data();
    void everyPlaceOnce();
    void eachCoreHasItsOwnWork();
    void nothingBeginsAfterTheStop();

private:
    std::stop_source m_stop;
};

void ParallelTest::everyPlaceOnce_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2, 3, 1000})
        QTest::addRow("%d", count) << count;
}

void ParallelTest::everyPlaceOnce()
{
    QFETCH(const int, count);
    std::vector<int> calls(static_cast<size_t>(count));
    onAllCores(calls.size(), {}, [&] { return [&](size_t i) { ++calls[i]; }; });
    QCOMPARE(calls, std::vector<int>(calls.size(), 1));
}

void ParallelTest::eachCoreHasItsOwnWork()
{
    std::atomic<int> made = 0;
    std::atomic<int> shared = 0;
    onAllCores(1000, {}, [&] {
        ++made;
        return [&, user = std::thread::id()](size_t) mutable {
            if (user != std::thread::id() && user != std::this_thread::get_id())
                ++shared;
            user = std::this_thread::get_id();
        };
    });
    QVERIFY(made >= 1 && made <= QThread::idealThreadCount());
    QCOMPARE(shared, 0);
}

void ParallelTest::nothingBeginsAfterTheStop()
{
    std::atomic<int> calls = 0;
    onAllCores(1'000'000, m_stop.get_token(), [&] {
        return [&](size_t) {
            m_stop.request_stop();
            ++calls;
        };
    });
    QVERIFY(calls >= 1 && calls <= QThread::idealThreadCount());
}

PLINTHAR_TEST_MAIN(ParallelTest)
#include "ParallelTest.moc"
