// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/TimePoint.h"

#include <QLocale>
#include <QString>

/// A locale's date format with an abbreviated month and a time without seconds, such as
/// "MMM d, yyyy, h:mm AP". Qt has only a long form, with the day of the week, and a short one,
/// which is all digits.
QString mediumDateTimeFormat(const QLocale &locale);

/// An instant in the user's time zone in that format.
QString startText(TimePoint start, const QLocale &locale, const QString &format);
