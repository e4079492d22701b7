// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

/// Session logs that look like real ones to a reader. The same shape gives the same bytes on every
/// machine.
namespace corpus {

/// What to write. Sizes are in bytes.
struct Shape {
    std::uint64_t seed = 1;
    std::uint64_t bytes = 1'000'000'000; ///< of all logs together; met to within one line each
    std::uint64_t files = 800;           ///< number of logs
    std::uint64_t largest = 0;           ///< size of the largest log; 0 leaves it to chance
    std::uint64_t longestLine =
        1'200'000;           ///< no line is longer; the largest log has one of this size
    unsigned cjkPercent = 0; ///< share of the text that is Chinese or Japanese
};

/// What was written, and what a reader must find in it.
struct Truth {
    std::uint64_t bytes = 0;
    std::uint64_t lines = 0;
    std::uint64_t sessions = 0;
    std::uint64_t turns = 0;
    std::uint64_t records = 0;
    std::uint64_t tokens = 0; ///< of all four kinds, over all records

    bool operator==(const Truth &) const = default;
    Truth &operator+=(const Truth &other);
};

/// Writes the logs below `projects`, one folder for every project, on all cores. Throws
/// std::system_error or std::filesystem::filesystem_error when the disk refuses.
Truth write(const std::filesystem::path &projects, const Shape &shape);

} // namespace corpus
