// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/JsonLineParser.h"
#include "model/LineReader.h"
#include "model/Session.h"
#include "model/SessionBuilder.h"

#include <QString>

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

/// Reads session logs one after the other with the same buffers. One reader belongs to one thread.
class SessionReader {
public:
    explicit SessionReader(qint64 chunk = LineReader::defaultChunk) : m_lines(chunk) {}

    /// As SessionParser::parse(). Gives up with nothing as soon as `stop` is requested.
    std::optional<Session> read(const std::filesystem::path &file, TimePoint now,
                                const std::stop_token &stop = {});

    /// Reads a part of an open log: the lines whose first bytes lie in it. Nothing where read()
    /// would give nothing. What the parts give makes, appended in order, the session of the whole.
    std::optional<SessionBuilder> readPart(const FileDescriptor &log, qint64 begin, qint64 end,
                                           TimePoint now, const std::stop_token &stop = {});

private:
    /// A line that was passed over although it may be the latest.
    struct Latest {
        TimePoint date;
        qint64 position = 0;
        qint64 length = 0;
    };

    bool readLines(SessionBuilder &session, const std::stop_token &stop);
    std::optional<TimePoint> timeOfResult(simdjson::padded_string_view beginning);
    bool passOver(std::string_view line, const SessionBuilder &session);
    void readLatest(SessionBuilder &session);

    LineReader m_lines;
    JsonLineParser m_json;
    simdjson::ondemand::parser m_lazy; // for the beginnings of lines
    std::string m_beginning;
    std::vector<Latest> m_latest;
};

/// Session logs of Claude Code: text files with one JSON object per line.
namespace SessionParser {

/// The session in a log; nothing when the log cannot be read or holds no usable timestamp. A line
/// that is not a JSON object is skipped. `now` dates usage before any timestamp.
std::optional<Session> parse(const std::filesystem::path &file, TimePoint now = currentTime());

/// The working folder that a log names in its first 256 KiB; nothing when it names none there.
std::optional<QString> cwd(const std::filesystem::path &in);

} // namespace SessionParser
