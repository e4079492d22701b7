// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/PromptText.h"

#include "model/JsonFields.h"

#include <QStringList>

namespace {

std::optional<QString> joinedTexts(const simdjson::dom::array &elements)
{
    QStringList texts;
    for (const simdjson::dom::element element : elements) {
        simdjson::dom::object object;
        if (element.get(object) != simdjson::SUCCESS)
            return std::nullopt;
        const JsonFields<2> fields(object, {"type", "text"});
        const auto type = jsonAs<std::string_view>(fields[0]);
        if (type == "tool_result")
            return std::nullopt;
        const auto text = jsonAs<std::string_view>(fields[1]);
        if (type == "text" && text)
            texts.append(toQString(*text));
    }
    if (texts.isEmpty())
        return std::nullopt;
    return texts.join(u'\n');
}

} // namespace

namespace SessionParser {

std::optional<QString> promptText(const simdjson::dom::element &content)
{
    std::string_view text;
    if (content.get(text) == simdjson::SUCCESS)
        return toQString(text);
    simdjson::dom::array elements;
    if (content.get(elements) == simdjson::SUCCESS)
        return joinedTexts(elements);
    return std::nullopt;
}

} // namespace SessionParser
