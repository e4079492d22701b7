// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/EditedText.h"

#include "context/FileText.h"
#include "support/TestMain.h"

#include <random>

namespace {

/// A second opinion: splits, and drops empty pieces.
qint64 splitWords(QString text)
{
    text.replace(QChar(crLf), u' ');
    qint64 count = 0;
    bool inWord = false;
    for (const QChar unit : std::as_const(text)) {
        if (unit.isSpace())
            inWord = false;
        else if (!inWord) {
            ++count;
            inWord = true;
        }
    }
    return count;
}

} // namespace

class EditedTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void countsWords_data();
    void countsWords();
    void countsWhatChanges_data();
    void countsWhatChanges();
    void isDirtyAsLongAsItDiffers();
    void savingMakesItCleanOnlyIfNothingWasTypedMeanwhile();
    void staysRightThroughRandomEdits();
    void doesNotChangeTheTextItWasMadeOf();
};

void EditedTextTest::countsWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("words");
    const auto row = [](const char *name, const QString &text, qint64 words) {
        QTest::newRow(name) << text << words;
    };
    row("empty", QString(), 0);
    row("only white space", u" \t\n\u00a0 \u3000"_qs, 0);
    row("one", u"word"_qs, 1);
    row("four letters between a tab, a line break and two blanks", u"a\tb\nc  d"_qs, 4);
    row("around", u"  a b  "_qs, 2);
    row("no-break space", u"a\u00a0b"_qs, 2);
    row("next line, vertical tab, form feed", u"a\u0085b\vc\fd"_qs, 4);
    row("line and paragraph separators", u"a\u2028b\u2029c"_qs, 3);
    row("wide blanks", u"a\u2003b\u1680c\u205fd\u202fe"_qs, 5);
    row("zero-width space is none", u"a\u200bb\ufeffc\u2060d"_qs, 1);
    row("unit separators are none", u"a\u001cb\u001fc"_qs, 1);
    row("punctuation", u"- [x] *done*, really."_qs, 4);
    row("NUL", u"a\0b c"_qs, 2);
    row("emoji", u"\U0001f600 \U0001f600\U0001f600"_qs, 2);
    row("CR LF", u"a"_qs + QChar(crLf) + u"b"_qs, 2);
}

void EditedTextTest::countsWords()
{
    QFETCH(QString, text);
    QFETCH(qint64, words);
    QCOMPARE(countWords(text), words);
    QCOMPARE(EditedText(text).words(), words);
}

void EditedTextTest::countsWhatChanges_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("removed");
    QTest::addColumn<QString>("added");
    const auto row = [](const char *name, const QString &before, int position, int removed,
                        const QString &added) {
        QTest::newRow(name) << before << position << removed << added;
    };
    row("splits a word", u"word"_qs, 2, 0, u" "_qs);
    row("joins two words", u"wo rd"_qs, 2, 1, QString());
    row("a letter at the begin of a word", u"a b"_qs, 2, 0, u"x"_qs);
    row("a letter at the end", u"a b"_qs, 3, 0, u"x"_qs);
    row("a blank at the begin", u"a"_qs, 0, 0, u" "_qs);
    row("a word at the begin", u" a"_qs, 0, 0, u"x"_qs);
    row("into nothing", QString(), 0, 0, u"x y"_qs);
    row("to nothing", u"x y"_qs, 0, 3, QString());
    row("over several words", u"one two three"_qs, 2, 8, u"-"_qs);
    row("the last unit", u"a b"_qs, 2, 1, QString());
    row("nothing by nothing", u"a b"_qs, 1, 0, QString());
    row("a line break by another", u"a\nb"_qs, 1, 1, QString(QChar(crLf)));
}

void EditedTextTest::countsWhatChanges()
{
    QFETCH(QString, before);
    QFETCH(int, position);
    QFETCH(int, removed);
    QFETCH(QString, added);
    EditedText edited(before);
    edited.replace(position, removed, added);
    QCOMPARE(edited.text(), before.left(position) + added + before.mid(position + removed));
    QCOMPARE(edited.words(), splitWords(edited.text()));
}

void EditedTextTest::isDirtyAsLongAsItDiffers()
{
    EditedText edited(u"text"_qs);
    QVERIFY(!edited.isDirty());
    edited.replace(4, 0, u"s");
    QVERIFY(edited.isDirty());
    edited.replace(4, 1, u"");
    QVERIFY(!edited.isDirty());
    edited.replace(0, 1, u"T"); // as long as before
    QVERIFY(edited.isDirty());
    edited.replace(0, 1, u"t");
    QVERIFY(!edited.isDirty());
    QVERIFY(!EditedText().isDirty());
}

void EditedTextTest::savingMakesItCleanOnlyIfNothingWasTypedMeanwhile()
{
    EditedText edited(u"text"_qs);
    edited.replace(4, 0, u"s");
    const QString snapshot = edited.text();
    edited.replace(5, 0, u"!");
    edited.setSaved(snapshot);
    QVERIFY(edited.isDirty());
    QCOMPARE(edited.text(), u"texts!"_qs);
    edited.replace(5, 1, u"");
    QVERIFY(!edited.isDirty());
}

void EditedTextTest::staysRightThroughRandomEdits()
{
    std::mt19937 random(20260101);
    const auto upTo = [&](qsizetype most) {
        return std::uniform_int_distribution<qsizetype>(0, most)(random);
    };
    const QList<char16_t> units{u'a', u'b', u' ', u'\n', crLf, u'\u00a0', u'\t'};
    EditedText edited;
    QString expected;
    for (int i = 0; i < 20'000; ++i) {
        const qsizetype position = upTo(expected.size());
        const qsizetype removed = upTo(qMin<qsizetype>(5, expected.size() - position));
        QString added;
        for (qsizetype left = upTo(5); left > 0; --left)
            added += QChar(units.at(upTo(units.size() - 1)));
        expected.replace(position, removed, added);
        edited.replace(position, removed, added);
        QVERIFY(edited.text() == expected);
        QCOMPARE(edited.words(), splitWords(expected));
    }
}

void EditedTextTest::doesNotChangeTheTextItWasMadeOf()
{
    const QString text = u"text"_qs;
    EditedText edited(text);
    edited.replace(0, 4, u"other");
    QCOMPARE(text, u"text"_qs);
}

PLINTHAR_TEST_MAIN(EditedTextTest)
#include "EditedTextTest.moc"
