// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/BarChartAccessible.h"

#include "usage/BarChart.h"

#include <QAccessibleWidget>

#include <vector>

namespace {

BarChart *chartOf(const QAccessibleInterface *interface)
{
    return static_cast<BarChart *>(interface->object());
}

/// One bar, as a child of its chart.
class BarAccessible : public QAccessibleInterface {
public:
    BarAccessible(QAccessibleInterface *chart, int bar) : m_chart(chart), m_bar(bar) {}

    bool isValid() const override
    {
        return m_chart->isValid() && m_bar < chartOf(m_chart)->contents().bars.size();
    }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *parent() const override { return m_chart; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString &) override {}

    QString text(QAccessible::Text what) const override
    {
        if (!isValid())
            return {};
        const ChartBar &bar = chartOf(m_chart)->contents().bars[m_bar];
        if (what == QAccessible::Name)
            return bar.name + QStringLiteral(": ") + bar.figures;
        return {};
    }

    QRect rect() const override
    {
        if (!isValid())
            return {};
        const BarChart *chart = chartOf(m_chart);
        const QRect room = chart->roomOf(m_bar);
        return {chart->mapToGlobal(room.topLeft()), room.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const BarChart *chart = chartOf(m_chart);
        state.focusable = true;
        state.readOnly = true;
        state.invisible = !chart->isVisible();
        state.focused = chart->hasFocus() && chart->marked() == m_bar;
        return state;
    }

private:
    QAccessibleInterface *m_chart;
    const int m_bar;
};

class ChartAccessible : public QAccessibleWidget {
public:
    explicit ChartAccessible(BarChart *chart) : QAccessibleWidget(chart, QAccessible::Chart) {}

    ~ChartAccessible() override
    {
        for (const QAccessible::Id id : m_bars)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override
    {
        return static_cast<int>(chartOf(this)->contents().bars.size());
    }

    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        auto *self = const_cast<ChartAccessible *>(this);
        while (m_bars.size() <= size_t(index)) {
            const auto bar = static_cast<int>(m_bars.size());
            m_bars.push_back(
                QAccessible::registerAccessibleInterface(new BarAccessible(self, bar)));
        }
        return QAccessible::accessibleInterface(m_bars[size_t(index)]);
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (size_t i = 0; i < m_bars.size(); ++i) {
            if (QAccessible::accessibleInterface(m_bars[i]) == child)
                return static_cast<int>(i);
        }
        return -1;
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        const BarChart *chart = chartOf(this);
        return child(chart->barAt(chart->mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface *focusChild() const override
    {
        return chartOf(this)->hasFocus() ? child(chartOf(this)->marked()) : nullptr;
    }

private:
    mutable std::vector<QAccessible::Id> m_bars; // made when they are asked for
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *chart = qobject_cast<BarChart *>(object);
    return chart ? new ChartAccessible(chart) : nullptr;
}

} // namespace

void installBarChartAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(installed);
}

void tellFocusedBar(BarChart *chart, int bar)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(chart, QAccessible::Focus);
    event.setChild(bar);
    QAccessible::updateAccessibility(&event);
}
