// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CopyableLabel.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QStyle>

namespace {

constexpr float selectionOpacity = 0.3F;

} // namespace

CopyableLabel::CopyableLabel(const QString &text, const Style &style, QWidget *parent)
    : TextLabel(text, style, parent)
{
    setCopyable(true);
}

void CopyableLabel::setCopyable(bool copyable)
{
    setFocusPolicy(copyable ? Qt::StrongFocus : Qt::NoFocus);
    if (copyable)
        setCursor(Qt::IBeamCursor);
    else
        unsetCursor();
}

/// Selected is what has the focus: there is nothing in it to select a part of.
void CopyableLabel::focusInEvent(QFocusEvent *event)
{
    TextLabel::focusInEvent(event);
    // As everywhere on desktops that have it, the middle button pastes what is selected.
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && event->reason() == Qt::MouseFocusReason)
        clipboard->setText(text(), QClipboard::Selection);
    update();
}

void CopyableLabel::focusOutEvent(QFocusEvent *event)
{
    TextLabel::focusOutEvent(event);
    update();
}

void CopyableLabel::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copy();
    else
        TextLabel::keyPressEvent(event);
}

void CopyableLabel::mousePressEvent(QMouseEvent *event)
{
    if (isCopyable())
        event->accept(); // which already gave it the focus
    else
        TextLabel::mousePressEvent(event);
}

void CopyableLabel::contextMenuEvent(QContextMenuEvent *event)
{
    if (!isCopyable())
        return TextLabel::contextMenuEvent(event);
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *action = menu->addAction(QStringLiteral("Copy"), this, &CopyableLabel::copy);
    action->setShortcut(QKeySequence(QKeySequence::Copy)); // told only: the menu is gone by then
    menu->popup(event->globalPos());
}

void CopyableLabel::paintEvent(QPaintEvent *event)
{
    if (hasFocus()) {
        QColor ground = palette().color(QPalette::Highlight);
        ground.setAlphaF(selectionOpacity);
        const QSize room(qMin(sizeHint().width(), width()), height());
        QPainter(this).fillRect(QStyle::alignedRect(layoutDirection(), alignment(), room, rect()),
                                ground);
    }
    TextLabel::paintEvent(event);
}

void CopyableLabel::copy() const
{
    QGuiApplication::clipboard()->setText(text());
}
