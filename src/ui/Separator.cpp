// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Separator.h"

#include "ui/Colors.h"

#include <QPainter>

Separator::Separator(Qt::Orientation orientation, QWidget *parent) : QWidget(parent)
{
    if (orientation == Qt::Horizontal)
        setFixedHeight(1);
    else
        setFixedWidth(1);
}

void Separator::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), Colors::separator(palette()));
}
