// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FocusRing.h"

#include "ui/Colors.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QPainter>
#include <QTabBar>

namespace {

/// A focus frame for Qt, so that assistive technology does not take it for a part of the widget
/// that it lies on.
class Frame : public QFocusFrame {
public:
    explicit Frame(QWidget *widget) : QFocusFrame(widget), m_tabs(qobject_cast<QTabBar *>(widget))
    {
        widget->installEventFilter(this);
        if (m_tabs)
            connect(m_tabs, &QTabBar::currentChanged, this, &Frame::place);
        place();
        raise();
        show();
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == parent() &&
            (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest))
            place();
        return false;
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const auto draw = [&](const QColor &color, double width, double inside) {
            painter.setPen(QPen(color, width));
            painter.drawRoundedRect(QRectF(rect()).adjusted(inside, inside, -inside, -inside), 3,
                                    3);
        };
        // Inside, for what is itself in the colour of the highlight or near it.
        draw(palette().color(QPalette::HighlightedText), 1, 2.5);
        draw(Colors::focus(palette()), 2, 1);
    }

private:
    void place()
    {
        setGeometry(m_tabs ? m_tabs->tabRect(m_tabs->currentIndex()) : parentWidget()->rect());
    }

    QTabBar *const m_tabs;
};

} // namespace

FocusRing::FocusRing(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    if (!watched->isWidgetType())
        return false;
    if (event->type() == QEvent::FocusIn)
        follow(static_cast<QWidget *>(watched), static_cast<QFocusEvent *>(event)->reason());
    else if (event->type() == QEvent::FocusOut && m_frame && watched == m_frame->parent()) {
        m_frame->hide();
        m_frame->deleteLater();
        m_frame = nullptr;
    }
    return false;
}

/// What is neither the keyboard nor the mouse (another window, a button that is disabled) leaves
/// the frame with the focus, or leaves both without.
void FocusRing::follow(QWidget *widget, Qt::FocusReason reason)
{
    switch (reason) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        m_byKeyboard = true;
        break;
    case Qt::MouseFocusReason:
        m_byKeyboard = false;
        break;
    default:
        break;
    }
    const bool isStop = (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus; // not a page
    if (m_byKeyboard && isStop && (!m_frame || m_frame->parent() != widget))
        m_frame = new Frame(widget);
}
