// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionParser.h"

#include "model/JsonFields.h"
#include "model/SessionBuilder.h"

static_assert(LineReader::padding >= simdjson::SIMDJSON_PADDING);

std::optional<Session> SessionReader::read(const std::filesystem::path &file, TimePoint now,
                                           const std::stop_token &stop)
{
    if (!m_lines.open(file.c_str()))
        return std::nullopt;
    SessionBuilder session(now);
    while (const auto line = m_lines.next()) {
        if (stop.stop_requested())
            return std::nullopt;
        if (const auto object = m_json.object(*line))
            session.add(*object);
    }
    if (m_lines.failed())
        return std::nullopt;
    return session.finish(QString::fromStdString(file.stem().string()));
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
