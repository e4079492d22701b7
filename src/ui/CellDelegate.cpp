// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CellDelegate.h"

#include "ui/Colors.h"
#include "ui/ForeignText.h"
#include "ui/ItemPainting.h"
#include "ui/TextLine.h"
#include "ui/ToolTips.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

QPalette::ColorGroup colorGroup(const QStyleOptionViewItem &option)
{
    if (!(option.state & QStyle::State_Enabled))
        return QPalette::Disabled;
    return option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
}

constexpr int padding = 6;
constexpr int firstPadding = 10;

} // namespace

QRect CellDelegate::textPlace(const QRect &cell, int column, Qt::LayoutDirection direction)
{
    const QRect place = cell.adjusted(column == 0 ? firstPadding : padding, 0, -padding, 0);
    return QStyle::visualRect(direction, cell, place);
}

void CellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    paintItemGround(painter, cell);

    const bool selected = cell.state & QStyle::State_Selected;
    painter->save();
    if (!selected) {
        painter->setPen(Colors::separator(cell.palette));
        painter->drawLine(cell.rect.bottomLeft(), cell.rect.bottomRight());
    }
    painter->setFont(cell.font);
    painter->setLayoutDirection(cell.direction);
    painter->setPen(cell.palette.color(colorGroup(cell),
                                       selected ? QPalette::HighlightedText : QPalette::Text));
    paintText(painter, textPlace(cell.rect, index.column(), cell.direction), index);
    painter->restore();
}

bool CellDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                             const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || index.data(Qt::ToolTipRole).isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = index.data().toString();
    const int width = textPlace(option.rect, index.column()).width();
    QToolTip::showText(event->globalPos(),
                       isCut(text, view->font(), width) ? plainToolTip(text) : QString(), view);
    return true;
}

bool CellDelegate::isCut(const QString &text, const QFont &font, int width) const
{
    return ForeignText::line(text, QFontMetrics(font), width) != text;
}

void CellDelegate::paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const
{
    const QString text = index.data().toString();
    drawTextLine(painter, place, Qt::Alignment(index.data(Qt::TextAlignmentRole).toInt()),
                 ForeignText::line(text, painter->fontMetrics(), place.width()), directionOf(text));
}
