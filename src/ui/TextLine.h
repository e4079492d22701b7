// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QString>

class QPainter;

/// Which way a text runs, as its first letter says. A window may run the other way: what comes from
/// git, from a log or from this program is mostly English whatever the desktop's language is, and
/// would have its full stops and slashes moved to the wrong end.
Qt::LayoutDirection directionOf(const QString &text);

/// Draws a line of text, which has been shortened to its place before. Text that is to stand left
/// stands right when the painter's direction is from right to left.
void drawTextLine(QPainter *painter, const QRect &place, Qt::Alignment alignment,
                  const QString &shown, Qt::LayoutDirection direction);
