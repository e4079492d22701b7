// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

/// An absolute instant to the millisecond, which is as fine as the logs write them.
using TimePoint = std::chrono::sys_time<std::chrono::milliseconds>;

/// The present instant.
inline TimePoint currentTime()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}
