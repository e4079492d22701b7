// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/FolderDelegate.h"

#include <QPainter>

void FolderDelegate::paintText(QPainter *painter, const QRect &place,
                               const QModelIndex &index) const
{
    painter->drawText(
        place, int(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine),
        painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideLeft, place.width()));
}
