// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/DayWatch.h"

#include "support/TestMain.h"

#include <QSignalSpy>

using std::chrono::hours;
using std::chrono::milliseconds;

namespace {

constexpr TimePoint midnight{std::chrono::sys_days(std::chrono::year(2026) / 5 / 30)};

/// A clock that the test sets.
struct FakeClock {
    TimePoint now = midnight - hours(1);
    QTimeZone zone = QTimeZone::utc();

    Clock clock()
    {
        return {.now = [this] { return now; }, .zone = [this] { return zone; }};
    }
};

/// A clock that runs as fast as the real one, from a given time on.
Clock runningFrom(TimePoint time)
{
    return {.now = [offset = time - currentTime()] { return currentTime() + offset; },
            .zone = [] { return QTimeZone::utc(); }};
}

} // namespace

class DayWatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsAtMidnight()
    {
        DayWatch watch(runningFrom(midnight - milliseconds(100)));
        QSignalSpy changes(&watch, &DayWatch::dayChanged);
        watch.start();
        QCOMPARE(changes.count(), 0);
        QTRY_COMPARE(changes.count(), 1);
        QTest::qWait(100);
        QCOMPARE(changes.count(), 1);
    }

    void noticesThatTheClockWasSet_data()
    {
        QTest::addColumn<int>("hoursLater");
        QTest::newRow("after a sleep of two days") << 48;
        QTest::newRow("back") << -24;
    }

    void noticesThatTheClockWasSet()
    {
        QFETCH(int, hoursLater);
        FakeClock fake;
        DayWatch watch(fake.clock(), nullptr, milliseconds(10));
        QSignalSpy changes(&watch, &DayWatch::dayChanged);
        watch.start();
        QTest::qWait(50);
        QCOMPARE(changes.count(), 0);
        fake.now += hours(hoursLater);
        QTRY_COMPARE(changes.count(), 1);
    }

    void noticesAnotherTimeZone()
    {
        FakeClock fake;
        DayWatch watch(fake.clock(), nullptr, milliseconds(10));
        QSignalSpy changes(&watch, &DayWatch::dayChanged);
        watch.start();
        fake.zone = QTimeZone("America/New_York");
        QTRY_COMPARE(changes.count(), 1);
    }

    void tellsNothingWhileStopped()
    {
        FakeClock fake;
        DayWatch watch(fake.clock(), nullptr, milliseconds(10));
        QSignalSpy changes(&watch, &DayWatch::dayChanged);
        watch.start();
        watch.stop();
        fake.now += hours(24);
        QTest::qWait(50);
        QCOMPARE(changes.count(), 0);
        watch.start();
        QCOMPARE(changes.count(), 1);
    }
};

PLINTHAR_TEST_MAIN(DayWatchTest)
#include "DayWatchTest.moc"
