// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ForeignText.h"

#include "support/GuiTestMain.h"

#include <QFont>

class ForeignTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void whatIsNotSeenIsNamed_data();
    void whatIsNotSeenIsNamed();
    void linesStayLines_data();
    void linesStayLines();
    void aLineFitsItsWidth_data();
    void aLineFitsItsWidth();
    void theEndThatMattersStays();
    void noCharacterIsCutInTwo();
    void longWordsCanBeBroken();
};

void ForeignTextTest::whatIsNotSeenIsNamed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << u"a <b>&amp; c"_qs << u"a <b>&amp; c"_qs;
    QTest::newRow("right-to-left override") << u"a\u202eb"_qs << u"a[RLO]b"_qs;
    QTest::newRow("isolate") << u"\u2066x\u2069"_qs << u"[LRI]x[PDI]"_qs;
    QTest::newRow("zero width") << u"a\u200bb"_qs << u"a[ZWS]b"_qs;
    QTest::newRow("escape") << u"\033[31m"_qs << u"[ESC][31m"_qs;
    QTest::newRow("zero") << QString(QChar(0)) << u"[NUL]"_qs;
    QTest::newRow("line feed") << u"a\nb"_qs << u"a[LF]b"_qs;
    QTest::newRow("half a character") << QString(QChar(0xd83d)) << u"[D83D]"_qs;
    QTest::newRow("Hebrew") << u"\u05e9\u05dc\u05d5\u05dd"_qs << u"\u05e9\u05dc\u05d5\u05dd"_qs;
    QTest::newRow("joined emoji") << u"\U0001f469\u200d\U0001f4bb"_qs
                                  << u"\U0001f469\u200d\U0001f4bb"_qs;
    QTest::newRow("nothing") << QString() << QString();
}

void ForeignTextTest::whatIsNotSeenIsNamed()
{
    QFETCH(const QString, text);
    QFETCH(const QString, shown);
    QCOMPARE(ForeignText::title(text), shown);
    QCOMPARE(ForeignText::line(text, QFontMetrics(QFont()), 1000), shown);
    QCOMPARE(ForeignText::breakable(text), shown);
}

void ForeignTextTest::linesStayLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("lines") << u"\na\n\nb\n"_qs << u"\na\n\nb\n"_qs;
    QTest::newRow("tabs") << u"a\tb\t"_qs << u"a\tb\t"_qs;
    QTest::newRow("of other systems") << u"a\r\nb\r\n"_qs << u"a\nb\n"_qs;
    QTest::newRow("carriage return alone") << u"a\rb"_qs << u"a[CR]b"_qs;
    QTest::newRow("override") << u"a\n\u202eb"_qs << u"a\n[RLO]b"_qs;
    QTest::newRow("nothing") << QString() << QString();
}

void ForeignTextTest::linesStayLines()
{
    QFETCH(const QString, text);
    QTEST(ForeignText::lines(text), "shown");
}

void ForeignTextTest::aLineFitsItsWidth_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("letters") << u"letters"_qs.repeated(200'000);
    QTest::newRow("overrides") << u"\u202e"_qs.repeated(1'000'000);
    QTest::newRow("marks") << u"a"_qs + u"\u0301"_qs.repeated(1'000'000);
    QTest::newRow("line feeds") << u"\n"_qs.repeated(1'000'000);
    QTest::newRow("emoji") << u"\U0001f469\u200d\U0001f4bb"_qs.repeated(200'000);
    QTest::newRow("Hebrew") << u"\u05e9"_qs.repeated(1'000'000);
}

void ForeignTextTest::aLineFitsItsWidth()
{
    QFETCH(const QString, text);
    const QFontMetrics metrics{QFont()};
    for (const auto elide : {Qt::ElideRight, Qt::ElideLeft, Qt::ElideMiddle}) {
        // As often as a window full of such rows is painted in some seconds: were the whole text
        // laid out, this would take for ever.
        for (int i = 0; i < 50; ++i) {
            const QString line = ForeignText::line(text, metrics, 300, elide);
            QVERIFY(line.size() < 1000);
            QVERIFY(metrics.horizontalAdvance(line) <= 300);
        }
    }
    QVERIFY(ForeignText::lines(text).size() < 40'000);
}

void ForeignTextTest::theEndThatMattersStays()
{
    const QString path = u"/begin/"_qs + u"x"_qs.repeated(1'000'000) + u"/end"_qs;
    const QFontMetrics metrics{QFont()};
    QVERIFY(ForeignText::line(path, metrics, 300).startsWith(u"/begin/"));
    QVERIFY(ForeignText::line(path, metrics, 300).endsWith(u'\u2026'));
    QVERIFY(ForeignText::line(path, metrics, 300, Qt::ElideLeft).startsWith(u'\u2026'));
    QVERIFY(ForeignText::line(path, metrics, 300, Qt::ElideLeft).endsWith(u"/end"));
    const QString middle = ForeignText::line(path, metrics, 300, Qt::ElideMiddle);
    QVERIFY(middle.startsWith(u"/begin/") && middle.endsWith(u"/end"));
}

void ForeignTextTest::noCharacterIsCutInTwo()
{
    const QFontMetrics metrics{QFont()};
    for (int before = 0; before < 2; ++before) {
        const QString text =
            u"x"_qs.repeated(before) + u"\U0001f600"_qs.repeated(100'000) + u"y"_qs;
        for (const auto elide : {Qt::ElideRight, Qt::ElideLeft, Qt::ElideMiddle}) {
            for (const QString &shown : {ForeignText::line(text, metrics, 300, elide),
                                         ForeignText::lines(text, 1000, elide)})
                QVERIFY2(shown.isValidUtf16() && !shown.contains(u"[D"_qs), qPrintable(shown));
        }
        QVERIFY(ForeignText::breakable(text).isValidUtf16());
    }
}

void ForeignTextTest::longWordsCanBeBroken()
{
    const QString broken = ForeignText::breakable(u"x"_qs.repeated(100'000));
    const QStringList parts = broken.split(QChar(0x200b));
    QVERIFY(parts.size() > 10);
    for (const QString &part : parts)
        QVERIFY(part.size() <= 48);
}

PLINTHAR_GUI_TEST_MAIN(ForeignTextTest)
#include "ForeignTextTest.moc"
