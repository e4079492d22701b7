// SPDX-License-Identifier: GPL-3.0-or-later
#include "corpus/TextPool.h"

#include <algorithm>
#include <string_view>

namespace corpus {

namespace {

constexpr size_t poolBytes = size_t(2) << 20;

constexpr std::array<std::string_view, 48> words{
    "the",      "file",       "return",  "const",   "if",        "error",    "value",   "for",
    "and",      "of",         "to",      "is",      "in",        "test",     "that",    "function",
    "import",   "request",    "session", "string",  "this",      "a",        "with",    "nil",
    "context",  "=",          "{",       "}",       "!=",        "->",       "==",      "//",
    "output",   "directory",  "config",  "struct",  "commit",    "branch",   "update",  "checks",
    "handler(", "ctx.Done()", "err",     "len(xs)", "TestRound", "src/main", "fmt.Fpr", "v2.1.4"};

/// Rare pieces, already escaped: what a reader has to unescape, and what takes several bytes.
constexpr std::array<std::string_view, 20> odd{"\\u00e9t\\u00e9",
                                               "\\u001b[32mok\\u001b[0m",
                                               "\\ud83d\\ude80",
                                               "C:\\\\src\\\\app",
                                               "\\/",
                                               "\\b\\f",
                                               "\\r",
                                               "caf\xc3\xa9",
                                               "na\xc3\xafve",
                                               "\xe2\x86\x92",
                                               "\xe2\x9c\x93",
                                               "\xe2\x80\x94",
                                               "\xe2\x94\x82",
                                               "\xe2\x94\x80\xe2\x94\x80\xe2\x94\x80\xe2\x94\x80",
                                               "\xf0\x9f\x9a\x80",
                                               "\xe2\x80\xa6",
                                               "\xe2\x9c\x85",
                                               "\xe2\x80\xa2",
                                               "\xe2\x94\x9c\xe2\x94\x80\xe2\x94\x80",
                                               "\xc2\xb7"};

void appendUtf8(std::string &to, std::uint32_t codePoint)
{
    to += static_cast<char>(0xe0u | (codePoint >> 12));
    to += static_cast<char>(0x80u | ((codePoint >> 6) & 0x3fu));
    to += static_cast<char>(0x80u | (codePoint & 0x3fu));
}

} // namespace

TextPool::TextPool(std::uint64_t seed, unsigned cjkPercent)
{
    Random random(seed);
    m_text.reserve(poolBytes + 1024);
    size_t cjkBytes = 0;
    while (m_text.size() < poolBytes) {
        const size_t before = m_text.size();
        if (cjkBytes * 100 < before * cjkPercent || (before == 0 && cjkPercent > 0)) {
            addCjkLine(random);
            cjkBytes += m_text.size() - before;
        } else {
            addLine(random);
        }
    }
    m_cuts.push_back(static_cast<std::uint32_t>(m_text.size()));
}

void TextPool::append(std::string &to, std::uint64_t bytes, Random &random) const
{
    while (bytes > 0) {
        const size_t first = random.below(m_cuts.size() - 1);
        const std::uint64_t begin = m_cuts[first];
        const auto behind = std::upper_bound(m_cuts.begin() + static_cast<std::ptrdiff_t>(first),
                                             m_cuts.end(), begin + bytes);
        const std::uint64_t length = *(behind - 1) - begin;
        to.append(m_text, begin, length);
        bytes -= length;
        // What is left is either the rest of a text longer than the pool's end, or less than a
        // word.
        if (behind != m_cuts.end())
            return;
    }
}

void TextPool::addLine(Random &random)
{
    const std::uint64_t tabs = random.below(4);
    for (std::uint64_t i = 0; i < tabs; ++i)
        m_text += random.permille(300) ? "\\t" : "  ";
    const std::uint64_t count = random.between(1, 13);
    for (std::uint64_t i = 0; i < count; ++i)
        addWord(random);
    m_text += "\\n";
}

void TextPool::addWord(Random &random)
{
    m_cuts.push_back(static_cast<std::uint32_t>(m_text.size()));
    const bool quoted = random.permille(18);
    if (quoted)
        m_text += "\\\"";
    m_text += random.permille(22) ? random.oneOf(odd) : random.oneOf(words);
    m_text += quoted ? "\\\" " : " ";
}

void TextPool::addCjkLine(Random &random)
{
    constexpr std::uint32_t ideographicFullStop = 0x3002;
    const std::uint64_t count = random.between(4, 40);
    for (std::uint64_t i = 0; i < count; ++i) {
        m_cuts.push_back(static_cast<std::uint32_t>(m_text.size()));
        const bool kana = random.permille(250);
        appendUtf8(m_text, static_cast<std::uint32_t>(kana ? random.between(0x3041, 0x3096)
                                                           : random.between(0x4e00, 0x9fa5)));
    }
    appendUtf8(m_text, ideographicFullStop);
    m_text += "\\n";
}

} // namespace corpus
