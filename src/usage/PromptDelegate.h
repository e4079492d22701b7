// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CellDelegate.h"

/// Paints the first prompt of a session on at most two lines, the second one shortened.
class PromptDelegate : public CellDelegate {
    Q_OBJECT
public:
    using CellDelegate::CellDelegate;

protected:
    void paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const override;
};
