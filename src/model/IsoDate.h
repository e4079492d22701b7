// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/TimePoint.h"

#include <optional>
#include <string_view>

namespace SessionParser {

/// An internet date-time (RFC 3339) with fractional seconds, such as 2025-01-02T03:04:05.678Z.
/// Digits beyond the millisecond are dropped. Nothing for any other text, which includes a date
/// that does not exist, an hour of 24, a second of 60, and lower-case letters.
std::optional<TimePoint> isoFrac(std::string_view text);

/// The same without fractional seconds, such as 2025-01-02T03:04:05+01:00.
std::optional<TimePoint> iso(std::string_view text);

} // namespace SessionParser
