// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "corpus/Random.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corpus {

/// Text of the kind that agents and tools write, ready to stand inside a JSON string: words and
/// lines of code with the usual escapes, and some of it beyond ASCII. It is written once, and
/// taken in pieces from then on, which makes a gigabyte of it cheap.
class TextPool {
public:
    /// `cjkPercent` of the bytes are Chinese or Japanese text.
    TextPool(std::uint64_t seed, unsigned cjkPercent);

    /// Appends about `bytes` bytes, cut between two words, and never more.
    void append(std::string &to, std::uint64_t bytes, Random &random) const;

private:
    void addLine(Random &random);
    void addCjkLine(Random &random);
    void addWord(Random &random);

    std::string m_text;
    std::vector<std::uint32_t> m_cuts; // where a piece may begin or end
};

} // namespace corpus
