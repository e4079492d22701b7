// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/PriceRow.h"

#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QStringList keys{u"cacheRead"_qs, u"cacheWrite"_qs, u"id"_qs,
                       u"input"_qs,     u"key"_qs,        u"output"_qs};

PriceRow sonnet()
{
    return {QUuid(u"{0a1b2c3d-4e5f-4a6b-8c7d-9e0fa1b2c3d4}"_qs), u"sonnet"_qs, 3, 15, 3.75, 0.3};
}

QJsonObject sonnetWith(const QString &key, const QJsonValue &value)
{
    QJsonObject object = toJson(sonnet());
    object.insert(key, value);
    return object;
}

} // namespace

class PriceRowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void newRowsGetIdsOfTheirOwn();
    void encodesItsFieldNamesAsKeys();
    void idIsWrittenInUpperCaseWithHyphens();
    void survivesEncodingAndDecoding_data();
    void survivesEncodingAndDecoding();
    void everyKeyIsRequired_data();
    void everyKeyIsRequired();
    void wrongTypesAreRefused_data();
    void wrongTypesAreRefused();
    void idMayStandInEitherCase_data();
    void idMayStandInEitherCase();
    void otherFormsOfAnIdAreRefused_data();
    void otherFormsOfAnIdAreRefused();
    void furtherKeysDoNotMatter();
    void sameValuesWithDifferentIdsAreUnequal();
    void rowEditedBackIsEqualAgain();
    void equalityComparesEveryField();
};

void PriceRowTest::newRowsGetIdsOfTheirOwn()
{
    const PriceRow one;
    const PriceRow two;
    QVERIFY(!one.id.isNull());
    QVERIFY(one.id != two.id);
}

void PriceRowTest::encodesItsFieldNamesAsKeys()
{
    const QJsonObject json = toJson(sonnet());
    QCOMPARE(json.keys(), keys);
    QCOMPARE(json.value(u"key").toString(), u"sonnet"_qs);
    QCOMPARE(json.value(u"input").toDouble(), 3.0);
    QCOMPARE(json.value(u"output").toDouble(), 15.0);
    QCOMPARE(json.value(u"cacheWrite").toDouble(), 3.75);
    QCOMPARE(json.value(u"cacheRead").toDouble(), 0.3);
}

void PriceRowTest::idIsWrittenInUpperCaseWithHyphens()
{
    QCOMPARE(toJson(sonnet()).value(u"id").toString(), u"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D4"_qs);
}

void PriceRowTest::survivesEncodingAndDecoding_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<double>("price");
    QTest::newRow("usual") << u"opus"_qs << 18.75;
    QTest::newRow("empty key, price 0") << u""_qs << 0.0;
    QTest::newRow("negative") << u"a"_qs << -1.5;
    QTest::newRow("no short decimal") << u"ü/\"\\"_qs << 1.0 / 3;
    QTest::newRow("tiny") << u"a"_qs << 4.9e-324;
    QTest::newRow("huge") << u"a"_qs << 1.7976931348623157e308;
    QTest::newRow("larger than an integer") << u"a"_qs << 1e21;
}

void PriceRowTest::survivesEncodingAndDecoding()
{
    QFETCH(QString, key);
    QFETCH(double, price);
    const PriceRow row{QUuid::createUuid(), key, price, price * 0.5, 1, price};
    const QByteArray text = QJsonDocument(toJson(row)).toJson();
    const auto decoded = priceRowFromJson(QJsonDocument::fromJson(text).object());
    QVERIFY(decoded);
    QVERIFY2(*decoded == row, text.constData());
}

void PriceRowTest::everyKeyIsRequired_data()
{
    QTest::addColumn<QString>("key");
    for (const QString &key : keys)
        QTest::newRow(qPrintable(key)) << key;
}

void PriceRowTest::everyKeyIsRequired()
{
    QFETCH(QString, key);
    QJsonObject object = toJson(sonnet());
    QVERIFY(priceRowFromJson(object));
    object.remove(key);
    QVERIFY(!priceRowFromJson(object));
}

void PriceRowTest::wrongTypesAreRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    for (const QString &key : keys) {
        const bool text = key == u"id" || key == u"key";
        QTest::addRow("%s null", qPrintable(key)) << key << QJsonValue();
        QTest::addRow("%s boolean", qPrintable(key)) << key << QJsonValue(true);
        QTest::addRow("%s array", qPrintable(key)) << key << QJsonValue(QJsonArray());
        QTest::addRow("%s %s", qPrintable(key), text ? "number" : "text")
            << key << (text ? QJsonValue(1) : QJsonValue(u"1"_qs));
    }
}

void PriceRowTest::wrongTypesAreRefused()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QVERIFY(!priceRowFromJson(sonnetWith(key, value)));
}

void PriceRowTest::idMayStandInEitherCase_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("upper") << u"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D4"_qs;
    QTest::newRow("lower") << u"0a1b2c3d-4e5f-4a6b-8c7d-9e0fa1b2c3d4"_qs;
    QTest::newRow("mixed") << u"0A1b2C3d-4E5f-4A6b-8C7d-9E0fA1b2C3d4"_qs;
}

void PriceRowTest::idMayStandInEitherCase()
{
    QFETCH(QString, text);
    const auto row = priceRowFromJson(sonnetWith(u"id"_qs, text));
    QVERIFY(row);
    QCOMPARE(row->id, sonnet().id);
}

void PriceRowTest::otherFormsOfAnIdAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_qs;
    QTest::newRow("braces") << u"{0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D4}"_qs;
    QTest::newRow("no hyphens") << u"0A1B2C3D4E5F4A6B8C7D9E0FA1B2C3D4"_qs;
    QTest::newRow("a digit short") << u"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D"_qs;
    QTest::newRow("a digit more") << u"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D41"_qs;
    QTest::newRow("no hexadecimal digit") << u"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3DG"_qs;
    QTest::newRow("blank before") << u" 0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D4"_qs;
    QTest::newRow("blank behind") << u"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D4 "_qs;
}

void PriceRowTest::otherFormsOfAnIdAreRefused()
{
    QFETCH(QString, text);
    QVERIFY(!priceRowFromJson(sonnetWith(u"id"_qs, text)));
}

void PriceRowTest::furtherKeysDoNotMatter()
{
    const auto row = priceRowFromJson(sonnetWith(u"colour"_qs, u"red"_qs));
    QVERIFY(row);
    QVERIFY(*row == sonnet());
}

void PriceRowTest::sameValuesWithDifferentIdsAreUnequal()
{
    PriceRow other = sonnet();
    other.id = QUuid::createUuid();
    QVERIFY(other != sonnet());
}

void PriceRowTest::rowEditedBackIsEqualAgain()
{
    PriceRow row = sonnet();
    row.input = 4;
    QVERIFY(row != sonnet());
    row.input = 3;
    QVERIFY(row == sonnet());
}

void PriceRowTest::equalityComparesEveryField()
{
    const auto changed = [](auto change) {
        PriceRow row = sonnet();
        change(row);
        return row != sonnet();
    };
    QVERIFY(changed([](PriceRow &row) { row.key = u"Sonnet"_qs; }));
    QVERIFY(changed([](PriceRow &row) { row.input += 1; }));
    QVERIFY(changed([](PriceRow &row) { row.output += 1; }));
    QVERIFY(changed([](PriceRow &row) { row.cacheWrite += 1; }));
    QVERIFY(changed([](PriceRow &row) { row.cacheRead += 1; }));
}

PLINTHAR_TEST_MAIN(PriceRowTest)
#include "PriceRowTest.moc"
