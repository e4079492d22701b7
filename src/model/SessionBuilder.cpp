// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionBuilder.h"

#include "model/IsoDate.h"
#include "model/JsonFields.h"
#include "model/PromptText.h"

#include <algorithm>

namespace {

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

std::optional<TimePoint> SessionBuilder::onlyTime(const simdjson::dom::object &beginning)
{
    const JsonFields<3> fields(beginning, {"timestamp", "type", "message"});
    const auto message = jsonAs<simdjson::dom::object>(fields[2]);
    if (jsonAs<std::string_view>(fields[1]) != "user" || !message)
        return std::nullopt;
    const JsonFields<1> content(*message, {"content"});
    if (content[0] && SessionParser::promptText(*content[0]))
        return std::nullopt;
    return timeOf(fields[0]);
}

std::optional<Session> SessionBuilder::finish(const QString &id)
{
    SessionBuilder lines = std::exchange(*this, SessionBuilder(m_now));
    if (!lines.m_start || !lines.m_end)
        return std::nullopt;
    QList<UsageRecord> records = std::move(lines.m_withId) + std::move(lines.m_withoutId);
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
    store({.date = date ? *date : m_start.value_or(m_now),
           .model = shared(jsonAs<std::string_view>(fields[1]).value_or("")),
           .input = jsonCount(counts[0]),
           .output = jsonCount(counts[1]),
           .cacheWrite = jsonCount(counts[2]),
           .cacheRead = jsonCount(counts[3])},
          jsonAs<std::string_view>(fields[2]));
}

/// A message is logged again with every block it gains, each time with the counts so far: of the
/// lines with one id the last one counts.
void SessionBuilder::store(UsageRecord &&record, std::optional<std::string_view> messageId)
{
    if (!messageId) {
        m_withoutId.append(std::move(record));
        return;
    }
    const auto length = static_cast<qsizetype>(messageId->size());
    const auto known = m_placeOfId.constFind(QByteArray::fromRawData(messageId->data(), length));
    if (known != m_placeOfId.cend()) {
        m_withId[*known] = std::move(record);
        return;
    }
    m_placeOfId.insert(QByteArray(messageId->data(), length), m_withId.size());
    m_withId.append(std::move(record));
}

QString SessionBuilder::shared(std::string_view model)
{
    const QUtf8StringView name(model.data(), static_cast<qsizetype>(model.size()));
    const auto known =
        std::find_if(m_models.cbegin(), m_models.cend(),
                     [name](const QString &other) { return QAnyStringView::equal(other, name); });
    if (known != m_models.cend())
        return *known;
    m_models.append(name.toString());
    return m_models.constLast();
}
