// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a prompt is what Qt's JSON finds in the same content.

#include "model/PromptText.h"

#include "Property.h"
#include "SlowReader.h"
#include "Target.h"
#include "model/JsonLineParser.h"
#include "support/Describe.h"

namespace Target {

void check(const QByteArray &input)
{
    const QByteArray line = "{\"content\":" + input + '}';
    const QByteArray padded = line + QByteArray(simdjson::SIMDJSON_PADDING, '"');
    static JsonLineParser json;
    const auto object = json.object({padded.constData(), size_t(line.size())});
    const SlowReader::Line slowly = SlowReader::line(line);
    if (slowly.kind == SlowReader::Line::Kind::Unsure)
        return;
    holds(object.has_value() == (slowly.kind == SlowReader::Line::Kind::Object),
          "both take the same lines");
    simdjson::dom::element content;
    // More than one key: the line went on behind the content.
    if (!object || object->size() != 1 || object->at_key("content").get(content))
        return;
    same(describe(SessionParser::promptText(content)),
         describe(SlowReader::promptText(slowly.object.value(QStringLiteral("content")))),
         "both find the same text");
}

QByteArrayList seeds()
{
    return {
        R"("a prompt")",
        R"("\ud83d\ude00 \u00e9\n\"\\ \ud83d")",
        R"([{"type":"text","text":"a"},{"type":"image","source":{}},{"type":"text","text":"b"}])",
        R"([{"type":"tool_result","content":"x"}])",
        R"([{"type":"text","text":1},{"text":"b"}])",
        "[]",
        R"(["text"])",
        "null",
        "{}",
        R"([{"type":"text","text":"","type":"tool_result"}])"};
}

QByteArrayList words()
{
    return {"\"type\":",
            "\"text\"",
            "\"tool_result\"",
            "{\"type\":\"text\",\"text\":\"x\"},",
            "\\ud83d",
            "\\ude00",
            "\\u0000",
            "1e400",
            "[",
            "]",
            "{}"};
}

} // namespace Target
