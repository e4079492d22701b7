// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Pricing.h"

#include "model/PriceStore.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <bit>

namespace {

constexpr qint64 million = 1'000'000;

PriceRow row(const QString &key, double input)
{
    return {QUuid::createUuid(), key, input, 0, 0, 0};
}

/// The price of a million input tokens, which tells the chosen row.
double inputPrice(const QString &model, const QList<PriceRow> &prices)
{
    return recordCost({TimePoint(), model, million}, prices);
}

quint64 bits(double number)
{
    return std::bit_cast<quint64>(number);
}

qint64 randomCount(QRandomGenerator &random)
{
    return random.bounded(10) == 0 ? static_cast<qint64>(random.generate64())
                                   : random.bounded(5'000'000);
}

} // namespace

class PricingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void millionInputTokensOfOpusCostFifteen();
    void millionOfEachKindOnHaiku();
    void choosesTheRow_data();
    void choosesTheRow();
    void withoutDefaultRowTheBuiltInOneCounts();
    void addsTheProductsInOrderAndDividesAtTheEnd();
    void countsAreConvertedBeforeTheyAreMultiplied();
    void pricerEqualsRecordCostBitForBit();
    void pricerKeepsItsTable();
};

void PricingTest::millionInputTokensOfOpusCostFifteen()
{
    QCOMPARE(inputPrice(u"claude-opus-4-1"_qs, PriceStore::defaults()), 15.0);
}

void PricingTest::millionOfEachKindOnHaiku()
{
    const UsageRecord record{TimePoint(), u"claude-haiku-4-5"_qs, million, million, million,
                             million};
    QCOMPARE(recordCost(record, PriceStore::defaults()), 7.35);
}

void PricingTest::choosesTheRow_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QList<PriceRow>>("prices");
    QTest::addColumn<double>("price");
    const QList<PriceRow> &defaults = PriceStore::defaults();
    QTest::newRow("empty model takes the default row") << QString() << defaults << 3.0;
    QTest::newRow("unknown model takes the default row") << u"gpt"_qs << defaults << 3.0;
    QTest::newRow("key in the middle of the name") << u"eu.claude-opus-4"_qs << defaults << 15.0;
    QTest::newRow("model in upper case") << u"CLAUDE-HAIKU"_qs << defaults << 1.0;

    QTest::newRow("key with a capital matches")
        << u"claude-opus-4"_qs << QList{row(u"Opus"_qs, 7), row(u"default"_qs, 1)} << 7.0;
    QTest::newRow("accented key with a capital matches")
        << u"modèle-é"_qs << QList{row(u"MODÈLE"_qs, 7)} << 7.0;
    QTest::newRow("first match wins over a longer one")
        << u"claude-sonnet-4"_qs << QList{row(u"sonnet"_qs, 1), row(u"sonnet-4"_qs, 2)} << 1.0;
    QTest::newRow("longer one wins when it stands first")
        << u"claude-sonnet-4"_qs << QList{row(u"sonnet-4"_qs, 2), row(u"sonnet"_qs, 1)} << 2.0;
    QTest::newRow("empty key never matches")
        << u"claude-opus"_qs << QList{row(QString(), 9), row(u"opus"_qs, 1)} << 1.0;
    QTest::newRow("empty key never matches the empty model")
        << QString() << QList{row(u""_qs, 9), row(u"default"_qs, 1)} << 1.0;
    QTest::newRow("blank is a key as any other")
        << u"my model"_qs << QList{row(u" "_qs, 9), row(u"default"_qs, 1)} << 9.0;
    QTest::newRow("key must be contiguous")
        << u"op-us"_qs << QList{row(u"opus"_qs, 9), row(u"default"_qs, 1)} << 1.0;
    QTest::newRow("key is no pattern")
        << u"opus"_qs << QList{row(u"o.us"_qs, 9), row(u"*"_qs, 8), row(u"default"_qs, 1)} << 1.0;
    QTest::newRow("fallback row may stand first")
        << u"opus"_qs << QList{row(u"default"_qs, 1), row(u"opus"_qs, 2)} << 2.0;
    QTest::newRow("fallback row in any mix of cases")
        << u"other"_qs << QList{row(u"DeFault"_qs, 4)} << 4.0;
    QTest::newRow("first of two fallback rows")
        << u"other"_qs << QList{row(u"Default"_qs, 4), row(u"default"_qs, 5)} << 4.0;
    QTest::newRow("the key default never matches a name")
        << u"default-opus"_qs << QList{row(u"default"_qs, 1), row(u"opus"_qs, 2)} << 2.0;
    QTest::newRow("a key that contains default is no fallback")
        << u"other"_qs << QList{row(u"default-2"_qs, 9)} << 3.0;
}

void PricingTest::choosesTheRow()
{
    QFETCH(QString, model);
    QFETCH(QList<PriceRow>, prices);
    QTEST(inputPrice(model, prices), "price");
}

void PricingTest::withoutDefaultRowTheBuiltInOneCounts()
{
    const UsageRecord record{TimePoint(),  u"other"_qs,   million,
                             10 * million, 100 * million, 1'000 * million};
    for (const QList<PriceRow> &prices : {QList<PriceRow>(), QList{row(u"opus"_qs, 15)}})
        QCOMPARE(recordCost(record, prices), 3.0 + 150 + 375 + 300);
}

void PricingTest::addsTheProductsInOrderAndDividesAtTheEnd()
{
    const PriceRow prices{QUuid::createUuid(), u"m"_qs, 0.1, 0.7, 1.1, 1.3};
    const UsageRecord record{TimePoint(), u"m"_qs, 3, 7, 11, 13};
    const double sum = ((3.0 * 0.1 + 7.0 * 0.7) + 11.0 * 1.1) + 13.0 * 1.3;
    QCOMPARE(bits(recordCost(record, {prices})), bits(sum / 1'000'000));
}

void PricingTest::countsAreConvertedBeforeTheyAreMultiplied()
{
    const UsageRecord record{TimePoint(), u"m"_qs, std::numeric_limits<qint64>::max()};
    QCOMPARE(recordCost(record, {row(u"m"_qs, 4)}), 0x1p63 * 4 / 1'000'000);
    const UsageRecord negative{TimePoint(), u"m"_qs, -million};
    QCOMPARE(recordCost(negative, {row(u"m"_qs, 4)}), -4.0);
}

void PricingTest::pricerEqualsRecordCostBitForBit()
{
    QRandomGenerator random(4);
    const QStringList names{u"opus"_qs,  u"Opus-4"_qs,      u"sonnet"_qs,  u"claude-SONNET-4-5"_qs,
                            u"haiku"_qs, u"default"_qs,     u"DEFAULT"_qs, QString(),
                            u""_qs,      u"<synthetic>"_qs, u"ünï"_qs,     u"o"_qs};
    const auto name = [&] { return names[random.bounded(names.size())]; };
    for (int table = 0; table < 200; ++table) {
        QList<PriceRow> prices;
        for (int i = random.bounded(7); i > 0; --i)
            prices.append({QUuid::createUuid(), name(), random.generateDouble() * 100,
                           random.generateDouble(), random.bounded(20) * 0.05, -1.0 / 3});
        Pricer pricer(prices);
        for (int i = 0; i < 100; ++i) {
            UsageRecord record{TimePoint(),         name(),
                               randomCount(random), randomCount(random),
                               randomCount(random), randomCount(random)};
            if (random.bounded(2) == 0) // the same name in a text of its own
                record.model = QString(record.model.constData(), record.model.size());
            QCOMPARE(bits(pricer.cost(record)), bits(recordCost(record, prices)));
        }
    }
}

void PricingTest::pricerKeepsItsTable()
{
    QList<PriceRow> prices{row(u"opus"_qs, 1)};
    Pricer pricer(prices);
    prices[0].input = 2;
    QCOMPARE(pricer.cost({TimePoint(), u"opus"_qs, million}), 1.0);
}

PLINTHAR_TEST_MAIN(PricingTest)
#include "PricingTest.moc"
