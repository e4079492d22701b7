// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionParser.h"

#include "support/Describe.h"
#include "support/LogLines.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QFile>

#include <limits>
#include <memory>
#include <thread>

using LogLines::log;

namespace {

const TimePoint now = TimePoint(std::chrono::hours(500'000)); // 2027-01-15T08:00:00.000Z
constexpr qint64 head = 262'144; // bytes in which a log's folder is looked for

/// A line with these fields and a usable time.
QByteArray timed(const QByteArray &fields)
{
    return R"({"timestamp":"2025-01-01T10:00:00Z",)" + fields + '}';
}

QByteArray userLine(const QByteArray &content, const QByteArray &more = {})
{
    return timed(R"("type":"user",)" + more + R"("message":{"content":)" + content + '}');
}

/// An assistant's line whose message has these fields; "$1" stands for a small usage.
QByteArray assistantLine(QByteArray message)
{
    message.replace("$1", R"("usage":{"input_tokens":1})");
    return timed(R"("type":"assistant","message":{)" + message + '}');
}

QByteArray usageLine(const QByteArray &usage)
{
    return assistantLine(R"("model":"m","usage":)" + usage);
}

QByteArray at(const QByteArray &time)
{
    return R"({"timestamp":")" + time + R"("})";
}

} // namespace

class SessionParserTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void idIsTheFileNameWithoutItsExtension_data();
    void idIsTheFileNameWithoutItsExtension();
    void noSessionWithoutTime_data();
    void noSessionWithoutTime();
    void noSessionWhenTheFileCannotBeRead();
    void specialFilesAreNoSessions_data();
    void specialFilesAreNoSessions();

    void bothFormsOfTimestampCount();
    void otherTimestampsAreIgnored();
    void spanIsFromTheEarliestToTheLatest();
    void everyLineWithATimeCountsForTheSpan_data();
    void everyLineWithATimeCountsForTheSpan();
    void onlyTheTopLevelTimestampCounts();

    void turns_data();
    void turns();
    void firstPromptIsTrimmed_data();
    void firstPromptIsTrimmed();
    void laterTurnsDoNotChangeTheFirstPrompt();

    void usage_data();
    void usage();
    void tokenCounts_data();
    void tokenCounts();
    void lastLineOfAMessageCounts();
    void messagesWithoutIdAreAllCounted();
    void idsAreComparedWhole();
    void usageIsDatedByItsLine();
    void usageWithoutTimeIsDatedByTheStartSoFar();
    void usageBeforeAnyTimeIsDatedNow();
    void recordsAreSortedByDate();
    void equalDatesKeepTheirOrder();

    void lineEndings_data();
    void lineEndings();
    void linesThatAreNotJsonAreSkipped();
    void strangeButValidLinesCount();
    void lastOfTwoKeysCounts();
    void keysMayBeWrittenWithEscapes();

    void sameSessionWhateverTheChunk();
    void hugeLineBetweenSmallOnes();
    void oneReaderReadsManyLogs();
    void stopsWhenAsked();
    void logThatChangesMeanwhile();

    void cwdIsTheFirstOne_data();
    void cwdIsTheFirstOne();
    void cwdBeyondTheHeadIsNotFound();
    void cwdOnTheEdgeOfTheHead();
    void cwdOfSpecialFilesIsNothing_data();
    void cwdOfSpecialFilesIsNothing();

private:
    std::optional<Session> session(const QByteArray &content) const
    {
        writeFile(m_path, content);
        return SessionParser::parse(m_path.toStdString(), now);
    }

    QString cwd(const QByteArray &content) const
    {
        writeFile(m_path, content);
        return describe(SessionParser::cwd(m_path.toStdString()));
    }

    /// The records of a log that must be a session.
    QList<UsageRecord> records(const QByteArrayList &lines) const
    {
        const auto parsed = session(log(lines));
        return parsed ? parsed->records : QList<UsageRecord>{{now, u"no session"_qs}};
    }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(u"log.jsonl"_qs);
};

// Files ------------------------------------------------------------------------------------------

void SessionParserTest::idIsTheFileNameWithoutItsExtension_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("id");
    QTest::newRow("UUID") << u"04cd0da1-dee3-4738-8139-524dfe55de83.jsonl"_qs
                          << u"04cd0da1-dee3-4738-8139-524dfe55de83"_qs;
    QTest::newRow("more points") << u"a.b.jsonl"_qs << u"a.b"_qs;
    QTest::newRow("blanks and letters") << u"Ünï 日本 😀.jsonl"_qs << u"Ünï 日本 😀"_qs;
}

void SessionParserTest::idIsTheFileNameWithoutItsExtension()
{
    QFETCH(QString, name);
    const QString path = m_folder.filePath(name);
    writeFile(path, at("2025-01-01T10:00:00Z"));
    const auto parsed = SessionParser::parse(path.toStdString(), now);
    QVERIFY(parsed);
    QTEST(parsed->id, "id");
}

void SessionParserTest::noSessionWithoutTime_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("only line feeds") << QByteArray("\n\n\n\n");
    QTest::newRow("only blanks") << QByteArray(" \r\n \r\n");
    QTest::newRow("only NUL bytes") << QByteArray(1000, '\0');
    QTest::newRow("nothing but garbage") << QByteArray("hello\nworld\n[1]\n1\n\"a\"\nnull\n");
    QTest::newRow("lines without timestamp")
        << log({LogLines::user({}, u"hello"_qs),
                LogLines::assistant({}, u"opus"_qs, {1, 2, 3, 4}, u"x"_qs)});
    QTest::newRow("only a time that is none") << at("2025-02-30T10:00:00Z");
    QTest::newRow("time in a line that is no JSON") << at("2025-01-01T10:00:00Z").chopped(1);
}

void SessionParserTest::noSessionWithoutTime()
{
    QFETCH(QByteArray, content);
    QCOMPARE(describe(session(content)), u"nothing"_qs);
}

void SessionParserTest::noSessionWhenTheFileCannotBeRead()
{
    QVERIFY(!SessionParser::parse(m_folder.filePath(u"missing.jsonl"_qs).toStdString(), now));
    QVERIFY(!SessionParser::parse(fileWithReadErrors().toStdString(), now));
    QVERIFY(session(at("2025-01-01T10:00:00Z")));
    QVERIFY(QFile::setPermissions(m_path, {}));
    {
        const Unprivileged meanwhile;
        QVERIFY(!SessionParser::parse(m_path.toStdString(), now));
    }
    QVERIFY(QFile::remove(m_path));
}

void SessionParserTest::specialFilesAreNoSessions_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : specialFiles())
        QTest::newRow(qPrintable(name)) << name;
}

void SessionParserTest::specialFilesAreNoSessions()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    makeSpecialFiles(folder.path(), u".jsonl"_qs);
    const QString path = folder.filePath(name + u".jsonl"_qs);
    QVERIFY(!SessionParser::parse(path.toStdString(), now));
}

// Times ------------------------------------------------------------------------------------------

void SessionParserTest::bothFormsOfTimestampCount()
{
    const auto parsed = session(log({at("2025-01-02T03:04:05.678Z"), at("2025-01-02T03:04:05Z")}));
    QVERIFY(parsed);
    QCOMPARE(describe(parsed->start), u"2025-01-02T03:04:05.000Z"_qs);
    QCOMPARE(describe(parsed->end), u"2025-01-02T03:04:05.678Z"_qs);
}

void SessionParserTest::otherTimestampsAreIgnored()
{
    const auto parsed = session(log(
        {at("2025-01-01"), at("2025-01-01 10:00:00Z"), at("2025-02-30T10:00:00Z"),
         R"({"timestamp":1})", R"({"timestamp":null})", R"({"timestamp":["2025-01-01T00:00:00Z"]})",
         at("2025-06-01T10:00:00Z"), at("2026-01-01"), at("2026-01-01T24:00:00Z")}));
    QVERIFY(parsed);
    QCOMPARE(describe(parsed->start), u"2025-06-01T10:00:00.000Z"_qs);
    QCOMPARE(describe(parsed->end), u"2025-06-01T10:00:00.000Z"_qs);
}

void SessionParserTest::spanIsFromTheEarliestToTheLatest()
{
    const auto parsed = session(log({at("2025-01-01T12:00:00Z"), at("2025-01-01T09:00:00Z"),
                                     at("2025-01-01T15:00:00+01:00"), at("2025-01-01T11:00:00Z"),
                                     at("2025-01-01T09:30:00+01:00")}));
    QVERIFY(parsed);
    QCOMPARE(describe(parsed->start), u"2025-01-01T08:30:00.000Z"_qs);
    QCOMPARE(describe(parsed->end), u"2025-01-01T14:00:00.000Z"_qs);
}

void SessionParserTest::everyLineWithATimeCountsForTheSpan_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::newRow("no type") << QByteArray(R"("a":1)");
    QTest::newRow("type of another kind") << QByteArray(R"("type":1)");
    QTest::newRow("unknown type") << QByteArray(R"("type":"summary")");
    QTest::newRow("meta") << QByteArray(R"("type":"user","isMeta":true)");
    QTest::newRow("user without message") << QByteArray(R"("type":"user")");
    QTest::newRow("assistant without message") << QByteArray(R"("type":"assistant")");
    QTest::newRow("message of another kind") << QByteArray(R"("type":"assistant","message":"x")");
}

void SessionParserTest::everyLineWithATimeCountsForTheSpan()
{
    QFETCH(QByteArray, fields);
    QCOMPARE(
        describe(session(timed(fields))),
        u"log from 2025-01-01T10:00:00.000Z to 2025-01-01T10:00:00.000Z, 0 turns, \"\"\n  "_qs);
}

void SessionParserTest::onlyTheTopLevelTimestampCounts()
{
    const auto parsed = session(
        timed(R"("type":"user","message":{"timestamp":"2020-01-01T10:00:00Z","content":"hello"},)"
              R"("toolUseResult":{"timestamp":"2030-01-01T10:00:00Z","type":"assistant",)"
              R"("message":{"usage":{"input_tokens":5}},"usage":{"input_tokens":5}},)"
              R"("list":[{"timestamp":"2030-01-01T10:00:00Z"}])"));
    QCOMPARE(describe(parsed),
             u"log from 2025-01-01T10:00:00.000Z to 2025-01-01T10:00:00.000Z, 1 turns, "
             "\"hello\"\n  "_qs);
}

// Turns ------------------------------------------------------------------------------------------

void SessionParserTest::turns_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("firstPrompt"); // empty for a line that is no turn
    const auto turn = [](const char *name, const QByteArray &line, const QString &prompt) {
        QTest::newRow(name) << line << prompt;
    };
    const auto none = [](const char *name, const QByteArray &line) {
        QTest::newRow(name) << line << QString();
    };
    turn("prompt", userLine(R"("hello")"), u"hello"_qs);
    turn("two texts", userLine(R"([{"type":"text","text":"one"},{"type":"text","text":"two"}])"),
         u"one\ntwo"_qs);
    turn("text beside an image", userLine(R"([{"type":"image"},{"type":"text","text":"look"}])"),
         u"look"_qs);
    turn("isMeta false", userLine(R"("hello")", R"("isMeta":false,)"), u"hello"_qs);
    turn("isMeta null", userLine(R"("hello")", R"("isMeta":null,)"), u"hello"_qs);
    turn("isMeta as a text", userLine(R"("hello")", R"("isMeta":"true",)"), u"hello"_qs);
    turn("isMeta as a number", userLine(R"("hello")", R"("isMeta":1,)"), u"hello"_qs);
    turn("isMeta in the message",
         timed(R"("type":"user","message":{"isMeta":true,"content":"hello"})"), u"hello"_qs);
    turn("caveat in lower case", userLine(R"("caveat: hello")"), u"caveat: hello"_qs);
    turn("caveat without colon", userLine(R"("Caveat hello")"), u"Caveat hello"_qs);
    turn("caveat later", userLine(R"("A Caveat: hello")"), u"A Caveat: hello"_qs);
    turn("command tag in upper case", userLine(R"("<Command-name>")"), u"<Command-name>"_qs);
    turn("command tag without hyphen", userLine(R"("<command>")"), u"<command>"_qs);
    turn("command tag later", userLine(R"("x <command-name>")"), u"x <command-name>"_qs);
    turn("closing command tag", userLine(R"("</command-name>")"), u"</command-name>"_qs);
    turn("local command in upper case", userLine(R"("<LOCAL-command>")"), u"<LOCAL-command>"_qs);
    turn("NUL is no blank", userLine(R"("\u0000<command-name>")"), u"\u0000<command-name>"_qs);

    none("command tag", userLine(R"("<command-name>/clear</command-name>")"));
    none("command tag behind three blanks", userLine(R"("   <command-name>/clear")"));
    none("command tag behind other blanks", userLine(R"("\n\u00a0\u3000\t<command-message>")"));
    none("command tag alone", userLine(R"("<command-")"));
    none("local command", userLine(R"("<local-command-stdout>")"));
    none("local command in one word", userLine(R"("<local-commander>")"));
    none("caveat", userLine(R"("Caveat: The messages below")"));
    none("caveat alone behind blanks", userLine(R"("\r\n Caveat:")"));
    none("command tag as the first of two texts",
         userLine(R"([{"type":"text","text":" <command-"},{"type":"text","text":"two"}])"));
    none("meta", userLine(R"("hello")", R"("isMeta":true,)"));
    none("tool result beside a text",
         userLine(R"([{"type":"tool_result","content":"x"},{"type":"text","text":"hello"}])"));
    none("empty prompt", userLine(R"("")"));
    none("prompt of one blank", userLine(R"(" ")"));
    none("prompt of all kinds of blanks", userLine(R"(" \t\r\n\u000b\u000c\u0085\u00a0\u1680\u2000)"
                                                   R"(\u200a\u2028\u2029\u202f\u205f\u3000")"));
    none("two texts of blanks",
         userLine(R"([{"type":"text","text":" "},{"type":"text","text":" "}])"));
    for (const char *content : {"null", "1", "true", "{}", "[]", R"(["hello"])",
                                R"([{"text":"x"}])", R"({"type":"text","text":"hello"})"})
        QTest::addRow("content %s", content) << userLine(content) << QString();
    none("no content", timed(R"("type":"user","message":{})"));
    none("no message", timed(R"("type":"user","content":"hello")"));
    none("message of another kind", timed(R"("type":"user","message":"hello")"));
    none("message in an array", timed(R"("type":"user","message":[{"content":"hello"}])"));
    none("no type", timed(R"("message":{"content":"hello"})"));
    none("type in the message", timed(R"("message":{"type":"user","content":"hello"})"));
    none("type of another kind", timed(R"("type":["user"],"message":{"content":"hello"})"));
    none("type in another case", timed(R"("type":"User","message":{"content":"hello"})"));
    none("type with a blank", timed(R"("type":"user ","message":{"content":"hello"})"));
    none("another type", timed(R"("type":"system","message":{"content":"hello"})"));
    none("assistant", timed(R"("type":"assistant","message":{"content":"hello"})"));
}

void SessionParserTest::turns()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, firstPrompt);
    const auto parsed = session(line);
    QVERIFY(parsed);
    QCOMPARE(parsed->turns, firstPrompt.isEmpty() ? 0 : 1);
    QCOMPARE(parsed->firstPrompt, firstPrompt);
}

void SessionParserTest::firstPromptIsTrimmed_data()
{
    QTest::addColumn<QString>("blank");
    for (const char16_t blank : u"\t\n\v\f\r \u0085\u00a0\u1680\u2000\u2009\u2028\u2029\u202f\u205f"
                                "\u3000") {
        if (blank != 0)
            QTest::addRow("U+%04X", unsigned(blank)) << QString(QChar(blank));
    }
    QTest::newRow("several") << u" \r\n\u2028\u00a0\u3000\t"_qs;
}

void SessionParserTest::firstPromptIsTrimmed()
{
    QFETCH(QString, blank);
    const QString prompt = u"two"_qs + blank + u"words"_qs; // inside, blanks stay
    const auto parsed =
        session(LogLines::user(u"2025-01-01T10:00:00Z"_qs, blank + prompt + blank + blank));
    QVERIFY(parsed);
    QCOMPARE(parsed->turns, 1);
    QCOMPARE(parsed->firstPrompt, prompt);
}

void SessionParserTest::laterTurnsDoNotChangeTheFirstPrompt()
{
    const QByteArray longPrompt = '"' + QByteArray(100'000, 'x') + '"';
    const auto parsed =
        session(log({userLine(R"(" ")"), userLine(R"("<command-x>")"), userLine(longPrompt),
                     userLine(R"("second")"), userLine(R"("third")")}));
    QVERIFY(parsed);
    QCOMPARE(parsed->turns, 3);
    QCOMPARE(parsed->firstPrompt, QString(100'000, u'x')); // no limit of length
}

// Usage ------------------------------------------------------------------------------------------

void SessionParserTest::usage_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("record"); // empty for a line that yields none
    const auto row = [](const char *name, const QByteArray &line, const QString &record) {
        QTest::newRow(name) << line
                            << (record.isEmpty() ? record
                                                 : u"2025-01-01T10:00:00.000Z "_qs + record);
    };
    const auto none = [&](const char *name, const QByteArray &line) { row(name, line, {}); };
    row("all counts",
        usageLine(R"({"input_tokens":1,"output_tokens":2,"cache_creation_input_tokens":3,)"
                  R"("cache_read_input_tokens":4})"),
        u"\"m\" 1/2/3/4"_qs);
    row("no counts", usageLine("{}"), u"\"m\" 0/0/0/0"_qs);
    row("no model", assistantLine("$1"), u"\"\" 1/0/0/0"_qs);
    row("empty model", assistantLine(R"("model":"",$1)"), u"\"\" 1/0/0/0"_qs);
    row("model of another kind", assistantLine(R"("model":4,$1)"), u"\"\" 1/0/0/0"_qs);
    row("model null", assistantLine(R"("model":null,$1)"), u"\"\" 1/0/0/0"_qs);
    row("model is not trimmed", assistantLine(R"("model":" é ",$1)"), u"\" é \" 1/0/0/0"_qs);
    row("id of another kind", assistantLine(R"("id":7,"model":"m",$1)"), u"\"m\" 1/0/0/0"_qs);
    row("meta does not matter",
        timed(R"("type":"assistant","isMeta":true,)"
              R"("message":{"usage":{"output_tokens":1}})"),
        u"\"\" 0/1/0/0"_qs);
    row("type behind the message",
        timed(R"("message":{"usage":{"output_tokens":1}},"type":"assistant")"), u"\"\" 0/1/0/0"_qs);
    row("deeper counts do not matter",
        usageLine(R"({"input_tokens":1,"iterations":[{"input_tokens":5}],)"
                  R"("cache_creation":{"cache_creation_input_tokens":5},"Input_tokens":5})"),
        u"\"m\" 1/0/0/0"_qs);
    row("usage elsewhere does not matter",
        timed(R"("type":"assistant","usage":{"input_tokens":5},"message":{"model":"m",)"
              R"("content":[{"usage":{"input_tokens":5}}],"usage":{"input_tokens":1}},)"
              R"("toolUseResult":{"message":{"usage":{"input_tokens":5}}})"),
        u"\"m\" 1/0/0/0"_qs);
    none("no usage", assistantLine(R"("model":"m")"));
    none("usage null", usageLine("null"));
    none("usage of another kind", usageLine("1"));
    none("usage in an array", usageLine(R"([{"input_tokens":1}])"));
    none("usage beside the message", timed(R"("type":"assistant","usage":{"input_tokens":1},)"
                                           R"("message":{"model":"m"})"));
    none("no message", timed(R"("type":"assistant","usage":{"input_tokens":1})"));
    none("message of another kind", timed(R"("type":"assistant","message":[{"usage":{}}])"));
    none("another type", timed(R"("type":"progress","message":{"usage":{"input_tokens":1}})"));
    none("type in another case", timed(R"("type":"Assistant","message":{"usage":{}})"));
    none("type in the message", timed(R"("message":{"type":"assistant","usage":{}})"));
    none("user", timed(R"("type":"user","message":{"usage":{"input_tokens":1}})"));
}

void SessionParserTest::usage()
{
    QFETCH(QByteArray, line);
    QTEST(describe(records({line})), "record");
}

void SessionParserTest::tokenCounts_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint64>("count");
    const auto row = [](const char *json, qint64 count) {
        QTest::newRow(json) << QByteArray(json) << count;
    };
    row("0", 0);
    row("-0", 0);
    row("12345", 12345);
    row("-5", -5);
    row("9223372036854775807", std::numeric_limits<qint64>::max());
    row("-9223372036854775808", std::numeric_limits<qint64>::min());
    // The same integers in another spelling, which JSON does not tell apart.
    row("100.0", 100);
    row("1e3", 1000);
    row("-2.50e1", -25);
    // No integers of 64 bits.
    row("9223372036854775808", 0);
    row("-9223372036854775809", 0);
    row("18446744073709551615", 0);
    row("18446744073709551616", 0);
    row("1234567890123456789012345678901234567890", 0);
    row("9223372036854775808.0", 0);
    row("-9223372036854775809e3", 0);
    row("1e400", 0);
    row("-1e400", 0);
    row("1e300", 0);
    // No integers at all.
    row("1.5", 0);
    row("-0.1", 0);
    row("1e-400", 0);
    row("\"7\"", 0);
    row("true", 0);
    row("false", 0);
    row("null", 0);
    row("[7]", 0);
    row("{\"a\":7}", 0);
}

void SessionParserTest::tokenCounts()
{
    QFETCH(QByteArray, json);
    QFETCH(qint64, count);
    const QString expected =
        QStringLiteral("2025-01-01T10:00:00.000Z \"m\" %1/%1/%1/%1").arg(count);
    QCOMPARE(describe(records({usageLine(R"({"input_tokens":)" + json + R"(,"output_tokens":)" +
                                         json + R"(,"cache_creation_input_tokens":)" + json +
                                         R"(,"cache_read_input_tokens":)" + json + '}')})),
             expected);
}

void SessionParserTest::lastLineOfAMessageCounts()
{
    const auto line = [](const char *time, const QString &id, qint64 output) {
        return LogLines::assistant(QString::fromLatin1(time), u"m"_qs, {1, output, 0, 0}, id);
    };
    // Lines of the message a, with those of others between them. The last is also the oldest.
    QCOMPARE(
        describe(records(
            {line("2025-01-01T10:00:01Z", u"a"_qs, 1), line("2025-01-01T10:00:02Z", u"b"_qs, 7),
             line("2025-01-01T10:00:03Z", u"a"_qs, 20), userLine(R"("hello")"),
             line("2025-01-01T10:00:04Z", u"c"_qs, 8), line("2025-01-01T10:00:00Z", u"a"_qs, 10)})),
        u"2025-01-01T10:00:00.000Z \"m\" 1/10/0/0\n  "
        "2025-01-01T10:00:02.000Z \"m\" 1/7/0/0\n  "
        "2025-01-01T10:00:04.000Z \"m\" 1/8/0/0"_qs);
    QCOMPARE(records({line("2025-01-01T10:00:01Z", u"a"_qs, 1),
                      line("2025-01-01T10:00:02Z", u"a"_qs, 20),
                      line("2025-01-01T10:00:03Z", u"a"_qs, 300)})
                 .value(0)
                 .output,
             300);
    // A line of the message without usage replaces nothing.
    QCOMPARE(describe(records({assistantLine(R"("id":"a",$1)"), assistantLine(R"("id":"a")")})),
             u"2025-01-01T10:00:00.000Z \"\" 1/0/0/0"_qs);
}

void SessionParserTest::messagesWithoutIdAreAllCounted()
{
    QCOMPARE(records({assistantLine("$1"), assistantLine("$1")}).size(), 2);
    QCOMPARE(records({assistantLine(R"("id":1,$1)"), assistantLine(R"("id":1,$1)"),
                      assistantLine(R"("id":null,$1)")})
                 .size(),
             3);
}

void SessionParserTest::idsAreComparedWhole()
{
    QCOMPARE(records({assistantLine(R"("id":"",$1)"), assistantLine(R"("id":"",$1)"),
                      assistantLine(R"("id":"a",$1)"), assistantLine(R"("id":"A",$1)"),
                      assistantLine(R"("id":"a ",$1)"), assistantLine(R"("id":"a\u0000b",$1)"),
                      assistantLine(R"("id":"a\u0000c",$1)"), assistantLine(R"("id":"\u0061",$1)")})
                 .size(),
             6); // the empty one and "a" stand there twice
}

void SessionParserTest::usageIsDatedByItsLine()
{
    QCOMPARE(
        describe(records({at("2025-01-01T09:00:00Z"),
                          LogLines::assistant(u"2025-01-01T12:00:00.5+02:00"_qs, u"m"_qs, {})})),
        u"2025-01-01T10:00:00.500Z \"m\" 0/0/0/0"_qs);
}

void SessionParserTest::usageWithoutTimeIsDatedByTheStartSoFar()
{
    const QByteArray usage = LogLines::assistant({}, u"m"_qs, {1, 0, 0, 0});
    const QByteArray badTime = LogLines::assistant(u"2025-01-01"_qs, u"m"_qs, {2, 0, 0, 0});
    QCOMPARE(describe(records({at("2025-01-01T11:00:00Z"), usage, at("2025-01-01T09:00:00Z"),
                               at("2025-01-01T12:00:00Z"), badTime})),
             u"2025-01-01T09:00:00.000Z \"m\" 2/0/0/0\n  "
             "2025-01-01T11:00:00.000Z \"m\" 1/0/0/0"_qs);
}

void SessionParserTest::usageBeforeAnyTimeIsDatedNow()
{
    const auto parsed =
        session(log({LogLines::assistant({}, u"m"_qs, {}), at("2025-01-01T11:00:00Z")}));
    QVERIFY(parsed);
    QCOMPARE(describe(parsed->records), describe(now) + u" \"m\" 0/0/0/0"_qs);
    QCOMPARE(describe(parsed->end), u"2025-01-01T11:00:00.000Z"_qs); // now is not in the log
}

void SessionParserTest::recordsAreSortedByDate()
{
    const auto line = [](int minute, const QString &id) {
        const QString time = QStringLiteral("2025-01-01T10:%1:00Z").arg(minute, 2, 10, QChar(u'0'));
        return LogLines::assistant(time, u"m"_qs, {minute, 0, 0, 0}, id);
    };
    QList<qint64> order;
    for (const UsageRecord &record :
         records({line(30, {}), line(10, u"a"_qs), line(50, u"b"_qs), line(20, {}),
                  line(5, u"c"_qs), line(40, {}), line(45, u"a"_qs)}))
        order.append(record.input);
    QCOMPARE(order, QList<qint64>({5, 20, 30, 40, 45, 50}));
}

void SessionParserTest::equalDatesKeepTheirOrder()
{
    QByteArrayList lines;
    QList<qint64> expected;
    for (int i = 0; i < 200; ++i) {
        lines.append(LogLines::assistant(u"2025-01-01T10:00:00Z"_qs, u"m"_qs, {i, 0, 0, 0}));
        expected.append(i);
    }
    QList<qint64> order;
    for (const UsageRecord &record : records(lines))
        order.append(record.input);
    QCOMPARE(order, expected);
    // Those with an id come before those without.
    const QByteArray withId =
        LogLines::assistant(u"2025-01-01T10:00:00Z"_qs, u"id"_qs, {}, u"a"_qs);
    QCOMPARE(records(lines + QByteArrayList{withId}).value(0).model, u"id"_qs);
}

// Lines ------------------------------------------------------------------------------------------

void SessionParserTest::lineEndings_data()
{
    QTest::addColumn<QByteArray>("ending");
    QTest::addColumn<QByteArray>("last");
    QTest::newRow("line feed") << QByteArray("\n") << QByteArray("\n");
    QTest::newRow("no final line feed") << QByteArray("\n") << QByteArray();
    QTest::newRow("carriage return and line feed") << QByteArray("\r\n") << QByteArray("\r\n");
    QTest::newRow("carriage return at the end") << QByteArray("\r\n") << QByteArray("\r");
    QTest::newRow("empty lines") << QByteArray("\n\n\r\n \n\n") << QByteArray("\n\n\n");
    QTest::newRow("blanks around") << QByteArray(" \t\n\t ") << QByteArray(" ");
}

void SessionParserTest::lineEndings()
{
    QFETCH(QByteArray, ending);
    QFETCH(QByteArray, last);
    const auto parsed = session(userLine(R"("one")") + ending + assistantLine("$1") + ending +
                                userLine(R"("two")") + last);
    QVERIFY(parsed);
    QCOMPARE(parsed->turns, 2);
    QCOMPARE(parsed->records.size(), 1);
}

void SessionParserTest::linesThatAreNotJsonAreSkipped()
{
    const QByteArray good = userLine(R"("no")");
    const auto with = [](const QByteArray &value) {
        return userLine(R"("no")", R"("x":)" + value + ',');
    };
    QByteArrayList lines{good + good,
                         good + ' ' + good,
                         good + ',',
                         '[' + good + ']',
                         good.chopped(20) + good,
                         good.chopped(1),
                         QByteArray(500, '\0') + good,
                         good + QByteArray(500, '\0'),
                         "\xef\xbb\xbf\xef\xbb\xbf" + good,
                         "// " + good,
                         QByteArray(good).replace('"', '\''),
                         good + '\v'};
    for (const char *value :
         {"tru", "[1,]", "01", "1.", ".5", "+1", R"("\q")", "NaN", "'a'", "/**/1", "\"\x01\"",
          "\"\t\"", "\"\x80\"", "\"\xc0\xaf\"", "\"\xed\xa0\xbd\"", "\"\xf0\x9f\x98\"",
          "1-2222222222222222222222222", "\"\\ud83d\\q\""})
        lines.append(with(value));
    lines.append(with('0' + QByteArray(40, '1')));
    lines.append(with("1-" + QByteArray(25, '1')));
    for (const QByteArray &line : std::as_const(lines)) {
        const auto parsed =
            session(userLine(R"("first")") + '\n' + line + '\n' + userLine(R"("second")") + '\n');
        QVERIFY(parsed);
        QVERIFY2(parsed->turns == 2, line.constData());
    }
}

void SessionParserTest::strangeButValidLinesCount()
{
    const QByteArray nested = QByteArray(900, '[') + QByteArray(900, ']');
    const QByteArray deeper = QByteArray(5'000, '[') + QByteArray(5'000, ']');
    for (const QByteArray &value :
         {QByteArray(R"("\ud83d")"), QByteArray(R"("\ude00")"), QByteArray(R"("\ude00\ud83d")"),
          QByteArray(R"("\ud83d x \ude00")"), QByteArray(R"("\\ud83d")"),
          '"' + QByteArray(100'000, 'x') + "\\ud83d\"", QByteArray(40, '9'),
          '-' + QByteArray(40, '9'), QByteArray("1e400"), QByteArray("-1e400"), nested, deeper}) {
        const auto parsed = session(userLine(R"("hello")", R"("x":)" + value + ','));
        QVERIFY2(parsed && parsed->turns == 1, value.left(100).constData());
        QCOMPARE(parsed->firstPrompt, u"hello"_qs);
    }
    // Also where the text is wanted.
    const auto parsed = session(userLine(R"("cut \ud83d")"));
    QVERIFY(parsed);
    QCOMPARE(parsed->firstPrompt, u"cut \ufffd"_qs);
}

void SessionParserTest::lastOfTwoKeysCounts()
{
    const auto parsed = session(
        R"({"timestamp":"2020-01-01T00:00:00Z","type":"user","isMeta":true,"message":{"content":"no"},)"
        R"("timestamp":"2025-01-01T10:00:00Z","type":"assistant","isMeta":false,"message":)"
        R"({"model":"no","usage":{},"model":"m","usage":{"input_tokens":1,"input_tokens":2},)"
        R"("id":"a"}})");
    QCOMPARE(describe(parsed),
             u"log from 2025-01-01T10:00:00.000Z to 2025-01-01T10:00:00.000Z, 0 turns, \"\"\n  "
             "2025-01-01T10:00:00.000Z \"m\" 2/0/0/0"_qs);
    // A value of another kind counts as the last one, too.
    QCOMPARE(describe(records({assistantLine(R"($1,"usage":null)")})), QString());
}

void SessionParserTest::keysMayBeWrittenWithEscapes()
{
    const auto parsed = session(R"({"time\u0073tamp":"2025\u002d01-01T10:00:00\u005a","\u0074ype":)"
                                R"("us\u0065r","message":{"cont\u0065nt":"hello"}})");
    QVERIFY(parsed);
    QCOMPARE(parsed->firstPrompt, u"hello"_qs);
}

// Reading ----------------------------------------------------------------------------------------

void SessionParserTest::sameSessionWhateverTheChunk()
{
    const QByteArray content =
        "\n\n" +
        log({at("2025-01-01T11:00:00.250Z"), userLine(R"("  first ü😀 prompt\n")"), "not JSON",
             userLine(R"([{"type":"text","text":"a"},{"type":"text","text":"b"}])") + '\r', "",
             LogLines::assistant(u"2025-01-01T09:00:00Z"_qs, u"opus"_qs, {1, 2, 3, 4}, u"x"_qs),
             LogLines::assistant({}, u"sonnet"_qs, {5, 6, 7, 8}), QByteArray(70, '\0'),
             userLine(R"("\ud83d")", "\"n\":1" + QByteArray(40, '0') + ','),
             userLine(R"("x")", "\"n\":" + QByteArray(1'100, '[') + QByteArray(1'100, ']') + ','),
             userLine(R"("a")") + userLine(R"("b")"), userLine(R"("<command-x>")"),
             LogLines::assistant(u"2025-01-01T12:00:00Z"_qs, u"opus"_qs, {9, 9, 9, 9}, u"x"_qs)}) +
        "\n" + userLine(R"("the last line has no line feed")");
    writeFile(m_path, content);
    const QString expected = describe(SessionParser::parse(m_path.toStdString(), now));
    QVERIFY2(expected.contains(u"5 turns, \"first ü😀 prompt\""), qPrintable(expected));
    for (qint64 chunk = 1; chunk <= content.size() + 1; ++chunk) {
        SessionReader reader(chunk);
        QCOMPARE(describe(reader.read(m_path.toStdString(), now)), expected);
    }
}

void SessionParserTest::hugeLineBetweenSmallOnes()
{
    constexpr qint64 huge = 150'000'000;
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(userLine(R"("before")") + '\n');
    file.write(R"({"toolUseResult":")");
    for (qint64 written = 0; written < huge; written += 1'000'000)
        file.write(QByteArray(1'000'000, 'x'));
    file.write(R"(","timestamp":"2025-01-01T11:00:00Z","type":"assistant",)"
               R"("message":{"usage":{"input_tokens":7}}})"
               "\n");
    file.write(userLine(R"("behind")") + '\n');
    file.close();
    QCOMPARE(describe(SessionParser::parse(m_path.toStdString(), now)),
             u"log from 2025-01-01T10:00:00.000Z to 2025-01-01T11:00:00.000Z, 2 turns, "
             "\"before\"\n  2025-01-01T11:00:00.000Z \"\" 7/0/0/0"_qs);
    QCOMPARE(describe(SessionParser::cwd(m_path.toStdString())), u"nothing"_qs);
}

void SessionParserTest::oneReaderReadsManyLogs()
{
    SessionReader reader;
    const QByteArrayList contents{log({userLine(R"("one")"), assistantLine(R"("id":"a",$1)")}), "",
                                  userLine(R"("cut)"),
                                  log({userLine(R"("two")"), assistantLine(R"("id":"b",$1)")})};
    for (const QByteArray &content : contents) {
        const QString expected = describe(session(content));
        QCOMPARE(describe(reader.read(m_path.toStdString(), now)), expected);
        QVERIFY(!reader.read(m_folder.filePath(u"missing"_qs).toStdString(), now));
    }
}

void SessionParserTest::stopsWhenAsked()
{
    const auto stop = std::make_unique<std::stop_source>();
    writeFile(m_path, userLine(R"("hello")"));
    SessionReader reader;
    QVERIFY(reader.read(m_path.toStdString(), now, stop->get_token()));
    stop->request_stop();
    QVERIFY(!reader.read(m_path.toStdString(), now, stop->get_token()));
}

void SessionParserTest::logThatChangesMeanwhile()
{
    const QByteArray line = userLine(R"("hello")") + '\n';
    const auto change = [&](int step) {
        if (step % 3 == 0)
            writeFile(m_path, line.repeated(20'000));
        else if (step % 3 == 1)
            QFile::resize(m_path, line.size() * 100 + 7);
        else
            QFile::remove(m_path);
    };
    change(0);
    std::jthread agent([&](const std::stop_token &stop) {
        for (int step = 1; !stop.stop_requested(); ++step)
            change(step);
    });
    SessionReader reader(4096);
    for (int i = 0; i < 100; ++i) {
        // Whatever was met on the way, it is nothing or a part of what was written.
        const auto parsed = reader.read(m_path.toStdString(), now);
        if (parsed) {
            QCOMPARE(parsed->firstPrompt, u"hello"_qs);
            QVERIFY(parsed->turns <= 20'000);
        }
    }
}

// Working folder ---------------------------------------------------------------------------------

void SessionParserTest::cwdIsTheFirstOne_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("folder");
    const auto row = [](const char *name, const QByteArray &content, const QString &folder) {
        QTest::newRow(name) << content << (folder.isNull() ? u"nothing"_qs : describe(folder));
    };
    row("only line", R"({"cwd":"/Users/dev/my-app"})", u"/Users/dev/my-app"_qs);
    row("first of two lines", "{\"cwd\":\"/a\"}\n{\"cwd\":\"/b\"}\n", u"/a"_qs);
    row("behind lines without it", "{}\n{\"a\":\"cwd\"}\n{\"cwd\":\"/b\"}", u"/b"_qs);
    row("behind lines that are no JSON", "cwd\n{\"cwd\":\"/a\"\n[1]\n{\"cwd\":\"/b\"}", u"/b"_qs);
    row("behind an array with it", "[{\"cwd\":\"/a\"}]\n{\"cwd\":\"/b\"}", u"/b"_qs);
    row("behind others of another kind",
        "{\"cwd\":1}\n{\"cwd\":null}\n{\"cwd\":[\"/a\"]}\n{\"cwd\":{}}\n{\"cwd\":\"/b\"}",
        u"/b"_qs);
    row("top level only", "{\"message\":{\"cwd\":\"/a\"}}\n{\"cwd\":\"/b\"}", u"/b"_qs);
    row("last of two keys", R"({"cwd":"/a","cwd":"/b"})", u"/b"_qs);
    row("escapes", R"({"cwd":"\/\u00fc\/\ud83d\ude00"})", u"/ü/😀"_qs);
    row("line with a lone surrogate", R"({"x":"\ud83d","cwd":"/a"})", u"/a"_qs);
    row("empty text", R"({"cwd":""})", u""_qs);
    row("key in another case", R"({"CWD":"/a"})", QString());
    row("empty file", "", QString());
    row("no line has it", "{}\n{}\n", QString());
}

void SessionParserTest::cwdIsTheFirstOne()
{
    QFETCH(QByteArray, content);
    QTEST(cwd(content), "folder");
}

void SessionParserTest::cwdBeyondTheHeadIsNotFound()
{
    QByteArray content = log({R"({"a":1})"}).repeated(int(head) / 8 + 1);
    QVERIFY(content.size() > head);
    content += R"({"cwd":"/a"})";
    QCOMPARE(cwd(content), u"nothing"_qs);
    // One long line in front does the same.
    const QByteArray longLine = "{\"a\":\"" + QByteArray(head, 'x') + "\"}\n";
    QCOMPARE(cwd(longLine + "{\"cwd\":\"/a\"}\n"), u"nothing"_qs);
}

void SessionParserTest::cwdOnTheEdgeOfTheHead()
{
    const QByteArray line = R"({"cwd":"/a"})";
    const auto endingAt = [&](qint64 end) {
        return QByteArray(end - line.size() - 1, ' ') + '\n' + line;
    };
    QCOMPARE(cwd(endingAt(head) + '\n'), u"\"/a\""_qs);
    QCOMPARE(cwd(endingAt(head - 1) + '\n'), u"\"/a\""_qs);
    QCOMPARE(cwd(endingAt(head + 1) + '\n'), u"nothing"_qs);   // the cut line is no JSON
    QCOMPARE(cwd(endingAt(head) + "garbage\n"), u"\"/a\""_qs); // nothing behind the head is seen
}

void SessionParserTest::cwdOfSpecialFilesIsNothing_data()
{
    specialFilesAreNoSessions_data();
}

void SessionParserTest::cwdOfSpecialFilesIsNothing()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    makeSpecialFiles(folder.path(), u".jsonl"_qs);
    QVERIFY(!SessionParser::cwd(folder.filePath(name + u".jsonl"_qs).toStdString()));
    QVERIFY(!SessionParser::cwd(folder.filePath(u"missing"_qs).toStdString()));
}

PLINTHAR_TEST_MAIN(SessionParserTest)
#include "SessionParserTest.moc"
