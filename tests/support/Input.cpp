// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Input.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QToolTip>

namespace {

QWindow *windowOf(const QWidget *widget)
{
    return widget->window()->windowHandle();
}

QPoint inWindow(const QWidget *widget, const QPoint &place)
{
    return widget->mapTo(widget->window(), place);
}

QWindow *focusWindow()
{
    QWindow *window = QGuiApplication::focusWindow();
    if (!window)
        qFatal("no window has the focus");
    return window;
}

} // namespace

namespace Input {

void clickAt(QWidget *widget, const QPoint &place, const Click &click)
{
    if (!widget->isVisible() || !widget->rect().contains(place))
        qFatal("cannot click on what is not there: %s", qPrintable(widget->objectName()));
    QTest::mouseClick(windowOf(widget), click.button, click.modifiers, inWindow(widget, place));
}

void click(QWidget *widget, const Click &click)
{
    clickAt(widget, widget->rect().center(), click);
}

void clickCell(QAbstractItemView *view, int row, int column, const Click &click)
{
    clickAt(view->viewport(), view->visualRect(view->model()->index(row, column)).center(), click);
}

void drag(QWidget *widget, const QPoint &from, const QPoint &to)
{
    QWindow *window = windowOf(widget);
    // The widget may move under the pointer, so both places are taken beforehand.
    const QPoint begin = inWindow(widget, from);
    const QPoint end = inWindow(widget, to);
    QTest::mousePress(window, Qt::LeftButton, {}, begin);
    QTest::mouseMove(window, (begin + end) / 2);
    QTest::mouseMove(window, end);
    QTest::mouseRelease(window, Qt::LeftButton, {}, end);
}

void key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(focusWindow(), key, modifiers);
}

void type(const QString &text)
{
    for (const QChar character : text)
        QTest::keyClick(focusWindow(), character.toLatin1());
}

void menuKey()
{
    const QPoint pointer = QCursor::pos();
    QWindow *window = focusWindow();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, window->mapFromGlobal(pointer), pointer);
    QCoreApplication::sendEvent(window, &event);
}

QString toolTipAt(QWidget *widget, const QPoint &place)
{
    QToolTip::hideText(); // which takes a moment
    if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }))
        qFatal("the tooltip of before stays");
    QHelpEvent event(QEvent::ToolTip, place, widget->mapToGlobal(place));
    QCoreApplication::sendEvent(widget, &event);
    return QToolTip::text();
}

} // namespace Input
