// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/LineReader.h"

#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QFile>
#include <QRandomGenerator>

#include <limits>
#include <numeric>

namespace {

constexpr qint64 wholeFile = std::numeric_limits<qint64>::max();

QByteArray bytesOf(std::string_view text)
{
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

/// What the reader should hand out, by another way.
QByteArrayList split(const QByteArray &content)
{
    QByteArrayList lines = content.split('\n');
    lines.removeAll(QByteArray());
    return lines;
}

} // namespace

class LineReaderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { writeFile(m_path, ""); }
    void handsOutTheLinesWhateverTheChunk_data();
    void handsOutTheLinesWhateverTheChunk();
    void randomContentWhateverTheChunk();
    void stopsAtTheLimit();
    void everyLineBelongsToOnePart();
    void bytesBehindALineAreReadable();
    void oneReaderReadsManyFiles();
    void smallLinesAroundAHugeOne();
    void passesOverALineThatIsTooLong();
    void opensNoSpecialFile_data();
    void opensNoSpecialFile();
    void failedReadGivesNothing();
    void textAppendedMeanwhileIsReadOn();
    void fileTruncatedMeanwhileEndsThere();
    void fileDeletedMeanwhileIsReadOn();

private:
    QByteArrayList linesOf(LineReader &reader, qint64 limit = wholeFile) const
    {
        QByteArrayList lines;
        if (!reader.open(QFile::encodeName(m_path).constData(), limit))
            return {"not opened"};
        while (const auto line = reader.next())
            lines.append(bytesOf(*line));
        return lines;
    }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(u"file"_qs);
};

void LineReaderTest::handsOutTheLinesWhateverTheChunk_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line feed") << QByteArray("\n");
    QTest::newRow("only line feeds") << QByteArray(1000, '\n');
    QTest::newRow("no line feed") << QByteArray("one");
    QTest::newRow("one line") << QByteArray("one\n");
    QTest::newRow("last line without line feed") << QByteArray("one\ntwo");
    QTest::newRow("empty lines everywhere") << QByteArray("\n\n\none\n\n\ntwo\n\n\n");
    QTest::newRow("carriage returns stay") << QByteArray("one\r\n\r\ntwo\r");
    QTest::newRow("NUL bytes") << QByteArray("\0\0\n\0one\0\n\0", 11);
    QTest::newRow("lines longer than chunks")
        << QByteArray(300'000, 'a') + '\n' + QByteArray(10, 'b') + '\n' + QByteArray(70'000, 'c');
    QTest::newRow("line of exactly one usual chunk")
        << QByteArray(LineReader::defaultChunk, 'a') + "\nb";
    QTest::newRow("line that ends with the usual chunk")
        << QByteArray(LineReader::defaultChunk - 1, 'a') + "\nb";
}

void LineReaderTest::handsOutTheLinesWhateverTheChunk()
{
    QFETCH(QByteArray, content);
    writeFile(m_path, content);
    QList<qint64> chunks{1, 2, 3, 7, 64, 4096, 65'536, LineReader::defaultChunk, 1'000'000};
    if (content.size() > 10'000)
        chunks.remove(0, 4); // byte by byte is for the small ones
    for (const qint64 chunk : chunks) {
        LineReader reader(chunk);
        QVERIFY2(linesOf(reader) == split(content), qPrintable(QString::number(chunk)));
        QVERIFY(!reader.failed());
    }
}

void LineReaderTest::randomContentWhateverTheChunk()
{
    QRandomGenerator random(3);
    for (int i = 0; i < 500; ++i) {
        QByteArray content(random.bounded(200), ' ');
        for (char &c : content)
            c = "\n\nabcdefg"[random.bounded(9)];
        writeFile(m_path, content);
        LineReader reader(1 + random.bounded(50));
        QCOMPARE(linesOf(reader), split(content));
    }
}

void LineReaderTest::stopsAtTheLimit()
{
    const QByteArray content = "one\n\nthree\nfour";
    writeFile(m_path, content);
    for (const qint64 chunk : {1, 3, 4096}) {
        LineReader reader(chunk);
        for (qsizetype limit = 0; limit <= content.size() + 1; ++limit)
            QCOMPARE(linesOf(reader, limit), split(content.left(limit)));
    }
}

void LineReaderTest::everyLineBelongsToOnePart()
{
    const QByteArray content = "one\n\nthree\nfour\n" + QByteArray(100, 'x') + "\nlast";
    writeFile(m_path, content);
    const FileDescriptor file = openRegularFile(QFile::encodeName(m_path).constData());
    for (const qint64 chunk : {1, 3, 4096}) {
        LineReader reader(chunk);
        for (qint64 cut = 0; cut <= content.size() + 1; ++cut) {
            QByteArrayList lines;
            for (const auto &[begin, end] : {std::pair(qint64(0), cut), {cut, wholeFile}}) {
                reader.open(file, begin, end);
                while (const auto line = reader.next()) {
                    QVERIFY(reader.position() >= begin && reader.position() < end);
                    lines.append(bytesOf(*line));
                }
                QVERIFY(!reader.failed());
            }
            QCOMPARE(lines, split(content));
        }
    }
}

void LineReaderTest::bytesBehindALineAreReadable()
{
    // The address sanitizer sees it where they are not.
    unsigned sum = 0;
    for (qsizetype length = 1; length < 200; ++length) {
        writeFile(m_path, QByteArray(length, 'a'));
        LineReader reader(length % 2 == 0 ? length : 64);
        QVERIFY(reader.open(QFile::encodeName(m_path).constData()));
        const auto line = reader.next();
        QVERIFY(line);
        const char *behind = line->data() + line->size();
        sum = std::accumulate(behind, behind + LineReader::padding, sum);
    }
    QVERIFY(sum != 1); // so that the reading is not optimised away
}

void LineReaderTest::oneReaderReadsManyFiles()
{
    LineReader reader(8);
    for (const QByteArray content : {"a first file\nof two lines", "", "second\n", "x"}) {
        writeFile(m_path, content);
        QCOMPARE(linesOf(reader), split(content));
    }
    QVERIFY(QFile::remove(m_path));
    QCOMPARE(linesOf(reader), QByteArrayList{"not opened"});
    QVERIFY(!reader.next());
    writeFile(m_path, "again");
    QCOMPARE(linesOf(reader), QByteArrayList{"again"});
}

void LineReaderTest::smallLinesAroundAHugeOne()
{
    const QByteArray huge(20'000'000, 'h');
    QByteArray content = "before\n" + huge + '\n';
    for (int i = 0; i < 20'000; ++i)
        content += QByteArray::number(i).repeated(20) + '\n';
    content += huge + "\nbehind";
    writeFile(m_path, content);
    LineReader reader;
    QVERIFY(linesOf(reader) == split(content));
}

void LineReaderTest::passesOverALineThatIsTooLong()
{
    // A hole in a file takes no room on the disk.
    writeFile(m_path, "before\n");
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(7 + LineReader::longestLine + 1'000'000));
    QVERIFY(file.write("x\nbehind\n") > 0);
    file.close();
    LineReader reader;
    QCOMPARE(linesOf(reader), QByteArrayList({"before", "behind"}));
    QVERIFY(!reader.failed());
}

void LineReaderTest::opensNoSpecialFile_data()
{
    QTest::addColumn<QString>("name");
    QStringList names = specialFiles();
    names.removeAll(u"failing"_qs);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void LineReaderTest::opensNoSpecialFile()
{
    QFETCH(QString, name);
    QTemporaryDir folder;
    makeSpecialFiles(folder.path(), u".jsonl"_qs);
    LineReader reader;
    const QString path = folder.filePath(name + u".jsonl"_qs);
    QVERIFY(!reader.open(QFile::encodeName(path).constData()));
    QVERIFY(!reader.next());
}

void LineReaderTest::failedReadGivesNothing()
{
    LineReader reader;
    QVERIFY(reader.open(QFile::encodeName(fileWithReadErrors()).constData()));
    QVERIFY(!reader.next());
    QVERIFY(reader.failed());
    writeFile(m_path, "fine");
    QCOMPARE(linesOf(reader), QByteArrayList{"fine"});
    QVERIFY(!reader.failed());
}

void LineReaderTest::textAppendedMeanwhileIsReadOn()
{
    writeFile(m_path, "one\ntwo");
    LineReader reader(4);
    QVERIFY(reader.open(QFile::encodeName(m_path).constData()));
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("one"));
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::Append));
    file.write(" and more\nthree");
    file.close();
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("two and more"));
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("three"));
    QVERIFY(!reader.next());
}

void LineReaderTest::fileTruncatedMeanwhileEndsThere()
{
    writeFile(m_path, "one\ntwo\nthree");
    LineReader reader(4);
    QVERIFY(reader.open(QFile::encodeName(m_path).constData()));
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("one"));
    QVERIFY(QFile::resize(m_path, 0));
    QVERIFY(!reader.next());
    QVERIFY(!reader.failed());
}

void LineReaderTest::fileDeletedMeanwhileIsReadOn()
{
    writeFile(m_path, "one\ntwo\nthree");
    LineReader reader(4);
    QVERIFY(reader.open(QFile::encodeName(m_path).constData()));
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("one"));
    QVERIFY(QFile::remove(m_path));
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("two"));
    QCOMPARE(bytesOf(reader.next().value_or("")), QByteArray("three"));
}

PLINTHAR_TEST_MAIN(LineReaderTest)
#include "LineReaderTest.moc"
