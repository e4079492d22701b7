// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionParser.h"

#include "model/IsoDate.h"
#include "model/JsonFields.h"

#include <algorithm>
#include <cstring>

namespace {

/// A shorter line (in bytes) is read sooner than it is looked at.
constexpr size_t worthPassingOver = 2048;
/// Lines that may be the latest are read again from the file, so they must stay few.
constexpr size_t mostLatest = 64;

} // namespace

static_assert(LineReader::padding >= simdjson::SIMDJSON_PADDING);

std::optional<Session> SessionReader::read(const std::filesystem::path &file, TimePoint now,
                                           const std::stop_token &stop)
{
    SessionBuilder session(now);
    if (!m_lines.open(file.c_str()) || !readLines(session, stop))
        return std::nullopt;
    return session.finish(QString::fromStdString(file.stem().string()));
}

std::optional<SessionBuilder> SessionReader::readPart(const FileDescriptor &log, qint64 begin,
                                                      qint64 end, TimePoint now,
                                                      const std::stop_token &stop)
{
    SessionBuilder session(now);
    m_lines.open(log, begin, end);
    if (!readLines(session, stop))
        return std::nullopt;
    return session;
}

/// Takes all lines. False when reading failed or was stopped.
bool SessionReader::readLines(SessionBuilder &session, const std::stop_token &stop)
{
    m_latest.clear();
    while (const auto line = m_lines.next()) {
        if (stop.stop_requested())
            return false;
        if (passOver(*line, session))
            continue;
        if (const auto object = m_json.object(*line))
            session.add(*object);
    }
    readLatest(session);
    return !m_lines.failed();
}

/// The time of a line with the result of a tool, of which only the beginning is known. Nothing when
/// it may count for more than its time. Read lazily: whether the line is JSON need not be known.
std::optional<TimePoint> SessionReader::timeOfResult(simdjson::padded_string_view beginning)
{
    namespace ondemand = simdjson::ondemand;
    std::optional<TimePoint> date;
    bool isUser = false;
    bool isResult = false;
    const auto take = [&](ondemand::field field) -> simdjson::error_code {
        std::string_view key;
        SIMDJSON_TRY(field.unescaped_key().get(key));
        std::string_view text;
        if (key == "type") {
            SIMDJSON_TRY(field.value().get_string().get(text));
            isUser = text == "user";
        } else if (key == "timestamp") {
            SIMDJSON_TRY(field.value().get_string().get(text));
            date = SessionParser::isoFrac(text);
        } else if (key == "message") {
            ondemand::array content;
            SIMDJSON_TRY(field.value()["content"].get_array().get(content));
            isResult = false;
            for (auto item : content) {
                SIMDJSON_TRY(item["type"].get_string().get(text));
                isResult = isResult || text == "tool_result";
            }
        }
        return simdjson::SUCCESS;
    };
    ondemand::document document;
    ondemand::object object;
    if (m_lazy.iterate(beginning).get(document) || document.get_object().get(object))
        return std::nullopt;
    for (auto field : object) {
        ondemand::field known;
        if (std::move(field).get(known) || take(std::move(known)))
            return std::nullopt;
    }
    return isUser && isResult ? date : std::nullopt;
}

/// Whether the rest of a line can stay unread. Most bytes of a log are results of tools, and a line
/// with such a result counts for its time only: for nothing, valid or not, when that lies between
/// the times of lines that have been read. If it lies behind them, readLatest() returns to it.
/// (A key written a second time behind the result is not seen. No JSON writer makes one.)
bool SessionReader::passOver(std::string_view line, const SessionBuilder &session)
{
    // An unescaped quote behind a comma is never inside a text; and if this were a key of an inner
    // object, the part before it would not be JSON when it is closed with a single brace.
    constexpr std::string_view result = ",\"toolUseResult\":";
    if (line.size() < worthPassingOver)
        return false;
    const void *found = ::memmem(line.data(), line.size(), result.data(), result.size());
    if (!found)
        return false;
    const auto length = static_cast<size_t>(static_cast<const char *>(found) - line.data());
    m_beginning.assign(line, 0, length);
    m_beginning += '}';
    m_beginning.append(LineReader::padding, ' ');
    const auto date = timeOfResult(
        simdjson::padded_string_view(m_beginning.data(), length + 1, m_beginning.size()));
    if (!date || !session.start() || *date < *session.start())
        return false;
    if (*date <= *session.end())
        return true;
    std::erase_if(m_latest, [&](const Latest &other) { return other.date <= *session.end(); });
    if (m_latest.size() == mostLatest)
        return false;
    m_latest.push_back({*date, m_lines.position(), static_cast<qint64>(line.size())});
    return true;
}

/// Reads those of the lines passed over that turned out to be later than all others, until one is
/// right.
void SessionReader::readLatest(SessionBuilder &session)
{
    std::sort(m_latest.begin(), m_latest.end(),
              [](const Latest &a, const Latest &b) { return a.date > b.date; });
    for (const Latest &latest : m_latest) {
        if (m_lines.failed() || latest.date <= *session.end())
            return;
        m_lines.goTo(latest.position, latest.length);
        const auto line = m_lines.next();
        const auto object = line ? m_json.object(*line) : std::nullopt;
        if (object)
            session.add(*object);
    }
}

namespace SessionParser {

std::optional<Session> parse(const std::filesystem::path &file, TimePoint now)
{
    return SessionReader().read(file, now);
}

std::optional<QString> cwd(const std::filesystem::path &in)
{
    constexpr qint64 head = 262'144;
    // The folder stands in one of the first lines as a rule: small chunks save reading the rest.
    constexpr qint64 chunk = 16'384;
    LineReader lines(chunk);
    if (!lines.open(in.c_str(), head))
        return std::nullopt;
    JsonLineParser json;
    while (const auto line = lines.next()) {
        const auto object = json.object(*line);
        if (!object)
            continue;
        const JsonFields<1> fields(*object, {"cwd"});
        if (const auto folder = jsonAs<std::string_view>(fields[0]))
            return toQString(*folder);
    }
    return std::nullopt;
}

} // namespace SessionParser
