// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Unified diffs of known size, as git would print them.
namespace SampleDiffs {

/// What the lines are made of.
enum class Script { Latin, Ideographs, Mixed };

/// A diff that gives that many rows: context, replaced, added and removed lines, 100 to a hunk.
QString rows(qsizetype count, Script script);

/// A diff in which one line of that many characters is replaced by another.
QString longLine(qsizetype characters, Script script);

} // namespace SampleDiffs
