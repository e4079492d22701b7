// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/IsoDate.h"

#include "support/Describe.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

namespace {

/// What a log's timestamp means: with a fraction, or else without.
std::optional<TimePoint> date(const QByteArray &text)
{
    const std::string_view view(text.constData(), static_cast<size_t>(text.size()));
    const auto withFraction = SessionParser::isoFrac(view);
    return withFraction ? withFraction : SessionParser::iso(view);
}

} // namespace

class IsoDateTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void dates_data();
    void dates();
    void otherTextsAreNoDates_data();
    void otherTextsAreNoDates();
    void eachParserTakesOnlyItsForm();
    void everyCutTextIsNoDate();
    void agreesWithQtOnRandomInstants();
    void knowsEveryDayOfFourCenturies();
};

void IsoDateTest::dates_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("utc");
    const auto row = [](const char *text, const QString &utc) {
        QTest::newRow(text) << QByteArray(text) << utc;
    };
    row("2025-01-02T03:04:05.678Z", u"2025-01-02T03:04:05.678Z"_qs);
    row("2025-01-02T03:04:05Z", u"2025-01-02T03:04:05.000Z"_qs);
    row("1970-01-01T00:00:00Z", u"1970-01-01T00:00:00.000Z"_qs);
    row("1969-12-31T23:59:59.999Z", u"1969-12-31T23:59:59.999Z"_qs);
    row("2025-12-31T23:59:59.999Z", u"2025-12-31T23:59:59.999Z"_qs);
    // Any number of digits; those beyond the millisecond are dropped, not rounded.
    row("2025-01-02T03:04:05.6Z", u"2025-01-02T03:04:05.600Z"_qs);
    row("2025-01-02T03:04:05.67Z", u"2025-01-02T03:04:05.670Z"_qs);
    row("2025-01-02T03:04:05.000999Z", u"2025-01-02T03:04:05.000Z"_qs);
    row("2025-01-02T03:04:05.123456789Z", u"2025-01-02T03:04:05.123Z"_qs);
    row("2025-01-02T03:04:05.99999999999999999999999999999999999999999999999999Z",
        u"2025-01-02T03:04:05.999Z"_qs);
    // Offsets.
    row("2025-01-02T03:04:05+00:00", u"2025-01-02T03:04:05.000Z"_qs);
    row("2025-01-02T03:04:05-00:00", u"2025-01-02T03:04:05.000Z"_qs);
    row("2025-01-02T03:04:05+01:30", u"2025-01-02T01:34:05.000Z"_qs);
    row("2025-01-02T03:04:05.5-08:00", u"2025-01-02T11:04:05.500Z"_qs);
    row("2025-01-01T00:30:00+05:45", u"2024-12-31T18:45:00.000Z"_qs);
    row("2025-01-01T00:00:00+23:59", u"2024-12-31T00:01:00.000Z"_qs);
    row("2025-01-01T00:00:00-23:59", u"2025-01-01T23:59:00.000Z"_qs);
    // Leap days.
    row("2024-02-29T12:00:00Z", u"2024-02-29T12:00:00.000Z"_qs);
    row("2000-02-29T12:00:00Z", u"2000-02-29T12:00:00.000Z"_qs);
    row("0001-01-01T00:00:00Z", u"0001-01-01T00:00:00.000Z"_qs);
    row("9999-12-31T23:59:59Z", u"9999-12-31T23:59:59.000Z"_qs);
}

void IsoDateTest::dates()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, utc);
    QCOMPARE(describe(date(text)), utc);
}

void IsoDateTest::otherTextsAreNoDates_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char *name, const QByteArray &text) { QTest::newRow(name) << text; };
    row("empty", "");
    row("a date alone", "2025-01-02");
    row("a time alone", "03:04:05Z");
    row("a blank instead of the T", "2025-01-02 03:04:05Z");
    row("lower-case t", "2025-01-02t03:04:05Z");
    row("lower-case z", "2025-01-02T03:04:05z");
    row("no offset", "2025-01-02T03:04:05");
    row("no offset behind a fraction", "2025-01-02T03:04:05.678");
    row("no seconds", "2025-01-02T03:04Z");
    row("blank before", " 2025-01-02T03:04:05Z");
    row("blank behind", "2025-01-02T03:04:05Z ");
    row("line feed behind", "2025-01-02T03:04:05Z\n");
    row("NUL behind", QByteArray("2025-01-02T03:04:05Z\0", 21));
    row("text behind", "2025-01-02T03:04:05Zulu");
    row("two zones", "2025-01-02T03:04:05Z+00:00");
    row("blank before the zone", "2025-01-02T03:04:05 Z");
    row("point without digits", "2025-01-02T03:04:05.Z");
    row("comma as the point", "2025-01-02T03:04:05,678Z");
    row("two fractions", "2025-01-02T03:04:05.6.7Z");
    row("sign in the fraction", "2025-01-02T03:04:05.+67Z");
    row("30 February", "2025-02-30T03:04:05Z");
    row("29 February of a common year", "2025-02-29T03:04:05Z");
    row("29 February 1900", "1900-02-29T03:04:05Z");
    row("29 February 2100", "2100-02-29T03:04:05Z");
    row("31 April", "2025-04-31T03:04:05Z");
    row("day 32", "2025-01-32T03:04:05Z");
    row("day 0", "2025-01-00T03:04:05Z");
    row("month 0", "2025-00-02T03:04:05Z");
    row("month 13", "2025-13-02T03:04:05Z");
    row("hour 24", "2025-01-02T24:00:00Z");
    row("hour 25", "2025-01-02T25:00:00Z");
    row("minute 60", "2025-01-02T03:60:00Z");
    row("second 60", "2025-01-02T03:04:60Z");
    row("leap second", "2016-12-31T23:59:60Z");
    row("offset without colon", "2025-01-02T03:04:05+0100");
    row("offset without minutes", "2025-01-02T03:04:05+01");
    row("offset with colon alone", "2025-01-02T03:04:05+01:");
    row("offset with one digit", "2025-01-02T03:04:05+1:00");
    row("offset with seconds", "2025-01-02T03:04:05+01:00:00");
    row("offset without sign", "2025-01-02T03:04:0501:00");
    row("offset of 24 hours", "2025-01-02T03:04:05+24:00");
    row("offset of 60 minutes", "2025-01-02T03:04:05+01:60");
    row("offset with the minus sign of typesetters", "2025-01-02T03:04:05\u221201:00");
    row("year of two digits", "25-01-02T03:04:05Z");
    row("year of five digits", "12025-01-02T03:04:05Z");
    row("signed year", "+2025-01-02T03:04:05Z");
    row("negative year", "-2025-01-02T03:04:05Z");
    row("month of one digit", "2025-1-02T03:04:05Z");
    row("hour of one digit", "2025-01-02T3:04:05Z");
    row("blank as a digit", "2025-01-02T 3:04:05Z");
    row("sign as a digit", "2025-01-02T+3:04:05Z");
    row("no dashes", "20250102T03:04:05Z");
    row("no colons", "2025-01-02T030405Z");
    row("day of the year", "2025-002T03:04:05Z");
    row("week", "2025-W01-4T03:04:05Z");
    row("zone by name", "2025-01-02T03:04:05UTC");
    row("seconds since 1970", "1735787045");
    row("digits that are not ASCII", "２025-01-02T03:04:05Z");
    row("the text null", "null");
}

void IsoDateTest::otherTextsAreNoDates()
{
    QFETCH(QByteArray, text);
    QCOMPARE(describe(date(text)), u"nothing"_qs);
}

void IsoDateTest::eachParserTakesOnlyItsForm()
{
    QVERIFY(SessionParser::isoFrac("2025-01-02T03:04:05.678Z"));
    QVERIFY(!SessionParser::isoFrac("2025-01-02T03:04:05Z"));
    QVERIFY(SessionParser::iso("2025-01-02T03:04:05Z"));
    QVERIFY(!SessionParser::iso("2025-01-02T03:04:05.678Z"));
}

void IsoDateTest::everyCutTextIsNoDate()
{
    for (const QByteArray text : {"2025-01-02T03:04:05.678+01:30", "2025-01-02T03:04:05Z"}) {
        for (qsizetype length = 0; length < text.size(); ++length)
            QVERIFY2(!date(text.first(length)), text.first(length).constData());
        QVERIFY(date(text));
    }
}

void IsoDateTest::agreesWithQtOnRandomInstants()
{
    QRandomGenerator random(2);
    constexpr qint64 year = qint64(365) * 86'400'000;
    for (int i = 0; i < 2'000; ++i) {
        const qint64 time = qint64(random.generate64() % quint64(600 * year)) - 300 * year;
        const int offset = (random.bounded(2 * 23 * 60) - 23 * 60) * 60;
        const auto instant = QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, offset);
        const QString text = instant.toString(Qt::ISODateWithMs);
        const auto parsed = date(text.toUtf8());
        QVERIFY2(parsed, qPrintable(text));
        QVERIFY2(parsed->time_since_epoch().count() == time, qPrintable(text));
    }
}

void IsoDateTest::knowsEveryDayOfFourCenturies()
{
    for (int year = 1900; year < 2300; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 28; day <= 31; ++day) {
                const QByteArray text = QStringLiteral("%1-%2-%3T00:00:00Z")
                                            .arg(year)
                                            .arg(month, 2, 10, QChar(u'0'))
                                            .arg(day, 2, 10, QChar(u'0'))
                                            .toUtf8();
                QVERIFY2(date(text).has_value() == QDate::isValid(year, month, day),
                         text.constData());
            }
        }
    }
}

PLINTHAR_TEST_MAIN(IsoDateTest)
#include "IsoDateTest.moc"
