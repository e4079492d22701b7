// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TableHeader.h"

#include "ui/CellDelegate.h"
#include "ui/Colors.h"
#include "ui/Fonts.h"
#include "ui/TextLine.h"

#include <QEvent>
#include <QPainter>
#include <QtMath>

TableHeader::TableHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setFont(textFont(TextStyle::Caption, true));
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setMinimumSectionSize(40);
}

bool TableHeader::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange)
        setFont(textFont(TextStyle::Caption, true));
    return QHeaderView::event(event);
}

void TableHeader::paintSection(QPainter *painter, const QRect &rect, int section) const
{
    const QVariant alignment = model()->headerData(section, Qt::Horizontal, Qt::TextAlignmentRole);
    const QRect place = CellDelegate::textPlace(rect, section, layoutDirection());
    const QString text = title(section);
    painter->fillRect(rect, palette().color(QPalette::Base));
    painter->setPen(Colors::separator(palette()));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->setFont(font());
    painter->setPen(Colors::secondaryText(palette(), QPalette::Text, QPalette::Base));
    painter->setLayoutDirection(layoutDirection());
    drawTextLine(painter, place,
                 alignment.isValid() ? Qt::Alignment(alignment.toInt()) : defaultAlignment(),
                 fontMetrics().elidedText(text, Qt::ElideRight, place.width()), directionOf(text));
}

QSize TableHeader::sectionSizeFromContents(int section) const
{
    constexpr int verticalPadding = 6;
    // Rounded down, it would be elided for the missing fraction of a pixel.
    const int text = qCeil(QFontMetricsF(font()).horizontalAdvance(title(section))) + 1;
    const int padding = 100 - CellDelegate::textPlace(QRect(0, 0, 100, 0), section).width();
    return {text + padding, fontMetrics().height() + 2 * verticalPadding};
}

QString TableHeader::title(int section) const
{
    return model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
}
