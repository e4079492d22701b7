// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/ValueScale.h"

#include "support/TestMain.h"

#include <QRandomGenerator>

#include <cmath>
#include <limits>

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);

} // namespace

class ValueScaleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void labels_data()
    {
        QTest::addColumn<Measure>("measure");
        QTest::addColumn<double>("lowest");
        QTest::addColumn<double>("highest");
        QTest::addColumn<QString>("labels");
        const auto row = [](const char *name, Measure measure, double lowest, double highest,
                            const char *labels) {
            QTest::newRow(name) << measure << lowest << highest << QString::fromLatin1(labels);
        };
        row("no tokens", Measure::Tokens, 0, 0, "0");
        row("one token", Measure::Tokens, 0, 1, "0 1");
        row("few tokens", Measure::Tokens, 0, 4, "0 1 2 3 4");
        row("hundreds", Measure::Tokens, 0, 870, "0 200 400 600 800 1,000");
        row("thousands", Measure::Tokens, 0, 4'300, "0 1,000 2,000 3,000 4,000 5,000");
        row("up to ten thousand", Measure::Tokens, 0, 9'300, "0 2k 4k 6k 8k 10k");
        row("ten thousands", Measure::Tokens, 0, 43'000, "0 10k 20k 30k 40k 50k");
        row("fractions of thousands", Measure::Tokens, 0, 12'000, "0 5k 10k 15k");
        row("millions", Measure::Tokens, 0, 4'200'000, "0 1M 2M 3M 4M 5M");
        row("fractions of millions", Measure::Tokens, 0, 1'000'000, "0 0.2M 0.4M 0.6M 0.8M 1.0M");
        row("thousands of millions", Measure::Tokens, 0, 4.5e9,
            "0 1,000M 2,000M 3,000M 4,000M 5,000M");
        row("no dollars", Measure::Cost, 0, 0, "$0");
        row("cents", Measure::Cost, 0, 0.93, "$0 $0.20 $0.40 $0.60 $0.80 $1.00");
        row("dollars and cents", Measure::Cost, 0, 2.3, "$0 $0.50 $1.00 $1.50 $2.00 $2.50");
        row("dollars", Measure::Cost, 0, 24, "$0 $5 $10 $15 $20 $25");
        row("hundreds of dollars", Measure::Cost, 0, 1'900, "$0 $500 $1,000 $1,500 $2,000");
        row("less than a cent", Measure::Cost, 0, 0.0043, "$0 $0.001 $0.002 $0.003 $0.004 $0.005");
        row("many dollars", Measure::Cost, 0, 48'000, "$0 $10k $20k $30k $40k $50k");
        row("below zero", Measure::Cost, -18, 0, "-$20 -$15 -$10 -$5 $0");
        row("on both sides of zero", Measure::Cost, -18, 22, "-$20 -$10 $0 $10 $20 $30");
    }

    void labels()
    {
        QFETCH(Measure, measure);
        QFETCH(double, lowest);
        QFETCH(double, highest);
        QFETCH(QString, labels);
        const ValueScale scale = makeValueScale(lowest, highest, 6, measure, english);
        QCOMPARE(scale.labels.join(u' '), labels);
    }

    void groupsAsTheLocaleDoes()
    {
        const QLocale german(QLocale::German, QLocale::Germany);
        QCOMPARE(makeValueScale(0, 4'300, 6, Measure::Tokens, german).labels.constLast(),
                 QStringLiteral("5.000"));
        // Where the locale has no way of its own there are commas.
        QCOMPARE(makeValueScale(0, 4'300, 6, Measure::Tokens, QLocale::c()).labels.constLast(),
                 QStringLiteral("5,000"));
    }

    /// Thousands and dollars have European digits in every language, as they have elsewhere in the
    /// window; other numbers have the language's.
    void oneScaleHasOneKindOfDigits()
    {
        const QLocale arabic(QLocale::Arabic, QLocale::Egypt);
        const auto labels = [&arabic](double highest, Measure measure) {
            return makeValueScale(0, highest, 3, measure, arabic).labels.join(u' ');
        };
        QCOMPARE(labels(400'000, Measure::Tokens), QStringLiteral("0 200k 400k"));
        QCOMPARE(labels(20, Measure::Cost), QStringLiteral("$0 $10 $20"));
        QCOMPARE(labels(20, Measure::Tokens), QStringLiteral("٠ ١٠ ٢٠"));
    }

    /// Whatever the numbers: no more ticks than wanted, at equal distances, around all the bars.
    void holdsForAnyNumbers()
    {
        QRandomGenerator random(7);
        for (int round = 0; round < 20'000; ++round) {
            const double size = std::pow(10, random.bounded(24) - 6);
            const double highest = random.generateDouble() * size;
            const double lowest = random.bounded(4) == 0 ? -random.generateDouble() * size : 0;
            const int mostTicks = random.bounded(2, 8);
            const Measure measure = random.bounded(2) == 0 ? Measure::Tokens : Measure::Cost;
            const ValueScale scale = makeValueScale(lowest, highest, mostTicks, measure, english);
            QVERIFY(scale.lower < scale.upper);
            QVERIFY(scale.lower <= lowest && highest <= scale.upper);
            QCOMPARE(scale.ticks.size(), scale.labels.size());
            QVERIFY(scale.ticks.size() >= 2);
            QVERIFY(scale.ticks.size() <= std::max(mostTicks, lowest < 0 ? 3 : 2));
            QVERIFY(scale.ticks.contains(0.0));
            const double step = scale.ticks[1] - scale.ticks[0];
            for (qsizetype i = 1; i < scale.ticks.size(); ++i)
                QVERIFY(std::abs(scale.ticks[i] - scale.ticks[i - 1] - step) < step * 1e-6);
            QStringList distinct = scale.labels;
            distinct.removeDuplicates();
            QCOMPARE(distinct.size(), scale.labels.size());
        }
    }

    void absurdNumbers_data()
    {
        QTest::addColumn<double>("lowest");
        QTest::addColumn<double>("highest");
        constexpr double infinity = std::numeric_limits<double>::infinity();
        QTest::newRow("infinite") << -infinity << infinity;
        QTest::newRow("not a number") << std::nan("") << std::nan("");
        QTest::newRow("huge") << -1e308 << 1e308;
        QTest::newRow("tiny") << 0.0 << 5e-324;
        QTest::newRow("most tokens") << 0.0 << 9.3e18;
    }

    void absurdNumbers()
    {
        QFETCH(double, lowest);
        QFETCH(double, highest);
        for (const Measure measure : {Measure::Tokens, Measure::Cost}) {
            const ValueScale scale = makeValueScale(lowest, highest, 6, measure, english);
            QVERIFY(std::isfinite(scale.lower) && std::isfinite(scale.upper));
            QVERIFY(scale.lower < scale.upper);
            QVERIFY(!scale.ticks.isEmpty() && scale.ticks.size() <= 6);
            for (const QString &label : scale.labels)
                QVERIFY2(label.size() < 16, qPrintable(label));
        }
    }
};

PLINTHAR_TEST_MAIN(ValueScaleTest)
#include "ValueScaleTest.moc"
