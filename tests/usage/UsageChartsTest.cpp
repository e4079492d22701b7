// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/UsageCharts.h"

#include "model/PriceStore.h"
#include "support/TestMain.h"

#include <QDateTime>

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);

DayUsage day(const QDate &date, const QTimeZone &zone, qint64 tokens = 0, double cost = 0)
{
    return {TimePoint(std::chrono::milliseconds(date.startOfDay(zone).toMSecsSinceEpoch())), tokens,
            cost};
}

Session sessionWith(const UsageRecord &record)
{
    Session session;
    session.records = {record};
    return session;
}

QString places(const ChartContents &chart)
{
    QStringList texts;
    for (const ChartBar &bar : chart.bars)
        texts.append(QString::number(bar.place));
    return texts.join(u' ');
}

QString labels(const ChartContents &chart)
{
    QStringList texts;
    for (const ChartContents::Label &label : chart.labels)
        texts.append(label.text);
    return texts.join(QStringLiteral(" | "));
}

} // namespace

class UsageChartsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dayTellsEverything()
    {
        const QList<DayUsage> days{day({2026, 3, 5}, QTimeZone::utc(), 1'234'567, 12.345)};
        const ChartBar tokens =
            dayChart(days, Measure::Tokens, QTimeZone::utc(), english).bars.constFirst();
        QCOMPARE(tokens.name, QStringLiteral("Thursday, March 5, 2026"));
        QCOMPARE(tokens.figures, QStringLiteral("1,234,567 tokens \u00b7 $12.35"));
        QCOMPARE(tokens.value, 1'234'567.0);
        const ChartBar cost =
            dayChart(days, Measure::Cost, QTimeZone::utc(), english).bars.constFirst();
        QCOMPARE(cost.figures, QStringLiteral("$12.35 \u00b7 1,234,567 tokens"));
        QCOMPARE(cost.value, 12.345);
    }

    void oneTokenIsSingular()
    {
        const QList<ProjectUsage> one{{QStringLiteral("app"), 1, 0}};
        QCOMPARE(projectChart(one, Measure::Tokens, english).bars.constFirst().figures,
                 QStringLiteral("1 token \u00b7 $0.00"));
    }

    /// Days of 23 and 25 hours are as wide as the others.
    void daysAreEquallyFarApart()
    {
        for (const QDate first : {QDate(2026, 3, 28), QDate(2026, 10, 24)}) {
            const QTimeZone berlin("Europe/Berlin");
            QList<DayUsage> days;
            for (int i = 0; i < 4; ++i)
                days.append(day(first.addDays(i), berlin));
            QCOMPARE(places(dayChart(days, Measure::Tokens, berlin, english)),
                     QStringLiteral("0 1 2 3"));
        }
    }

    void daysAheadKeepTheirDistanceUnlessItIsLong()
    {
        const QTimeZone utc = QTimeZone::utc();
        const QList<DayUsage> days{day({2026, 3, 5}, utc), day({2026, 3, 6}, utc),
                                   day({2026, 3, 9}, utc), day({2099, 1, 1}, utc),
                                   day({2099, 1, 2}, utc)};
        const ChartContents chart = dayChart(days, Measure::Tokens, utc, english);
        QCOMPARE(places(chart), QStringLiteral("0 1 4 6 7"));
        QCOMPARE(labels(chart), QStringLiteral("Mar 5 | Mar 6 | Mar 9 | Jan 1 2099 | Jan 2 2099"));
    }

    void axisDatesInManyLanguages_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *locale, const char *expected) {
            QTest::newRow(locale) << QString::fromLatin1(locale) << QString::fromUtf8(expected);
        };
        row("C", "5 Mar");
        row("en_US", "Mar 5");
        row("en_GB", "5 Mar");
        row("de_DE", "5. März");
        row("fr_FR", "5 mars");
        row("es_ES", "5 de mar");
        row("pt_BR", "5 de mar.");
        row("ja_JP", "3月5日");
        row("zh_CN", "3月5日");
        row("ko_KR", "3월 5일");
        row("sv_SE", "5 mars");
        row("ru_RU", "5 мар.");
        row("hu_HU", "márc. 5.");
        row("lt_LT", "kov. 5");
    }

    void axisDatesInManyLanguages()
    {
        QFETCH(QString, locale);
        QFETCH(QString, expected);
        const QList<DayUsage> days{day({2026, 3, 5}, QTimeZone::utc())};
        QCOMPARE(labels(dayChart(days, Measure::Tokens, QTimeZone::utc(), QLocale(locale))),
                 expected);
    }

    /// Whatever the language: short, with the day, without the year, and never empty.
    void axisDatesInAllLanguages()
    {
        const QList<DayUsage> days{day({2026, 3, 25}, QTimeZone::utc())};
        const auto all =
            QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
        for (const QLocale &locale : all) {
            const QString text = labels(dayChart(days, Measure::Tokens, QTimeZone::utc(), locale));
            const QString about =
                locale.name() + u' ' + text + u' ' + locale.dateFormat(QLocale::LongFormat);
            QVERIFY2(!text.isEmpty() && text.size() < 30, qPrintable(about));
            QVERIFY2(text.contains(locale.toString(QDate(2026, 3, 25), QStringLiteral("d"))),
                     qPrintable(about));
            QVERIFY2(!text.contains(locale.toString(QDate(2026, 3, 25), QStringLiteral("yyyy"))),
                     qPrintable(about));
        }
    }

    void projectsOfOneNameShareAPlace()
    {
        const QList<ProjectUsage> projects{{QStringLiteral("app"), 10, 3},
                                           {QStringLiteral("lib"), 20, 2},
                                           {QStringLiteral("app"), 30, 1}};
        const ChartContents chart = projectChart(projects, Measure::Cost, english);
        QCOMPARE(places(chart), QStringLiteral("0 1 0"));
        QCOMPARE(labels(chart), QStringLiteral("app | lib"));
    }

    void namesStandOnOneLine()
    {
        const QList<ProjectUsage> projects{{QStringLiteral("a\nb\tc\u2028d \U0001f600"), 1, 1}};
        QCOMPARE(labels(projectChart(projects, Measure::Cost, english)),
                 QStringLiteral("a b c d \U0001f600"));
    }

    void bothScopesAreThere()
    {
        const TimePoint now = currentTime();
        const UsageRecord record{.date = now, .model = {}, .input = 5};
        UsageInput input{
            .projects = {{QStringLiteral("/a/x"), {}, false}, {QStringLiteral("/a/y"), {}, false}},
            .sessions = {},
            .prices = PriceStore::defaults(),
            .path = QStringLiteral("/a/x"),
            .now = now};
        for (const Project &project : std::as_const(input.projects))
            input.sessions.insert(project.path, {sessionWith(record)});
        const UsageCharts charts = makeUsageCharts(input, english);
        QCOMPARE(charts.days(false).total.tokens, 5);
        QCOMPARE(charts.days(true).total.tokens, 10);
        QCOMPARE(charts.project.tokens.bars.constLast().value, 5.0);
        QCOMPARE(charts.all.tokens.bars.constLast().value, 10.0);
        QCOMPARE(charts.projectCount, 2);
        QVERIFY(!charts.project.isEmpty);
    }
};

PLINTHAR_TEST_MAIN(UsageChartsTest)
#include "UsageChartsTest.moc"
