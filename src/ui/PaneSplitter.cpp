// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PaneSplitter.h"

#include "ui/Colors.h"

#include <QPainter>

namespace {

/// Styles paint nothing in a handle that is so narrow.
class Hairline : public QSplitterHandle {
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(contentsRect(), Colors::separator(palette()));
    }
};

} // namespace

PaneSplitter::PaneSplitter(QWidget *first, int firstWidth, QWidget *second, int secondWidth,
                           QWidget *parent)
    : QSplitter(Qt::Horizontal, parent)
{
    setChildrenCollapsible(false);
    setHandleWidth(1);
    addWidget(first);
    addWidget(second);
    setStretchFactor(1, 1);
    setSizes({firstWidth, secondWidth});
}

QSplitterHandle *PaneSplitter::createHandle()
{
    return new Hairline(orientation(), this);
}
