// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/Usage.h"

#include "model/PriceStore.h"
#include "model/Pricing.h"
#include "support/Describe.h"
#include "support/TestMain.h"
#include "usage/LocalDays.h"

#include <QRandomGenerator>

#include <map>

using std::chrono::milliseconds;

static QString describe(const DayUsage &usage)
{
    return QStringLiteral("%1 %2 %3")
        .arg(describe(usage.day))
        .arg(usage.tokens)
        .arg(usage.cost, 0, 'g', 17);
}

static QString describe(const ProjectUsage &usage)
{
    return QStringLiteral("%1 %2 %3").arg(usage.name).arg(usage.tokens).arg(usage.cost, 0, 'g', 17);
}

namespace {

TimePoint utc(const char *iso)
{
    return TimePoint(milliseconds(
        QDateTime::fromString(QString::fromLatin1(iso), Qt::ISODateWithMs).toMSecsSinceEpoch()));
}

Project project(const char *path)
{
    return {QString::fromLatin1(path), {}, false};
}

UsageRecord record(TimePoint date, qint64 input, const char *model = "claude-opus-4-1")
{
    return {.date = date, .model = QString::fromLatin1(model), .input = input};
}

Session makeSession(const QList<UsageRecord> &records)
{
    Session session;
    session.records = records;
    return session;
}

/// One project with one session.
UsageInput inputWith(const QList<UsageRecord> &records, TimePoint now, const char *zone = "UTC")
{
    return {.projects = {project("/code/app")},
            .sessions = {{QStringLiteral("/code/app"), {makeSession(records)}}},
            .prices = PriceStore::defaults(),
            .path = QStringLiteral("/code/app"),
            .now = now,
            .zone = QTimeZone(zone)};
}

/// The days that have tokens.
QString used(const QList<DayUsage> &days)
{
    QStringList texts;
    for (const DayUsage &day : days) {
        if (day.tokens != 0)
            texts.append(QStringLiteral("%1 %2").arg(describe(day.day)).arg(day.tokens));
    }
    return texts.join(QStringLiteral(", "));
}

// The second implementation: word by word, one QDateTime after the other, nothing remembered.

QDate slowDate(TimePoint time, const QTimeZone &zone)
{
    return QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count(), zone).date();
}

/// The first minute of a day, found by looking at all of them.
std::optional<TimePoint> slowStart(const QDate &date, const QTimeZone &zone)
{
    const qint64 begin = date.startOfDay(Qt::UTC).toSecsSinceEpoch() / 60 - 16 * 60;
    for (qint64 minute = begin; minute < begin + 60 * 60; ++minute) {
        const TimePoint time{std::chrono::minutes(minute)};
        if (slowDate(time, zone) == date)
            return time;
    }
    return std::nullopt;
}

struct SlowUsage {
    explicit SlowUsage(const UsageInput &given) : input(given)
    {
        today = slowDate(input.now, input.zone);
        for (int i = 0; i < 30; ++i) {
            if (const auto start = startOf(today.addDays(i - 29)))
                window.append(*start);
        }
        cutoff = window.constFirst();
    }

    std::optional<TimePoint> startOf(const QDate &date)
    {
        if (!starts.contains(date))
            starts.insert(date, slowStart(date, input.zone));
        return starts[date];
    }

    QList<UsageRecord> records(const QString &path) const
    {
        QList<UsageRecord> counted;
        for (const Session &each : input.sessions.value(path)) {
            for (const UsageRecord &candidate : each.records) {
                if (candidate.date >= cutoff)
                    counted.append(candidate);
            }
        }
        return counted;
    }

    QList<DayUsage> days(bool all)
    {
        std::map<TimePoint, DayUsage> table;
        for (const TimePoint start : window)
            table[start] = {start, 0, 0};
        QStringList paths{input.path};
        if (all) {
            paths.clear();
            for (const Project &each : input.projects)
                paths.append(each.path);
        }
        for (const QString &path : paths) {
            for (const UsageRecord &each : records(path)) {
                const TimePoint start = *startOf(slowDate(each.date, input.zone));
                DayUsage &day = table[start];
                day.day = start;
                day.tokens += each.input + each.output + each.cacheWrite + each.cacheRead;
                day.cost += recordCost(each, input.prices);
            }
        }
        QList<DayUsage> sorted;
        for (const auto &[start, day] : table)
            sorted.append(day);
        return sorted;
    }

    QList<ProjectUsage> perProject() const
    {
        QList<ProjectUsage> found;
        for (const Project &each : input.projects) {
            ProjectUsage sum{each.path.section(u'/', -1), 0, 0};
            for (const UsageRecord &counted : records(each.path)) {
                sum.tokens +=
                    counted.input + counted.output + counted.cacheWrite + counted.cacheRead;
                sum.cost += recordCost(counted, input.prices);
            }
            if (sum.tokens < 1)
                continue;
            auto place = found.begin();
            while (place != found.end() && place->cost >= sum.cost)
                ++place;
            found.insert(place, sum);
        }
        return found;
    }

    const UsageInput input;
    QDate today;
    TimePoint cutoff;
    QList<TimePoint> window;
    QHash<QDate, std::optional<TimePoint>> starts;
};

UsageInput randomInput(QRandomGenerator &random, const QTimeZone &zone, TimePoint now)
{
    static const QStringList models{QStringLiteral("claude-opus-4-1"), QStringLiteral("sonnet"),
                                    QStringLiteral("Claude-HAIKU"), QString(),
                                    QStringLiteral("gpt")};
    UsageInput input{.projects = {},
                     .sessions = {},
                     .prices = PriceStore::defaults(),
                     .path = QStringLiteral("/p0/app"),
                     .now = now,
                     .zone = zone};
    for (int p = 0; p < 4; ++p) {
        const QString path = QStringLiteral("/p%1/app").arg(p);
        if (p > 0 || random.bounded(4) > 0) // the shown project need not be listed
            input.projects.append({path, {}, false});
        QList<Session> sessions;
        for (int s = random.bounded(3); s > 0; --s) {
            QList<UsageRecord> records;
            for (int r = random.bounded(60); r > 0; --r) {
                // From a few days before the window to a few days ahead, in minutes.
                const int minutes = random.bounded(-34 * 24 * 60, 3 * 24 * 60);
                records.append(
                    {.date = now + std::chrono::minutes(minutes) + milliseconds(random.bounded(2)),
                     .model = models[random.bounded(int(models.size()))],
                     .input = random.bounded(1000),
                     .output = random.bounded(1000),
                     .cacheWrite = random.bounded(1000),
                     .cacheRead = random.bounded(100'000)});
            }
            sessions.append(makeSession(records));
        }
        if (!sessions.isEmpty())
            input.sessions.insert(path, sessions);
    }
    return input;
}

} // namespace

class UsageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noRecordsGive30EmptyDays()
    {
        const Usage usage = makeUsage(inputWith({}, utc("2026-05-30T12:00:00.000Z")));
        QCOMPARE(usage.projectDays.size(), 30);
        QCOMPARE(describe(usage.projectDays.constFirst().day),
                 QStringLiteral("2026-05-01T00:00:00.000Z"));
        QCOMPARE(describe(usage.projectDays.constLast().day),
                 QStringLiteral("2026-05-30T00:00:00.000Z"));
        QCOMPARE(describe(usage.allDays), describe(usage.projectDays));
        QCOMPARE(totalOf(usage.allDays).tokens, 0);
        QVERIFY(usage.perProject.isEmpty());
        QVERIFY(usage.isEmpty(false));
        QVERIFY(usage.isEmpty(true));
    }

    void noProjectsAtAll()
    {
        const Usage usage = makeUsage(UsageInput());
        QCOMPARE(usage.projectDays.size(), 30);
        QVERIFY(usage.isEmpty(true));
    }

    void recordsFallIntoTheirDays_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QStringList>("times");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *zone, const char *now,
                            const QStringList &times, const char *expected) {
            QTest::newRow(name) << QByteArray(zone) << QString::fromLatin1(now) << times
                                << QString::fromLatin1(expected);
        };
        using L = QStringList;
        row("23:59 yesterday and 00:01 today", "UTC", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("2026-05-29T23:59:00.000Z"),
              QStringLiteral("2026-05-30T00:01:00.000Z")},
            "2026-05-29T00:00:00.000Z 10, 2026-05-30T00:00:00.000Z 10");
        row("at the cutoff", "UTC", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("2026-05-01T00:00:00.000Z")}, "2026-05-01T00:00:00.000Z 10");
        row("a millisecond before the cutoff", "UTC", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("2026-04-30T23:59:59.999Z")}, "");
        row("a second before the cutoff", "UTC", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("2026-04-30T23:59:59.000Z")}, "");
        row("tomorrow counts", "UTC", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("2026-05-31T00:00:00.000Z")}, "2026-05-31T00:00:00.000Z 10");
        row("far in the future counts", "UTC", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("9999-12-31T23:59:59.999Z"),
              QStringLiteral("2026-05-30T12:00:00.001Z")},
            "2026-05-30T00:00:00.000Z 10, 9999-12-31T00:00:00.000Z 10");
        row("the day ends at its local midnight", "Asia/Kathmandu", "2026-05-30T12:00:00.000Z",
            L{QStringLiteral("2026-05-29T18:14:59.999Z"),
              QStringLiteral("2026-05-29T18:15:00.000Z")},
            "2026-05-28T18:15:00.000Z 10, 2026-05-29T18:15:00.000Z 10");
        row("the last and first instants around 23 hours", "Europe/Berlin",
            "2026-03-31T12:00:00.000Z",
            L{QStringLiteral("2026-03-28T22:59:59.999Z"),
              QStringLiteral("2026-03-28T23:00:00.000Z"),
              QStringLiteral("2026-03-29T21:59:59.999Z"),
              QStringLiteral("2026-03-29T22:00:00.000Z")},
            "2026-03-27T23:00:00.000Z 10, 2026-03-28T23:00:00.000Z 20, "
            "2026-03-29T22:00:00.000Z 10");
        row("the last and first instants around 25 hours", "Europe/Berlin",
            "2026-10-26T12:00:00.000Z",
            L{QStringLiteral("2026-10-24T21:59:59.999Z"),
              QStringLiteral("2026-10-24T22:00:00.000Z"),
              QStringLiteral("2026-10-25T22:59:59.999Z"),
              QStringLiteral("2026-10-25T23:00:00.000Z")},
            "2026-10-23T22:00:00.000Z 10, 2026-10-24T22:00:00.000Z 20, "
            "2026-10-25T23:00:00.000Z 10");
        row("a day without a midnight", "America/Sao_Paulo", "2018-11-10T12:00:00.000Z",
            L{QStringLiteral("2018-11-04T02:59:59.999Z"),
              QStringLiteral("2018-11-04T03:00:00.000Z"),
              QStringLiteral("2018-11-05T01:59:59.999Z"),
              QStringLiteral("2018-11-05T02:00:00.000Z")},
            "2018-11-03T03:00:00.000Z 10, 2018-11-04T03:00:00.000Z 20, "
            "2018-11-05T02:00:00.000Z 10");
        row("that day being the first one", "America/Sao_Paulo", "2018-12-03T12:00:00.000Z",
            L{QStringLiteral("2018-11-04T02:59:59.999Z"),
              QStringLiteral("2018-11-04T03:00:00.000Z")},
            "2018-11-04T03:00:00.000Z 10");
        row("an evening that comes twice", "America/Sao_Paulo", "2018-02-20T12:00:00.000Z",
            L{QStringLiteral("2018-02-18T01:30:00.000Z"),
              QStringLiteral("2018-02-18T02:30:00.000Z"),
              QStringLiteral("2018-02-18T03:00:00.000Z")},
            "2018-02-17T02:00:00.000Z 20, 2018-02-18T03:00:00.000Z 10");
        row("a midnight that comes twice", "America/Havana", "2023-11-20T12:00:00.000Z",
            L{QStringLiteral("2023-11-05T03:59:59.999Z"),
              QStringLiteral("2023-11-05T04:00:00.000Z"),
              QStringLiteral("2023-11-05T05:00:00.000Z")},
            "2023-11-04T04:00:00.000Z 10, 2023-11-05T04:00:00.000Z 20");
    }

    void recordsFallIntoTheirDays()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, now);
        QFETCH(QStringList, times);
        QFETCH(QString, expected);
        QList<UsageRecord> records;
        for (const QString &time : times)
            records.append(record(utc(time.toLatin1().constData()), 10));
        const UsageInput input =
            inputWith(records, utc(now.toLatin1().constData()), zone.constData());
        const Usage usage = makeUsage(input);
        QCOMPARE(used(usage.projectDays), expected);
        QCOMPARE(used(usage.allDays), expected);
        QCOMPARE(usage.perProject.size(), expected.isEmpty() ? 0 : 1);
        QCOMPARE(describe(usage.projectDays), describe(SlowUsage(input).days(false)));
    }

    void daysAreLocalMidnights_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<int>("oddHours");
        const auto row = [](const char *zone, const char *now, int hours) {
            QTest::addRow("%s %s", zone, now)
                << QByteArray(zone) << QString::fromLatin1(now) << hours;
        };
        row("Europe/Berlin", "2026-04-10T12:00:00.000Z", 23);
        row("Europe/Berlin", "2026-11-10T12:00:00.000Z", 25);
        row("America/New_York", "2026-03-20T12:00:00.000Z", 23);
        row("America/New_York", "2026-11-10T12:00:00.000Z", 25);
        row("America/Sao_Paulo", "2018-11-20T12:00:00.000Z", 23);
        row("America/Sao_Paulo", "2018-03-01T12:00:00.000Z", 25);
    }

    void daysAreLocalMidnights()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, now);
        QFETCH(int, oddHours);
        const QTimeZone timeZone(zone);
        const Usage usage =
            makeUsage(inputWith({}, utc(now.toLatin1().constData()), zone.constData()));
        QCOMPARE(usage.projectDays.size(), 30);
        QList<int> odd;
        for (qsizetype i = 0; i < 30; ++i) {
            const TimePoint day = usage.projectDays[i].day;
            const QDate date = slowDate(day, timeZone);
            QCOMPARE(date, slowDate(usage.projectDays[0].day, timeZone).addDays(i));
            QVERIFY(slowDate(day - milliseconds(1), timeZone) < date);
            if (i == 0)
                continue;
            const auto gap = day - usage.projectDays[i - 1].day;
            if (gap != std::chrono::hours(24))
                odd.append(static_cast<int>(gap / std::chrono::hours(1)));
        }
        QCOMPARE(odd, QList<int>{oddHours});
    }

    void missingDayIsSkipped()
    {
        const Usage usage =
            makeUsage(inputWith({}, utc("2012-01-10T12:00:00.000Z"), "Pacific/Apia"));
        QCOMPARE(usage.projectDays.size(), 29);
    }

    void scopeConcernsOnlyTheDays()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({record(now, 1)}, now);
        input.projects.append(project("/code/other"));
        input.sessions.insert(QStringLiteral("/code/other"), {makeSession({record(now, 20)})});
        const Usage usage = makeUsage(input);
        QCOMPARE(totalOf(usage.days(false)).tokens, 1);
        QCOMPARE(totalOf(usage.days(true)).tokens, 21);
        QCOMPARE(usage.perProject.size(), 2);
        QCOMPARE(usage.perProject[0].name, QStringLiteral("other"));
    }

    void usageOnlyElsewhereIsNotEmpty()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({record(now, 1)}, now);
        input.path = QStringLiteral("/code/none");
        input.projects.append(project("/code/none"));
        const Usage usage = makeUsage(input);
        QCOMPARE(totalOf(usage.days(false)).tokens, 0);
        QVERIFY(!usage.isEmpty(false));
    }

    void futureDayOfAnotherProjectIsNotOurs()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({}, now);
        input.projects.append(project("/code/other"));
        input.sessions.insert(QStringLiteral("/code/other"),
                              {makeSession({record(now + std::chrono::days(2), 20)})});
        const Usage usage = makeUsage(input);
        QCOMPARE(usage.days(false).size(), 30);
        QCOMPARE(usage.days(true).size(), 31);
    }

    void shownProjectNeedNotBeListed()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({record(now, 5)}, now);
        input.projects.clear();
        const Usage usage = makeUsage(input);
        QCOMPARE(totalOf(usage.days(false)).tokens, 5);
        QCOMPARE(totalOf(usage.days(true)).tokens, 0);
        QVERIFY(usage.perProject.isEmpty());
        QVERIFY(!usage.isEmpty(false));
        QVERIFY(usage.isEmpty(true));
    }

    void projectWithoutSessionsAddsNothing()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({record(now, 5)}, now);
        input.projects.append(project("/code/later"));
        QCOMPARE(describe(makeUsage(input).perProject),
                 describe(QList<ProjectUsage>{{QStringLiteral("app"), 5, 0.000075}}));
    }

    void projectWithOnlyOldRecordsIsLeftOut()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        const UsageInput input = inputWith({record(now - std::chrono::days(31), 5)}, now);
        QVERIFY(makeUsage(input).perProject.isEmpty());
    }

    void equalCostKeepsTheOrderOfTheList()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({}, now);
        input.projects = {project("/b/second"), project("/a/first"), project("/c/dear"),
                          project("/d/third")};
        for (const Project &each : std::as_const(input.projects)) {
            const qint64 tokens = each.path == u"/c/dear" ? 100 : 10;
            input.sessions.insert(each.path, {makeSession({record(now, tokens)})});
        }
        QStringList names;
        for (const ProjectUsage &usage : makeUsage(input).perProject)
            names.append(usage.name);
        QCOMPARE(names.join(u' '), QStringLiteral("dear second first third"));
    }

    void projectsOfOneNameStayTwo()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({record(now, 1)}, now);
        input.projects.append(project("/elsewhere/app"));
        input.sessions.insert(QStringLiteral("/elsewhere/app"), {makeSession({record(now, 2)})});
        const Usage usage = makeUsage(input);
        QCOMPARE(usage.perProject.size(), 2);
        QCOMPARE(usage.perProject[0].name, usage.perProject[1].name);
    }

    void allFourCountersCount()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        const UsageRecord one{now,      QStringLiteral("haiku"), 1'000'000, 1'000'000, 1'000'000,
                              1'000'000};
        const Usage usage = makeUsage(inputWith({one}, now));
        QCOMPARE(usage.projectDays.constLast().tokens, 4'000'000);
        QCOMPARE(usage.projectDays.constLast().cost, 7.35);
        QCOMPARE(usage.perProject.constFirst().cost, 7.35);
    }

    void absurdNumbersDoNoHarm()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        constexpr qint64 most = std::numeric_limits<qint64>::max();
        const UsageRecord absurd{now, QStringLiteral("opus"), most, most, most, most};
        UsageInput input = inputWith({absurd, absurd}, now);
        for (int i = 0; i < 50; ++i) {
            const QString path = QStringLiteral("/n/%1").arg(i);
            input.projects.append({path, {}, false});
            input.sessions.insert(path, {makeSession({record(now, 5)}), makeSession({absurd})});
        }
        PriceRow row;
        row.key = QStringLiteral("opus");
        row.input = 1e308;
        row.output = -1e308;
        input.prices = {row};
        const Usage usage = makeUsage(input);
        QCOMPARE(usage.projectDays.size(), 30);
    }

    void stopsSoon()
    {
        const TimePoint now = utc("2026-05-30T12:00:00.000Z");
        UsageInput input = inputWith({record(now, 5)}, now);
        std::stop_source stop;
        stop.request_stop();
        QVERIFY(makeUsage(input, stop.get_token()).perProject.isEmpty());
    }

    void agreesWithTheSlowImplementation_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("now");
        const auto row = [](const char *zone, const char *now) {
            QTest::addRow("%s %s", zone, now) << QByteArray(zone) << QString::fromLatin1(now);
        };
        row("UTC", "2026-05-30T12:00:00.000Z");
        row("Europe/Berlin", "2026-04-10T22:30:00.000Z");
        row("Europe/Berlin", "2026-11-10T22:30:00.000Z");
        row("America/New_York", "2026-11-10T03:00:00.000Z");
        row("America/Sao_Paulo", "2018-11-06T01:00:00.000Z");
        row("America/Sao_Paulo", "2018-02-18T02:30:00.000Z");
        row("America/Havana", "2023-11-05T04:30:00.000Z");
        row("America/St_Johns", "2010-11-20T12:00:00.000Z");
        row("Australia/Lord_Howe", "2026-04-20T12:00:00.000Z");
        row("Pacific/Apia", "2012-01-10T12:00:00.000Z");
        row("Asia/Kathmandu", "2026-01-15T18:14:59.999Z");
    }

    void agreesWithTheSlowImplementation()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, now);
        QRandomGenerator random(20261121);
        qsizetype records = 0;
        for (int round = 0; round < 20; ++round) {
            const UsageInput input =
                randomInput(random, QTimeZone(zone), utc(now.toLatin1().constData()));
            const Usage usage = makeUsage(input);
            SlowUsage slow(input);
            QCOMPARE(describe(usage.projectDays), describe(slow.days(false)));
            QCOMPARE(describe(usage.allDays), describe(slow.days(true)));
            QCOMPARE(describe(usage.perProject), describe(slow.perProject()));
            for (const Project &each : input.projects)
                records += slow.records(each.path).size();
        }
        QVERIFY(records > 500);
    }
};

PLINTHAR_TEST_MAIN(UsageTest)
#include "UsageTest.moc"
