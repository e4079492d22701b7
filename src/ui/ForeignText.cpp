// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ForeignText.h"

#include "model/Format.h"
#include "model/TextCells.h"

#include <algorithm>

namespace {

constexpr QChar ellipsis(0x2026);
/// More than this (in characters) nobody reads in a label or a tooltip.
constexpr qsizetype mostCharacters = 4000;

QString endOf(const QString &text, qsizetype length)
{
    QString end = text.last(std::min(length, text.size()));
    if (end.size() < text.size() && !end.isEmpty() && end.front().isLowSurrogate())
        end.remove(0, 1);
    return end;
}

/// The part that an elided text can show at all.
QString shortened(const QString &text, qsizetype most, Qt::TextElideMode elide)
{
    if (text.size() <= most)
        return text;
    switch (elide) {
    case Qt::ElideLeft:
        return ellipsis + endOf(text, most);
    case Qt::ElideMiddle:
        return beginningOf(text, most / 2) + ellipsis + endOf(text, most / 2);
    case Qt::ElideRight:
    case Qt::ElideNone:
        break;
    }
    return beginningOf(text, most) + ellipsis;
}

} // namespace

namespace ForeignText {

QString line(const QString &text, const QFontMetrics &metrics, int width, Qt::TextElideMode elide)
{
    // Characters are two pixels wide at least, and marks on others are few.
    const qsizetype most = std::clamp<qsizetype>(width / 2, 100, mostCharacters);
    return metrics.elidedText(visibleText(shortened(text, most, elide)), elide, width);
}

QString lines(const QString &text, qsizetype mostCharacters, Qt::TextElideMode elide)
{
    QString shown = shortened(text, mostCharacters, elide);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QString visible;
    const auto isKept = [](QChar character) { return character == u'\n' || character == u'\t'; };
    for (auto begin = shown.cbegin(); begin != shown.cend();) {
        const auto end = std::find_if(begin, shown.cend(), isKept);
        visible += visibleText(QString(begin, end - begin));
        begin = end;
        if (begin != shown.cend())
            visible += *begin++;
    }
    return visible;
}

QString title(const QString &text)
{
    return visibleText(shortened(text, mostCharacters, Qt::ElideRight));
}

QString breakable(const QString &text)
{
    constexpr QChar zeroWidthSpace(0x200b);
    constexpr qsizetype widest = 48;
    QString broken = title(text);
    for (qsizetype at = broken.size() / widest * widest; at > 0; at -= widest) {
        if (!broken[at - 1].isHighSurrogate())
            broken.insert(at, zeroWidthSpace);
    }
    return broken;
}

} // namespace ForeignText
