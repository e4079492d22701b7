// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "corpus/Corpus.h"
#include "corpus/Random.h"
#include "corpus/TextPool.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace corpus {

/// One log to write.
struct LogPlan {
    std::filesystem::path file;
    std::string folder; ///< the working folder that its lines name
    std::string session;
    std::uint64_t seed = 0;
    std::uint64_t bytes = 0;
    std::int64_t start = 0; ///< milliseconds since 1970
    std::uint64_t longestLine = 0;
    bool hasLongestLine = false;
};

/// Writes one log: turn after turn, each with the prompt, the messages of the assistant, the
/// results of its tools, and what else is logged beside them.
class SessionWriter {
public:
    SessionWriter(const LogPlan &plan, const TextPool &text);

    /// Writes the file and says what it holds.
    Truth write();

private:
    struct Usage;

    // lines
    void addTurn();
    void addPrompt();
    void addCommandTrace();
    void addMessage();
    void addAssistantLine(std::string_view id, const Usage &usage, bool first, bool toolUse);
    void addToolResult(std::uint64_t resultBytes);
    void addAround();
    void addProgress();
    void addAgentProgress();
    void addSnapshot();
    void addAttachment();
    void addSystem();
    void addSmall();
    void addDamage();

    // parts of a line
    void beginLine();
    void addHead();
    void addTail();
    void addOrigin();
    void endObject();
    void addType(std::string_view type);
    void addUsage(const Usage &usage);
    void addContent(bool first, bool toolUse);
    void addResultValue(std::uint64_t bytes);
    void addEditResult(std::uint64_t bytes);
    void addListResult(std::uint64_t bytes);
    void addEscapedJson(std::uint64_t bytes);
    void endLine();

    // pieces of text
    void put(std::string_view text) { m_line += text; }
    void putNumber(std::uint64_t number);
    void putText(std::uint64_t bytes);
    void putUuid();
    void putBase64(std::uint64_t characters);
    void putTime();

    std::uint64_t resultSize();
    bool full() const { return m_truth.bytes + m_line.size() >= m_plan.bytes; }
    void flush(size_t atLeast);

    const LogPlan &m_plan;
    const TextPool &m_text;
    Random m_random;
    std::FILE *m_file = nullptr;
    std::string m_line;
    std::string m_pending; // whole lines that are not written yet
    std::string m_uuid;    // of the last line, which the next one names as its parent
    std::int64_t m_time;
    std::string_view m_model;
    bool m_newLayout; // whether addOrigin() comes last
    bool m_longestPending;
    std::uint64_t m_lineCount = 0;
    Truth m_truth;
};

} // namespace corpus
