// SPDX-License-Identifier: GPL-3.0-or-later
#include "corpus/SessionWriter.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <system_error>

namespace corpus {

struct SessionWriter::Usage {
    std::uint64_t input = 0;
    std::uint64_t output = 0;
    std::uint64_t cacheWrite = 0;
    std::uint64_t cacheRead = 0;

    std::uint64_t sum() const { return input + output + cacheWrite + cacheRead; }
};

namespace {

// The figures were chosen by comparison with real logs; README.md has the comparison.

constexpr std::array<Quantile, 9> resultSizes{{{0, 40},
                                               {200, 200},
                                               {400, 1200},
                                               {600, 4500},
                                               {800, 14'000},
                                               {900, 28'000},
                                               {960, 46'000},
                                               {990, 90'000},
                                               {1000, 300'000}}};
constexpr std::array<Quantile, 5> promptSizes{
    {{0, 5}, {500, 80}, {800, 400}, {970, 3000}, {1000, 12'000}}};
constexpr std::array<Quantile, 5> proseSizes{
    {{0, 20}, {500, 200}, {800, 480}, {970, 1300}, {1000, 5000}}};
constexpr std::array<Quantile, 5> toolInputSizes{
    {{0, 30}, {500, 150}, {800, 420}, {950, 2400}, {1000, 12'000}}};
/// On how many lines a message is logged, once for every block it gains.
constexpr std::array<Quantile, 7> linesPerMessage{
    {{0, 1}, {240, 1}, {740, 2}, {900, 3}, {960, 4}, {990, 7}, {1000, 18}}};

constexpr std::array<std::string_view, 4> models{
    "claude-opus-4-5-20251101", "claude-sonnet-4-5-20250929", "claude-haiku-4-5-20251001",
    "claude-opus-4-1-20250805"};
constexpr std::array<std::string_view, 5> tools{"Bash", "Read", "Edit", "Grep", "Write"};

constexpr std::string_view base64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr size_t letters = 62; // of base64, without the two signs
constexpr size_t pendingBytes = size_t(1) << 20;

/// Of a line without any text in it; what the texts of a line may take is reckoned from here.
constexpr std::uint64_t bareLine = 1100;

std::uint64_t linesFor(Random &random)
{
    // draw() rounds down between two points; a message has the upper one's number of lines there.
    const std::uint64_t place = random.below(1000);
    for (const Quantile &point : linesPerMessage) {
        if (place < point.permille)
            return point.value <= 4 ? point.value : random.between(5, point.value);
    }
    return linesPerMessage.back().value;
}

void appendPadded(std::string &to, unsigned number, size_t width)
{
    char digits[16];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    const auto length = static_cast<size_t>(end - digits);
    to.append(width > length ? width - length : 0, '0');
    to.append(digits, length);
}

} // namespace

SessionWriter::SessionWriter(const LogPlan &plan, const TextPool &text)
    : m_plan(plan)
    , m_text(text)
    , m_random(plan.seed)
    , m_time(plan.start)
    , m_model(m_random.oneOf(models))
    , m_newLayout(m_random.permille(330))
    , m_longestPending(plan.hasLongestLine)
{
}

Truth SessionWriter::write()
{
    m_file = std::fopen(m_plan.file.c_str(), "wb");
    if (!m_file)
        throw std::system_error(errno, std::generic_category(), m_plan.file.string());
    std::setvbuf(m_file, nullptr, _IONBF, 0);
    if (m_random.permille(100))
        addSmall();
    do
        addTurn();
    while (!full());
    // A third of the logs does not end with a line feed.
    if (m_random.permille(330) && !m_pending.empty()) {
        m_pending.pop_back();
        --m_truth.bytes;
    }
    flush(0);
    if (std::fclose(m_file) != 0)
        throw std::system_error(errno, std::generic_category(), m_plan.file.string());
    m_truth.sessions = 1;
    m_truth.lines = m_lineCount;
    return m_truth;
}

void SessionWriter::addTurn()
{
    if (m_random.permille(400))
        addSnapshot();
    if (m_random.permille(120))
        addCommandTrace();
    addPrompt();
    const std::uint64_t messages = m_random.between(2, 16);
    for (std::uint64_t i = 0; i < messages && !full(); ++i)
        addMessage();
}

void SessionWriter::addPrompt()
{
    beginLine();
    addHead();
    addType("user");
    const bool blocks = m_random.permille(250);
    put(blocks ? R"("message":{"role":"user","content":[{"type":"text","text":")"
               : R"("message":{"role":"user","content":")");
    put("Please look at ");
    putText(draw(promptSizes, m_random));
    put(blocks ? R"("}]},)" : R"("},)");
    addTail();
    put(R"(,"thinkingMetadata":{"level":"high","disabled":false,"triggers":[]},"todos":[])");
    endObject();
    ++m_truth.turns;
}

/// User lines that are no prompts: the agent's own commands, and what it tells itself.
void SessionWriter::addCommandTrace()
{
    beginLine();
    addHead();
    addType("user");
    const bool meta = m_random.permille(500);
    put(R"("message":{"role":"user","content":")");
    put(meta ? "Caveat: " : "<command-name>/compact</command-name>\\n");
    putText(120);
    put(meta ? R"("},"isMeta":true,)" : R"("},)");
    addTail();
    endObject();
}

void SessionWriter::addMessage()
{
    std::string id = "msg_01";
    for (int i = 0; i < 22; ++i)
        id += base64[m_random.below(letters)];
    Usage usage{.input = m_random.between(1, 12),
                .output = m_random.between(1, 8),
                .cacheWrite = m_random.between(0, 9000),
                .cacheRead = m_random.between(9000, 160'000)};
    const std::uint64_t lines = linesFor(m_random);
    const bool torn = lines > 1 && m_random.permille(120);
    const std::uint64_t interrupted = torn ? m_random.below(lines - 1) : lines;
    const bool usesTool = m_random.permille(920);
    for (std::uint64_t i = 0; i < lines; ++i) {
        if (i + 1 == lines)
            usage.output = m_random.between(60, 4000);
        addAssistantLine(id, usage, i == 0, usesTool && i + 1 == lines);
        if (i == interrupted)
            addProgress();
    }
    ++m_truth.records;
    m_truth.tokens += usage.sum();
    const std::uint64_t results = usesTool ? m_random.permille(300) ? 2 : 1 : 0;
    for (std::uint64_t i = 0; i < results; ++i)
        addToolResult(resultSize());
    addAround();
}

/// What stands between the messages.
void SessionWriter::addAround()
{
    if (m_random.permille(350))
        addProgress();
    if (m_random.permille(60))
        addAgentProgress();
    if (m_random.permille(300))
        addSnapshot();
    if (m_random.permille(150))
        addAttachment();
    if (m_random.permille(150))
        addSystem();
    if (m_random.permille(150))
        addSmall();
    if (m_random.permille(2))
        addDamage();
}

void SessionWriter::addAssistantLine(std::string_view id, const Usage &usage, bool first,
                                     bool toolUse)
{
    beginLine();
    addHead();
    put(R"("message":{"model":")");
    put(m_model);
    put(R"(","id":")");
    put(id);
    put(R"(","type":"message","role":"assistant","content":[)");
    addContent(first, toolUse);
    put(R"(],"stop_reason":null,"stop_sequence":null,)");
    addUsage(usage);
    put(R"(},"requestId":"req_011C)");
    putBase64(20);
    put(R"(",)");
    addType("assistant");
    addTail();
    endObject();
}

void SessionWriter::addContent(bool first, bool toolUse)
{
    if (first && !toolUse && m_random.permille(600)) {
        put(R"({"type":"thinking","thinking":")");
        putText(draw(proseSizes, m_random));
        put(R"(","signature":")");
        putBase64(std::min<std::uint64_t>(m_random.between(300, 1000), m_plan.longestLine / 8));
        put(R"("})");
    } else if (toolUse) {
        put(R"({"type":"tool_use","id":"toolu_01)");
        putBase64(22);
        put(R"(","name":")");
        put(m_random.oneOf(tools));
        put(R"(","input":{"command":")");
        putText(draw(toolInputSizes, m_random));
        put(R"(","description":")");
        putText(60);
        put(R"("}})");
    } else {
        put(R"({"type":"text","text":")");
        putText(draw(proseSizes, m_random));
        put(R"("})");
    }
}

void SessionWriter::addUsage(const Usage &usage)
{
    put(R"("usage":{"input_tokens":)");
    putNumber(usage.input);
    put(R"(,"cache_creation_input_tokens":)");
    putNumber(usage.cacheWrite);
    put(R"(,"cache_read_input_tokens":)");
    putNumber(usage.cacheRead);
    put(R"(,"cache_creation":{"ephemeral_5m_input_tokens":)");
    putNumber(usage.cacheWrite);
    put(R"(,"ephemeral_1h_input_tokens":0},"output_tokens":)");
    putNumber(usage.output);
    put(R"(,"service_tier":"standard"})");
}

void SessionWriter::addToolResult(std::uint64_t resultBytes)
{
    beginLine();
    addHead();
    addType("user");
    put(R"("message":{"role":"user","content":[{"tool_use_id":"toolu_01)");
    putBase64(22);
    put(R"(","type":"tool_result","content":")");
    // The model is shown less than what is kept of the result.
    putText(std::min<std::uint64_t>({resultBytes / 6, 3000, m_plan.longestLine / 8}));
    put(R"("}]},)");
    addTail();
    put(R"(,"toolUseResult":)");
    const std::uint64_t taken = m_line.size() + 400; // and what stands behind the result
    const std::uint64_t room = m_plan.longestLine > taken ? m_plan.longestLine - taken : 0;
    addResultValue(std::min(resultBytes, room));
    put(R"(,"sourceToolAssistantUUID":")");
    putUuid();
    put("\"");
    endObject();
}

std::uint64_t SessionWriter::resultSize()
{
    if (m_longestPending && m_truth.bytes > m_plan.bytes / 4) {
        m_longestPending = false;
        return m_plan.longestLine;
    }
    const std::uint64_t left = m_plan.bytes - std::min(m_plan.bytes, m_truth.bytes);
    std::uint64_t size = draw(resultSizes, m_random);
    // Every thousandth is far out, as long as the rest of the log has room for it.
    if (m_random.permille(1))
        size = m_random.between(size, std::max(size, m_plan.longestLine));
    return std::min(size, left);
}

void SessionWriter::addResultValue(std::uint64_t bytes)
{
    const std::uint64_t frame = 300;
    const std::uint64_t text = bytes > frame ? bytes - frame : bytes / 4;
    const std::uint64_t kind = m_random.below(100);
    if (kind < 30) {
        put(R"({"stdout":")");
        putText(text);
        put(R"(","stderr":"","interrupted":false,"isImage":false,"noOutputExpected":false})");
    } else if (kind < 55) {
        put(R"({"type":"text","file":{"filePath":")");
        put(m_plan.folder);
        put(R"(/src/main.go","content":")");
        putText(text);
        put(R"(","numLines":210,"startLine":1,"totalLines":210}})");
    } else if (kind < 80) {
        addEditResult(text);
    } else if (kind < 85) {
        addListResult(text);
    } else if (kind < 90) {
        addEscapedJson(text);
    } else {
        put(R"("Error: )");
        putText(text);
        put("\"");
    }
}

/// The result of an edit: the file as it was, and the patch line by line.
void SessionWriter::addEditResult(std::uint64_t bytes)
{
    put(R"({"filePath":")");
    put(m_plan.folder);
    put(R"(/src/main.go","oldString":")");
    putText(bytes / 20);
    put(R"(","newString":")");
    putText(bytes / 20);
    put(R"(","originalFile":")");
    putText(bytes * 3 / 4);
    put(R"(","structuredPatch":[{"oldStart":436,"oldLines":6,"newStart":436,"newLines":7,"lines":[)");
    const std::uint64_t end = m_line.size() + bytes / 9;
    put("\" func main() {\"");
    while (m_line.size() + 80 < end) {
        put(m_random.permille(500) ? R"(,"+ )" : R"(,"- )");
        putText(m_random.between(10, 70));
        put("\"");
    }
    put(R"(]}],"userModified":false,"replaceAll":false})");
}

/// The result of a search or a list of tasks: many small values. Some carry keys that count
/// elsewhere: "type", "timestamp", "usage".
void SessionWriter::addListResult(std::uint64_t bytes)
{
    put(R"({"status":"completed","type":"assistant","timestamp":"2020-01-01T00:00:00.000Z","usage":)"
        R"({"input_tokens":7,"output_tokens":9},"totalDurationMs":8123.25,"items":[)");
    const std::uint64_t end = m_line.size() + bytes;
    put(R"({"content":"first","status":"pending"})");
    while (m_line.size() + 200 < end) {
        put(R"(,{"content":")");
        putText(m_random.between(20, 90));
        put(R"(","status":"pending","line":)");
        putNumber(m_random.below(2000));
        put("}");
    }
    put("]}");
}

/// A tool that answers in JSON, which then stands in a string with every quote escaped.
void SessionWriter::addEscapedJson(std::uint64_t bytes)
{
    const std::uint64_t end = m_line.size() + bytes;
    put(R"([{"type":"text","text":"{\"items\":[0)");
    while (m_line.size() + 130 < end) {
        put(R"(,{\"id\":)");
        putNumber(m_random.below(100'000));
        put(R"(,\"title\":\")");
        putBase64(m_random.between(8, 50));
        put(R"(\",\"open\":true})");
    }
    put(R"(]}"}])");
}

void SessionWriter::addProgress()
{
    beginLine();
    addHead();
    addType("progress");
    put(R"("data":{"type":"hook_progress","hookEvent":"PostToolUse","hookName":"PostToolUse:Bash",)"
        R"("command":"callback"},"parentToolUseID":"toolu_01)");
    putBase64(22);
    put(R"(","toolUseID":"toolu_01)");
    putBase64(22);
    put(R"(",)");
    addTail();
    endObject();
}

/// A sub-agent's message inside a progress line: nine levels deep, with counts that are not ours.
void SessionWriter::addAgentProgress()
{
    beginLine();
    addHead();
    addType("progress");
    put(R"("data":{"type":"agent_progress","message":{"type":"assistant","timestamp":")");
    putTime();
    put(R"(","message":{"role":"assistant","id":"msg_sub","usage":{"input_tokens":5,)"
        R"("output_tokens":6},"content":[{"type":"tool_use","input":{"todos":[{"text":")");
    putText(draw(proseSizes, m_random));
    put(R"("}]}}]}}},)");
    addTail();
    endObject();
}

void SessionWriter::addSnapshot()
{
    beginLine();
    put(R"("type":"file-history-snapshot","messageId":")");
    putUuid();
    put(R"(","snapshot":{"messageId":")");
    putUuid();
    put(R"(","trackedFileBackups":{)");
    const std::uint64_t files = m_random.permille(300) ? m_random.between(1, 8) : 0;
    for (std::uint64_t i = 0; i < files; ++i) {
        put(i > 0 ? R"(,"src/part)" : R"("src/part)");
        putNumber(i);
        put(R"(.go":{"backupFileName":")");
        putBase64(16);
        put(R"(@v1","version":1,"backupTime":")");
        putTime();
        put(R"("})");
    }
    put(R"(},"timestamp":")");
    putTime();
    put(R"("},"isSnapshotUpdate":false})");
    endLine();
}

void SessionWriter::addAttachment()
{
    beginLine();
    addHead();
    put(R"("attachment":{"type":"hook_success","hookName":"SessionStart","content":"","stdout":")");
    putText(draw(promptSizes, m_random));
    put(R"(","stderr":"","exitCode":0,"durationMs":68},)");
    addType("attachment");
    addTail();
    endObject();
}

void SessionWriter::addSystem()
{
    beginLine();
    addHead();
    addType("system");
    put(R"("subtype":"stop_hook_summary","hookCount":1,"hookInfos":[{"command":"entry"}],)"
        R"("hookErrors":[],"preventedContinuation":false,"stopReason":"","hasOutput":false,)"
        R"("level":"suggestion",)");
    addTail();
    endObject();
}

/// The short lines without a time.
void SessionWriter::addSmall()
{
    beginLine();
    if (m_random.permille(400)) {
        put(R"("type":"summary","summary":")");
        putText(60);
        put(R"(","leafUuid":")");
        putUuid();
    } else {
        put(R"("type":"permission-mode","permissionMode":"default","sessionId":")");
        put(m_plan.session);
    }
    put(R"("})");
    endLine();
}

/// Lines as crashes and careless tools leave them. None of them holds anything that counts.
void SessionWriter::addDamage()
{
    switch (m_random.below(5)) {
    case 0: // a cut record with the next one behind it
        put(R"({"parentUuid":"12","isSid{"type":"summary","summary":"x"})");
        break;
    case 1:
        put(R"({"type":"summary","summary":"x"}{"type":"summary","summary":"y"})");
        break;
    case 2:
        m_line.append(512, '\0');
        break;
    case 3: // JSON, though some parsers refuse it
        put(R"({"type":"summary","summary":"cut in half \ud83d"})");
        break;
    default:
        put(R"({"type":"summary","summary":"x","id":1234567890123456789012345678901234567890})");
    }
    endLine();
}

void SessionWriter::beginLine()
{
    m_line += '{';
    m_time += static_cast<std::int64_t>(m_random.between(20, 9000));
}

/// The fields that stand in front of a line's own.
void SessionWriter::addHead()
{
    put(R"("parentUuid":")");
    put(m_uuid.empty() ? "root" : std::string_view(m_uuid));
    put(R"(","isSidechain":false,)");
    if (!m_newLayout) {
        addOrigin();
        put(",");
    }
}

/// The fields that stand behind a line's own.
void SessionWriter::addTail()
{
    put(R"("uuid":")");
    const size_t uuidAt = m_line.size();
    putUuid();
    m_uuid.assign(m_line, uuidAt);
    put(R"(","timestamp":")");
    putTime();
    put("\"");
}

/// Where a line was written. Newer versions put this last.
void SessionWriter::addOrigin()
{
    put(R"("userType":"external","cwd":")");
    put(m_plan.folder);
    put(R"(","sessionId":")");
    put(m_plan.session);
    put(R"(","version":"2.1.12","gitBranch":"main","slug":"quiet-brown-fox")");
}

/// Ends a line that began with addHead().
void SessionWriter::endObject()
{
    if (m_newLayout) {
        put(",");
        addOrigin();
    }
    put("}");
    endLine();
}

void SessionWriter::addType(std::string_view type)
{
    put(R"("type":")");
    put(type);
    put(R"(",)");
}

void SessionWriter::endLine()
{
    m_line += '\n';
    m_truth.bytes += m_line.size();
    ++m_lineCount;
    m_pending += m_line;
    m_line.clear();
    flush(pendingBytes);
}

void SessionWriter::flush(size_t atLeast)
{
    if (m_pending.size() < atLeast)
        return;
    // The last byte stays: it may yet turn out to be the line feed that this log lacks.
    const size_t length = atLeast > 0 ? m_pending.size() - 1 : m_pending.size();
    if (std::fwrite(m_pending.data(), 1, length, m_file) != length)
        throw std::system_error(errno, std::generic_category(), m_plan.file.string());
    m_pending.erase(0, length);
}

void SessionWriter::putNumber(std::uint64_t number)
{
    char digits[24];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    m_line.append(digits, static_cast<size_t>(end - digits));
}

void SessionWriter::putText(std::uint64_t bytes)
{
    const std::uint64_t taken = m_line.size() + bareLine;
    const std::uint64_t room = m_plan.longestLine > taken ? m_plan.longestLine - taken : 0;
    m_text.append(m_line, std::min(bytes, room), m_random);
}

void SessionWriter::putUuid()
{
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    std::uint64_t bits = 0;
    for (int i = 0; i < 32; ++i) {
        if (i % 16 == 0)
            bits = m_random.next();
        if (i == 8 || i == 12 || i == 16 || i == 20)
            m_line += '-';
        m_line += hexadecimal[bits & 15];
        bits >>= 4;
    }
}

void SessionWriter::putBase64(std::uint64_t characters)
{
    std::uint64_t bits = 0;
    for (std::uint64_t i = 0; i < characters; ++i) {
        if (i % 10 == 0)
            bits = m_random.next();
        m_line += base64[bits & 63];
        bits >>= 6;
    }
}

void SessionWriter::putTime()
{
    const std::chrono::sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds(m_time)};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    appendPadded(m_line, static_cast<unsigned>(static_cast<int>(date.year())), 4);
    m_line += '-';
    appendPadded(m_line, static_cast<unsigned>(date.month()), 2);
    m_line += '-';
    appendPadded(m_line, static_cast<unsigned>(date.day()), 2);
    m_line += 'T';
    appendPadded(m_line, static_cast<unsigned>(clock.hours().count()), 2);
    m_line += ':';
    appendPadded(m_line, static_cast<unsigned>(clock.minutes().count()), 2);
    m_line += ':';
    appendPadded(m_line, static_cast<unsigned>(clock.seconds().count()), 2);
    m_line += '.';
    appendPadded(m_line, static_cast<unsigned>(clock.subseconds().count()), 3);
    m_line += 'Z';
}

} // namespace corpus
