// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/FolderDelegate.h"

#include "ui/ForeignText.h"

#include <QPainter>

void FolderDelegate::paintText(QPainter *painter, const QRect &place,
                               const QModelIndex &index) const
{
    painter->drawText(place, int(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine),
                      ForeignText::line(index.data().toString(), painter->fontMetrics(),
                                        place.width(), Qt::ElideLeft));
}
