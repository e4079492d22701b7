// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffSelection.h"

#include "review/DiffParser.h"
#include "support/TestMain.h"

namespace {

/// Rows: 0 the header, 1 a, 2 b and B, 3 nothing and C, 4 another header, 5 x and nothing.
const QString sample = QStringLiteral("@@ -1,2 +1,3 @@\n a\n-b\tb\n+B\u202e\n+C\n"
                                      "@@ -9 +10,0 @@\n-x\n");

DiffDocument document(const QString &text = sample)
{
    return DiffDocument(DiffParser::parse(text));
}

} // namespace

class DiffSelectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDocumentKnowsItsExtent()
    {
        const DiffDocument diff = document();
        QCOMPARE(diff.rowCount(), 6);
        QCOMPARE(diff.hunkRows(), (QList<qsizetype>{0, 4}));
        QCOMPARE(diff.hunksBefore(0), 0);
        QCOMPARE(diff.hunksBefore(4), 1);
        QCOMPARE(diff.hunksBefore(6), 2);
        QCOMPARE(diff.largestNumber(), 9);
        QCOMPARE(diff.widestLine(), 9); // b, a tab up to column 8, b
        QVERIFY(!diff.hasText(0, OldSide));
        QVERIFY(!diff.hasText(3, OldSide));
        QVERIFY(diff.hasText(3, NewSide));
    }

    void longLinesCountForTheExtent()
    {
        const DiffDocument diff = document(u"@@ -1 +1 @@\n-"_qs + QString(5000, u'a') + u"\n+"_qs +
                                           QString(4000, QChar(0x4e2d)) + u'\n');
        QCOMPARE(diff.widestLine(), 8000);
        QCOMPARE(diff.line(1, OldSide).columns(), 5000);
        QCOMPARE(diff.line(1, NewSide).columns(), 8000);
    }

    void copiesWithoutNumbersAndMarkers()
    {
        const DiffDocument diff = document();
        QCOMPARE(selectedText(diff, wholeSide(diff, OldSide)), u"a\nb\tb\nx"_qs);
        QCOMPARE(selectedText(diff, wholeSide(diff, NewSide)), u"a\nB\u202e\nC"_qs);
    }

    void copiesWhatIsSelected_data()
    {
        QTest::addColumn<int>("side");
        QTest::addColumn<QList<int>>("places"); // anchor row, offset, caret row, offset
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << int(OldSide) << QList{2, 1, 2, 1} << u""_qs;
        QTest::newRow("in a line") << int(OldSide) << QList{2, 1, 2, 3} << u"\tb"_qs;
        QTest::newRow("backwards") << int(OldSide) << QList{2, 3, 2, 1} << u"\tb"_qs;
        QTest::newRow("a line's end") << int(OldSide) << QList{1, 1, 2, 0} << u"\n"_qs;
        QTest::newRow("over an empty cell and a header")
            << int(OldSide) << QList{2, 2, 5, 1} << u"b\nx"_qs;
        QTest::newRow("to the beginning of a line")
            << int(NewSide) << QList{2, 0, 3, 0} << u"B\u202e\n"_qs;
    }

    void copiesWhatIsSelected()
    {
        QFETCH(int, side);
        QFETCH(QList<int>, places);
        const DiffSelection selection{
            DiffSide(side), {places[0], places[1]}, {places[2], places[3]}};
        QTEST(selectedText(document(), selection), "text");
    }

    void theCaretWalksOverTheSide()
    {
        const DiffDocument diff = document();
        QList<DiffPosition> places{DiffCaret::first(diff, OldSide)};
        while (places.constLast() != DiffCaret::last(diff, OldSide))
            places.append(DiffCaret::next(diff, OldSide, places.constLast()));
        const QList<DiffPosition> expected{{1, 0}, {1, 1}, {2, 0}, {2, 1},
                                           {2, 2}, {2, 3}, {5, 0}, {5, 1}};
        QVERIFY(places == expected);
        QVERIFY(DiffCaret::next(diff, OldSide, {5, 1}) == (DiffPosition{5, 1}));
        for (qsizetype i = places.size() - 1; i > 0; --i)
            QVERIFY(DiffCaret::previous(diff, OldSide, places[i]) == places[i - 1]);
        QVERIFY(DiffCaret::previous(diff, OldSide, {1, 0}) == (DiffPosition{1, 0}));
    }

    void theCaretKeepsItsColumn()
    {
        const DiffDocument diff = document(u"@@ -1,3 +1,3 @@\n abcdef\n \n \tx\n"_qs);
        const auto down = [&diff](DiffPosition from, qsizetype rows, qsizetype column) {
            return DiffCaret::moved(diff, NewSide, from, rows, column);
        };
        QVERIFY(down({1, 5}, 1, 5) == (DiffPosition{2, 0}));
        QVERIFY(down({2, 0}, 1, 5) == (DiffPosition{3, 1})); // the end of the tab is nearer
        QVERIFY(down({3, 1}, -2, 5) == (DiffPosition{1, 5}));
        QVERIFY(down({1, 5}, -1, 5) == (DiffPosition{1, 0}));
        QVERIFY(down({1, 5}, 100, 5) == (DiffPosition{3, 1}));
        QVERIFY(down({3, 1}, 1, 5) == (DiffPosition{3, 2}));
    }

    void aSideWithoutTextHasNoPlaces()
    {
        const DiffDocument diff = document(u"@@ -0,0 +1 @@\n+a\n"_qs);
        QVERIFY(!DiffCaret::nearestRow(diff, OldSide, 0));
        QCOMPARE(selectedText(diff, wholeSide(diff, OldSide)), QString());
        QVERIFY(DiffCaret::next(diff, OldSide, {1, 0}) == (DiffPosition{1, 0}));
    }
};

PLINTHAR_TEST_MAIN(DiffSelectionTest)

#include "DiffSelectionTest.moc"
