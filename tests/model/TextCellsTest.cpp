// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/TextCells.h"

#include "support/TestMain.h"

#include <QRandomGenerator>

namespace {

QList<TextCell> cellsOf(const QString &text)
{
    QList<TextCell> cells;
    TextCells walk(text);
    while (const std::optional<TextCell> cell = walk.next())
        cells.append(*cell);
    return cells;
}

/// Kind and columns of every cell: "P1" is a plain character, "W2" an ideograph, and so on.
QString shapeOf(const QString &text)
{
    QStringList shape;
    for (const TextCell &cell : cellsOf(text))
        shape.append(QChar(u"PNWJSBX"_qs[int(cell.kind)]) + QString::number(cell.columns));
    return shape.join(u' ');
}

/// Text of everything that is hard: the characters are drawn from all kinds.
QString randomText(QRandomGenerator &random, int length)
{
    static const QStringList pieces{u"a"_qs,      u" "_qs,           u"\t"_qs,     u"\u4e2d"_qs,
                                    u"\u0301"_qs, u"\u200d"_qs,      u"\u202e"_qs, u"\u05d0"_qs,
                                    u"\u0628"_qs, u"\U0001f468"_qs,  u"\ufe0f"_qs, u"\r"_qs,
                                    u"\u0915"_qs, u"\U0001f1e9"_qs,  u"\u00e9"_qs, u"1"_qs,
                                    u"\u20e3"_qs, QString(QChar(0)), u"\uac00"_qs, u"_"_qs,
                                    u"\u3000"_qs, u"\U0001f3fd"_qs,  QChar(0xd800)};
    QString text;
    while (text.size() < length)
        text += pieces[random.bounded(int(pieces.size()))];
    return text;
}

} // namespace

class TextCellsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesColumns_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shape");
        QTest::newRow("nothing") << u""_qs << u""_qs;
        QTest::newRow("ascii") << u"a b"_qs << u"P1 P1 P1"_qs;
        QTest::newRow("tab at the beginning") << u"\tx"_qs << u"B8 P1"_qs;
        QTest::newRow("tab after three") << u"abc\tx"_qs << u"P1 P1 P1 B5 P1"_qs;
        QTest::newRow("tab after eight") << u"abcdefgh\t"_qs << u"P1 P1 P1 P1 P1 P1 P1 P1 B8"_qs;
        QTest::newRow("tab after an ideograph") << u"\u4e2d\t"_qs << u"W2 B6"_qs;
        QTest::newRow("precomposed letter") << u"\u00e9"_qs << u"N1"_qs;
        QTest::newRow("combining mark") << u"e\u0301x"_qs << u"J1 P1"_qs;
        QTest::newRow("two marks") << u"o\u0302\u0323"_qs << u"J1"_qs;
        QTest::newRow("mark without a letter") << u"\u0301"_qs << u"N1"_qs;
        QTest::newRow("ideographs") << u"\u4e2d\u6587"_qs << u"W2 W2"_qs;
        QTest::newRow("ideograph beyond the first plane") << u"\U00020000"_qs << u"W2"_qs;
        QTest::newRow("hangul") << u"\uac00"_qs << u"W2"_qs;
        QTest::newRow("fullwidth letter") << u"\uff21"_qs << u"W2"_qs;
        QTest::newRow("emoji") << u"\U0001f600!"_qs << u"W2 P1"_qs;
        QTest::newRow("skin tone") << u"\U0001f44d\U0001f3fd"_qs << u"J2"_qs;
        QTest::newRow("family") << u"\U0001f468\u200d\U0001f469\u200d\U0001f467x"_qs << u"J2 P1"_qs;
        QTest::newRow("flags") << u"\U0001f1e9\U0001f1ea\U0001f1eb\U0001f1f7"_qs << u"J2 J2"_qs;
        QTest::newRow("heart as emoji") << u"\u2764\ufe0f"_qs << u"J2"_qs;
        QTest::newRow("keycap") << u"1\ufe0f\u20e3"_qs << u"J2"_qs;
        QTest::newRow("hebrew") << u"\u05d0\u05d1"_qs << u"S1 S1"_qs;
        QTest::newRow("arabic") << u"\u0628\u064e"_qs << u"S1"_qs;
        QTest::newRow("devanagari") << u"\u0928\u093f"_qs << u"S1"_qs;
        QTest::newRow("escape") << u"\u001b[0m"_qs << u"X4 P1 P1 P1"_qs;
        QTest::newRow("carriage return") << u"a\r"_qs << u"P1 X3"_qs;
        QTest::newRow("null") << QString(QChar(0)) << u"X4"_qs;
        QTest::newRow("override") << u"\u202ea"_qs << u"X4 P1"_qs;
        QTest::newRow("isolate") << u"\u2066"_qs << u"X4"_qs;
        QTest::newRow("byte-order mark") << u"\ufeffa"_qs << u"X4 P1"_qs;
        QTest::newRow("line separator") << u"a\u2028b"_qs << u"P1 X3 P1"_qs;
        QTest::newRow("hidden between letters") << u"a\u200db"_qs << u"P1 X4 P1"_qs;
        QTest::newRow("hidden tag") << u"a\U000e0041"_qs << u"P1 X6"_qs;
        QTest::newRow("half a character") << QString(QChar(0xd83d)) + u'a' << u"X5 P1"_qs;
        QTest::newRow("other half") << u'a' + QString(QChar(0xdc00)) << u"P1 X5"_qs;
    }

    void takesColumns()
    {
        QFETCH(QString, text);
        QTEST(shapeOf(text), "shape");
    }

    void namesWhatIsNotToBeSeen()
    {
        QCOMPARE(signName(0), u"NUL"_qs);
        QCOMPARE(signName(0x1b), u"ESC"_qs);
        QCOMPARE(signName(0x7f), u"DEL"_qs);
        QCOMPARE(signName(0x202e), u"RLO"_qs);
        QCOMPARE(signName(0x9b), u"9B"_qs);
        QCOMPARE(signName(0xd83d), u"D83D"_qs);
        QCOMPARE(signName(0xe0041), u"E0041"_qs);
    }

    void putsNamesIntoTextOfOneLine()
    {
        QCOMPARE(visibleText(u"src/a b.cpp"_qs), u"src/a b.cpp"_qs);
        QCOMPARE(visibleText(u"a\nb\tc"_qs), u"a[LF]b[TAB]c"_qs);
        QCOMPARE(visibleText(u"cod\u202egpj.exe"_qs), u"cod[RLO]gpj.exe"_qs);
        QCOMPARE(visibleText(u"e\u0301\u4e2d\U0001f600"_qs), u"e\u0301\u4e2d\U0001f600"_qs);
    }

    void aPileOfMarksIsCutIntoPieces()
    {
        const QString pile = u'a' + QString(1'000'000, QChar(0x301));
        qsizetype longest = 0;
        for (const TextCell &cell : cellsOf(pile))
            longest = std::max(longest, cell.end - cell.begin);
        QVERIFY(longest <= 64);
    }

    void plainIsWhatIsPrintable()
    {
        QVERIFY(isPlain(u""));
        QVERIFY(isPlain(u" ~az"));
        for (const QString &text : {u"\t"_qs, u"\x7f"_qs, u"\u00e9"_qs, u"\r"_qs})
            QVERIFY(!isPlain(text));
    }

    void cellsMakeUpTheText()
    {
        QRandomGenerator random(1);
        for (int round = 0; round < 2000; ++round) {
            const QString text = randomText(random, 1 + random.bounded(600));
            qsizetype offset = 0;
            qsizetype column = 0;
            for (const TextCell &cell : cellsOf(text)) {
                QCOMPARE(cell.begin, offset);
                QCOMPARE(cell.column, column);
                QVERIFY(cell.end > cell.begin && cell.columns > 0);
                // No character is torn.
                QVERIFY(cell.end == text.size() || !text[cell.end].isLowSurrogate() ||
                        !text[cell.end - 1].isHighSurrogate());
                offset = cell.end;
                column += cell.columns;
            }
            QCOMPARE(offset, text.size());
        }
    }

    void runsMakeUpTheText()
    {
        QRandomGenerator random(2);
        for (int round = 0; round < 2000; ++round) {
            const QString text = randomText(random, 1 + random.bounded(600));
            qsizetype offset = 0;
            qsizetype column = 0;
            for (const TextRun &run : textRuns(text, {}, 1 << 30)) {
                QCOMPARE(run.begin, offset);
                QCOMPARE(run.column, column);
                offset = run.end;
                column += run.columns;
            }
            QCOMPARE(offset, text.size());
            QCOMPARE(column, cellsOf(text).constLast().column + cellsOf(text).constLast().columns);
        }
    }

    void wordsOfAPhraseStandTogether()
    {
        const QString text = u"a = \"\u05d0\u05d1 \u05d2\" + \"\u05d3\""_qs;
        QStringList runs;
        for (const TextRun &run : textRuns(text, {}, 1000)) {
            if (run.rightToLeft)
                runs.append(text.sliced(run.begin, run.end - run.begin));
        }
        // The blank belongs to the phrase, the quotation marks do not: what they enclose stays
        // where it stands in the code.
        QCOMPARE(runs, (QStringList{u"\u05d0\u05d1 \u05d2"_qs, u"\u05d3"_qs}));
    }
};

PLINTHAR_TEST_MAIN(TextCellsTest)

#include "TextCellsTest.moc"
