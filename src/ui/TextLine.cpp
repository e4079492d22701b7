// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TextLine.h"

#include <QDialog>
#include <QLabel>
#include <QPainter>
#include <QStyle>

namespace {

constexpr qsizetype lettersLookedAt = 1000; // for every painting of what may be a megabyte

} // namespace

Qt::LayoutDirection directionOf(const QString &text)
{
    return QStringView(text).left(lettersLookedAt).isRightToLeft() ? Qt::RightToLeft
                                                                   : Qt::LeftToRight;
}

void alignLabels(const QDialog *question)
{
    const QList<QLabel *> labels = question->findChildren<QLabel *>();
    for (QLabel *label : labels)
        label->setAlignment(
            QStyle::visualAlignment(question->layoutDirection(), label->alignment()));
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
