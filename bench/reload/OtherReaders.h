// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Session.h"

#include <filesystem>
#include <vector>

/// What the reload is compared with. Both spread the logs over as many threads as the reload does,
/// the largest first.
namespace OtherReaders {

/// All logs below a folder that has one folder per project, the largest first.
std::vector<std::filesystem::path> logsBelow(const std::filesystem::path &projects);

/// Reads the files through a buffer of 256 KiB and does nothing with them. Returns their size.
std::uint64_t readPlainly(const std::vector<std::filesystem::path> &logs);

/// What the sessions of some logs add up to.
struct Sums {
    std::uint64_t sessions = 0;
    std::uint64_t turns = 0;
    std::uint64_t records = 0;
    std::uint64_t tokens = 0;

    bool operator==(const Sums &) const = default;
};

Sums sumsOf(const SessionMap &sessions);

/// Reads the sessions with QJsonDocument, line by line, taking from every line what the reload
/// takes from it.
Sums readWithQtJson(const std::vector<std::filesystem::path> &logs);

} // namespace OtherReaders
