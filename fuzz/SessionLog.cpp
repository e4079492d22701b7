// SPDX-License-Identifier: GPL-3.0-or-later
// A session is the same however its log is cut into chunks or parts and whatever the reader has
// read before, and it is what the slow reader finds.

#include "MemoryFile.h"
#include "SlowReader.h"
#include "Target.h"
#include "model/SessionParser.h"
#include "support/Describe.h"
#include "support/LogLines.h"

#include <QRandomGenerator>

#include <algorithm>
#include <vector>

namespace {

const TimePoint now = TimePoint(std::chrono::hours(500'000));

/// A line with the result of a tool, long enough that the reader tries not to read it.
QByteArray toolLine(const QByteArray &time, const QByteArray &content,
                    const QByteArray &end = "\"}")
{
    return R"({"type":"user","message":{"role":"user","content":)" + content +
           R"(},"timestamp":")" + time + R"(","toolUseResult":")" + QByteArray(2'100, 'x') + end;
}

bool hasRepeatedKey(const simdjson::dom::object &object);

bool hasRepeatedKey(simdjson::dom::element element)
{
    simdjson::dom::object object;
    if (element.get(object) == simdjson::SUCCESS)
        return hasRepeatedKey(object);
    simdjson::dom::array array;
    if (element.get(array) != simdjson::SUCCESS)
        return false;
    return std::any_of(array.begin(), array.end(),
                       [](simdjson::dom::element item) { return hasRepeatedKey(item); });
}

bool hasRepeatedKey(const simdjson::dom::object &object)
{
    std::vector<std::string_view> keys;
    for (const auto &field : object) {
        if (hasRepeatedKey(field.value))
            return true;
        keys.push_back(field.key);
    }
    std::sort(keys.begin(), keys.end());
    return std::adjacent_find(keys.begin(), keys.end()) != keys.end();
}

/// What an object means that has a key twice, JSON leaves open, and the reader may take either
/// value of a line that it reads in part.
bool isAmbiguous(const QByteArray &log)
{
    const QByteArrayList lines = log.split('\n');
    static JsonLineParser json;
    return std::any_of(lines.cbegin(), lines.cend(), [](const QByteArray &line) {
        if (!line.contains("toolUseResult"))
            return false;
        if (line.count('[') + line.count('{') > 400)
            return true; // too deep to be looked through here
        const QByteArray padded = line + QByteArray(LineReader::padding, ' ');
        const auto object = json.object({padded.constData(), size_t(line.size())});
        return object && hasRepeatedKey(*object);
    });
}

/// A reader with one of several sizes of chunks. It has read all inputs before, which must not
/// matter; and to make one for each input would take longer than to read that.
SessionReader &readerOf(QRandomGenerator &random)
{
    static SessionReader readers[] = {SessionReader(1),     SessionReader(3),
                                      SessionReader(16),    SessionReader(200),
                                      SessionReader(1'000), SessionReader(4'096)};
    return readers[random.bounded(int(std::size(readers)))];
}

QString inParts(const MemoryFile &file, std::vector<qint64> cuts, SessionReader &reader,
                const QString &id)
{
    cuts.insert(cuts.end(), {0, std::numeric_limits<qint64>::max()});
    std::sort(cuts.begin(), cuts.end());
    SessionBuilder session(now);
    for (size_t i = 1; i < cuts.size(); ++i) {
        auto part = reader.readPart(file.descriptor(), cuts[i - 1], cuts[i], now);
        holds(part.has_value(), "every part can be read");
        session.append(std::move(*part));
    }
    return describe(session.finish(id));
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    const MemoryFile file(input);
    static SessionReader usual;
    const QString whole = describe(usual.read(file.path(), now));
    same(describe(usual.read(file.path(), now)), whole, "a reader can be used again");

    QRandomGenerator random(qChecksum(input));
    for (int i = 0; i < 2; ++i) {
        const auto inChunks = readerOf(random).read(file.path(), now);
        same(describe(inChunks), whole, "chunks do not matter");
    }
    if (isAmbiguous(input))
        return;
    const QString id = QString::fromStdString(std::filesystem::path(file.path()).stem().string());
    std::vector<qint64> cuts;
    for (int i = random.bounded(1, 5); i > 0; --i)
        cuts.push_back(random.bounded(int(input.size()) + 1));
    same(inParts(file, cuts, readerOf(random), id), whole, "parts do not matter");

    bool sure = true;
    const auto slowly = SlowReader::session(input, id, now, sure);
    if (sure)
        same(whole, describe(slowly), "reading slowly gives the same");
}

QByteArrayList seeds()
{
    using namespace LogLines;
    const QString noon = QStringLiteral("2025-01-01T12:00:00.000Z");
    const QString later = QStringLiteral("2025-01-01T14:30:00+01:00");
    const QString a = QStringLiteral("a");
    const QString opus = QStringLiteral("opus");
    const QByteArray result = R"([{"type":"tool_result","content":"x"}])";
    const QByteArray first = user(noon, QStringLiteral("a prompt"), QStringLiteral("/home/x"));
    return {log({first}),
            log({first, assistant(later, opus, {1, 2, 3, 4}, a),
                 assistant(later, opus, {10, 20, 30, 40}, a)}),
            log({assistant({}, opus, {1, 2, 3, 4}), assistant({}, a, {5, 6, 7, 8}, a), first,
                 assistant({}, opus, {1, 2, 3, 4})}),
            log({user(later, QStringLiteral("<command-name>")), first,
                 user(later, QStringLiteral("Caveat: no"))}),
            log({first, toolLine("2025-01-01T11:00:00.000Z", result),
                 toolLine("2025-01-01T13:00:00.000Z", result),
                 toolLine("2025-01-01T14:00:00.000Z", result, ""),
                 toolLine("2025-01-01T12:30:00.000Z", R"([{"type":"text","text":"said"}])")}),
            first + "\r\n\n" + first.chopped(20) + first + "\n" + QByteArray(20, '\0') + "\n" +
                R"({"isMeta":true,"type":"user","message":{"content":"x"}})",
            R"({"type":"assistant","message":{"id":"\ud83d","model":"\ude00é","usage":)"
            R"({"input_tokens":100.0,"output_tokens":1e400,"cache_read_input_tokens":-1.5}},)"
            R"("timestamp":"2025-01-01T12:00:00.5Z"})"};
}

QByteArrayList words()
{
    return {"\"type\":",
            "\"user\"",
            "\"assistant\"",
            "\"message\":{",
            "\"content\":",
            "\"isMeta\":true",
            "\"timestamp\":\"2025-01-01T12:00:00.000Z\"",
            "\"2024-02-29T23:59:59+14:00\"",
            "\"toolUseResult\":",
            ",\"toolUseResult\":\"" + QByteArray(50, 'x'),
            "[{\"type\":\"tool_result\"}]",
            "{\"type\":\"text\",\"text\":\"x\"}",
            "\"usage\":{",
            "\"input_tokens\":",
            "\"output_tokens\":1e3",
            "\"cache_creation_input_tokens\":",
            "\"cache_read_input_tokens\":7",
            "\"model\":\"m\"",
            "\"id\":\"i\"",
            "\\ud83d",
            "\\u0000",
            "1e400",
            "18446744073709551616",
            "null",
            "\n",
            "\r\n",
            "}}\n{",
            "\xc3\xa9",
            "<command-",
            "Caveat:"};
}

} // namespace Target
