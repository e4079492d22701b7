// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/FileText.h"

#include "support/TestMain.h"

class FileTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyTextComesBackAsTheSameBytes_data();
    void everyTextComesBackAsTheSameBytes();
    void whatIsNoUtf8IsNoText_data();
    void whatIsNoUtf8IsNoText();
    void theUsualBreakIsTheMostFrequent_data();
    void theUsualBreakIsTheMostFrequent();
    void theByteOrderMarkIsNotPartOfTheText();
    void halvesOfCharactersDoNotSpoilTheirNeighbours();
};

void FileTextTest::everyTextComesBackAsTheSameBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one line feed") << QByteArray("\n");
    QTest::newRow("no final newline") << QByteArray("a\nb");
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n");
    QTest::newRow("CR") << QByteArray("a\rb\r");
    QTest::newRow("mixed") << QByteArray("a\r\nb\nc\rd\r\r\ne\n\r\n");
    QTest::newRow("byte-order mark") << QByteArray("\xef\xbb\xbfText\n");
    QTest::newRow("only a byte-order mark") << QByteArray("\xef\xbb\xbf");
    QTest::newRow("two byte-order marks") << QByteArray("\xef\xbb\xbf\xef\xbb\xbfx");
    QTest::newRow("mark inside") << QByteArray("x\xef\xbb\xbfy");
    QTest::newRow("no-break space") << u"a\u00a0b"_qs.toUtf8();
    QTest::newRow("line and paragraph separators") << u"a\u2028b\u2029c"_qs.toUtf8();
    QTest::newRow("NUL") << QByteArray("a\0b\0", 4);
    QTest::newRow("noncharacters") << u"\ufdd0\ufdd1\ufffe\uffff"_qs.toUtf8();
    QTest::newRow("replacement characters") << u"\ufffd\ufffc"_qs.toUtf8();
    QTest::newRow("beyond the first plane") << u"\U0001f600\U0010ffff"_qs.toUtf8();
    QTest::newRow("controls") << QByteArray("\t\v\f\x1b[0m\x7f");
}

void FileTextTest::everyTextComesBackAsTheSameBytes()
{
    QFETCH(QByteArray, bytes);
    const auto file = decodeText(bytes);
    QVERIFY(file);
    QCOMPARE(encodeText(*file), bytes);
}

void FileTextTest::whatIsNoUtf8IsNoText_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("Latin-1") << QByteArray("caf\xe9 au lait");
    QTest::newRow("cut at the end") << QByteArray("text \xe2\x82");
    QTest::newRow("only a beginning") << QByteArray("\xf0");
    QTest::newRow("continuation alone") << QByteArray("\x80");
    QTest::newRow("overlong") << QByteArray("\xc0\xaf");
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80");
    QTest::newRow("the stand-in for CR LF") << QByteArray("\xed\xb0\x8d");
    QTest::newRow("beyond Unicode") << QByteArray("\xf4\x90\x80\x80");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe"
                                          "a\0b\0",
                                          6);
    QTest::newRow("bad behind a mark") << QByteArray("\xef\xbb\xbf\xff");
}

void FileTextTest::whatIsNoUtf8IsNoText()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!decodeText(bytes));
}

void FileTextTest::theUsualBreakIsTheMostFrequent_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("usual");
    QTest::newRow("none") << QByteArray("text") << int(u'\n');
    QTest::newRow("LF") << QByteArray("a\nb\n") << int(u'\n');
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << int(crLf);
    QTest::newRow("CR") << QByteArray("a\rb") << int(u'\r');
    QTest::newRow("mostly CRLF") << QByteArray("a\r\nb\nc\r\n") << int(crLf);
    QTest::newRow("mostly LF") << QByteArray("a\r\nb\nc\n") << int(u'\n');
    QTest::newRow("as many of both") << QByteArray("a\r\nb\n") << int(u'\n');
}

void FileTextTest::theUsualBreakIsTheMostFrequent()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, usual);
    QCOMPARE(int(decodeText(bytes)->newLine), usual);
}

void FileTextTest::theByteOrderMarkIsNotPartOfTheText()
{
    const auto file = decodeText("\xef\xbb\xbfText");
    QVERIFY(file->byteOrderMark);
    QCOMPARE(file->text, u"Text"_qs);
    QVERIFY(!decodeText("Text")->byteOrderMark);
}

void FileTextTest::halvesOfCharactersDoNotSpoilTheirNeighbours()
{
    // Such halves cannot be read from a file, but pasted.
    QString text = u"a?"_qs;
    text[1] = QChar(0xd83d);
    text += QChar(crLf);
    QCOMPARE(encodeText({text + u"b"_qs, false, u'\n'}), QByteArray("a?\r\nb"));
}

PLINTHAR_TEST_MAIN(FileTextTest)
#include "FileTextTest.moc"
