// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAccessible>
#include <QPointer>
#include <QWidget>

/// A part of a widget that is painted in it and is no widget itself, told to assistive technology.
/// It has no parts of its own, and is invalid once its widget has gone.
template <typename Widget>
class AccessiblePart : public QAccessibleInterface {
public:
    explicit AccessiblePart(Widget *widget) : m_widget(widget) {}

    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override
    {
        return m_widget ? QAccessible::queryAccessibleInterface(m_widget) : nullptr;
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    void setText(QAccessible::Text, const QString &) override {}

protected:
    /// Null once it has gone.
    Widget *widget() const { return m_widget; }

    /// The place on the screen of a part that has this one in its widget's viewport.
    static QRect onScreen(const QWidget *viewport, const QRect &place)
    {
        return {viewport->mapToGlobal(place.topLeft()), place.size()};
    }

private:
    const QPointer<Widget> m_widget;
};
