// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Words.h"

#include "support/TestMain.h"

class WordsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void takesOneWordAfterTheOther_data();
    void takesOneWordAfterTheOther();
};

void WordsTest::takesOneWordAfterTheOther_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("words") << u"one two three"_qs << QStringList{u"one"_qs, u"two"_qs, u"three"_qs};
    QTest::newRow("blanks everywhere")
        << u"   one    two  "_qs << QStringList{u"one"_qs, u"two"_qs};
    QTest::newRow("one word") << u"one"_qs << QStringList{u"one"_qs};
    QTest::newRow("tabs are no blanks") << u"one\ttwo"_qs << QStringList{u"one\ttwo"_qs};
    QTest::newRow("blanks only") << u"   "_qs << QStringList();
    QTest::newRow("nothing") << QString() << QStringList();
}

void WordsTest::takesOneWordAfterTheOther()
{
    QFETCH(const QString, line);
    QFETCH(const QStringList, words);
    QStringView rest = line;
    QStringList taken;
    for (QStringView word = takeWord(rest); !word.isEmpty(); word = takeWord(rest))
        taken.append(word.toString());
    QCOMPARE(taken, words);
    QVERIFY(rest.isEmpty());
}

PLINTHAR_TEST_MAIN(WordsTest)
#include "WordsTest.moc"
