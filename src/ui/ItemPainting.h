// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyleOptionViewItem>

class QPainter;

/// What the delegates that paint their rows themselves have in common.

/// Paints an item as the style does, without its text and icon: background, selection, focus.
void paintItemGround(QPainter *painter, const QStyleOptionViewItem &item);

/// Paints one line of text, shortened to its place, which is given as in a layout from left to
/// right.
void paintItemLine(QPainter *painter, const QStyleOptionViewItem &item, const QRect &place,
                   const QFont &font, const QString &text, Qt::TextElideMode elide);
