// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ItemPainting.h"

#include "ui/ForeignText.h"
#include "ui/TextLine.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

void paintItemGround(QPainter *painter, const QStyleOptionViewItem &item)
{
    QStyleOptionViewItem ground = item;
    ground.text.clear();
    ground.icon = {};
    // Or the frame of the focus would leave out the place of the icon.
    ground.features &= ~QStyleOptionViewItem::HasDecoration;
    const QStyle *style = item.widget ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &ground, painter, item.widget);
}

void paintItemLine(QPainter *painter, const QStyleOptionViewItem &item, const QRect &place,
                   const QFont &font, const QString &text, Qt::TextElideMode elide)
{
    painter->setFont(font);
    painter->setLayoutDirection(item.direction);
    drawTextLine(painter, QStyle::visualRect(item.direction, item.rect, place),
                 Qt::AlignVCenter | Qt::AlignLeading,
                 ForeignText::line(text, QFontMetrics(font), place.width(), elide),
                 directionOf(text));
}
