// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Format.h"

#include "support/TestMain.h"

#include <QRandomGenerator>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>

namespace {

constexpr qint64 most = std::numeric_limits<qint64>::max();
constexpr qint64 least = std::numeric_limits<qint64>::min();

/// The number as the C library writes it in the C locale.
QString printed(const char *format, double number)
{
    char text[400];
    (void)std::snprintf(text, sizeof text, format, number);
    return QString::fromLatin1(text);
}

} // namespace

class FormatTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void tokens_data();
    void tokens();
    void smallCountsAreGroupedAsTheLocaleDoes_data();
    void smallCountsAreGroupedAsTheLocaleDoes();
    void countsAreGroupedInTheUsersLocaleByDefault();
    void durations_data();
    void durations();
    void costs_data();
    void costs();
    void costsRoundAsTheCLibraryDoes();
    void theLocaleChangesNeitherCostsNorLargeCounts();
};

void FormatTest::tokens_data()
{
    QTest::addColumn<qint64>("count");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 count, const QString &text) {
        QTest::addRow("%lld", static_cast<long long>(count)) << count << text;
    };
    row(0, u"0"_qs);
    row(1, u"1"_qs);
    row(999, u"999"_qs);
    row(1'000, u"1,000"_qs);
    row(9'999, u"9,999"_qs);
    row(10'000, u"10.0k"_qs);
    row(10'049, u"10.0k"_qs);
    row(10'050, u"10.1k"_qs); // 10.05 lies a little above itself as a double
    row(10'250, u"10.2k"_qs); // an exact tie goes to the even digit
    row(10'750, u"10.8k"_qs);
    row(12'345, u"12.3k"_qs);
    row(999'949, u"999.9k"_qs);
    row(999'999, u"1000.0k"_qs);
    row(1'000'000, u"1.00M"_qs);
    row(1'234'567, u"1.23M"_qs);
    row(8'125'000, u"8.12M"_qs);
    row(8'375'000, u"8.38M"_qs);
    row(999'999'999, u"1000.00M"_qs);
    row(1'234'567'890'123, u"1234567.89M"_qs);
    row(most, u"9223372036854.78M"_qs);
    row(-1, u"-1"_qs);
    row(-9'999, u"-9,999"_qs);
    row(-1'234'567, u"-1,234,567"_qs);
    row(least, u"-9,223,372,036,854,775,808"_qs);
}

void FormatTest::tokens()
{
    QFETCH(qint64, count);
    QTEST(fmtTokens(count, QLocale(QLocale::English, QLocale::UnitedStates)), "text");
}

void FormatTest::smallCountsAreGroupedAsTheLocaleDoes_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    QLocale ungrouped(QLocale::English);
    ungrouped.setNumberOptions(QLocale::OmitGroupSeparator);
    QTest::newRow("English") << QLocale(QLocale::English) << u"9,999"_qs;
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany) << u"9.999"_qs;
    QTest::newRow("Swiss") << QLocale(QLocale::German, QLocale::Switzerland) << u"9’999"_qs;
    QTest::newRow("French") << QLocale(QLocale::French, QLocale::France) << u"9\u202f999"_qs;
    QTest::newRow("C has a comma") << QLocale(QLocale::C) << u"9,999"_qs;
    QTest::newRow("grouping switched off") << ungrouped << u"9,999"_qs;
}

void FormatTest::smallCountsAreGroupedAsTheLocaleDoes()
{
    QFETCH(QLocale, locale);
    QTEST(fmtTokens(9'999, locale), "text");
}

void FormatTest::countsAreGroupedInTheUsersLocaleByDefault()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString german = fmtTokens(9'999);
    QLocale::setDefault(before);
    QCOMPARE(german, u"9.999"_qs);
    QCOMPARE(fmtTokens(9'999), u"9,999"_qs);
}

void FormatTest::durations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    const auto row = [](double seconds, const QString &text) {
        QTest::addRow("%.17g", seconds) << seconds << text;
    };
    row(0, u"0s"_qs);
    row(-0.9, u"0s"_qs);
    row(0.999, u"0s"_qs);
    row(5, u"5s"_qs);
    row(59, u"59s"_qs);
    row(59.9, u"59s"_qs);
    row(59.999999999, u"59s"_qs);
    row(60, u"1m 0s"_qs);
    row(125, u"2m 5s"_qs);
    row(3'599, u"59m 59s"_qs);
    row(3'599.999, u"59m 59s"_qs);
    row(3'600, u"1h 0m"_qs);
    row(3'659, u"1h 0m"_qs);
    row(3'725, u"1h 2m"_qs);
    row(86'400, u"24h 0m"_qs);
    row(360'000'000, u"100000h 0m"_qs);
    row(-1, u"-1s"_qs);
    row(-5.9, u"-5s"_qs);
    row(-3'725, u"-3725s"_qs);
}

void FormatTest::durations()
{
    QFETCH(double, seconds);
    QTEST(fmtDuration(seconds), "text");
}

void FormatTest::costs_data()
{
    QTest::addColumn<double>("dollars");
    QTest::addColumn<QString>("text");
    const auto row = [](double dollars, const QString &text) {
        QTest::addRow("%.17g", dollars) << dollars << text;
    };
    row(0, u"$0.00"_qs);
    row(0.004, u"$0.00"_qs);
    row(0.005, u"$0.01"_qs); // as a double a little more than that
    row(0.015, u"$0.01"_qs); // and this a little less
    row(1.005, u"$1.00"_qs);
    row(8.125, u"$8.12"_qs); // an exact tie goes to the even digit
    row(8.375, u"$8.38"_qs);
    row(0.125, u"$0.12"_qs);
    row(7.35, u"$7.35"_qs);
    row(999.995, u"$1000.00"_qs);
    row(1234567.891, u"$1234567.89"_qs);
    row(1e21, u"$1000000000000000000000.00"_qs);
    row(-1.5, u"$-1.50"_qs);
    row(-0.001, u"$-0.00"_qs);
}

void FormatTest::costs()
{
    QFETCH(double, dollars);
    QTEST(fmtCost(dollars), "text");
}

void FormatTest::costsRoundAsTheCLibraryDoes()
{
    QRandomGenerator random(1);
    for (int i = 0; i < 20'000; ++i) {
        // Thousandths and eighths have many ties; the third kind is any finite double there is.
        const double number = i % 3 == 0   ? random.bounded(2'000'000) / 1'000.0
                              : i % 3 == 1 ? random.bounded(16'000) / 8.0
                                           : std::bit_cast<double>(random.generate64());
        if (std::isfinite(number))
            QCOMPARE(fmtCost(number), printed("$%.2f", number));
    }
    const double largest = std::numeric_limits<double>::max();
    QCOMPARE(fmtCost(-largest), printed("$%.2f", -largest));
}

void FormatTest::theLocaleChangesNeitherCostsNorLargeCounts()
{
    const QLocale before;
    const QByteArray cBefore = std::setlocale(LC_ALL, nullptr);
    // Whichever of these this machine knows has a comma; the Qt locale has one in any case.
    for (const char *name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "fr_FR"}) {
        if (std::setlocale(LC_ALL, name))
            break;
    }
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QStringList texts{fmtCost(1.5), fmtTokens(12'345), fmtTokens(1'234'567)};
    std::setlocale(LC_ALL, cBefore.constData());
    QLocale::setDefault(before);
    QCOMPARE(texts, QStringList({u"$1.50"_qs, u"12.3k"_qs, u"1.23M"_qs}));
}

PLINTHAR_TEST_MAIN(FormatTest)
#include "FormatTest.moc"
