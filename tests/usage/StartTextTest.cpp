// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/StartText.h"

#include "support/TestMain.h"

#include <QDateTime>

namespace {

TimePoint at(const QDateTime &time)
{
    return TimePoint(std::chrono::milliseconds(time.toMSecsSinceEpoch()));
}

/// A Thursday afternoon in local time.
const QDateTime thursday(QDate(2026, 3, 5), QTime(21, 37, 58));

QString textOf(const QDateTime &time, const QLocale &locale)
{
    return startText(at(time), locale, mediumDateTimeFormat(locale));
}

QList<QLocale> everyLocale()
{
    return QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                    QLocale::AnyTerritory);
}

} // namespace

class StartTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesItAsTheLocaleDoes_data()
    {
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *locale, const QString &expected) {
            QTest::newRow(locale) << expected;
        };
        row("C", u"5 Mar 2026, 21:37"_qs);
        row("en_US", u"Mar 5, 2026, 9:37 PM"_qs);
        row("en_GB", u"5 Mar 2026, 21:37"_qs);
        row("de_DE", u"5. M\u00e4rz 2026, 21:37"_qs);
        row("fr_FR", u"5 mars 2026, 21:37"_qs);
        row("es_ES", u"5 de mar de 2026, 21:37"_qs);
        row("it_IT", u"5 mar 2026, 21:37"_qs);
        row("nl_NL", u"5 mrt. 2026, 21:37"_qs);
        row("pl_PL", u"5 mar 2026, 21:37"_qs);
        row("sv_SE", u"5 mars 2026, 21:37"_qs);
        row("fi_FI", u"5. maalisk. 2026, 21.37"_qs);
        row("ru_RU", u"5 \u043c\u0430\u0440. 2026 \u0433., 21:37"_qs);
        row("ja_JP", u"2026\u5e743\u67085\u65e5, 21:37"_qs);
        row("zh_CN", u"2026\u5e743\u67085\u65e5, 21:37"_qs);
        row("ko_KR", u"2026\ub144 3\uc6d4 5\uc77c, \uc624\ud6c4 9:37"_qs);
    }

    void writesItAsTheLocaleDoes()
    {
        QFETCH(QString, expected);
        const QLocale locale(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(textOf(thursday, locale), expected);
    }

    void everyLocaleNamesNoDayOfTheWeek()
    {
        for (const QLocale &locale : everyLocale()) {
            const QString text = textOf(thursday, locale);
            for (const QLocale::FormatType length : {QLocale::LongFormat, QLocale::ShortFormat}) {
                const QString day = locale.dayName(Qt::Thursday, length);
                if (day.size() > 2) // shorter ones occur inside other words
                    QVERIFY2(!text.contains(day), qPrintable(locale.name() + u": "_qs + text));
            }
            QVERIFY2(!text.contains(u"dd") && text == text.trimmed(),
                     qPrintable(locale.name() + u": "_qs + text));
        }
    }

    /// Two moments that differ in a minute or more look different, two of the same minute alike.
    void everyLocaleTellsMinutesAndNotSeconds()
    {
        for (const QLocale &locale : everyLocale()) {
            const QString text = textOf(thursday, locale);
            const auto message = qPrintable(locale.name() + u": "_qs + text);
            QVERIFY2(textOf(thursday.addSecs(-58), locale) == text, message);
            QVERIFY2(textOf(thursday.addSecs(60), locale) != text, message);
            QVERIFY2(textOf(thursday.addSecs(-3600), locale) != text, message);
            QVERIFY2(textOf(thursday.addSecs(-12 * 3600), locale) != text, message);
            QVERIFY2(textOf(thursday.addDays(1), locale) != text, message);
            QVERIFY2(textOf(thursday.addMonths(1), locale) != text, message);
            QVERIFY2(textOf(thursday.addYears(1), locale) != text, message);
        }
    }

    void arabicHasItsParts()
    {
        const QLocale locale(u"ar_EG"_qs);
        const QString text = textOf(thursday, locale);
        for (const int number : {2026, 5, 37})
            QVERIFY2(text.contains(locale.toString(number).remove(locale.groupSeparator())),
                     qPrintable(text));
        QVERIFY(text.contains(locale.monthName(3, QLocale::ShortFormat)));
        QVERIFY(!text.contains(locale.dayName(Qt::Thursday)));
    }

    void isInTheUsersTimeZone()
    {
        const QLocale locale(QLocale::English, QLocale::UnitedStates);
        const TimePoint instant = at(QDateTime(QDate(2026, 3, 5), QTime(23, 30), Qt::UTC));
        const QString format = mediumDateTimeFormat(locale);
        qputenv("TZ", "UTC-2");
        QCOMPARE(startText(instant, locale, format), u"Mar 6, 2026, 1:30 AM"_qs);
        qputenv("TZ", "UTC+5");
        QCOMPARE(startText(instant, locale, format), u"Mar 5, 2026, 6:30 PM"_qs);
        qunsetenv("TZ");
    }
};

PLINTHAR_TEST_MAIN(StartTextTest)
#include "StartTextTest.moc"
