// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The content of a text file, with nothing lost: encoding what was decoded gives the same bytes.
struct FileText {
    /// The text. Every line break is one unit, as it is one place of the cursor in an editor: CR LF
    /// stands as `crLf`, every other break as itself.
    QString text;
    /// Whether the file begins with a byte-order mark. It is not part of the text.
    bool byteOrderMark = false;
    /// The line break that most lines end with, which new ones get.
    char16_t newLine = u'\n';

    bool operator==(const FileText &other) const = default;
};

/// Stands for CR LF. A surrogate on its own, so no text in UTF-8 holds it.
inline constexpr char16_t crLf = 0xdc0d;

/// Whether an editor begins a new line behind this unit. The last three are what Qt's documents
/// take for the end of a paragraph.
constexpr bool isLineBreak(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || unit == crLf || unit == u'\u2029' ||
           unit == u'\ufdd0' || unit == u'\ufdd1';
}

/// The text of a file's bytes; nothing when they are not valid UTF-8.
std::optional<FileText> decodeText(const QByteArray &bytes);

/// The bytes of a text.
QByteArray encodeText(const FileText &file);
