// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/JsonLineParser.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace {

/// The parser keeps several bytes for every byte of its longest line, so it starts over after a
/// line longer than this.
constexpr size_t longestKept = size_t(4) << 20;
constexpr size_t usualLine = size_t(256) << 10;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

size_t digitsFrom(std::string_view text, size_t at)
{
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at;
}

enum class Number { None, Integer, Fraction };

/// What kind of number the text is by the grammar of RFC 8259.
Number numberKind(std::string_view text)
{
    const size_t first = text.starts_with('-') ? 1 : 0;
    size_t at = digitsFrom(text, first);
    if (at == first || (text[first] == '0' && at > first + 1))
        return Number::None;
    if (at == text.size())
        return Number::Integer;
    if (text[at] == '.') {
        const size_t end = digitsFrom(text, at + 1);
        if (end == at + 1)
            return Number::None;
        at = end;
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-'))
            ++at;
        const size_t end = digitsFrom(text, at);
        if (end == at)
            return Number::None;
        at = end;
    }
    return at == text.size() ? Number::Fraction : Number::None;
}

template <typename T>
bool fits(std::string_view text)
{
    T value{};
    return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

bool isOversized(std::string_view text)
{
    switch (numberKind(text)) {
    case Number::Integer:
        return !fits<std::int64_t>(text) && !fits<std::uint64_t>(text);
    case Number::Fraction:
        return !fits<double>(text);
    case Number::None:
        break;
    }
    return false;
}

/// The code unit of the escape \uXXXX at the text's beginning; nothing if there is none.
std::optional<unsigned> unicodeEscape(std::string_view text)
{
    if (text.size() < 6 || text[0] != '\\' || text[1] != 'u')
        return std::nullopt;
    unsigned unit = 0;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 6, unit, 16);
    if (error != std::errc() || end != text.data() + 6)
        return std::nullopt;
    return unit;
}

bool isHighSurrogate(unsigned unit)
{
    return unit >= 0xd800 && unit <= 0xdbff;
}

bool isLowSurrogate(unsigned unit)
{
    return unit >= 0xdc00 && unit <= 0xdfff;
}

/// Copies the number-like run at the text's beginning, or 0 in its place. A run is taken whole, so
/// that two tokens which are wrong side by side never become one that is right.
size_t copyNumber(std::string_view text, std::string &to)
{
    const size_t length = std::min(text.find_first_not_of("0123456789+-.eE"), text.size());
    const std::string_view run = text.substr(0, length);
    to += isOversized(run) ? std::string_view("0") : run;
    return length;
}

/// Copies the escape at the text's beginning, or \ufffd in place of a lone surrogate.
size_t copyEscape(std::string_view text, std::string &to)
{
    const std::optional<unsigned> unit = unicodeEscape(text);
    if (!unit) {
        to += text.substr(0, 2);
        return std::min<size_t>(2, text.size());
    }
    const std::optional<unsigned> second = unicodeEscape(text.substr(6));
    if (isHighSurrogate(*unit) && second && isLowSurrogate(*second)) {
        to += text.substr(0, 12);
        return 12;
    }
    const bool lone = isHighSurrogate(*unit) || isLowSurrogate(*unit);
    to += lone ? std::string_view("\\ufffd") : text.substr(0, 6);
    return 6;
}

void startOverIfHuge(simdjson::dom::parser &parser)
{
    if (parser.capacity() > longestKept)
        parser = simdjson::dom::parser();
}

} // namespace

std::string mendedJson(std::string_view line)
{
    std::string mended;
    mended.reserve(line.size() + simdjson::SIMDJSON_PADDING);
    bool inString = false;
    for (size_t at = 0; at < line.size();) {
        const char c = line[at];
        if (inString && c == '\\') {
            at += copyEscape(line.substr(at), mended);
        } else if (!inString && (c == '-' || isDigit(c))) {
            at += copyNumber(line.substr(at), mended);
        } else {
            inString ^= c == '"';
            mended += c;
            ++at;
        }
    }
    return mended;
}

JsonLineParser::JsonLineParser()
{
    // A failure shows again, as an error, when the first line is parsed.
    [[maybe_unused]] const auto error = m_parser.allocate(usualLine);
}

std::optional<simdjson::dom::object> JsonLineParser::object(std::string_view line)
{
    simdjson::dom::object object;
    if (parse(line).get(object) != simdjson::SUCCESS)
        return std::nullopt;
    return object;
}

simdjson::simdjson_result<simdjson::dom::element> JsonLineParser::parse(std::string_view line)
{
    if (line.size() <= longestKept) {
        startOverIfHuge(m_parser);
        startOverIfHuge(m_mendingParser);
    }
    const auto result = m_parser.parse(line.data(), line.size(), false);
    switch (result.error()) {
    case simdjson::STRING_ERROR:
    case simdjson::NUMBER_ERROR:
    case simdjson::DEPTH_ERROR:
        return parseMended(line);
    default:
        return result;
    }
}

simdjson::simdjson_result<simdjson::dom::element> JsonLineParser::parseMended(std::string_view line)
{
    std::string mended = mendedJson(line);
    const size_t length = mended.size();
    mended.append(simdjson::SIMDJSON_PADDING, ' ');
    const auto opening =
        std::count_if(line.begin(), line.end(), [](char c) { return c == '[' || c == '{'; });
    const size_t depth = std::max<size_t>(simdjson::DEFAULT_MAX_DEPTH, size_t(opening) + 1);
    m_mendingParser = simdjson::dom::parser();
    if (const auto error = m_mendingParser.allocate(length, depth))
        return error;
    return m_mendingParser.parse(mended.data(), length, false);
}
