// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TextLine.h"

#include <QPainter>
#include <QStyle>

Qt::LayoutDirection directionOf(const QString &text)
{
    return text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
}

void drawTextLine(QPainter *painter, const QRect &place, Qt::Alignment alignment,
                  const QString &shown, Qt::LayoutDirection direction)
{
    // Told to the painter in terms of the screen, because it would mirror them by the text's way.
    const Qt::Alignment onScreen =
        QStyle::visualAlignment(painter->layoutDirection(), alignment) | Qt::AlignAbsolute;
    const Qt::TextFlag force =
        direction == Qt::RightToLeft ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    painter->drawText(place, int(onScreen) | Qt::TextSingleLine | force, shown);
}
