// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/LineLayout.h"

#include "support/TestMain.h"

#include <QRandomGenerator>

namespace {

QString described(const QList<std::pair<qsizetype, qsizetype>> &ranges)
{
    QStringList list;
    for (const auto &[begin, end] : ranges)
        list.append(u"%1-%2"_qs.arg(begin).arg(end));
    return list.join(u' ');
}

QString randomLine(QRandomGenerator &random, int length)
{
    static const QStringList pieces{
        u"word "_qs,      u"\t"_qs,    u"\u4e2d\u6587"_qs, u"e\u0301"_qs, u"\u05d0\u05d1 \u05d2"_qs,
        u"\U0001f600"_qs, u"\u202e"_qs};
    QString text;
    while (text.size() < length)
        text += pieces[random.bounded(int(pieces.size()))];
    return text;
}

} // namespace

class LineLayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void plainTextHasItsOffsetsForColumns()
    {
        const LineLayout line(u"hello");
        QCOMPARE(line.columns(), 5);
        QCOMPARE(line.caretColumn(3), 3);
        QCOMPARE(line.offsetAt(2.4), 2);
        QCOMPARE(line.offsetAt(2.6), 3);
        QCOMPARE(line.offsetAt(-7), 0);
        QCOMPARE(line.offsetAt(1e18), 5);
    }

    void onlyWhatIsSeenIsDrawn()
    {
        const QString text(2'000'000, u'x');
        const LineIndex index = indexOf(text);
        const LineLayout line(text, &index);
        const QList<TextRun> runs = line.runs(1'000'000, 1'000'100);
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs[0].begin, 1'000'000);
        QCOMPARE(runs[0].end, 1'000'100);
        QVERIFY(line.runs(3'000'000, 3'000'100).isEmpty());
    }

    void ofALongLineOnlyAPartIsLookedAt()
    {
        const QString text = QString(u"\u4e2d"_qs).repeated(2'000'000);
        const LineIndex index = indexOf(text);
        QCOMPARE(index.columns, 4'000'000);
        const LineLayout line(text, &index);
        qsizetype characters = 0;
        for (const TextRun &run : line.runs(2'000'000, 2'000'100))
            characters += run.end - run.begin;
        QVERIFY(characters >= 50);
        QVERIFY(characters < 1000);
    }

    void anyCharacterIsFound()
    {
        const LineLayout line(u"a\t\u4e2de\u0301b"); // columns 0, 1 to 7, 8 and 9, 10, 11
        QCOMPARE(line.columns(), 12);
        QCOMPARE(line.offsetAt(0.2), 0);
        QCOMPARE(line.offsetAt(3.0), 1); // the nearer end of the tab
        QCOMPARE(line.offsetAt(7.0), 2);
        QCOMPARE(line.offsetAt(8.9), 2);
        QCOMPARE(line.offsetAt(9.1), 3);
        QCOMPARE(line.offsetAt(10.2), 3);
        QCOMPARE(line.offsetAt(10.8), 5); // never between letter and mark
        QCOMPARE(line.caretColumn(5), 11);
        QCOMPARE(line.next(3), 5);
        QCOMPARE(line.previous(5), 3);
        QCOMPARE(line.next(6), 6);
        QCOMPARE(line.previous(0), 0);
    }

    void rightToLeftTextIsSeenFromTheRight()
    {
        const LineLayout line(u"a\u05d0\u05d1\u05d2b"); // seen as a, gimel, bet, alef, b
        QCOMPARE(line.caretColumn(1), 4);               // before alef, which is its right side
        QCOMPARE(line.caretColumn(2), 3);
        QCOMPARE(line.offsetAt(3.9), 1);
        QCOMPARE(line.offsetAt(3.1), 2);
        QCOMPARE(described(line.columnsOf(1, 2, 0, 10)), u"3-4"_qs);
        QCOMPARE(described(line.columnsOf(0, 2, 0, 10)), u"0-1 3-4"_qs);
        QCOMPARE(described(line.columnsOf(0, 5, 0, 10)), u"0-5"_qs);
    }

    void rangesAreCutToWhatIsSeen()
    {
        const LineLayout line(u"hello world");
        QCOMPARE(described(line.columnsOf(2, 11, 4, 8)), u"4-8"_qs);
        QCOMPARE(described(line.columnsOf(5, 6, 0, 100)), u"5-6"_qs);
    }

    void wordsAreFound_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("offset");
        QTest::addColumn<QString>("word");
        QTest::newRow("middle") << u"int main_2()"_qs << 6 << u"main_2"_qs;
        QTest::newRow("beginning") << u"int main"_qs << 0 << u"int"_qs;
        QTest::newRow("after the end") << u"int main"_qs << 8 << u"main"_qs;
        QTest::newRow("punctuation") << u"a != b"_qs << 2 << u"!"_qs;
        QTest::newRow("umlauts") << u"gr\u00fc\u00dfe x"_qs << 1 << u"gr\u00fc\u00dfe"_qs;
        QTest::newRow("emoji") << u"a\U0001f600b"_qs << 1 << u"\U0001f600"_qs;
        QTest::newRow("nothing") << u""_qs << 0 << u""_qs;
    }

    void wordsAreFound()
    {
        QFETCH(QString, text);
        QFETCH(int, offset);
        const auto [begin, end] = LineLayout(text).wordAt(offset);
        QTEST(text.sliced(begin, end - begin), "word");
    }

    /// A line looks the same through its index, and wherever one begins to look at it.
    void theIndexChangesNothing()
    {
        QRandomGenerator random(3);
        for (int round = 0; round < 20; ++round) {
            const QString text = randomLine(random, 3000);
            const LineIndex index = indexOf(text);
            const LineLayout line(text, &index);
            QCOMPARE(line.columns(), LineLayout(text).columns());
            const QList<TextRun> all = line.runs(0, line.columns());
            const qsizetype from = random.bounded(int(line.columns()));
            for (const TextRun &run : line.runs(from, from + 80)) {
                const bool known = std::any_of(all.begin(), all.end(), [&run](const TextRun &r) {
                    return r.begin == run.begin && r.column == run.column &&
                           r.rightToLeft == run.rightToLeft &&
                           (r.end == run.end || run.kind == CellKind::Plain);
                });
                // Only the last run may end where nobody looks any more.
                QVERIFY(known || run.column + run.columns >= from + 80);
            }
        }
    }

    /// Where a caret is seen, there a click puts it.
    void caretAndClickAgree()
    {
        QRandomGenerator random(4);
        for (int round = 0; round < 20; ++round) {
            const QString text = randomLine(random, 700);
            const LineIndex index = indexOf(text);
            const LineLayout line(text, &index);
            for (const TextRun &run : line.runs(0, line.columns())) {
                if (run.rightToLeft)
                    continue; // at its ends a click may mean either side
                QCOMPARE(line.caretColumn(run.begin), run.column);
                QCOMPARE(line.offsetAt(double(run.column) + 0.1), run.begin);
            }
        }
    }

    void walkingForwardsAndBackwardsMeets()
    {
        QRandomGenerator random(5);
        const QString text = randomLine(random, 2000);
        const LineIndex index = indexOf(text);
        const LineLayout line(text, &index);
        for (qsizetype at = 0; at < text.size();) {
            const qsizetype next = line.next(at);
            QVERIFY(next > at);
            QCOMPARE(line.previous(next), at);
            at = next;
        }
    }
};

PLINTHAR_TEST_MAIN(LineLayoutTest)

#include "LineLayoutTest.moc"
