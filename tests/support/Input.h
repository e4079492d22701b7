// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractItemView>
#include <QTest>

/// The user's hands: mouse and keys go to the window, as the window system delivers them, and the
/// program finds out for itself which widget they are for.
namespace Input {

struct Click {
    Qt::MouseButton button = Qt::LeftButton;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

void clickAt(QWidget *widget, const QPoint &place, const Click &click = {});
/// In the middle of the widget.
void click(QWidget *widget, const Click &click = {});
/// In the middle of a cell.
void clickCell(QAbstractItemView *view, int row, int column = 0, const Click &click = {});
/// Presses at one place, moves, and lets go at another.
void drag(QWidget *widget, const QPoint &from, const QPoint &to);

/// To whatever has the focus.
void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// One ASCII character after the other.
void type(const QString &text);
/// The key beside the right Ctrl that opens the context menu of what has the focus.
void menuKey();

/// Points at a place until the tooltip comes up, and gives its text; empty when none comes.
QString toolTipAt(QWidget *widget, const QPoint &place);

} // namespace Input
