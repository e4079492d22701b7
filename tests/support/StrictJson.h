// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

/// Whether the text is one JSON object by RFC 8259, in valid UTF-8. A second opinion for tests:
/// slow, simple, made without any JSON library, and not limited in numbers or escapes. It calls
/// itself for every level of nesting.
bool isStrictJsonObject(const QByteArray &text);
