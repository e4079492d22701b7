// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>

/// The roles that text plays on a screen. Their sizes follow the user's own font size.
enum class TextStyle { Title2, Title3, Headline, Body, Callout, Caption, Caption2 };

/// The application's font in the size of a text style.
QFont textFont(TextStyle style, bool bold = false);

/// For columns of numbers: the application's font, or where its digits are not equally wide, the
/// system's fixed-width one.
QFont numberFont();

/// The user's font with letters of one width, in the size of a text style.
QFont monospacedFont(TextStyle style, bool bold = false);
