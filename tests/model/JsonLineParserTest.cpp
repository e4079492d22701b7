// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/JsonLineParser.h"

#include "model/JsonFields.h"
#include "support/StrictJson.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <cmath>

namespace {

QString deeplyNested(int levels)
{
    return QString(levels, u'[') + QString(levels, u']');
}

/// The parser on a line in a buffer of its own. What stands in the padding must not matter.
class Parser {
public:
    std::optional<simdjson::dom::object> operator()(const QByteArray &line,
                                                    const QByteArray &padding = {})
    {
        m_buffer = line + padding.leftJustified(simdjson::SIMDJSON_PADDING, '\0', true);
        return m_parser.object({m_buffer.constData(), static_cast<size_t>(line.size())});
    }

private:
    QByteArray m_buffer;
    JsonLineParser m_parser;
};

/// Qt keeps lone surrogates in its texts; ours have U+FFFD in their place, as UTF-8 has none.
QString withoutLoneSurrogates(const QString &text)
{
    const std::u32string points = text.toStdU32String();
    return QString::fromUcs4(points.data(), qsizetype(points.size()));
}

/// Whether both parsers saw the same number. One that fits neither 64 bits nor a double is 0 to us.
bool sameNumber(const simdjson::dom::element &ours, double theirs)
{
    const double number = ours.get_double().value();
    return number == theirs || (number == 0 && !(std::abs(theirs) < 0x1p63));
}

bool same(const simdjson::dom::element &ours, const QJsonValue &theirs);

bool same(const simdjson::dom::array &ours, const QJsonArray &theirs)
{
    qsizetype i = 0;
    for (const simdjson::dom::element element : ours) {
        if (i >= theirs.size() || !same(element, theirs.at(i)))
            return false;
        ++i;
    }
    return i == theirs.size();
}

bool same(const simdjson::dom::object &ours, const QJsonObject &theirs)
{
    QHash<QString, simdjson::dom::element> lastOfKey;
    for (const simdjson::dom::key_value_pair field : ours)
        lastOfKey.insert(toQString(field.key), field.value);
    QHash<QString, QJsonValue> expected;
    for (auto it = theirs.begin(); it != theirs.end(); ++it)
        expected.insert(withoutLoneSurrogates(it.key()), it.value());
    if (expected.size() < theirs.size())
        return true; // two keys have become one, and Qt has lost which of them came last
    if (lastOfKey.size() != expected.size())
        return false;
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        if (!lastOfKey.contains(it.key()) || !same(lastOfKey.value(it.key()), it.value()))
            return false;
    }
    return true;
}

bool same(const simdjson::dom::element &ours, const QJsonValue &theirs)
{
    using simdjson::dom::element_type;
    switch (ours.type()) {
    case element_type::ARRAY:
        return theirs.isArray() && same(ours.get_array().value(), theirs.toArray());
    case element_type::OBJECT:
        return theirs.isObject() && same(ours.get_object().value(), theirs.toObject());
    case element_type::STRING:
        return theirs.isString() &&
               toQString(ours.get_string().value()) == withoutLoneSurrogates(theirs.toString());
    case element_type::BOOL:
        return theirs.isBool() && ours.get_bool().value() == theirs.toBool();
    case element_type::NULL_VALUE:
        return theirs.isNull();
    default:
        return theirs.isDouble() && sameNumber(ours, theirs.toDouble());
    }
}

/// Random JSON with everything in it that a log may hold.
class Generator {
public:
    explicit Generator(quint32 seed) : m_random(seed) {}

    QByteArray line() { return blank() + object(4) + blank(); }

    QByteArray damaged(QByteArray line)
    {
        for (int times = 1 + below(2); times > 0 && !line.isEmpty(); --times)
            damage(line);
        return line;
    }

private:
    int below(int bound) { return m_random.bounded(bound); }

    template <size_t Count>
    QByteArray oneOf(const char *const (&choices)[Count])
    {
        return choices[below(int(Count))];
    }

    QByteArray blank() { return oneOf({"", "", "", "", "", "", " ", "\t", "\r", "  "}); }

    QByteArray digits()
    {
        QByteArray text(1 + below(below(8) == 0 ? 40 : 4), '0');
        for (char &c : text)
            c = char('0' + below(10));
        return text;
    }

    QByteArray number()
    {
        QByteArray text = oneOf({"", "-"});
        text += below(4) == 0 ? QByteArray("0") : char('1' + below(9)) + digits();
        if (below(3) == 0)
            text += '.' + digits();
        if (below(3) == 0)
            text += oneOf({"e", "E"}) + oneOf({"", "+", "-"}) + digits().left(3);
        return text;
    }

    QByteArray string()
    {
        QByteArray text = "\"";
        for (int i = below(6); i > 0; --i)
            text += oneOf({"a",
                           "key",
                           " ",
                           "ü",
                           "日",
                           "😀",
                           "\x7f",
                           "\\n",
                           "\\\"",
                           "\\\\",
                           "\\/",
                           "\\b\\f\\r\\t",
                           "\\u0041",
                           "\\u00e9",
                           "\\u0000",
                           "\\uFFFF",
                           "\\ud83d",
                           "\\udE00",
                           "\\ud83d\\ude00",
                           "\\ude00\\ud83d",
                           "\\\\ud83d",
                           "1e999",
                           "[",
                           "{",
                           "}",
                           "u",
                           "0"});
        return text + '"';
    }

    QByteArray list(char open, char close, int length, auto element)
    {
        QByteArray text;
        for (int i = 0; i < length; ++i)
            text += (i > 0 ? "," : "") + blank() + element() + blank();
        return open + text + close;
    }

    QByteArray array(int depth)
    {
        return list('[', ']', below(4), [&] { return value(depth); });
    }

    QByteArray object(int depth)
    {
        return list('{', '}', below(5), [&] { return string() + blank() + ':' + value(depth); });
    }

    QByteArray value(int depth)
    {
        switch (below(depth > 0 ? 6 : 4)) {
        case 0:
        case 1:
            return number();
        case 2:
            return string();
        case 3:
            return oneOf({"true", "false", "null"});
        case 4:
            return array(depth - 1);
        default:
            return object(depth - 1);
        }
    }

    void damage(QByteArray &line)
    {
        static constexpr char bytes[] =
            "\0\x01\x1f\t\r "
            "\"\"\\\\{}[]::,,0019-+.eEuax'/#\x7f\x80\xbf\xc0\xc3\xe2\xed\xf0\xf5\xff";
        const char byte = bytes[below(int(sizeof bytes) - 1)];
        const int at = below(int(line.size()));
        switch (below(6)) {
        case 0:
            line.remove(at, 1);
            break;
        case 1:
            line.insert(at, byte);
            break;
        case 2:
            line[at] = byte;
            break;
        case 3:
            line.truncate(at);
            break;
        case 4:
            line.insert(at, line.mid(below(int(line.size())), 1 + below(8)));
            break;
        default:
            line.remove(at, 1 + below(6));
        }
    }

    QRandomGenerator m_random;
};

} // namespace

class JsonLineParserTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void takesEveryJsonObject_data();
    void takesEveryJsonObject();
    void takesNothingElse_data();
    void takesNothingElse();
    void loneSurrogatesBecomeReplacementCharacters_data();
    void loneSurrogatesBecomeReplacementCharacters();
    void oversizedNumbersBecomeZero_data();
    void oversizedNumbersBecomeZero();
    void largestNumbersStay_data();
    void largestNumbersStay();
    void takesAnyDepth_data();
    void takesAnyDepth();
    void brokenDepthsAreRefused();
    void mendsNothingThatIsWrong_data();
    void mendsNothingThatIsWrong();
    void bytesBehindTheLineDoNotMatter_data();
    void bytesBehindTheLineDoNotMatter();
    void goesOnAfterEveryKindOfLine();
    void everyChangeOfOneByteIsJudgedStrictly_data();
    void everyChangeOfOneByteIsJudgedStrictly();
    void everyCutIsRefused();
    void agreesWithOtherParsersOnRandomLines();
    void agreesWithAStrictParserOnDamagedLines();
};

void JsonLineParserTest::takesEveryJsonObject_data()
{
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char *name, const QByteArray &line) { QTest::newRow(name) << line; };
    row("empty object", "{}");
    row("blanks of all four kinds", " \t\r{ \t\r\"a\" \t\r: \t\r[ \t\r1 , 2 ] }\r");
    row("line feeds", "{\n\"a\"\n:\n1\n}");
    row("all kinds of values", R"({"a":[true,false,null,1,-1,0.5,"x",[],{}]})");
    row("all escapes", R"({"\"\\\/\b\f\n\r\t\u0041":1})");
    row("empty key", R"({"":1})");
    row("key twice", R"({"a":1,"a":2})");
    row("NUL as an escape", R"({"a":"\u0000"})");
    row("DEL", "{\"a\":\"\x7f\"}");
    row("UTF-8 of two, three and four bytes", "{\"é\":\"日😀\"}");
    row("largest code point", "{\"a\":\"\xf4\x8f\xbf\xbf\"}");
    row("code points next to the surrogates", "{\"a\":\"\xed\x9f\xbf\xee\x80\x80\"}");
    row("no characters, yet code points", "{\"a\":\"\xef\xbf\xbe\xef\xbf\xbf\"}");
    row("line separators", "{\"a\":\"\u2028\u2029\u0085\"}");
    row("minus zero", R"({"a":[-0,-0.0,-0e0]})");
    row("numbers of all forms", R"({"a":[0,0.0,0e0,0E+0,0e-0,10.01e10,1E400,-1e-400]})");
    row("exponent with zeros in front", R"({"a":1e0000000000000000000000000000001})");
    row("many digits", "{\"a\":0." + QByteArray(1000, '1') + "}");
}

void JsonLineParserTest::takesEveryJsonObject()
{
    QFETCH(QByteArray, line);
    QVERIFY(Parser()(line));
    QVERIFY(isStrictJsonObject(line));
}

void JsonLineParserTest::takesNothingElse_data()
{
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char *name, const QByteArray &line) { QTest::newRow(name) << line; };
    const auto value = [](const char *text) {
        QTest::addRow("value %s", text) << QByteArray("{\"a\":") + text + '}';
    };
    row("empty", "");
    row("blanks", " \t\r");
    row("text", "hello");
    for (const char *scalar : {"1", "\"a\"", "true", "false", "null", "[]", R"([{"a":1}])"})
        row(scalar, scalar); // JSON, but no object
    row("two objects", R"({"a":1}{"b":2})");
    row("two objects with a blank", R"({"a":1} {"b":2})");
    row("two objects with a comma", R"({"a":1},{"b":2})");
    row("cut record with the next one behind it", R"({"a":"x{"b":2})");
    row("cut in a string", R"({"a":"x)");
    row("cut behind a backslash", R"({"a":"x\)");
    row("cut behind a key", R"({"a")");
    row("cut behind a value", R"({"a":1)");
    row("closed twice", R"({"a":1}})");
    row("closed by the other sign", R"({"a":1])");
    row("array closed by the other sign", R"({"a":[1}})");
    row("NUL bytes", QByteArray(100, '\0'));
    row("NUL behind", QByteArray("{\"a\":1}\0", 8));
    row("NUL before", QByteArray("\0{\"a\":1}", 8));
    row("NUL as a blank", QByteArray("{\"a\":\0 1}", 9));
    row("NUL behind a number", QByteArray("{\"a\":1\0}", 8));
    row("NUL behind true", QByteArray("{\"a\":true\0}", 11));
    row("NUL in a string", QByteArray("{\"a\":\"\0\"}", 9));
    row("tabulator in a string", "{\"a\":\"\t\"}");
    row("carriage return in a string", "{\"a\":\"\r\"}");
    row("line feed in a string", "{\"a\":\"\n\"}");
    row("control character in a string", "{\"a\":\"\x1f\"}");
    row("form feed as a blank", "{\"a\":\f1}");
    row("vertical tabulator as a blank", "{\"a\":\v1}");
    row("no-break space as a blank", "{\"a\":\u00a01}");
    row("no colon", R"({"a" 1})");
    row("comma for the colon", R"({"a",1})");
    row("two colons", R"({"a"::1})");
    row("no value", R"({"a":})");
    row("key alone", R"({"a"})");
    row("comma at the end", R"({"a":1,})");
    row("comma at the beginning", R"({,"a":1})");
    row("two commas", R"({"a":1,,"b":2})");
    row("no comma", R"({"a":1 "b":2})");
    row("comma alone", "{,}");
    row("number as key", "{1:1}");
    row("key without quotes", "{a:1}");
    row("single quotes", "{'a':1}");
    row("array as key", "{[]:1}");
    row("comment", R"({"a":1/* */})");
    row("line comment", R"({"a":1}//)");
    row("hash comment", R"({"a":1}#)");
    for (const char *text :
         {"tru",         "True",        "TRUE",        "truee",      "true1",      "nul",
          "nulll",       "NULL",        "fals",        "falsee",     "NaN",        "nan",
          "Infinity",    "-Infinity",   "inf",         "undefined",  "[1,]",       "[,1]",
          "[1,,2]",      "[,]",         "[1 2]",       "[1",         "1]",         "[1}",
          "01",          "00",          "-01",         "0123",       "1.",         ".5",
          "-.5",         "+1",          "--1",         "-",          "+",          ".",
          "-a",          "1.e5",        "1e",          "1e+",        "1e+-5",      "1e1.5",
          "1.2.3",       "1-",          "1+1",         "1-2",        "0x10",       "1_000",
          "1a",          "1e5a",        "1\"\"",       "0e",         "1E",         "-0.",
          "'a'",         "\"a",         "\"\\q\"",     "\"\\\"",     "\"\\x41\"",  "\"\\'\"",
          "\"\\U0041\"", "\"\\0\"",     "\"\\u\"",     "\"\\u1\"",   "\"\\u123\"", "\"\\u12g4\"",
          "\"\\u-123\"", "\"\\u 123\"", "\"\\u+123\"", "\"a\"\"b\"", "\"a\"b",     "(1)",
          "<1>",         "1;"})
        value(text);
    value("0000000000000000000000000000000000000000001");
    value("01234567890123456789012345678901234567890");
    value("1-2222222222222222222222222");
    value("-01234567890123456789012345678901234567890");
    value("11111111111111111111111111111111111111111.");
    value("11111111111111111111111111111111111111111e");
    value("1e400.");
    value("1e4000e1");
    value("1e400-");
    value("[1e400 1e400]");
    value("true1e400");
    for (const char *bytes : {"\x80",
                              "\xbf",
                              "\xff",
                              "\xfe",
                              "\xc3",
                              "\xe2\x82",
                              "\xf0\x9f\x98",
                              "\xc0\x80",
                              "\xc1\xbf",
                              "\xe0\x80\x80",
                              "\xe0\x9f\xbf",
                              "\xf0\x80\x80\x80",
                              "\xf0\x8f\xbf\xbf",
                              "\xed\xa0\x80",
                              "\xed\xbf\xbf",
                              "\xed\xa0\xbd\xed\xb8\x80",
                              "\xf4\x90\x80\x80",
                              "\xf5\x80\x80\x80",
                              "\xf8\x88\x80\x80\x80",
                              "\xc3\xa9\xa9"}) {
        const QByteArray hex = QByteArray(bytes).toHex(' ');
        QTest::addRow("UTF-8 %s in a value", hex.constData())
            << QByteArray("{\"a\":\"") + bytes + "\"}";
        QTest::addRow("UTF-8 %s in a key", hex.constData()) << QByteArray("{\"") + bytes + "\":1}";
        QTest::addRow("UTF-8 %s behind", hex.constData()) << QByteArray("{\"a\":1}") + bytes;
    }
}

void JsonLineParserTest::takesNothingElse()
{
    QFETCH(QByteArray, line);
    QVERIFY(!Parser()(line));
    QVERIFY(!isStrictJsonObject(line));
}

void JsonLineParserTest::loneSurrogatesBecomeReplacementCharacters_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *text, const QString &expected) {
        QTest::newRow(name) << QByteArray(text) << expected;
    };
    row("high", R"(\ud83d)", u"\ufffd"_qs);
    row("low", R"(\ude00)", u"\ufffd"_qs);
    row("first and last of both kinds", R"(\ud800\udbff \udc00\udfff)",
        u"\ufffd\ufffd \ufffd\ufffd"_qs);
    row("upper-case digits", R"(\uD83D)", u"\ufffd"_qs);
    row("pair", R"(\ud83d\ude00)", u"😀"_qs);
    row("pair in upper case", R"(\uD83D\uDE00)", u"😀"_qs);
    row("reversed pair", R"(\ude00\ud83d)", u"\ufffd\ufffd"_qs);
    row("high before a pair", R"(\ud83d\ud83d\ude00)", u"\ufffd😀"_qs);
    row("low behind a pair", R"(\ud83d\ude00\ude00)", u"😀\ufffd"_qs);
    row("pair split by text", R"(\ud83dx\ude00)", u"\ufffdx\ufffd"_qs);
    row("pair split by an escape", R"(\ud83d\n\ude00)", u"\ufffd\n\ufffd"_qs);
    row("pair split by an escaped backslash", R"(\ud83d\\ude00)", u"\ufffd\\ude00"_qs);
    row("high before another character", R"(\ud83d\u0041)", u"\ufffdA"_qs);
    row("high before a character beyond the surrogates", R"(\ud83d\ue000)", u"\ufffd\ue000"_qs);
    row("high before real text", R"(\ud83d😀)", u"\ufffd😀"_qs);
    row("behind an escaped backslash it is no escape", R"(\\ud83d)", u"\\ud83d"_qs);
    row("behind an escaped backslash it is one", R"(\\\ud83d)", u"\\\ufffd"_qs);
    row("behind an escaped quote", R"(\"\ud83d\")", u"\"\ufffd\""_qs);
    row("between numbers that are text", R"(1e999\ud83d1e999)", u"1e999\ufffd1e999"_qs);
    row("code points next to the surrogates", R"(\ud7ff\ue000)", u"\ud7ff\ue000"_qs);
}

void JsonLineParserTest::loneSurrogatesBecomeReplacementCharacters()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    Parser parse;
    const auto asValue = parse("{\"a\":\"" + text + "\",\"b\":\"behind\"}");
    QVERIFY(asValue);
    const JsonFields<2> fields(*asValue, {"a", "b"});
    QCOMPARE(toQString(jsonAs<std::string_view>(fields[0]).value_or("nothing")), expected);
    QCOMPARE(toQString(jsonAs<std::string_view>(fields[1]).value_or("nothing")), u"behind"_qs);
    const auto asKey = parse("{\"" + text + "\":1}");
    QVERIFY(asKey);
    QCOMPARE(toQString((*asKey->begin()).key), expected);
}

void JsonLineParserTest::oversizedNumbersBecomeZero_data()
{
    QTest::addColumn<QByteArray>("number");
    for (const char *number :
         {"1234567890123456789012345678901234567890", "-1234567890123456789012345678901234567890",
          "18446744073709551616", "-9223372036854775809", "1e400", "-1e400", "1E+400", "1.5e309",
          "1.7976931348623159e308", "9999999999999999999999999e999999999999999999999"})
        QTest::newRow(number) << QByteArray(number);
    QTest::newRow("10,000 digits") << QByteArray(10'000, '7');
    QTest::newRow("10,000 digits and a fraction") << QByteArray(10'000, '7') + ".5";
}

void JsonLineParserTest::oversizedNumbersBecomeZero()
{
    QFETCH(QByteArray, number);
    Parser parse;
    const auto object =
        parse("{\"a\":" + number + ",\"b\":[" + number + ",12]," + "\"c\":\"" + number + "\"}");
    QVERIFY(object);
    const JsonFields<3> fields(*object, {"a", "b", "c"});
    QCOMPARE(jsonAs<int64_t>(fields[0]).value_or(-1), 0);
    QCOMPARE(fields[1]->at(1).get_int64().value(), 12);
    QVERIFY(toQString(fields[2]->get_string().value()).toLatin1() == number); // text stays
}

void JsonLineParserTest::largestNumbersStay_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<double>("expected");
    QTest::newRow("largest signed") << QByteArray("9223372036854775807") << 0x1p63;
    QTest::newRow("smallest signed") << QByteArray("-9223372036854775808") << -0x1p63;
    QTest::newRow("largest unsigned") << QByteArray("18446744073709551615") << 0x1p64;
    QTest::newRow("largest double")
        << QByteArray("1.7976931348623157e308") << std::numeric_limits<double>::max();
    QTest::newRow("too small") << QByteArray("1e-400") << 0.0;
}

void JsonLineParserTest::largestNumbersStay()
{
    QFETCH(QByteArray, number);
    QFETCH(double, expected);
    Parser parse;
    // The second line is mended for the surrogate's sake, which must leave its number alone.
    for (const QByteArray more : {"", ",\"b\":\"\\ud83d\""}) {
        const auto object = parse("{\"a\":" + number + more + '}');
        QVERIFY(object);
        QCOMPARE(JsonFields<1>(*object, {"a"})[0]->get_double().value(), expected);
    }
}

void JsonLineParserTest::takesAnyDepth_data()
{
    QTest::addColumn<int>("levels");
    for (const int levels : {9, 900, 1'022, 1'023, 1'024, 1'025, 5'000, 100'000})
        QTest::addRow("%d", levels) << levels;
}

void JsonLineParserTest::takesAnyDepth()
{
    QFETCH(int, levels);
    const QByteArray arrays = deeplyNested(levels).toLatin1();
    const QByteArray objects =
        QByteArray("{\"a\":").repeated(levels) + "1" + QByteArray("}").repeated(levels);
    const QByteArray signs = '"' + QByteArray(levels, '[') + '"';
    Parser parse;
    for (const QByteArray &nested : {arrays, objects, signs}) {
        const auto object = parse("{\"before\":1,\"nested\":" + nested + ",\"behind\":\"x\"}");
        QVERIFY(object);
        const JsonFields<2> fields(*object, {"before", "behind"});
        QCOMPARE(jsonAs<int64_t>(fields[0]).value_or(0), 1);
        QCOMPARE(toQString(jsonAs<std::string_view>(fields[1]).value_or("")), u"x"_qs);
    }
}

void JsonLineParserTest::brokenDepthsAreRefused()
{
    Parser parse;
    for (const int levels : {900, 5'000, 100'000}) {
        const QByteArray open(levels, '[');
        QVERIFY(!parse("{\"a\":" + open));
        QVERIFY(!parse("{\"a\":" + open + QByteArray(levels - 1, ']') + '}'));
        QVERIFY(!parse("{\"a\":" + open + QByteArray(levels + 1, ']') + '}'));
        QVERIFY(!parse("{\"a\":" + open + "01" + QByteArray(levels, ']') + '}'));
        QVERIFY(!parse("{\"a\":" + open + "1," + QByteArray(levels, ']') + '}'));
    }
}

void JsonLineParserTest::mendsNothingThatIsWrong_data()
{
    QTest::addColumn<QByteArray>("wrong");
    for (const char *wrong : {"tru",
                              "[1,]",
                              "01",
                              "1.",
                              ".5",
                              "+1",
                              "\"\\q\"",
                              "\"\\u12\"",
                              "'a'",
                              "\"\x01\"",
                              "\"\xff\"",
                              "1 2",
                              "1}{",
                              "[1",
                              "1/**/",
                              "NaN",
                              "1e",
                              "\"\\ud83d\\u\"",
                              "\"\\ud83d\\q\"",
                              "\"\\ud83",
                              "- 1",
                              "1 e5"})
        QTest::newRow(wrong) << QByteArray(wrong);
}

void JsonLineParserTest::mendsNothingThatIsWrong()
{
    QFETCH(QByteArray, wrong);
    Parser parse;
    for (const QByteArray &mendable : {QByteArray("\"\\ud83d\""), QByteArray("1e400"),
                                       QByteArray(40, '1'), deeplyNested(5'000).toLatin1()}) {
        QVERIFY(parse("{\"a\":" + mendable + ",\"b\":1}"));
        QVERIFY(!parse("{\"a\":" + mendable + ",\"b\":" + wrong + '}'));
        QVERIFY(!parse("{\"b\":" + wrong + ",\"a\":" + mendable + '}'));
    }
}

void JsonLineParserTest::bytesBehindTheLineDoNotMatter_data()
{
    QTest::addColumn<QByteArray>("padding");
    QTest::newRow("NUL") << QByteArray(64, '\0');
    QTest::newRow("blanks") << QByteArray(64, ' ');
    QTest::newRow("closing signs") << QByteArray("}]\"").repeated(20);
    QTest::newRow("opening signs") << QByteArray("{[").repeated(32);
    QTest::newRow("quotes") << QByteArray(64, '"');
    QTest::newRow("backslashes") << QByteArray(64, '\\');
    QTest::newRow("digits") << QByteArray(64, '1');
    QTest::newRow("rest of a word") << QByteArray("e} ").repeated(20);
    QTest::newRow("bad UTF-8") << QByteArray(64, '\xff');
    QTest::newRow("rest of UTF-8") << QByteArray(64, '\x80');
    QTest::newRow("next line") << QByteArray("\n{\"a\":1}\n");
}

void JsonLineParserTest::bytesBehindTheLineDoNotMatter()
{
    QFETCH(QByteArray, padding);
    Parser parse;
    for (int blanks = 0; blanks < 130; ++blanks) { // the parser looks at blocks of 64 bytes
        const QByteArray before(blanks, ' ');
        for (const QByteArray good : {"{}", R"({"a":1})", R"({"a":"\\"})", R"({"a":"\ud83d"})"})
            QVERIFY(parse(before + good, padding));
        for (const QByteArray bad : {"{", R"({"a":1)", R"({"a":tru)", R"({"a":")", R"({"a":"\)",
                                     R"({"a":")"
                                     "\xc3",
                                     R"({"a":[1)", "", R"({"a":"\ud83d")"})
            QVERIFY(!parse(before + bad, padding));
    }
}

void JsonLineParserTest::goesOnAfterEveryKindOfLine()
{
    Parser parse;
    const QByteArrayList others{"{",
                                "",
                                R"({"a":"\ud83d"})",
                                R"({"a":1e400})",
                                "{\"a\":" + deeplyNested(5'000).toLatin1() + '}',
                                "{\"a\":" + deeplyNested(5'000).toLatin1(),
                                "{\"a\":\"" + QByteArray(6'000'000, 'x') + "\"}",
                                "{\"a\":\"\\ud83d" + QByteArray(6'000'000, 'x') + "\"}",
                                "{\"a\":\"" + QByteArray(6'000'000, 'x')};
    for (const QByteArray &other : others) {
        const bool good = isStrictJsonObject(other);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(parse(other).has_value(), good);
            const auto object = parse(R"({"key":"value"})");
            QVERIFY(object);
            const JsonFields<1> fields(*object, {"key"});
            QCOMPARE(toQString(jsonAs<std::string_view>(fields[0]).value_or("")), u"value"_qs);
        }
    }
}

void JsonLineParserTest::everyChangeOfOneByteIsJudgedStrictly_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("usual") << QByteArray(
        R"({"a":[true,false,null,-1.5e+10,0],"é\u00e9\"":{"b":"\\\n"},"c":[]} )");
    QTest::newRow("with what has to be mended") << QByteArray(
        R"({"a":["\ud83d","\ud83d\ude00",1e400,-2.5E-3],"b":)" + QByteArray(30, '1') + "}");
}

void JsonLineParserTest::everyChangeOfOneByteIsJudgedStrictly()
{
    QFETCH(QByteArray, line);
    Parser parse;
    QVERIFY(parse(line));
    for (qsizetype at = 0; at < line.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray changed = line;
            changed[at] = char(byte);
            QVERIFY2(parse(changed).has_value() == isStrictJsonObject(changed),
                     changed.toPercentEncoding(" {}[]\":,\\").constData());
        }
    }
}

void JsonLineParserTest::everyCutIsRefused()
{
    Parser parse;
    const QByteArray line = R"({"a":[true,{"b":"\ud83d\ude00\ud83d"}],"c":-1.5e400,"é":"日😀"})";
    for (qsizetype length = 0; length < line.size(); ++length)
        QVERIFY2(!parse(line.first(length)), line.first(length).constData());
    QVERIFY(parse(line));
}

void JsonLineParserTest::agreesWithOtherParsersOnRandomLines()
{
    Generator generator(5);
    Parser parse;
    int compared = 0;
    constexpr int lines = 5'000;
    for (int i = 0; i < lines; ++i) {
        const QByteArray line = generator.line();
        const auto ours = parse(line);
        QVERIFY2(ours && isStrictJsonObject(line), line.constData());
        QJsonParseError error;
        const QJsonDocument theirs = QJsonDocument::fromJson(line, &error);
        if (error.error != QJsonParseError::NoError)
            continue; // Qt refuses numbers beyond a double
        ++compared;
        QVERIFY2(same(*ours, theirs.object()), line.constData());
    }
    QVERIFY2(compared > lines / 2, qPrintable(QString::number(compared)));
}

void JsonLineParserTest::agreesWithAStrictParserOnDamagedLines()
{
    Generator generator(6);
    Parser parse;
    int good = 0;
    constexpr int lines = 20'000;
    for (int i = 0; i < lines; ++i) {
        const QByteArray line = generator.damaged(generator.line());
        const bool expected = isStrictJsonObject(line);
        good += expected ? 1 : 0;
        QVERIFY2(parse(line).has_value() == expected,
                 line.toPercentEncoding(" {}[]\":,\\").constData());
    }
    // Neither verdict is rare among them, so that both are tried.
    QVERIFY2(good > lines / 10 && good < lines * 9 / 10, qPrintable(QString::number(good)));
}

PLINTHAR_TEST_MAIN(JsonLineParserTest)
#include "JsonLineParserTest.moc"
