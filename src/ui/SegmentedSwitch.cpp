// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SegmentedSwitch.h"

#include "ui/Colors.h"
#include "ui/ForeignText.h"
#include "ui/TextLine.h"
#include "ui/ToolTips.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QPainter>
#include <QRadioButton>
#include <QToolTip>
#include <QtMath>

namespace {

constexpr int margin = 2; // between the frame and a segment
constexpr int padding = 8;
constexpr qreal radius = 5;

/// A radio button, because that is what assistive technology should take it for.
class Segment : public QRadioButton {
public:
    Segment(const QString &label, QWidget *parent) : QRadioButton(parent), m_label(label)
    {
        QString text = label;
        setText(text.replace(u'&', QStringLiteral("&&")));
        setAccessibleName(label);
        // Qt would let Tab stop at the first one, and then not at the chosen one any more.
        setFocusPolicy(Qt::ClickFocus);
        connect(this, &QRadioButton::toggled, this,
                [this](bool chosen) { setFocusPolicy(chosen ? Qt::StrongFocus : Qt::ClickFocus); });
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // all are equally wide
    }

    QSize sizeHint() const override
    {
        // Rounded down, it would be elided for the missing fraction of a pixel.
        const int text =
            qCeil(QFontMetricsF(font()).horizontalAdvance(ForeignText::title(m_label)));
        return {text + 1 + 2 * padding, fontMetrics().height() + 8};
    }
    QSize minimumSizeHint() const override { return {2 * padding, sizeHint().height()}; }

protected:
    bool hitButton(const QPoint &place) const override { return rect().contains(place); }

    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::ToolTip)
            return QRadioButton::event(event);
        const bool cut = shown() != m_label;
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           cut ? plainToolTip(m_label) : QString(), this);
        return true;
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (isChecked()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(palette().highlight());
            painter.drawRoundedRect(rect(), radius - margin, radius - margin);
        }
        if (hasFocus()) {
            painter.setPen(
                palette().color(isChecked() ? QPalette::HighlightedText : QPalette::Highlight));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), radius - margin,
                                    radius - margin);
        }
        painter.setPen(
            palette().color(isChecked() ? QPalette::HighlightedText : QPalette::ButtonText));
        drawTextLine(&painter, rect(), Qt::AlignCenter, shown(), directionOf(m_label));
    }

private:
    QString shown() const
    {
        return ForeignText::line(m_label, fontMetrics(), width() - 2 * padding, Qt::ElideMiddle);
    }

    const QString m_label;
};

} // namespace

SegmentedSwitch::SegmentedSwitch(const QStringList &labels, QWidget *parent)
    : QWidget(parent)
    , m_segments(new QButtonGroup(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    for (const QString &label : labels) {
        auto *segment = new Segment(label, this);
        m_segments->addButton(segment, static_cast<int>(m_segments->buttons().size()));
        layout->addWidget(segment, 1);
    }
    m_segments->button(0)->setChecked(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(m_segments, &QButtonGroup::idToggled, this, [this](int segment, bool checked) {
        if (checked)
            Q_EMIT currentChanged(segment);
    });
}

int SegmentedSwitch::current() const
{
    return m_segments->checkedId();
}

void SegmentedSwitch::setCurrent(int segment)
{
    m_segments->button(segment)->setChecked(true);
}

void SegmentedSwitch::setUsualWidth(int width, int segment)
{
    m_usualWidth = width;
    m_wholeSegment = segment;
    fitWidth();
}

void SegmentedSwitch::fitWidth()
{
    const int count = static_cast<int>(m_segments->buttons().size());
    const int segment = m_segments->button(m_wholeSegment)->sizeHint().width();
    setFixedWidth(qMax(m_usualWidth, count * segment + (count + 1) * margin));
}

void SegmentedSwitch::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // The segments have their new font only when all widgets have been told.
    if (event->type() == QEvent::FontChange && m_wholeSegment >= 0)
        QMetaObject::invokeMethod(this, &SegmentedSwitch::fitWidth, Qt::QueuedConnection);
}

void SegmentedSwitch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Colors::separator(palette()));
    painter.setBrush(palette().button());
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}
