// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CellDelegate.h"

/// Paints the button "Stop" into a cell. A click is the view's clicked(); Space in the cell is
/// pressed().
class StopDelegate : public CellDelegate {
    Q_OBJECT
public:
    /// The width of a column that the button fits into.
    static int columnWidth(const QFontMetrics &metrics);

    using CellDelegate::CellDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

Q_SIGNALS:
    void pressed(const QModelIndex &index);

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
    void paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const override;
};
