// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

/// Paints the rows of the list of instruction files: the names of the scopes, and for a file its
/// symbol and name over its path, with the word "new" at the end when there is no such file yet.
class ContextDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void paintFile(QPainter *painter, const QStyleOptionViewItem &row,
                   const QModelIndex &index) const;
};
