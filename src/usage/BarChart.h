// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Colors.h"
#include "usage/UsageCharts.h"

#include <QWidget>

class BarPlot;

/// A bar chart that tells the exact figures of every bar: of the one under the pointer, of the one
/// that the arrow keys have come to, and all of them to assistive technology.
class BarChart : public QWidget {
    Q_OBJECT
public:
    struct Style {
        Qt::Orientation bars = Qt::Vertical; ///< standing, or lying with the first one on top
        Measure measure = Measure::Tokens;
        Colors::Hue hue = Colors::Hue::Blue;
    };

    /// `name` is what assistive technology calls the chart.
    BarChart(const QString &name, const Style &style, QWidget *parent = nullptr);

    void setContents(const ChartContents &contents);
    const ChartContents &contents() const { return m_contents; }

    /// The bar that is marked: the one pointed at, or the one that the keys have come to; -1 when
    /// there is neither.
    int marked() const;
    /// What is told about a bar.
    QString textOf(int bar) const;
    /// The room of a bar in this widget, from edge to edge of the chart.
    QRect roomOf(int bar) const;
    /// The bar whose room a place is in; -1 for none.
    int barAt(const QPoint &place) const;
    /// Goes to a bar as the arrow keys do.
    void walkTo(int bar);

Q_SIGNALS:
    /// The keys have come to the bar with that room.
    void walked(const QRect &room);

protected:
    bool event(QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void hover(int bar);
    void showMark();
    void showText(int bar, const QPoint &globalPlace);
    int barAfterKey(int key) const;

    const Style m_style;
    ChartContents m_contents;
    BarPlot *m_plot;
    QWidget *m_frame;
    int m_hovered = -1;
    int m_walked = -1;
};
