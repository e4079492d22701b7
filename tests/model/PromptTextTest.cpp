// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/PromptText.h"

#include "support/Describe.h"
#include "support/TestMain.h"

class PromptTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void takesWhatTheUserTyped_data();
    void takesWhatTheUserTyped();
    void takesNothingElse_data();
    void takesNothingElse();

private:
    QString promptText(const QByteArray &content)
    {
        auto parsed = m_parser.parse(content.constData(), size_t(content.size()));
        return parsed.error() ? u"not JSON"_qs
                              : describe(SessionParser::promptText(parsed.value()));
    }

    simdjson::dom::parser m_parser;
};

void PromptTextTest::takesWhatTheUserTyped_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *content, const QString &text) {
        QTest::newRow(name) << QByteArray(content) << text;
    };
    row("string", R"("hello")", u"hello"_qs);
    row("string stays as it is", R"("  \n hello\t ")", u"  \n hello\t "_qs);
    row("empty string", R"("")", u""_qs);
    row("string with escapes", R"("é\u00e9\n\u0000\ud83d\ude00")", u"éé\n\u0000😀"_qs);
    row("one text", R"([{"type":"text","text":"hello"}])", u"hello"_qs);
    row("two texts are joined by a line feed",
        R"([{"type":"text","text":"one"},{"type":"text","text":"two"}])", u"one\ntwo"_qs);
    row("empty text", R"([{"type":"text","text":""}])", u""_qs);
    row("empty texts are joined as well",
        R"([{"type":"text","text":""},{"type":"text","text":"b"},{"type":"text","text":""}])",
        u"\nb\n"_qs);
    row("other types are passed over",
        R"([{"type":"image","text":"no"},{"type":"text","text":"yes"},{"type":"tool_use"}])",
        u"yes"_qs);
    row("elements without a type are passed over",
        R"([{"text":"no"},{"type":1,"text":"no"},{"type":null,"text":"no"},{},)"
        R"({"type":"text","text":"yes"}])",
        u"yes"_qs);
    row("types in another case are passed over",
        R"([{"type":"Text","text":"no"},{"type":"TOOL_RESULT"},{"type":"text","text":"yes"}])",
        u"yes"_qs);
    row("types with blanks are passed over",
        R"([{"type":" text","text":"no"},{"type":"tool_result ","text":"no"},)"
        R"({"type":"text","text":"yes"}])",
        u"yes"_qs);
    row("texts of other kinds are passed over",
        R"([{"type":"text","text":1},{"type":"text","text":["no"]},{"type":"text"},)"
        R"({"type":"text","text":null},{"type":"text","text":"yes"}])",
        u"yes"_qs);
    row("text before its type", R"([{"text":"yes","type":"text"}])", u"yes"_qs);
    row("of two texts the last", R"([{"type":"text","text":"no","text":"yes"}])", u"yes"_qs);
    row("of two types the last", R"([{"type":"tool_result","type":"text","text":"yes"}])",
        u"yes"_qs);
    row("deeper types do not count",
        R"([{"type":"text","text":"yes","more":{"type":"tool_result"}},)"
        R"({"type":"image","content":[{"type":"tool_result"},{"type":"text","text":"no"}]}])",
        u"yes"_qs);
}

void PromptTextTest::takesWhatTheUserTyped()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, text);
    QCOMPARE(promptText(content), describe(text));
}

void PromptTextTest::takesNothingElse_data()
{
    QTest::addColumn<QByteArray>("content");
    const auto row = [](const char *name, const char *content) {
        QTest::newRow(name) << QByteArray(content);
    };
    row("null", "null");
    row("number", "1");
    row("boolean", "true");
    row("object", R"({"type":"text","text":"no"})");
    row("empty array", "[]");
    row("array of strings", R"(["no"])");
    row("a string among the objects", R"([{"type":"text","text":"no"},"no"])");
    row("null among the objects", R"([{"type":"text","text":"no"},null])");
    row("an array among the objects", R"([[],{"type":"text","text":"no"}])");
    row("tool result", R"([{"type":"tool_result","content":"no"}])");
    row("tool result before a text", R"([{"type":"tool_result"},{"type":"text","text":"no"}])");
    row("tool result behind a text", R"([{"type":"text","text":"no"},{"type":"tool_result"}])");
    row("tool result with a text", R"([{"type":"tool_result","text":"no"}])");
    row("no text", R"([{"type":"image"},{}])");
}

void PromptTextTest::takesNothingElse()
{
    QFETCH(QByteArray, content);
    QCOMPARE(promptText(content), u"nothing"_qs);
}

PLINTHAR_TEST_MAIN(PromptTextTest)
#include "PromptTextTest.moc"
