// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/SessionTable.h"

#include "model/Format.h"
#include "model/Pricing.h"
#include "model/TextCells.h"

#include <numeric>

namespace {

/// More of a prompt than two lines of the widest window hold.
constexpr qsizetype previewLength = 500;

SessionRow makeRow(const Session &session, Pricer &pricer)
{
    SessionRow row{.id = session.id,
                   .start = session.start,
                   .duration = std::chrono::duration<double>(session.end - session.start).count(),
                   .firstPrompt = session.firstPrompt,
                   .preview =
                       visibleText(beginningOf(session.firstPrompt, previewLength).simplified()),
                   .turns = session.turns,
                   .cache = session.cache()};
    for (const UsageRecord &record : session.records) {
        row.input = addTokens(row.input, record.input);
        row.output = addTokens(row.output, record.output);
        row.cost += pricer.cost(record);
    }
    return row;
}

} // namespace

SessionTable makeSessionTable(const QList<Session> &sessions, const QList<PriceRow> &prices,
                              const std::stop_token &stop)
{
    SessionTable table;
    Pricer pricer(prices);
    table.rows.reserve(sessions.size());
    for (const Session &session : sessions) {
        if (stop.stop_requested())
            break;
        table.rows.append(makeRow(session, pricer));
        table.cost += table.rows.constLast().cost;
    }
    return table;
}

qsizetype recordCount(const QList<Session> &sessions)
{
    return std::accumulate(
        sessions.cbegin(), sessions.cend(), qsizetype(0),
        [](qsizetype sum, const Session &session) { return sum + session.records.size(); });
}
