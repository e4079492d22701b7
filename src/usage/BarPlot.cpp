// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/BarPlot.h"

#include "ui/Fonts.h"
#include "ui/ForeignText.h"
#include "usage/FixedTicker.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int labelDistance = 6; // between the axes and their labels
constexpr int labelSpacing = 12; // between two labels, at least
constexpr int leastMargin = 8;
constexpr double shareOfNames = 0.36; // of the width, at most
constexpr double thickestLyingBar = 22;

void setUpAxis(QCPAxis *axis, const QSharedPointer<FixedTicker> &ticker)
{
    axis->setTicker(ticker);
    axis->setTickLength(0, 0);
    axis->setSubTicks(false);
    axis->setTickLabelPadding(labelDistance);
    // Otherwise a name such as "v1e5" would be drawn as a power of ten.
    axis->setNumberFormat(QStringLiteral("g"));
    axis->setTickPen(Qt::NoPen);
}

int widestOf(const QStringList &texts, const QFontMetrics &metrics)
{
    int widest = 0;
    for (const QString &text : texts)
        widest = std::max(widest, metrics.horizontalAdvance(text));
    return widest;
}

} // namespace

BarPlot::BarPlot(Qt::Orientation bars, Measure measure, Colors::Hue hue, QWidget *parent)
    : QCustomPlot(parent)
    , m_orientation(bars)
    , m_measure(measure)
    , m_hue(hue)
    , m_places(bars == Qt::Vertical ? xAxis : yAxis)
    , m_values(bars == Qt::Vertical ? yAxis : xAxis)
    , m_placeTicks(new FixedTicker)
    , m_valueTicks(new FixedTicker)
{
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setBackground(Qt::NoBrush);
    setPlottingHints(QCP::phNone); // what is seldom painted needs no cache of label pictures
    mPaintBuffers.clear();         // made by the constructor, and of no use here
    setUpAxes();
}

void BarPlot::setUpAxes()
{
    setUpAxis(m_places, m_placeTicks);
    setUpAxis(m_values, m_valueTicks);
    m_places->grid()->setVisible(false);
    m_places->setBasePen(Qt::NoPen);
    m_values->setBasePen(Qt::NoPen);
    m_places->setRangeReversed(!stands());
    axisRect()->setAutoMargins(QCP::msNone);
    axisRect()->setMinimumSize(1, 1);
}

void BarPlot::setContents(const ChartContents &contents)
{
    m_contents = contents;
    m_marked = -1;
    makeBars();
    m_arranged = false;
    update();
}

QCPBars *BarPlot::barsOfLevel(qsizetype level)
{
    while (m_levels.size() <= level) {
        auto *bars = new QCPBars(m_places, m_values);
        bars->setAntialiased(false);
        bars->setStackingGap(1);
        if (!m_levels.isEmpty())
            bars->moveAbove(m_levels.constLast());
        m_levels.append(bars);
    }
    return m_levels[level];
}

void BarPlot::makeBars()
{
    struct Reach {
        double up = 0;
        double down = 0;
        qsizetype bars = 0;
    };
    std::map<double, Reach> reachOfPlace;
    std::map<qsizetype, QVector<QCPBarsData>> dataOfLevel;
    m_extents.clear();
    m_lowest = m_highest = 0;
    for (const ChartBar &bar : m_contents.bars) {
        Reach &reach = reachOfPlace[bar.place];
        const double value = drawable(bar.value);
        double &end = value < 0 ? reach.down : reach.up;
        m_extents.push_back({end, end + value});
        end += value;
        m_lowest = std::min(m_lowest, end);
        m_highest = std::max(m_highest, end);
        if (value != 0) // a bar has an outline, so that the smallest is seen; zero must not be
            dataOfLevel[reach.bars++].append({bar.place, value});
    }
    for (QCPBars *bars : std::as_const(m_levels))
        bars->data()->clear();
    for (const auto &[level, barsData] : dataOfLevel)
        barsOfLevel(level)->data()->set(barsData);
    m_byPlace.resize(m_extents.size());
    std::iota(m_byPlace.begin(), m_byPlace.end(), size_t(0));
    std::stable_sort(m_byPlace.begin(), m_byPlace.end(), [this](size_t a, size_t b) {
        return m_contents.bars[qsizetype(a)].place < m_contents.bars[qsizetype(b)].place;
    });
}

void BarPlot::setMarked(int bar)
{
    if (bar == m_marked)
        return;
    m_marked = bar;
    update();
}

void BarPlot::arrange()
{
    if (m_arranged || m_contents.bars.isEmpty())
        return;
    m_arranged = true;
    setFont(textFont(TextStyle::Caption2));
    m_places->setTickLabelFont(font());
    m_values->setTickLabelFont(font());
    const double first = m_contents.bars[qsizetype(m_byPlace.front())].place;
    const double last = m_contents.bars[qsizetype(m_byPlace.back())].place;
    m_places->setRange(first - 0.5, last + 0.5);
    if (stands())
        arrangeStanding();
    else
        arrangeLying();
    setBarWidth();
}

void BarPlot::arrangeStanding()
{
    const QFontMetrics metrics(font());
    const int bottom = metrics.height() + labelDistance + 2;
    const int top = metrics.height() / 2 + 4;
    const int mostTicks = std::clamp((height() - top - bottom) / (metrics.height() * 2), 2, 6);
    const ValueScale scale = makeValueScale(m_lowest, m_highest, mostTicks, m_measure, locale());
    showScale(scale);
    int widest = 0;
    for (const ChartContents::Label &label : m_contents.labels)
        widest = std::max(widest, metrics.horizontalAdvance(label.text));
    // The days of the charts under one another stand in line as long as their numbers are no wider
    // than this. The labels of the first and the last day may be wider than the days.
    const int usual = metrics.horizontalAdvance(QStringLiteral("$0,000"));
    const int values = std::max(widestOf(scale.labels, metrics), usual);
    const int left = std::max(values + labelDistance + 6, widest / 2);
    // The last label hangs over its day, whose width depends on what is left for it.
    const double halfDays = 2 * m_places->range().size();
    const double needed = (widest / 2.0 + 2 - (width() - left) / halfDays) / (1 - 1 / halfDays);
    const int right = std::max(leastMargin, static_cast<int>(std::ceil(needed)));
    setMargins({left, top, right, bottom});
    chooseDayLabels(widest);
}

void BarPlot::arrangeLying()
{
    const QFontMetrics metrics(font());
    const int roomOfNames = static_cast<int>(width() * shareOfNames);
    int widest = 0;
    for (const ChartContents::Label &label : m_contents.labels)
        widest = std::max(
            widest, metrics.horizontalAdvance(ForeignText::line(label.text, metrics, roomOfNames)));
    const int left = std::min(widest, roomOfNames) + labelDistance + 4;
    ValueScale scale;
    int widestValue = 0;
    for (int ticks = 6; ticks >= 2; --ticks) {
        scale = makeValueScale(m_lowest, m_highest, ticks, m_measure, locale());
        widestValue = widestOf(scale.labels, metrics);
        const int room = width() - left - widestValue / 2 - 2;
        if (scale.ticks.size() * (widestValue + labelSpacing) <= room)
            break;
    }
    showScale(scale);
    setMargins({left, 2, std::max(leastMargin, widestValue / 2 + 2),
                metrics.height() + labelDistance + 2});
    shortenLabels(roomOfNames);
}

void BarPlot::showScale(const ValueScale &scale)
{
    m_values->setRange(scale.lower, scale.upper);
    m_valueTicks->ticks.clear();
    for (qsizetype i = 0; i < scale.ticks.size(); ++i)
        m_valueTicks->ticks.append({scale.ticks[i], scale.labels[i]});
}

void BarPlot::setMargins(const QMargins &margins)
{
    axisRect()->setMargins(margins);
    setViewport(rect());
    updateLayout();
}

/// Every label, every second, every third and so on, counted back from the last one, as far as
/// there is room.
void BarPlot::chooseDayLabels(int widest)
{
    const double room = std::max(band(), 0.01);
    const double needed = (widest + labelSpacing) / room;
    const auto every = static_cast<qsizetype>(std::ceil(std::min(needed, 1e6)));
    const QFontMetrics metrics(font());
    m_placeTicks->ticks.clear();
    double free = width(); // what lies left of this is free
    for (qsizetype i = m_contents.labels.size() - 1; i >= 0; i -= std::max<qsizetype>(every, 1)) {
        const ChartContents::Label &label = m_contents.labels[i];
        const double middle = m_places->coordToPixel(label.place);
        const double half = metrics.horizontalAdvance(label.text) / 2.0;
        if (middle - half < 0 || middle + half > free)
            continue;
        m_placeTicks->ticks.prepend({label.place, label.text});
        free = middle - half - labelSpacing;
    }
}

void BarPlot::shortenLabels(int room)
{
    const QFontMetrics metrics(font());
    m_placeTicks->ticks.clear();
    for (const ChartContents::Label &label : m_contents.labels)
        m_placeTicks->ticks.append(
            {label.place, ForeignText::line(label.text, metrics, room, Qt::ElideMiddle)});
}

double BarPlot::band() const
{
    return std::abs(m_places->coordToPixel(1) - m_places->coordToPixel(0));
}

void BarPlot::setBarWidth()
{
    const double share = stands() ? 0.8 : 0.68;
    double width = std::max(1.0, band() * share);
    if (!stands())
        width = std::min(width, thickestLyingBar);
    for (QCPBars *bars : std::as_const(m_levels)) {
        bars->setWidthType(QCPBars::wtAbsolute);
        bars->setWidth(std::max(1.0, std::round(width) - 1)); // without the outline
    }
}

int BarPlot::barAt(const QPoint &place)
{
    arrange();
    if (!axisRect()->outerRect().contains(place) || m_byPlace.empty())
        return -1;
    const double along = m_places->pixelToCoord(stands() ? place.x() : place.y());
    const double value = m_values->pixelToCoord(stands() ? place.y() : place.x());
    const auto placeOf = [this](size_t bar) { return m_contents.bars[qsizetype(bar)].place; };
    auto bar = std::lower_bound(m_byPlace.begin(), m_byPlace.end(), along - 0.5,
                                [&](size_t a, double at) { return placeOf(a) < at; });
    int found = -1;
    for (; bar != m_byPlace.end() && placeOf(*bar) < along + 0.5; ++bar) {
        // Of those that continue one another, the one that is pointed at; else the last.
        if (found >= 0 && placeOf(*bar) != placeOf(size_t(found)))
            break;
        found = static_cast<int>(*bar);
        const Extent extent = m_extents[*bar];
        if (value >= std::min(extent.from, extent.to) && value <= std::max(extent.from, extent.to))
            break;
    }
    return found;
}

QRect BarPlot::roomOf(int bar)
{
    arrange();
    const double middle = m_places->coordToPixel(m_contents.bars[bar].place);
    const int begin = qRound(middle - band() / 2);
    const int size = std::max(1, qRound(middle + band() / 2) - begin);
    const QRect inner = axisRect()->rect();
    return stands() ? QRect(begin, inner.top(), size, inner.height())
                    : QRect(inner.left(), begin, inner.width(), size);
}

QRectF BarPlot::rectOf(int bar) const
{
    const Extent extent = m_extents[size_t(bar)];
    const double middle = m_places->coordToPixel(m_contents.bars[bar].place);
    const double half = m_levels.isEmpty() ? 0 : m_levels.constFirst()->width() / 2;
    const double from = m_values->coordToPixel(extent.from);
    const double to = m_values->coordToPixel(extent.to);
    const QPointF one = stands() ? QPointF(middle - half, from) : QPointF(from, middle - half);
    const QPointF other = stands() ? QPointF(middle + half, to) : QPointF(to, middle + half);
    return QRectF(one, other).normalized();
}

QString BarPlot::shortenedLabelAt(const QPoint &place)
{
    arrange();
    if (stands() || place.x() >= axisRect()->left())
        return {};
    const double along = m_places->pixelToCoord(place.y());
    for (qsizetype i = 0; i < m_contents.labels.size(); ++i) {
        const ChartContents::Label &label = m_contents.labels[i];
        if (std::abs(label.place - along) <= 0.5)
            return m_placeTicks->ticks[i].text == label.text ? QString() : label.text;
    }
    return {};
}

void BarPlot::setColors()
{
    const QColor fill = Colors::fill(m_hue, palette());
    for (QCPBars *bars : std::as_const(m_levels)) {
        bars->setBrush(fill);
        bars->setPen(fill);
    }
    const QColor line = Colors::separator(palette());
    m_values->grid()->setPen(line);
    m_values->grid()->setZeroLinePen(Colors::secondaryText(palette()));
    m_values->setTickLabelColor(Colors::secondaryText(palette()));
    m_places->setTickLabelColor(stands() ? Colors::secondaryText(palette())
                                         : palette().color(QPalette::WindowText));
}

void BarPlot::drawMark(QPainter &painter)
{
    if (m_marked < 0)
        return;
    QColor tint = palette().color(QPalette::Highlight);
    tint.setAlphaF(0.18F);
    painter.fillRect(roomOf(m_marked), tint);
}

void BarPlot::paintEvent(QPaintEvent *event)
{
    if (m_contents.bars.isEmpty())
        return;
    arrange();
    setColors();
    QCPPainter painter(this);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto); // that of each label
    drawMark(painter);
    const QList<FixedTicker::Tick> all = m_placeTicks->ticks;
    if (!stands()) {
        const double top = m_places->pixelToCoord(event->rect().top()) - 1;
        const double bottom = m_places->pixelToCoord(event->rect().bottom()) + 1;
        m_placeTicks->ticks.removeIf(
            [&](const FixedTicker::Tick &tick) { return tick.place < top || tick.place > bottom; });
    }
    draw(&painter);
    m_placeTicks->ticks = all;
    if (m_marked >= 0 && m_extents[size_t(m_marked)].from != m_extents[size_t(m_marked)].to) {
        painter.setAntialiasing(false);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rectOf(m_marked));
    }
}

void BarPlot::resizeEvent(QResizeEvent *)
{
    setViewport(rect());
    m_arranged = false;
}

bool BarPlot::event(QEvent *event)
{
    const bool taken = QCustomPlot::event(event);
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::LocaleChange ||
        event->type() == QEvent::StyleChange) {
        m_arranged = false;
        update();
    }
    return taken;
}
