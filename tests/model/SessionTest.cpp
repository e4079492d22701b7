// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Session.h"

#include "support/TestMain.h"

#include <limits>

namespace {

UsageRecord record(qint64 cacheWrite, qint64 cacheRead)
{
    return {TimePoint(), QString(), 1'000'000, 100'000, cacheWrite, cacheRead};
}

} // namespace

class SessionTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cacheIsZeroWithoutRecords();
    void cacheSumsBothKindsOverAllRecords();
    void absurdCountsWrapRound();
};

void SessionTest::cacheIsZeroWithoutRecords()
{
    QCOMPARE(Session().cache(), 0);
}

void SessionTest::cacheSumsBothKindsOverAllRecords()
{
    Session session;
    session.records = {record(1, 20), record(300, 0), record(0, 4'000'000'000)};
    QCOMPARE(session.cache(), 4'000'000'321);
}

void SessionTest::absurdCountsWrapRound()
{
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    Session session;
    session.records = {record(most, 1)};
    QCOMPARE(session.cache(), std::numeric_limits<qint64>::min());
    QCOMPARE(addTokens(most, most), -2);
}

PLINTHAR_TEST_MAIN(SessionTest)
#include "SessionTest.moc"
