// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QString>

class QDialog;
class QPainter;

/// Which way a text runs, as its first letter says if it comes soon. A window may run the other
/// way: what comes from git, from a log or from this program is mostly English whatever the
/// desktop's language is, and would have its full stops and slashes moved to the wrong end.
Qt::LayoutDirection directionOf(const QString &text);

/// Lets each of a question's labels begin at the side at which its window begins. Left alone, a
/// label goes by its text, and English would stand at the left of a window from right to left.
void alignLabels(const QDialog *question);

/// Draws a line of text, which has been shortened to its place before. Text that is to stand left
/// stands right when the painter's direction is from right to left.
void drawTextLine(QPainter *painter, const QRect &place, Qt::Alignment alignment,
                  const QString &shown, Qt::LayoutDirection direction);
