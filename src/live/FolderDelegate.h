// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CellDelegate.h"

/// Paints a folder of which the end stays visible, since that is what tells folders apart.
class FolderDelegate : public CellDelegate {
    Q_OBJECT
public:
    using CellDelegate::CellDelegate;

protected:
    void paintText(QPainter *painter, const QRect &place, const QModelIndex &index) const override;
};
