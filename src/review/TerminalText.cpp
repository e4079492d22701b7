// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/TerminalText.h"

#include <QStringView>

namespace {

constexpr char16_t escape = 0x1b;
constexpr char16_t bell = 0x07;
constexpr char16_t controlSequence = 0x9b; // the same as ESC [
constexpr char16_t stringEnd = 0x9c;       // the same as ESC backslash

bool isBetween(QChar unit, char16_t first, char16_t last)
{
    return unit.unicode() >= first && unit.unicode() <= last;
}

/// Where a control sequence ends whose parameters begin at `i`. A character that can be no part of
/// one ends it, too, and is text again.
qsizetype endOfControlSequence(QStringView text, qsizetype i)
{
    while (i < text.size() && isBetween(text[i], 0x20, 0x3f))
        ++i;
    return i < text.size() && isBetween(text[i], 0x40, 0x7e) ? i + 1 : i;
}

/// Where a string for the terminal (a title, a link) ends. One that never ends is only an
/// introducer that went astray: the text behind it must not get lost.
qsizetype endOfString(QStringView text, qsizetype begin)
{
    for (qsizetype i = begin; i < text.size() && text[i] != u'\n'; ++i) {
        if (text[i] == bell || text[i] == stringEnd)
            return i + 1;
        if (text[i] == escape)
            return text.mid(i + 1).startsWith(u'\\') ? i + 2 : i;
    }
    return begin;
}

/// Where the escape sequence ends that begins at `i`.
qsizetype endOfEscape(QStringView text, qsizetype i)
{
    if (text[i] == controlSequence)
        return endOfControlSequence(text, i + 1);
    if (++i == text.size())
        return i;
    if (text[i] == u'[')
        return endOfControlSequence(text, i + 1);
    if (QStringView(u"]PX^_").contains(text[i]))
        return endOfString(text, i + 1);
    while (i < text.size() && isBetween(text[i], 0x20, 0x2f))
        ++i;
    return i < text.size() && isBetween(text[i], 0x30, 0x7e) ? i + 1 : i;
}

bool isControl(QChar unit)
{
    return unit.unicode() < 0x20 || isBetween(unit, 0x7f, 0x9f);
}

} // namespace

QString withoutEscapeCodes(const QString &text)
{
    QString plain;
    plain.reserve(text.size());
    qsizetype i = 0;
    while (i < text.size()) {
        const QChar unit = text[i];
        if (unit == escape || unit == controlSequence) {
            i = endOfEscape(text, i);
            continue;
        }
        ++i;
        if (unit == u'\r' && i < text.size() && text[i] == u'\n')
            continue;
        if (unit == u'\r')
            plain.append(u'\n');
        else if (unit == u'\n' || unit == u'\t' || !isControl(unit))
            plain.append(unit);
    }
    return plain;
}
