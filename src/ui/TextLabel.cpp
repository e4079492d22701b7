// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TextLabel.h"

#include "ui/Colors.h"
#include "ui/ForeignText.h"
#include "ui/TextLine.h"
#include "ui/ToolTips.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QToolTip>

namespace {

/// No screen has room for a longer line, in pixels.
constexpr int widestLine = 10'000;

/// Lays the text out in lines of that width and gives the size they take.
QSizeF layOut(QTextLayout &layout, int width, Qt::Alignment alignment)
{
    QTextOption option(alignment);
    option.setTextDirection(directionOf(layout.text()));
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    qreal height = 0;
    qreal widest = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
        widest = qMax(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    return {widest, height};
}

} // namespace

TextLabel::TextLabel(const QString &text, const Style &style, QWidget *parent)
    : QLabel(text, parent)
    , m_style(style)
{
    setTextFormat(Qt::PlainText);
    setFont(textFont(style.size, style.bold));
    setWordWrap(wraps()); // also what makes QLabel keep to heightForWidth()
    // Fixed would hold wrapped text to the height it has at its widest.
    QSizePolicy policy = sizePolicy();
    policy.setVerticalPolicy(wraps() ? QSizePolicy::Minimum : QSizePolicy::Fixed);
    setSizePolicy(policy);
}

void TextLabel::setTone(Tone tone)
{
    if (m_style.tone == tone)
        return;
    m_style.tone = tone;
    update();
}

QSize TextLabel::sizeHint() const
{
    if (wraps())
        return wrappedSize(maximumWidth());
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(elided(widestLine)) + 1, metrics.height()};
}

QSize TextLabel::minimumSizeHint() const
{
    // Wide enough for a few characters and the ellipsis: the layout decides, not the text.
    const QFontMetrics metrics(font());
    const int few = metrics.averageCharWidth() * 6;
    return {qMin(few, sizeHint().width()), metrics.height()};
}

int TextLabel::heightForWidth(int width) const
{
    return wraps() ? wrappedSize(qMin(width, maximumWidth())).height() : -1;
}

bool TextLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange)
        setFont(textFont(m_style.size, m_style.bold));
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty())
        return QLabel::event(event);
    const bool cut = !wraps() && elided(width()) != text();
    const QPoint at = static_cast<QHelpEvent *>(event)->globalPos();
    QToolTip::showText(at, cut ? plainToolTip(text()) : QString(), this);
    return true;
}

void TextLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(color());
    painter.setLayoutDirection(layoutDirection());
    if (!wraps()) {
        drawTextLine(&painter, rect(), alignment(), elided(width()), directionOf(text()));
        return;
    }
    QTextLayout layout(broken(), font());
    layOut(layout, width(), QStyle::visualAlignment(layoutDirection(), alignment()));
    layout.draw(&painter, QPointF(0, 0));
}

QColor TextLabel::color() const
{
    switch (m_style.tone) {
    case Tone::Primary:
        return palette().color(foregroundRole());
    case Tone::Secondary:
        return Colors::secondaryText(palette());
    case Tone::Error:
        return Colors::hue(Colors::Hue::Red, palette());
    case Tone::Warning:
        return Colors::hue(Colors::Hue::Orange, palette());
    }
    Q_UNREACHABLE();
}

QString TextLabel::elided(int width) const
{
    const auto mode = m_style.overflow == Overflow::ElideHead ? Qt::ElideLeft : Qt::ElideRight;
    return ForeignText::line(text(), QFontMetrics(font()), width, mode);
}

/// The text as QTextLayout breaks it into lines.
QString TextLabel::broken() const
{
    return ForeignText::lines(text()).replace(u'\n', QChar::LineSeparator);
}

QSize TextLabel::wrappedSize(int width) const
{
    QTextLayout layout(broken(), font());
    const QSizeF size = layOut(layout, width, alignment());
    return {qCeil(size.width()), qCeil(size.height())};
}
