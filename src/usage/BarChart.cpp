// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/BarChart.h"

#include "ui/ToolTips.h"
#include "usage/BarChartAccessible.h"
#include "usage/BarPlot.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

/// The sign of the focus, over the plot.
class FocusFrame : public QWidget {
public:
    explicit FocusFrame(QWidget *parent) : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Colors::focus(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
    }
};

QString describe(const ChartContents &contents)
{
    QStringList parts;
    qsizetype zeros = 0;
    for (const ChartBar &bar : contents.bars) {
        if (bar.value == 0)
            ++zeros;
        else
            parts.append(bar.name + QStringLiteral(": ") + bar.figures);
    }
    if (zeros == contents.bars.size())
        return QStringLiteral("All %1 are 0.").arg(zeros);
    if (zeros > 0)
        parts.append(QStringLiteral("the other %1 are 0").arg(zeros));
    return parts.join(QStringLiteral("; ")) + u'.';
}

} // namespace

BarChart::BarChart(const QString &name, const Style &style, QWidget *parent)
    : QWidget(parent)
    , m_style(style)
    , m_plot(new BarPlot(style.bars, style.measure, style.hue, this))
    , m_frame(new FocusFrame(this))
{
    installBarChartAccessibility();
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void BarChart::setContents(const ChartContents &contents)
{
    const bool sameBars = contents.bars.size() == m_contents.bars.size();
    m_contents = contents;
    m_plot->setContents(contents);
    setAccessibleDescription(describe(contents));
    if (!sameBars)
        m_hovered = m_walked = -1;
    showMark();
}

int BarChart::marked() const
{
    if (m_hovered >= 0)
        return m_hovered;
    return hasFocus() ? m_walked : -1;
}

QString BarChart::textOf(int bar) const
{
    const ChartBar &told = m_contents.bars[bar];
    return told.name + u'\n' + told.figures;
}

QRect BarChart::roomOf(int bar) const
{
    return m_plot->roomOf(bar);
}

int BarChart::barAt(const QPoint &place) const
{
    return m_plot->barAt(place);
}

void BarChart::walkTo(int bar)
{
    m_walked = bar;
    m_hovered = -1;
    showMark();
    const QRect room = roomOf(bar);
    Q_EMIT walked(room);
    showText(bar, mapToGlobal(m_style.bars == Qt::Vertical ? room.center() : room.bottomLeft()));
    tellFocusedBar(this, bar);
}

bool BarChart::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const QString name = m_plot->shortenedLabelAt(help->pos());
    const int bar = barAt(help->pos());
    if (!name.isEmpty())
        QToolTip::showText(help->globalPos(), plainToolTip(name), this);
    else if (bar >= 0)
        showText(bar, help->globalPos());
    else
        QToolTip::hideText();
    return true;
}

void BarChart::mouseMoveEvent(QMouseEvent *event)
{
    const int before = m_hovered;
    hover(barAt(event->pos()));
    // The exact figures are what the pointer came for, so they do not wait as other tooltips do.
    if (m_hovered >= 0 && m_hovered != before)
        showText(m_hovered, event->globalPosition().toPoint());
    else if (m_hovered < 0)
        QToolTip::hideText();
}

void BarChart::leaveEvent(QEvent *event)
{
    hover(-1);
    QWidget::leaveEvent(event);
}

int BarChart::barAfterKey(int key) const
{
    const bool stands = m_style.bars == Qt::Vertical;
    const int last = static_cast<int>(m_contents.bars.size()) - 1;
    if (key == Qt::Key_Home)
        return 0;
    if (key == Qt::Key_End)
        return last;
    if (key == (stands ? Qt::Key_Left : Qt::Key_Up))
        return std::max(m_walked - 1, 0);
    if (key == (stands ? Qt::Key_Right : Qt::Key_Down))
        return std::min(m_walked + 1, last);
    return -1;
}

void BarChart::keyPressEvent(QKeyEvent *event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const int bar = modifiers ? -1 : barAfterKey(event->key());
    if (bar < 0)
        return QWidget::keyPressEvent(event);
    walkTo(bar);
}

void BarChart::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    // Of the days the present one comes first, of the projects the most expensive one.
    if (m_walked < 0 && !m_contents.bars.isEmpty())
        m_walked = m_style.bars == Qt::Vertical ? static_cast<int>(m_contents.bars.size()) - 1 : 0;
    m_frame->show();
    showMark();
}

void BarChart::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    m_frame->hide();
    showMark();
}

void BarChart::resizeEvent(QResizeEvent *)
{
    m_plot->setGeometry(rect());
    m_frame->setGeometry(rect());
}

void BarChart::hover(int bar)
{
    m_hovered = bar;
    showMark();
}

void BarChart::showMark()
{
    m_plot->setMarked(marked());
}

void BarChart::showText(int bar, const QPoint &globalPlace)
{
    QToolTip::showText(globalPlace, plainToolTip(textOf(bar)), this, roomOf(bar));
}
