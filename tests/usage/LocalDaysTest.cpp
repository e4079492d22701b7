// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/LocalDays.h"

#include "support/Describe.h"
#include "support/TestMain.h"

using namespace LocalDays;

namespace {

TimePoint utc(const QString &iso)
{
    return TimePoint(std::chrono::milliseconds(
        QDateTime::fromString(iso, Qt::ISODateWithMs).toMSecsSinceEpoch()));
}

/// Looks at every minute in turn.
std::optional<TimePoint> slowStartOf(const QDate &date, const QTimeZone &zone)
{
    qint64 minute = date.startOfDay(Qt::UTC).toSecsSinceEpoch() / 60 - 16 * 60;
    for (const qint64 end = minute + 60 * 60; minute < end; ++minute) {
        if (QDateTime::fromSecsSinceEpoch(minute * 60, zone).date() == date)
            return TimePoint(std::chrono::minutes(minute));
    }
    return std::nullopt;
}

} // namespace

class LocalDaysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startOfDay_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QString>("start");
        const auto row = [](const char *name, const char *zone, const QDate &date,
                            const char *start) {
            QTest::newRow(name) << QByteArray(zone) << date << QString::fromLatin1(start);
        };
        row("an ordinary day", "Europe/Berlin", {2026, 1, 15}, "2026-01-14T23:00:00.000Z");
        row("the day that has 23 hours", "Europe/Berlin", {2026, 3, 29},
            "2026-03-28T23:00:00.000Z");
        row("the day after it", "Europe/Berlin", {2026, 3, 30}, "2026-03-29T22:00:00.000Z");
        row("the day that has 25 hours", "Europe/Berlin", {2026, 10, 25},
            "2026-10-24T22:00:00.000Z");
        row("the day after that", "Europe/Berlin", {2026, 10, 26}, "2026-10-25T23:00:00.000Z");
        row("no midnight in Sao Paulo", "America/Sao_Paulo", {2018, 11, 4},
            "2018-11-04T03:00:00.000Z");
        row("the evening twice in Sao Paulo", "America/Sao_Paulo", {2018, 2, 17},
            "2018-02-17T02:00:00.000Z");
        row("the day after two evenings", "America/Sao_Paulo", {2018, 2, 18},
            "2018-02-18T03:00:00.000Z");
        row("no midnight in Cairo", "Africa/Cairo", {2024, 4, 26}, "2024-04-25T22:00:00.000Z");
        row("midnight twice in Havana", "America/Havana", {2023, 11, 5},
            "2023-11-05T04:00:00.000Z");
        row("midnight in Havana after that", "America/Havana", {2023, 11, 6},
            "2023-11-06T05:00:00.000Z");
        row("half an hour only, Lord Howe", "Australia/Lord_Howe", {2026, 4, 6},
            "2026-04-05T13:30:00.000Z");
        row("the day after the one that Samoa left out", "Pacific/Apia", {2011, 12, 31},
            "2011-12-30T10:00:00.000Z");
        row("far ahead of UTC", "Pacific/Kiritimati", {2026, 6, 1}, "2026-05-31T10:00:00.000Z");
        row("far behind UTC", "Pacific/Pago_Pago", {2026, 6, 1}, "2026-06-01T11:00:00.000Z");
        row("a fixed offset", "UTC+05:45", {2026, 6, 1}, "2026-05-31T18:15:00.000Z");
    }

    void startOfDay()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDate, date);
        QFETCH(QString, start);
        const QTimeZone timeZone(zone);
        QVERIFY(timeZone.isValid());
        QCOMPARE(describe(startOf(date, timeZone)), start);
        QCOMPARE(describe(startOf(date, timeZone)), describe(slowStartOf(date, timeZone)));
    }

    void missingDay()
    {
        const QTimeZone apia("Pacific/Apia");
        QVERIFY(!startOf(QDate(2011, 12, 30), apia));
        QCOMPARE(describe(nextStart(utc(QStringLiteral("2011-12-30T09:59:59.999Z")), apia)),
                 QStringLiteral("2011-12-30T10:00:00.000Z"));
    }

    void everyDayOfYearsOfChanges_data()
    {
        QTest::addColumn<QByteArray>("zone");
        for (const char *zone : {"Europe/Berlin", "America/New_York", "America/Sao_Paulo",
                                 "America/Havana", "Africa/Casablanca", "Asia/Gaza",
                                 "Australia/Lord_Howe", "America/St_Johns", "Antarctica/Troll"})
            QTest::newRow(zone) << QByteArray(zone);
    }

    /// Days follow one another without a gap, and every instant is in the day that Qt says.
    void everyDayOfYearsOfChanges()
    {
        QFETCH(QByteArray, zone);
        const QTimeZone timeZone(zone);
        TimePoint time = utc(QStringLiteral("2008-01-01T00:00:00.000Z"));
        const TimePoint end = utc(QStringLiteral("2020-01-01T00:00:00.000Z"));
        while (time < end) {
            const Span span = spanOf(time, timeZone);
            QVERIFY(span.begin <= time && time < span.end);
            const TimePoint last = span.end - std::chrono::milliseconds(1);
            for (const TimePoint inside :
                 {span.begin, span.begin + (last - span.begin) / 2, last}) {
                const qint64 milliseconds = inside.time_since_epoch().count();
                QCOMPARE(QDateTime::fromMSecsSinceEpoch(milliseconds, timeZone).date(), span.date);
                QCOMPARE(dateOf(inside, timeZone), span.date);
                const Span same = spanOf(inside, timeZone);
                QCOMPARE(describe(same.begin), describe(span.begin));
                QCOMPARE(describe(same.end), describe(span.end));
            }
            time = span.end;
        }
    }

    void nextStartIsTheNextDays_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("next");
        const auto row = [](const char *name, const char *zone, const char *time,
                            const char *next) {
            QTest::newRow(name) << QByteArray(zone) << QString::fromLatin1(time)
                                << QString::fromLatin1(next);
        };
        row("at midnight itself", "UTC", "2026-05-01T00:00:00.000Z", "2026-05-02T00:00:00.000Z");
        row("just before midnight", "UTC", "2026-05-01T23:59:59.999Z", "2026-05-02T00:00:00.000Z");
        row("23 hours away", "Europe/Berlin", "2026-03-28T23:00:00.000Z",
            "2026-03-29T22:00:00.000Z");
        row("25 hours away", "Europe/Berlin", "2026-10-24T22:00:00.000Z",
            "2026-10-25T23:00:00.000Z");
        row("a midnight that is not there", "America/Sao_Paulo", "2018-11-03T12:00:00.000Z",
            "2018-11-04T03:00:00.000Z");
        row("in the first of two evenings", "America/Sao_Paulo", "2018-02-18T01:30:00.000Z",
            "2018-02-18T03:00:00.000Z");
        row("between two midnights", "America/Havana", "2023-11-05T04:30:00.000Z",
            "2023-11-06T05:00:00.000Z");
    }

    void nextStartIsTheNextDays()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, time);
        QFETCH(QString, next);
        QCOMPARE(describe(nextStart(utc(time), QTimeZone(zone))), next);
    }
};

PLINTHAR_TEST_MAIN(LocalDaysTest)
#include "LocalDaysTest.moc"
