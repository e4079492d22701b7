// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ChangeDelegate.h"

#include "review/ChangeListModel.h"
#include "ui/Colors.h"
#include "ui/Fonts.h"
#include "ui/ForeignText.h"
#include "ui/Icons.h"
#include "ui/ItemPainting.h"
#include "ui/ToolTips.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr int padding = 8;
constexpr int verticalPadding = 4;
constexpr int badgeWidth = 24;
constexpr int gap = 6;
constexpr int checkSize = 14;

const GitFile &fileOf(const QModelIndex &index)
{
    return static_cast<const ChangeListModel *>(index.model())->rows().at(index.row());
}

Colors::Hue badgeHue(const GitFile &file)
{
    if (file.isUntracked())
        return Colors::Hue::Green;
    return file.isWhollyStaged() ? Colors::Hue::Blue : Colors::Hue::Orange;
}

QRect pathPlace(const QRect &row, bool hasCheck)
{
    const int end = padding + (hasCheck ? checkSize + gap : 0);
    return row.adjusted(padding + badgeWidth + gap, 0, -end, 0);
}

} // namespace

void ChangeDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                           const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    paintItemGround(painter, row);

    const GitFile &file = fileOf(index);
    const bool selected = row.state & QStyle::State_Selected;
    const auto placed = [&row](const QRect &place) {
        return QStyle::visualRect(row.direction, row.rect, place);
    };
    painter->save();
    // On the highlight the hues would be hard to read.
    const QColor text = row.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    painter->setPen(selected ? text : Colors::hue(badgeHue(file), row.palette));
    painter->setFont(monospacedFont(TextStyle::Caption, true));
    const QRect badge(row.rect.left() + padding, row.rect.top(), badgeWidth, row.rect.height());
    painter->drawText(placed(badge), int(Qt::AlignCenter | Qt::TextSingleLine), file.badge());

    painter->setPen(text);
    const QRect path = pathPlace(row.rect, file.isWhollyStaged());
    paintItemLine(painter, row, path, row.font, index.data().toString(), Qt::ElideLeft);
    if (file.isWhollyStaged()) {
        QRect check(path.right() + 1 + gap, 0, checkSize, checkSize);
        check.moveCenter({check.center().x(), row.rect.center().y()});
        symbolIcon(u"checkmark.circle.fill", Colors::hue(Colors::Hue::Green, row.palette))
            .paint(painter, placed(check), Qt::AlignCenter,
                   selected ? QIcon::Selected : QIcon::Normal);
    }
    painter->restore();
}

QSize ChangeDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    return {0, qMax(option.fontMetrics.height(), checkSize) + 2 * verticalPadding};
}

bool ChangeDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                               const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString path = index.data().toString();
    const QRect place = pathPlace(option.rect, fileOf(index).isWhollyStaged());
    const bool cut =
        ForeignText::line(path, view->fontMetrics(), place.width(), Qt::ElideLeft) != path;
    QToolTip::showText(event->globalPos(), cut ? plainToolTip(path) : QString(), view);
    return true;
}
