// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/FolderDelegate.h"

#include "ui/ForeignText.h"
#include "ui/TextLine.h"

#include <QPainter>

void FolderDelegate::paintText(QPainter *painter, const QRect &place,
                               const QModelIndex &index) const
{
    const QString folder = index.data().toString();
    drawTextLine(painter, place, Qt::AlignLeft | Qt::AlignVCenter,
                 ForeignText::line(folder, painter->fontMetrics(), place.width(), Qt::ElideLeft),
                 directionOf(folder));
}
