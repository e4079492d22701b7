// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffRow.h"

namespace DiffParser {

/// The side-by-side rows of a unified diff. Removed and added lines that stand between two lines of
/// context are paired from top to bottom. What is no part of a hunk is skipped.
DiffRows parse(const QString &text);

} // namespace DiffParser
