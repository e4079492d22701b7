// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextDelegate.h"

#include "context/ContextListModel.h"
#include "ui/Colors.h"
#include "ui/Fonts.h"
#include "ui/Icons.h"
#include "ui/ItemPainting.h"

#include <QPainter>

namespace {

constexpr int horizontalPadding = 10;
constexpr int verticalPadding = 5;
constexpr int headerPadding = 6;
constexpr int iconSize = 16;
constexpr int gap = 6;
constexpr int lineGap = 2;

void paintHeader(QPainter *painter, const QStyleOptionViewItem &row, const QString &text)
{
    QPalette palette = row.palette;
    palette.setCurrentColorGroup(QPalette::Active); // it cannot be chosen, but it is to be read
    painter->setPen(Colors::secondaryText(palette, QPalette::Text, QPalette::Base));
    paintItemLine(painter, row,
                  row.rect.adjusted(horizontalPadding, headerPadding, -horizontalPadding, 0),
                  textFont(TextStyle::Caption, true), text, Qt::ElideRight);
}

} // namespace

void ContextDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    painter->save();
    if (index.data(ContextListModel::HeaderRole).toBool()) {
        paintHeader(painter, row, index.data().toString());
    } else {
        paintItemGround(painter, row);
        paintFile(painter, row, index);
    }
    painter->restore();
}

void ContextDelegate::paintFile(QPainter *painter, const QStyleOptionViewItem &row,
                                const QModelIndex &index) const
{
    const bool selected = row.state & QStyle::State_Selected;
    const bool exists = index.data(ContextListModel::ExistsRole).toBool();
    const QFont nameFont = textFont(TextStyle::Body);
    const QFont smallFont = textFont(TextStyle::Caption2);
    const QColor primary = row.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor secondary =
        selected ? primary // on the highlight the secondary colour would be hard to read
                 : Colors::secondaryText(row.palette, QPalette::Text, QPalette::Base);

    QRect place =
        row.rect.adjusted(horizontalPadding, verticalPadding, -horizontalPadding, -verticalPadding);
    const QRect icon(place.left(), place.center().y() - iconSize / 2, iconSize, iconSize);
    symbolIcon(exists ? u"doc.text" : u"plus.circle", exists ? primary : secondary)
        .paint(painter, QStyle::visualRect(row.direction, row.rect, icon), Qt::AlignCenter,
               selected ? QIcon::Selected : QIcon::Normal);
    place.setLeft(icon.right() + 1 + gap);

    painter->setPen(secondary);
    if (!exists) {
        const QString word = QStringLiteral("new");
        const int width = QFontMetrics(smallFont).horizontalAdvance(word);
        QRect mark = place;
        mark.setLeft(place.right() + 1 - width);
        paintItemLine(painter, row, mark, smallFont, word, Qt::ElideNone);
        place.setRight(mark.left() - 1 - gap);
    }
    QRect path = place;
    path.setTop(place.bottom() + 1 - QFontMetrics(smallFont).height());
    paintItemLine(painter, row, path, smallFont, index.data(ContextListModel::LabelRole).toString(),
                  Qt::ElideLeft);
    QRect name = place;
    name.setBottom(path.top() - 1 - lineGap);
    painter->setPen(primary);
    paintItemLine(painter, row, name, nameFont, index.data().toString(), Qt::ElideRight);
}

QSize ContextDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // The view's own font stands for the application's: both are the same size, and asking the
    // view spares thousands of rows the making of a font.
    const int line = option.fontMetrics.height();
    if (index.data(ContextListModel::HeaderRole).toBool())
        return {0, headerPadding + line + verticalPadding};
    return {0, verticalPadding + line + lineGap + line + verticalPadding};
}
