// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/SessionTable.h"

#include "model/PriceStore.h"
#include "model/Pricing.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <bit>
#include <memory>

namespace {

using std::chrono::milliseconds;

/// The same as bits: 0 and -0 differ, and so do results that were summed in another order.
bool same(double a, double b)
{
    return std::bit_cast<quint64>(a) == std::bit_cast<quint64>(b);
}

UsageRecord record(const QString &model, qint64 input, qint64 output = 0, qint64 write = 0,
                   qint64 read = 0)
{
    return {.date = {},
            .model = model,
            .input = input,
            .output = output,
            .cacheWrite = write,
            .cacheRead = read};
}

Session sessionWith(const QString &id, const QList<UsageRecord> &records)
{
    Session session;
    session.id = id;
    session.records = records;
    return session;
}

UsageRecord randomRecord(QRandomGenerator &random)
{
    const QStringList models{u"claude-opus-4-1"_qs, u"claude-sonnet-4"_qs,
                             u"CLAUDE-HAIKU"_qs,    u""_qs,
                             u"something else"_qs,  u"opus and haiku"_qs};
    const auto count = [&random] { return qint64(random.bounded(2'000'000)); };
    return record(models[random.bounded(models.size())], count(), count(), count(), count());
}

QList<Session> randomSessions(QRandomGenerator &random)
{
    QList<Session> sessions;
    for (int i = 0; i < 20; ++i) {
        QList<UsageRecord> records;
        for (int j = random.bounded(200); j > 0; --j)
            records.append(randomRecord(random));
        sessions.append(sessionWith(QString::number(i), records));
    }
    return sessions;
}

QList<PriceRow> randomPrices(QRandomGenerator &random)
{
    const QStringList keys{u"opus"_qs, u"haiku"_qs, u"Sonnet"_qs, u"default"_qs, u""_qs, u"o"_qs};
    const auto price = [&random] { return random.generateDouble() * 100; };
    QList<PriceRow> rows;
    for (int i = random.bounded(6); i > 0; --i)
        rows.append({.key = keys[random.bounded(keys.size())],
                     .input = price(),
                     .output = price(),
                     .cacheWrite = price(),
                     .cacheRead = price()});
    return rows;
}

} // namespace

class SessionTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noSessionsMakeAnEmptyTable()
    {
        const SessionTable table = makeSessionTable({}, PriceStore::defaults());
        QVERIFY(table.rows.isEmpty());
        QVERIFY(same(table.cost, 0));
    }

    void aRowHoldsItsSession()
    {
        Session session = sessionWith(
            u"id"_qs, {record(u"opus"_qs, 1, 2, 3, 4), record(u"haiku"_qs, 10, 20, 30, 40)});
        session.start = TimePoint(milliseconds(1'000));
        session.end = TimePoint(milliseconds(66'500));
        session.firstPrompt = u"one\n\ttwo  three"_qs;
        session.turns = 7;
        const SessionRow row =
            makeSessionTable({session}, PriceStore::defaults()).rows.constFirst();
        QCOMPARE(row.id, u"id"_qs);
        QCOMPARE(row.key(), u"id"_qs);
        QVERIFY(row.start == session.start);
        QCOMPARE(row.duration, 65.5);
        QCOMPARE(row.firstPrompt, session.firstPrompt);
        QCOMPARE(row.preview, u"one two three"_qs);
        QCOMPARE(row.turns, 7);
        QCOMPARE(row.input, 11);
        QCOMPARE(row.output, 22);
        QCOMPARE(row.cache, 77);
    }

    void keepsTheOrderOfTheSessions()
    {
        const SessionTable table = makeSessionTable(
            {sessionWith(u"b"_qs, {}), sessionWith(u"c"_qs, {}), sessionWith(u"a"_qs, {})}, {});
        QStringList ids;
        for (const SessionRow &row : table.rows)
            ids.append(row.id);
        QCOMPARE(ids, (QStringList{u"b"_qs, u"c"_qs, u"a"_qs}));
    }

    /// Each record priced by itself and summed in order: the same to the last bit.
    void equalsTheSlowComputation()
    {
        QRandomGenerator random(42);
        for (int round = 0; round < 40; ++round) {
            const QList<Session> sessions = randomSessions(random);
            const QList<PriceRow> prices =
                round % 4 == 0 ? PriceStore::defaults() : randomPrices(random);
            const SessionTable table = makeSessionTable(sessions, prices);
            QCOMPARE(table.rows.size(), sessions.size());
            double total = 0;
            for (qsizetype i = 0; i < sessions.size(); ++i) {
                double cost = 0;
                for (const UsageRecord &one : sessions[i].records)
                    cost += recordCost(one, prices);
                QVERIFY(same(table.rows[i].cost, cost));
                total += cost;
            }
            QVERIFY(same(table.cost, total));
        }
    }

    void aPreviewIsShortAndOnOneLine()
    {
        Session session;
        session.firstPrompt = u"word\n"_qs.repeated(100'000);
        const SessionRow row = makeSessionTable({session}, {}).rows.constFirst();
        QCOMPARE(row.firstPrompt, session.firstPrompt);
        QVERIFY(row.preview.size() > 300 && row.preview.size() < 1'000);
        QVERIFY(!row.preview.contains(u'\n'));
    }

    void aPreviewDoesNotCutACharacterInTwo()
    {
        for (const int before : {0, 1}) {
            Session session;
            session.firstPrompt = u"x"_qs.repeated(before) + u"\U0001f600"_qs.repeated(1'000);
            QVERIFY(makeSessionTable({session}, {}).rows.constFirst().preview.isValidUtf16());
        }
    }

    void aSessionThatRunsBackwardsHasANegativeDuration()
    {
        Session session;
        session.start = TimePoint(milliseconds(5'000));
        QCOMPARE(makeSessionTable({session}, {}).rows.constFirst().duration, -5.0);
    }

    void countsThatNoLogHasDoNotEndTheProgram()
    {
        constexpr qint64 most = std::numeric_limits<qint64>::max();
        const SessionTable table = makeSessionTable(
            {sessionWith(u"a"_qs, {record(u""_qs, most, most, most, most), record(u""_qs, 1, 1)})},
            PriceStore::defaults());
        QCOMPARE(table.rows[0].input, std::numeric_limits<qint64>::min());
    }

    void stopsWhenItIsToldTo()
    {
        // On the heap because g++ 12 takes one on the stack for uninitialized.
        const auto stop = std::make_unique<std::stop_source>();
        stop->request_stop();
        const SessionTable table =
            makeSessionTable({sessionWith(u"a"_qs, {})}, {}, stop->get_token());
        QVERIFY(table.rows.isEmpty());
    }

    void countsTheRecords()
    {
        QCOMPARE(recordCount({}), 0);
        const UsageRecord one = record(u""_qs, 1);
        QCOMPARE(recordCount({sessionWith(u"a"_qs, {one, one}), sessionWith(u"b"_qs, {}),
                              sessionWith(u"c"_qs, {one})}),
                 3);
    }
};

PLINTHAR_TEST_MAIN(SessionTableTest)
#include "SessionTableTest.moc"
