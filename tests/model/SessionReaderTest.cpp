// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionParser.h"
#include "support/Describe.h"
#include "support/LogLines.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using LogLines::log;

namespace {

const TimePoint now = TimePoint(std::chrono::hours(500'000));

QByteArray time(int minute)
{
    return QStringLiteral("2025-01-01T%1:%2:00.000Z")
        .arg(minute / 60, 2, 10, QChar(u'0'))
        .arg(minute % 60, 2, 10, QChar(u'0'))
        .toLatin1();
}

QByteArray at(int minute)
{
    return R"({"timestamp":")" + time(minute) + R"("})";
}

/// What a tool printed: long enough that reading it is worth avoiding.
const QByteArray output = '"' + QByteArray(4'000, 'x') + '"';

/// A line with the result of a tool as Claude Code writes it. `rest` is all that follows the
/// result's key, with the brace that closes the line.
QByteArray toolLine(int minute, const QByteArray &rest = output + '}',
                    const QByteArray &content = R"([{"type":"tool_result","content":"x"}])",
                    const QByteArray &type = "user")
{
    return R"({"parentUuid":null,"type":")" + type + R"(","message":{"role":"user","content":)" +
           content + R"(},"timestamp":")" + time(minute) + R"(","toolUseResult":)" + rest;
}

/// The session as it comes out when every line is parsed whole.
QString readPlainly(const QByteArray &content)
{
    JsonLineParser json;
    SessionBuilder session(now);
    for (const QByteArray &bytes : content.split('\n')) {
        std::string line = bytes.toStdString();
        const size_t length = line.size();
        line.append(LineReader::padding, ' ');
        if (const auto object = json.object(std::string_view(line).substr(0, length)))
            session.add(*object);
    }
    return describe(session.finish(u"log"_qs));
}

} // namespace

/// The reader leaves parts of a log unread that cannot change the session. Here its sessions are
/// held against those of a reading that leaves out nothing.
class SessionReaderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void spanWithResultsOfTools_data();
    void spanWithResultsOfTools();
    void keyInsideOtherValues_data();
    void keyInsideOtherValues();
    void moreLateLinesThanAreRemembered();
    void lateLinesOfOneLogAreNotSeenInTheNext();
    void randomLogs();
    void partsMakeTheWhole();
    void partsOfALogThatCannotBeRead();
    void randomDamage();

private:
    QString read(const QByteArray &content, qint64 chunk = LineReader::defaultChunk) const
    {
        writeFile(m_path, content);
        SessionReader reader(chunk);
        return describe(reader.read(m_path.toStdString(), now));
    }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(u"log.jsonl"_qs);
};

void SessionReaderTest::spanWithResultsOfTools_data()
{
    QTest::addColumn<QList<QByteArray>>("lines");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QList<QByteArray> &lines, int start, int end) {
        QTest::newRow(name) << lines
                            << u"from %1 to %2,"_qs.arg(QString::fromLatin1(time(start)),
                                                        QString::fromLatin1(time(end)));
    };
    const QByteArray cut = output.chopped(1);
    const QByteArray first = at(100);
    const QByteArray last = at(200);
    row("inside", {first, last, toolLine(150)}, 100, 200);
    row("inside, cut", {first, last, toolLine(150, cut)}, 100, 200);
    row("the only line", {toolLine(150)}, 150, 150);
    row("before the start", {first, last, toolLine(50)}, 50, 200);
    row("before the start, cut", {first, last, toolLine(50, cut)}, 100, 200);
    row("behind the end", {first, last, toolLine(250)}, 100, 250);
    row("behind the end, cut", {first, last, toolLine(250, cut)}, 100, 200);
    row("behind the end, followed by more", {first, toolLine(250, output + "} {}"), last}, 100,
        200);
    row("behind the end, with a bad number", {first, toolLine(250, output + ",\"n\":01}"), last},
        100, 200);
    row("behind the end, with what only we mend",
        {first, toolLine(250, output + R"(,"s":"\ud83d"})"), last}, 100, 250);
    row("behind the end and at once behind a later one", {first, toolLine(250), at(300)}, 100, 300);
    row("the latest is cut",
        {first, toolLine(210), toolLine(220), toolLine(230, cut), toolLine(215)}, 100, 220);
    row("without its line feed", {first, last, toolLine(150), toolLine(250)}, 100, 250);
    row("cut where the log is being written", {first, toolLine(240), toolLine(250, "\"x")}, 100,
        240);
}

void SessionReaderTest::spanWithResultsOfTools()
{
    QFETCH(const QList<QByteArray>, lines);
    QFETCH(const QString, expected);
    for (const QByteArray &content : {lines.join('\n'), lines.join("\r\n") + "\r\n"}) {
        const QString session = read(content);
        QVERIFY2(session.contains(expected), qPrintable(session));
        QCOMPARE(session, readPlainly(content));
    }
}

void SessionReaderTest::keyInsideOtherValues_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    const QByteArray prompt = R"("a prompt")";
    const QByteArray rest = output + '}';
    QTest::newRow("a prompt with a result") << toolLine(150, rest, prompt) << u"1 turns"_qs;
    QTest::newRow("text beside the result")
        << toolLine(150, rest, R"([{"type":"text","text":"said"}])") << u"1 turns, \"said\""_qs;
    QTest::newRow("in a text") << toolLine(150, rest, R"("see ,\"toolUseResult\": there")")
                               << u"1 turns"_qs;
    QTest::newRow("in an inner object")
        << R"({"type":"user","x":{"y":1,"toolUseResult":)" + output +
               R"(},"message":{"content":"behind"},"timestamp":")" + time(150) + R"("})"
        << u"1 turns, \"behind\""_qs;
    QTest::newRow("in the message, behind the time")
        << R"({"type":"user","timestamp":")" + time(250) +
               R"(","message":{"content":[{"type":"tool_result"}],"toolUseResult":)" + output + "}}"
        << u"to 2025-01-01T04:10:00.000Z"_qs;
    QTest::newRow("a result among texts")
        << toolLine(150, rest, R"([{"type":"text","text":"said"},{"type":"tool_result"}])")
        << u"0 turns"_qs;
    QTest::newRow("an item without type")
        << toolLine(150, rest, R"([{"text":"said"},{"type":"text","text":"more"}])")
        << u"1 turns, \"more\""_qs;
    QTest::newRow("in an inner list")
        << R"({"type":"user","x":[1,{"y":1,"toolUseResult":)" + output +
               R"(}],"message":{"content":"behind"},"timestamp":")" + time(150) + R"("})"
        << u"1 turns, \"behind\""_qs;
    QTest::newRow("first of all") << R"({"toolUseResult":)" + output +
                                         R"(,"type":"user","message":{"content":"behind"}})"
                                  << u"1 turns, \"behind\""_qs;
    QTest::newRow("before the message")
        << R"({"type":"user","timestamp":")" + time(150) + R"(","toolUseResult":)" + output +
               R"(,"message":{"content":"behind"}})"
        << u"1 turns, \"behind\""_qs;
    QTest::newRow("before the time")
        << R"({"type":"user","message":{"content":[]},"toolUseResult":)" + output +
               R"(,"timestamp":")" + time(250) + R"("})"
        << u"to 2025-01-01T04:10:00.000Z"_qs;
    QTest::newRow("of an assistant")
        << R"({"type":"assistant","message":{"usage":{"input_tokens":7}},"timestamp":")" +
               time(150) + R"(","toolUseResult":)" + output + '}'
        << u"7/0/0/0"_qs;
    QTest::newRow("a time that is no date")
        << toolLine(150).replace(time(150), "yesterday") << u"0 turns"_qs;
    QTest::newRow("with blanks") << toolLine(250).replace(",\"toolUse", ", \"toolUse")
                                 << u"to 2025-01-01T04:10:00.000Z"_qs;
}

void SessionReaderTest::keyInsideOtherValues()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QString, expected);
    const QByteArray content = log({at(100), line, at(200)});
    const QString session = read(content);
    QVERIFY2(session.contains(expected), qPrintable(session));
    QCOMPARE(session, readPlainly(content));
}

void SessionReaderTest::moreLateLinesThanAreRemembered()
{
    for (const bool valid : {true, false}) {
        QList<QByteArray> lines = {at(100)};
        for (int i = 0; i < 300; ++i)
            lines.append(toolLine(101 + i, valid ? output + '}' : output));
        const QString session = read(log(lines));
        QVERIFY2(session.contains(valid ? u"to 2025-01-01T06:40" : u"to 2025-01-01T01:40"),
                 qPrintable(session));
    }
}

void SessionReaderTest::lateLinesOfOneLogAreNotSeenInTheNext()
{
    SessionReader reader;
    writeFile(m_path, log({at(100), toolLine(250)}));
    QVERIFY(describe(reader.read(m_path.toStdString(), now)).contains(u"to 2025-01-01T04:10"));
    writeFile(m_path, log({at(100), at(110), toolLine(105)}));
    QVERIFY(describe(reader.read(m_path.toStdString(), now)).contains(u"to 2025-01-01T01:50"));
}

/// Lines of every kind in any order, with times in any order.
static QByteArray randomLog(QRandomGenerator &random)
{
    const QString ids[] = {{}, {}, u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs};
    QByteArray content;
    for (quint32 count = random.bounded(1, 40); count > 0; --count) {
        const int minute = random.bounded(1'440);
        const QByteArray rest = output.left(random.bounded(1, 4'000)) + R"(","z":[{"y":1}]})";
        switch (random.bounded(6)) {
        case 0:
            content += at(minute);
            break;
        case 1:
            content += LogLines::assistant(
                random.bounded(2) ? QString::fromLatin1(time(minute)) : QString(),
                random.bounded(2) ? u"opus"_qs : u"sonnet"_qs, {minute, 2, 3, 4},
                ids[random.bounded(int(std::size(ids)))]);
            break;
        case 2:
            content += toolLine(minute, rest, random.bounded(2) ? "\"prompt\"" : "[]");
            break;
        case 3:
            content += toolLine(minute, rest.left(random.bounded(int(rest.size()))));
            break;
        default:
            content += toolLine(minute, rest);
        }
        content += random.bounded(10) ? "\n" : "\r\n\n";
    }
    return content;
}

void SessionReaderTest::randomLogs()
{
    QRandomGenerator random(1);
    for (int round = 0; round < 1'000; ++round) {
        const QByteArray content = randomLog(random);
        const qint64 chunk = random.bounded(1, 20'000);
        const QString found = read(content, chunk);
        if (found != readPlainly(content))
            QFAIL(qPrintable(u"round %1\n%2\n%3"_qs.arg(round).arg(found, readPlainly(content))));
    }
}

/// However a log is cut, the parts together say what it says as a whole: of a message on both sides
/// of a cut the last line counts, a record without a time gets that of the lines before the cut,
/// the first prompt is that of the first part which has one.
void SessionReaderTest::partsMakeTheWhole()
{
    QRandomGenerator random(3);
    SessionReader reader(4'096);
    for (int round = 0; round < 500; ++round) {
        const QByteArray content = randomLog(random);
        const QString whole = read(content);
        std::vector<qint64> cuts = {0, std::numeric_limits<qint64>::max()};
        for (quint32 count = random.bounded(1, 12); count > 0; --count)
            cuts.push_back(random.bounded(int(content.size()) + 1));
        std::sort(cuts.begin(), cuts.end());
        const FileDescriptor file = openRegularFile(qPrintable(m_path));
        SessionBuilder session(now);
        for (size_t i = 1; i < cuts.size(); ++i) {
            auto part = reader.readPart(file, cuts[i - 1], cuts[i], now);
            QVERIFY(part);
            session.append(std::move(*part));
        }
        const QString joined = describe(session.finish(u"log"_qs));
        if (joined != whole)
            QFAIL(qPrintable(u"round %1\n%2\n%3"_qs.arg(round).arg(joined, whole)));
    }
}

void SessionReaderTest::partsOfALogThatCannotBeRead()
{
    const FileDescriptor file = openRegularFile(qPrintable(fileWithReadErrors()));
    QVERIFY(file.isOpen());
    QVERIFY(!SessionReader().readPart(file, 0, 100, now));
    QVERIFY(!SessionReader().readPart(file, 100, 200, now));
}

/// Whether two lines ran into each other in such a way that one object may have a key twice. What
/// such an object means JSON leaves open, and the reader may take either value.
static bool hasRepeatedKey(const QByteArray &content)
{
    const QByteArrayList lines = content.split('\n');
    return std::any_of(lines.cbegin(), lines.cend(), [](const QByteArray &line) {
        return line.count(R"("message")") > 1 || line.count(R"("timestamp")") > 1;
    });
}

/// Bytes lost, doubled and changed anywhere: what a crash or a full disk leaves.
void SessionReaderTest::randomDamage()
{
    QRandomGenerator random(2);
    for (int round = 0; round < 2'000; ++round) {
        QByteArray content = randomLog(random);
        for (quint32 count = random.bounded(1, 8); count > 0; --count) {
            const int place = random.bounded(int(content.size()));
            const int length = random.bounded(1, 60);
            switch (random.bounded(3)) {
            case 0:
                content.remove(place, length);
                break;
            case 1:
                content.insert(place, QByteArray("{}[],:\"\\\n\x80 0").mid(random.bounded(12), 1));
                break;
            default:
                content[place] = static_cast<char>(random.bounded(256));
            }
            if (content.isEmpty())
                break;
        }
        if (hasRepeatedKey(content))
            continue;
        const QString found = read(content);
        if (found != readPlainly(content))
            QFAIL(qPrintable(u"round %1\n%2\n%3"_qs.arg(round).arg(found, readPlainly(content))));
    }
}

PLINTHAR_TEST_MAIN(SessionReaderTest)

#include "SessionReaderTest.moc"
