// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QLocale>
#include <QString>

/// What the bars of a chart stand for.
enum class Measure { Tokens, Cost };

/// The axis of a chart's values: round numbers at equal distances, with their texts.
struct ValueScale {
    double lower = 0;
    double upper = 1;
    QList<double> ticks;
    QStringList labels;
};

/// A value that can be drawn: absurd ones are cut, and what is not a number is none.
double drawable(double value);

/// The scale for bars from 0 to values between `lowest` and `highest` (either may be on the other
/// side of 0), with at most `mostTicks` ticks, or two where that is less. The ticks begin and end
/// the scale, except that a chart of nothing has only the one at 0.
ValueScale makeValueScale(double lowest, double highest, int mostTicks, Measure measure,
                          const QLocale &locale);
