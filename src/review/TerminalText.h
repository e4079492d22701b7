// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Text that was meant for a terminal, to be shown elsewhere: without escape sequences (colours,
/// links, cursor movements) and control characters. Tabs stay, and every kind of line end becomes a
/// line feed.
QString withoutEscapeCodes(const QString &text);
