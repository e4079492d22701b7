// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/StartDelegate.h"

#include "ui/ForeignText.h"
#include "ui/TextLine.h"

#include <QPainter>

#include <algorithm>

namespace {

int widestOf(const QStringList &lines, const QFontMetrics &metrics)
{
    int widest = 0;
    for (const QString &line : lines)
        widest = std::max(widest, metrics.horizontalAdvance(line));
    return widest;
}

QStringList linesAt(const QString &text, const QFontMetrics &metrics, int width)
{
    return metrics.horizontalAdvance(text) <= width ? QStringList{text}
                                                    : StartDelegate::halves(text, metrics);
}

} // namespace

QStringList StartDelegate::halves(const QString &text, const QFontMetrics &metrics)
{
    QStringList best{text};
    for (qsizetype blank = text.indexOf(u' '); blank >= 0; blank = text.indexOf(u' ', blank + 1)) {
        const QStringList lines{text.left(blank), text.mid(blank + 1)};
        if (widestOf(lines, metrics) < widestOf(best, metrics))
            best = lines;
    }
    return best;
}

bool StartDelegate::isCut(const QString &text, const QFont &font, int width) const
{
    const QFontMetrics metrics(font);
    return widestOf(linesAt(text, metrics, width), metrics) > width;
}

void StartDelegate::paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const
{
    const QString text = index.data().toString();
    const QFontMetrics metrics = painter->fontMetrics();
    const QStringList lines = linesAt(text, metrics, place.width());
    QRect line = place;
    line.setHeight(metrics.lineSpacing());
    line.moveTop(place.top() +
                 (place.height() - static_cast<int>(lines.size()) * line.height()) / 2);
    for (const QString &half : lines) {
        drawTextLine(painter, line, Qt::AlignLeft | Qt::AlignVCenter,
                     ForeignText::line(half, metrics, place.width()), directionOf(text));
        line.translate(0, line.height());
    }
}
