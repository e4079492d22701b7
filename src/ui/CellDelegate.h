// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

/// Paints the cells of the program's tables: with room on both sides, a hairline between rows, and
/// the whole text in a tooltip where it had to be shortened.
class CellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    /// Where the text of a cell or of a column's title stands. The first column is in line with the
    /// text above the table.
    static QRect textPlace(const QRect &cell, int column,
                           Qt::LayoutDirection direction = Qt::LeftToRight);

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    /// Whether the text of a cell is shown only in part at that width.
    virtual bool isCut(const QString &text, const QFont &font, int width) const;
    /// Paints the text into its place. Pen, font and direction are set.
    virtual void paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const;
};
