// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CellDelegate.h"

/// Paints when a session started: on one line, or broken into two where the column is too narrow.
class StartDelegate : public CellDelegate {
    Q_OBJECT
public:
    using CellDelegate::CellDelegate;

    /// The text in two lines, broken at the blank where the longer one is the shortest. One line
    /// when there is no blank.
    static QStringList halves(const QString &text, const QFontMetrics &metrics);

protected:
    bool isCut(const QString &text, const QFont &font, int width) const override;
    void paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const override;
};
