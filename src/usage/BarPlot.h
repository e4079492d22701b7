// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Colors.h"
#include "usage/PlotLibrary.h"
#include "usage/UsageCharts.h"

#include <vector>

class FixedTicker;

/// The drawing of a bar chart. It paints straight onto the screen, and only what is to be seen: the
/// chart of hundreds of projects is many screens high, and the pictures of it that a QCustomPlot
/// otherwise keeps would take hundreds of megabytes. What the user does with the chart is the
/// business of BarChart.
class BarPlot : public QCustomPlot {
    Q_OBJECT
public:
    /// Bars that stand (Qt::Vertical), or that lie, the first one on top.
    BarPlot(Qt::Orientation bars, Measure measure, Colors::Hue hue, QWidget *parent);

    void setContents(const ChartContents &contents);
    /// The bar that is drawn as the present one; -1 for none.
    void setMarked(int bar);

    /// The bar whose day or project is at a place, be the bar ever so short; -1 for none.
    int barAt(const QPoint &place);
    /// The room of a bar: from edge to edge of the chart, and as wide as its day or project.
    QRect roomOf(int bar);
    /// The whole text of the label at a place, if that had to be shortened.
    QString shortenedLabelAt(const QPoint &place);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;

private:
    /// Where a bar begins and ends on the axis of values.
    struct Extent {
        double from = 0;
        double to = 0;
    };

    bool stands() const { return m_orientation == Qt::Vertical; }
    void setUpAxes();
    void makeBars();
    QCPBars *barsOfLevel(qsizetype level);
    /// Fits axes, labels and bars to the size and the font, if they do not fit yet.
    void arrange();
    void arrangeStanding();
    void arrangeLying();
    void showScale(const ValueScale &scale);
    void setMargins(const QMargins &margins);
    void chooseDayLabels(int widest);
    void shortenLabels(int room);
    double band() const;
    void setBarWidth();
    void setColors();
    void drawMark(QPainter &painter);
    QRectF rectOf(int bar) const;

    const Qt::Orientation m_orientation;
    const Measure m_measure;
    const Colors::Hue m_hue;
    ChartContents m_contents;
    std::vector<Extent> m_extents; // by bar
    std::vector<size_t> m_byPlace; // the bars in the order of their places
    double m_lowest = 0;
    double m_highest = 0;
    int m_marked = -1;
    bool m_arranged = false;
    QCPAxis *m_places;
    QCPAxis *m_values;
    QSharedPointer<FixedTicker> m_placeTicks;
    QSharedPointer<FixedTicker> m_valueTicks;
    QList<QCPBars *> m_levels; // those that begin at 0, those that continue them, and so on
};
