// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <simdjson.h>

#include <optional>

namespace SessionParser {

/// The text a user typed, out of the "content" of a user message: the string itself, or the "text"
/// elements of a list of objects joined with line feeds. Nothing for a list that holds a tool's
/// result (the message then is a tool's answer), for one without text, and for anything else.
std::optional<QString> promptText(const simdjson::dom::element &content);

} // namespace SessionParser
