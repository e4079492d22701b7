// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/DayTable.h"

#include <algorithm>

namespace {

constexpr int windowDays = 30;

} // namespace

DayFinder::DayFinder(TimePoint now, const QTimeZone &zone) : m_zone(zone)
{
    const QDate today = LocalDays::dateOf(now, zone);
    for (int back = windowDays - 1; back >= 0; --back) {
        const QDate date = today.addDays(-back);
        const auto start = LocalDays::startOf(date, zone);
        if (!start)
            continue;
        m_dayOfDate.insert(date, m_starts.size());
        m_starts.push_back(*start);
    }
    m_windowSize = m_starts.size();
}

DayFinder::Part DayFinder::find(TimePoint time)
{
    auto after = m_parts.upper_bound(time);
    if (after != m_parts.begin() && time < std::prev(after)->second.end)
        return std::prev(after)->second;
    const LocalDays::Span span = LocalDays::spanOf(time, m_zone);
    auto day = m_dayOfDate.find(span.date);
    if (day == m_dayOfDate.end()) {
        day = m_dayOfDate.insert(span.date, m_starts.size());
        m_starts.push_back(LocalDays::startOf(span.date, m_zone).value_or(span.begin));
    }
    const Part part{span.begin, span.end, *day};
    m_parts.insert({span.begin, part});
    return part;
}

void DayTable::add(size_t day, qint64 tokens, double cost)
{
    if (day >= m_sums.size())
        m_sums.resize(day + 1);
    Sum &sum = m_sums[day];
    sum.tokens = addTokens(sum.tokens, tokens);
    sum.cost += cost;
    sum.used = true;
}

QList<DayUsage> DayTable::days(const DayFinder &finder) const
{
    QList<DayUsage> days;
    for (size_t day = 0; day < std::max(finder.windowSize(), m_sums.size()); ++day) {
        const Sum sum = day < m_sums.size() ? m_sums[day] : Sum();
        if (day < finder.windowSize() || sum.used)
            days.append({finder.startOf(day), sum.tokens, sum.cost});
    }
    std::sort(days.begin(), days.end(),
              [](const DayUsage &a, const DayUsage &b) { return a.day < b.day; });
    return days;
}
