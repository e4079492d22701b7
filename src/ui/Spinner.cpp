// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Spinner.h"

#include "ui/Colors.h"

#include <QPainter>

namespace {

constexpr int diameter = 24;
constexpr int spokes = 12;
constexpr int millisecondsPerStep = 80;

} // namespace

Spinner::Spinner(QWidget *parent) : QWidget(parent)
{
    setFixedSize(diameter, diameter);
    m_timer.setInterval(millisecondsPerStep);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_step = (m_step + 1) % spokes;
        update();
    });
}

void Spinner::showEvent(QShowEvent *)
{
    m_timer.start();
}

void Spinner::hideEvent(QHideEvent *)
{
    m_timer.stop();
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    QColor color = Colors::secondaryText(palette());
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int age = (m_step - spoke + spokes) % spokes;
        color.setAlphaF(1 - 0.85F * static_cast<float>(age) / spokes);
        painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(360.0 / spokes * spoke);
        painter.drawLine(QPointF(0, -diameter * 0.27), QPointF(0, -diameter * 0.44));
        painter.restore();
    }
}
