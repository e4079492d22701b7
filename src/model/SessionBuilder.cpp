// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionBuilder.h"

#include "model/IsoDate.h"
#include "model/JsonFields.h"
#include "model/PromptText.h"

#include <algorithm>
#include <vector>

namespace {

/// Later than every time in a log.
constexpr TimePoint farFuture = TimePoint::max();

/// What Claude Code writes into user messages by itself: the traces of its own commands.
bool isCommandTrace(const QString &prompt)
{
    return prompt.startsWith(u"<command-") || prompt.startsWith(u"<local-command") ||
           prompt.startsWith(u"Caveat:");
}

std::optional<TimePoint> timeOf(const std::optional<simdjson::dom::element> &timestamp)
{
    const auto text = jsonAs<std::string_view>(timestamp);
    if (!text)
        return std::nullopt;
    const std::optional<TimePoint> date = SessionParser::isoFrac(*text);
    return date ? date : SessionParser::iso(*text);
}

} // namespace

void SessionBuilder::add(const simdjson::dom::object &line)
{
    const JsonFields<4> fields(line, {"timestamp", "type", "message", "isMeta"});
    // Every line with a time counts for the span of the session, whatever else it is.
    const std::optional<TimePoint> date = addTime(timeOf(fields[0]));
    const auto type = jsonAs<std::string_view>(fields[1]);
    const auto message = jsonAs<simdjson::dom::object>(fields[2]);
    if (!type || !message)
        return;
    if (*type == "user" && jsonAs<bool>(fields[3]) != true)
        addTurn(*message);
    else if (*type == "assistant")
        addUsage(*message, date);
}

void SessionBuilder::append(SessionBuilder &&later)
{
    datesFollow(later.m_withId);
    datesFollow(later.m_withoutId);
    std::vector<const QByteArray *> ids(size_t(later.m_withId.list.size()));
    for (auto id = later.m_placeOfId.cbegin(); id != later.m_placeOfId.cend(); ++id)
        ids[size_t(*id)] = &id.key();
    const auto take = [this](Records &records, qsizetype i, std::optional<std::string_view> id) {
        UsageRecord &record = records.list[i];
        record.model = shared(record.model);
        store(std::move(record), !records.undated.contains(i), id);
    };
    for (qsizetype i = 0; i < later.m_withId.list.size(); ++i)
        take(later.m_withId, i, std::string_view(*ids[size_t(i)]));
    for (qsizetype i = 0; i < later.m_withoutId.list.size(); ++i)
        take(later.m_withoutId, i, std::nullopt);
    addTime(later.m_start);
    addTime(later.m_end);
    m_turns += later.m_turns;
    if (m_firstPrompt.isEmpty())
        m_firstPrompt = std::move(later.m_firstPrompt);
}

std::optional<Session> SessionBuilder::finish(const QString &id)
{
    SessionBuilder lines = std::exchange(*this, SessionBuilder(m_now));
    if (!lines.m_start || !lines.m_end)
        return std::nullopt;
    QList<UsageRecord> records = std::move(lines.m_withId.list) + std::move(lines.m_withoutId.list);
    for (UsageRecord &record : records) {
        if (record.date == farFuture)
            record.date = m_now;
    }
    std::stable_sort(records.begin(), records.end(),
                     [](const UsageRecord &a, const UsageRecord &b) { return a.date < b.date; });
    records.squeeze();
    return Session{id,
                   *lines.m_start,
                   *lines.m_end,
                   std::move(lines.m_firstPrompt),
                   lines.m_turns,
                   std::move(records)};
}

std::optional<TimePoint> SessionBuilder::addTime(std::optional<TimePoint> date)
{
    if (date) {
        m_start = std::min(m_start.value_or(*date), *date);
        m_end = std::max(m_end.value_or(*date), *date);
    }
    return date;
}

void SessionBuilder::addTurn(const simdjson::dom::object &message)
{
    const JsonFields<1> fields(message, {"content"});
    if (!fields[0])
        return;
    const std::optional<QString> text = SessionParser::promptText(*fields[0]);
    if (!text)
        return;
    QString prompt = text->trimmed();
    if (prompt.isEmpty() || isCommandTrace(prompt))
        return;
    ++m_turns;
    if (m_firstPrompt.isEmpty())
        m_firstPrompt = std::move(prompt);
}

void SessionBuilder::addUsage(const simdjson::dom::object &message, std::optional<TimePoint> date)
{
    const JsonFields<3> fields(message, {"usage", "model", "id"});
    const auto usage = jsonAs<simdjson::dom::object>(fields[0]);
    if (!usage)
        return;
    const JsonFields<4> counts(*usage, {"input_tokens", "output_tokens",
                                        "cache_creation_input_tokens", "cache_read_input_tokens"});
    const auto model = jsonAs<std::string_view>(fields[1]).value_or("");
    store({.date = date ? *date : m_start.value_or(farFuture),
           .model = shared(QUtf8StringView(model.data(), static_cast<qsizetype>(model.size()))),
           .input = jsonCount(counts[0]),
           .output = jsonCount(counts[1]),
           .cacheWrite = jsonCount(counts[2]),
           .cacheRead = jsonCount(counts[3])},
          date.has_value(), jsonAs<std::string_view>(fields[2]));
}

/// A message is logged again with every block it gains, each time with the counts so far: of the
/// lines with one id the last one counts.
void SessionBuilder::store(UsageRecord &&record, bool dated,
                           std::optional<std::string_view> messageId)
{
    Records &records = messageId ? m_withId : m_withoutId;
    qsizetype place = records.list.size();
    if (messageId) {
        const QByteArrayView bytes(*messageId);
        const auto known =
            m_placeOfId.constFind(QByteArray::fromRawData(bytes.data(), bytes.size()));
        if (known != m_placeOfId.cend())
            place = *known;
        else
            m_placeOfId.insert(bytes.toByteArray(), place);
    }
    if (place < records.list.size())
        records.list[place] = std::move(record);
    else
        records.list.append(std::move(record));
    if (!dated)
        records.undated.insert(place);
    else if (!records.undated.isEmpty())
        records.undated.remove(place);
}

/// Dates later records that have no time of their own by the lines here, too.
void SessionBuilder::datesFollow(Records &records) const
{
    for (const qsizetype place : std::as_const(records.undated))
        records.list[place].date = std::min(records.list[place].date, m_start.value_or(farFuture));
}

QString SessionBuilder::shared(QAnyStringView model)
{
    const auto known =
        std::find_if(m_models.cbegin(), m_models.cend(),
                     [model](const QString &other) { return QAnyStringView::equal(other, model); });
    if (known != m_models.cend())
        return *known;
    m_models.append(model.toString());
    return m_models.constLast();
}
