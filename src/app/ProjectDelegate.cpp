// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProjectDelegate.h"

#include "app/ProjectListModel.h"
#include "ui/Colors.h"
#include "ui/Fonts.h"
#include "ui/ItemPainting.h"

#include <QPainter>

namespace {

constexpr int horizontalPadding = 8;
constexpr int verticalPadding = 5;
constexpr int iconSize = 16;
constexpr int iconGap = 6;
constexpr int lineGap = 2;

} // namespace

void ProjectDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    paintItemGround(painter, row);

    const bool selected = row.state & QStyle::State_Selected;
    const QPalette::ColorRole text = selected ? QPalette::HighlightedText : QPalette::Text;
    const QFont nameFont = textFont(TextStyle::Body);
    const QFont pathFont = textFont(TextStyle::Caption2);
    QRect name = row.rect.adjusted(horizontalPadding, verticalPadding, -horizontalPadding, 0);
    name.setHeight(qMax(iconSize, QFontMetrics(nameFont).height()));
    QRect path = name.translated(0, name.height() + lineGap);
    path.setHeight(QFontMetrics(pathFont).height());

    painter->save();
    QRect iconPlace(name.left(), 0, iconSize, iconSize);
    iconPlace.moveCenter(QPoint(iconPlace.center().x(), name.center().y()));
    row.icon.paint(painter, QStyle::visualRect(row.direction, row.rect, iconPlace), Qt::AlignCenter,
                   selected ? QIcon::Selected : QIcon::Normal);
    name.setLeft(iconPlace.right() + 1 + iconGap);
    path.setLeft(name.left());
    painter->setPen(row.palette.color(text));
    paintItemLine(painter, row, name, nameFont, index.data().toString(), Qt::ElideRight);
    if (!selected) // on the highlight the secondary colour would be hard to read
        painter->setPen(Colors::secondaryText(row.palette, text, QPalette::Base));
    paintItemLine(painter, row, path, pathFont, index.data(ProjectListModel::PathRole).toString(),
                  Qt::ElideLeft);
    painter->restore();
}

QSize ProjectDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    const int name = qMax(iconSize, QFontMetrics(textFont(TextStyle::Body)).height());
    const int path = QFontMetrics(textFont(TextStyle::Caption2)).height();
    return {0, verticalPadding + name + lineGap + path + verticalPadding};
}
