// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/WarningBar.h"

#include "ui/Colors.h"
#include "ui/Icons.h"
#include "ui/TextLabel.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>

namespace {

constexpr int padding = 8;
constexpr int iconSize = 16;
constexpr int iconGap = 6;
constexpr float opacity = 0.12F;

} // namespace

WarningBar::WarningBar(const QString &text, QWidget *parent)
    : QWidget(parent)
    , m_label(new TextLabel(text,
                            {.size = TextStyle::Callout,
                             .tone = TextLabel::Tone::Warning,
                             .overflow = TextLabel::Overflow::Wrap},
                            this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding + iconSize + iconGap, padding, padding, padding);
    layout->addWidget(m_label, 1);
}

void WarningBar::paintEvent(QPaintEvent *)
{
    const QColor orange = Colors::hue(Colors::Hue::Orange, palette());
    QPainter painter(this);
    painter.fillRect(rect(), Colors::tint(Colors::Hue::Orange, palette(), opacity));
    // Level with the first line of the text.
    const int lineHeight = QFontMetrics(m_label->font()).height();
    const QRect icon(padding, m_label->y() + (lineHeight - iconSize) / 2, iconSize, iconSize);
    symbolIcon(u"exclamationmark.triangle.fill", orange)
        .paint(&painter, QStyle::visualRect(layoutDirection(), rect(), icon));
}
