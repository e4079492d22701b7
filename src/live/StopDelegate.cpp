// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/StopDelegate.h"

#include "ui/Colors.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr int margin = 3;
constexpr qreal radius = 4;
const QString label = QStringLiteral("Stop");

QColor faded(QColor color, float opacity)
{
    color.setAlphaF(opacity);
    return color;
}

} // namespace

int StopDelegate::columnWidth(const QFontMetrics &metrics)
{
    const int padding = 100 - textPlace(QRect(0, 0, 100, 0), 1).width();
    return metrics.horizontalAdvance(label) + 2 * metrics.averageCharWidth() + padding;
}

void StopDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    CellDelegate::paint(painter, option, index);
    const bool selected = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;
    const QColor color = selected ? option.palette.color(QPalette::HighlightedText)
                                  : Colors::hue(Colors::Hue::Red, option.palette);
    const QRect place = textPlace(option.rect, index.column(), option.direction)
                            .adjusted(0, margin, 0, -margin - 1);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(faded(color, 0.5F));
    painter->setBrush(faded(color, hovered ? 0.25F : 0.1F));
    painter->drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter->setPen(color);
    painter->setFont(option.font);
    painter->drawText(place, Qt::AlignCenter, label);
    painter->restore();
}

bool StopDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &,
                               const QModelIndex &index)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_Space && key->key() != Qt::Key_Select)
        return false;
    Q_EMIT pressed(index);
    return true;
}

void StopDelegate::paintText(QPainter *, const QRect &, const QModelIndex &) const {}
