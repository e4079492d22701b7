// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/Usage.h"

#include "model/Pricing.h"
#include "usage/DayTable.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Absurd prices of both signs can give a cost that is not a number, which no order knows.
double sortable(double cost)
{
    return std::isnan(cost) ? -std::numeric_limits<double>::infinity() : cost;
}

/// Goes through the records of one project after the other and adds them up in every way at once.
class Counter {
public:
    Counter(const UsageInput &input, const std::stop_token &stop)
        : m_input(input)
        , m_stop(stop)
        , m_finder(input.now, input.zone)
        , m_pricer(input.prices)
    {
    }

    Usage count()
    {
        Usage usage;
        if (!m_finder.isValid())
            return usage;
        bool shownIsListed = false;
        for (const Project &project : m_input.projects) {
            const bool shown = project.path == m_input.path;
            shownIsListed = shownIsListed || shown;
            const ProjectUsage sum = countProject(project.path, shown, true);
            if (sum.tokens >= 1)
                usage.perProject.append({project.name(), sum.tokens, sum.cost});
        }
        if (!shownIsListed)
            countProject(m_input.path, true, false);
        std::stable_sort(usage.perProject.begin(), usage.perProject.end(),
                         [](const ProjectUsage &a, const ProjectUsage &b) {
                             return sortable(a.cost) > sortable(b.cost);
                         });
        usage.projectDays = m_projectDays.days(m_finder);
        usage.allDays = m_allDays.days(m_finder);
        return usage;
    }

private:
    ProjectUsage countProject(const QString &path, bool shown, bool listed)
    {
        ProjectUsage sum;
        const auto sessions = m_input.sessions.constFind(path);
        if (sessions == m_input.sessions.cend())
            return sum;
        for (const Session &session : *sessions) {
            if (m_stop.stop_requested())
                break;
            for (const UsageRecord &record : session.records) {
                if (record.date >= m_finder.cutoff())
                    countRecord(record, shown, listed, sum);
            }
        }
        return sum;
    }

    void countRecord(const UsageRecord &record, bool shown, bool listed, ProjectUsage &sum)
    {
        const size_t day = m_finder.dayOf(record.date);
        const qint64 tokens = tokensOf(record);
        const double cost = m_pricer.cost(record);
        if (shown)
            m_projectDays.add(day, tokens, cost);
        if (listed)
            m_allDays.add(day, tokens, cost);
        sum.tokens = addTokens(sum.tokens, tokens);
        sum.cost += cost;
    }

    const UsageInput &m_input;
    const std::stop_token &m_stop;
    DayFinder m_finder;
    Pricer m_pricer;
    DayTable m_projectDays;
    DayTable m_allDays;
};

} // namespace

bool Usage::isEmpty(bool all) const
{
    const QList<DayUsage> &shown = days(all);
    return perProject.isEmpty() && std::all_of(shown.cbegin(), shown.cend(),
                                               [](const DayUsage &day) { return day.tokens == 0; });
}

qint64 tokensOf(const UsageRecord &record)
{
    return addTokens(addTokens(record.input, record.output),
                     addTokens(record.cacheWrite, record.cacheRead));
}

DayUsage totalOf(const QList<DayUsage> &days)
{
    DayUsage total;
    for (const DayUsage &day : days) {
        total.tokens = addTokens(total.tokens, day.tokens);
        total.cost += day.cost;
    }
    return total;
}

Usage makeUsage(const UsageInput &input, const std::stop_token &stop)
{
    return Counter(input, stop).count();
}
