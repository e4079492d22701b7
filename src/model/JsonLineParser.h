// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <simdjson.h>

#include <optional>
#include <string>
#include <string_view>

/// Parses one line of a log as JSON: strictly by RFC 8259, and all of what RFC 8259 allows.
class JsonLineParser {
public:
    JsonLineParser();

    /// The line's object, or nothing when the line is not JSON or not an object. The line must be
    /// followed by SIMDJSON_PADDING readable bytes; the object stays valid until the next call.
    std::optional<simdjson::dom::object> object(std::string_view line);

private:
    simdjson::simdjson_result<simdjson::dom::element> parse(std::string_view line);
    simdjson::simdjson_result<simdjson::dom::element> parseMended(std::string_view line);

    simdjson::dom::parser m_parser;
    simdjson::dom::parser m_mendingParser;
};

/// A copy of the line in which what RFC 8259 allows and simdjson refuses is replaced: a lone
/// surrogate escape by \ufffd, a number beyond 64 bits or the range of a double by 0. Everything
/// else, errors included, stays as it is.
std::string mendedJson(std::string_view line);
