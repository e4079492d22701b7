// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// A text from outside as the text of a tooltip: shown as it stands, whatever it looks like, broken
/// into lines, and cut where no screen would have room for more.
QString plainToolTip(const QString &text);
