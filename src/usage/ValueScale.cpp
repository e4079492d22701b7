// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/ValueScale.h"

#include <algorithm>
#include <cmath>

namespace {

/// 1, 2 or 5 times a power of ten.
struct Step {
    int digit = 1;
    int power = 0;

    double value() const
    {
        // Dividing keeps tenths and hundredths exact to the last bit.
        return power < 0 ? digit / std::pow(10, -power) : digit * std::pow(10, power);
    }
    Step next() const
    {
        if (digit == 5)
            return {1, power + 1};
        return {digit == 1 ? 2 : 5, power};
    }
};

Step chooseStep(double lowest, double highest, int mostTicks, Measure measure)
{
    const int mostSteps = std::max(mostTicks - 1, 1);
    const double least = (highest - lowest) / mostSteps;
    Step step{1, static_cast<int>(std::floor(std::log10(least)))};
    if (measure == Measure::Tokens && step.power < 0)
        step = {1, 0};
    const auto stepsOf = [&](const Step &candidate) {
        const double size = candidate.value();
        return std::ceil(highest / size) - std::floor(lowest / size);
    };
    // On both sides of 0 there must be room for a step each.
    const int allowed = lowest < 0 && highest > 0 ? std::max(mostSteps, 2) : mostSteps;
    while (stepsOf(step) > allowed)
        step = step.next();
    return step;
}

/// The thousands or millions in which all the labels of a scale are written.
struct Unit {
    double size = 1;
    QString suffix;
};

Unit unitFor(double largest)
{
    if (largest >= 1'000'000)
        return {1'000'000, QStringLiteral("M")};
    if (largest >= 10'000)
        return {1'000, QStringLiteral("k")};
    return {};
}

int decimalsOf(double step)
{
    return std::max(0, -static_cast<int>(std::floor(std::log10(step * (1 + 1e-9)))));
}

QString labelOf(double value, double step, const Unit &unit, Measure measure, QLocale locale)
{
    // Thousands and dollars are written with European digits everywhere else, too.
    if ((unit.size > 1 || measure == Measure::Cost) && locale.zeroDigit() != u"0")
        locale = QLocale::c();
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    int decimals = decimalsOf(step / unit.size);
    if (measure == Measure::Cost && unit.size == 1 && decimals > 0)
        decimals = std::max(decimals, 2); // cents
    QString number;
    if (std::abs(value) >= 1e15)
        number = QString::number(std::abs(value), 'g', 3);
    else if (value == 0)
        number = locale.zeroDigit();
    else if (decimals > 0)
        number = QString::number(std::abs(value) / unit.size, 'f', decimals) + unit.suffix;
    else
        number = locale.toString(std::llround(std::abs(value) / unit.size)) + unit.suffix;
    if (measure == Measure::Cost)
        number.prepend(u'$');
    return value < 0 ? u'-' + number : number;
}

} // namespace

double drawable(double value)
{
    constexpr double most = 1e200; // beyond, differences and ratios would overflow
    return std::isnan(value) ? 0 : std::clamp(value, -most, most);
}

ValueScale makeValueScale(double lowest, double highest, int mostTicks, Measure measure,
                          const QLocale &locale)
{
    lowest = std::min(drawable(lowest), 0.0);
    highest = std::max(drawable(highest), 0.0);
    const double largest = std::max(-lowest, highest);
    const bool nothing = largest < 1e-12; // less than any price can give
    const double step = nothing ? 1 : chooseStep(lowest, highest, mostTicks, measure).value();
    const double first = nothing ? 0 : std::floor(lowest / step);
    const double last = nothing ? 0 : std::ceil(highest / step);
    const Unit unit = unitFor(std::max(std::abs(first), last) * step);
    ValueScale scale;
    for (double number = first; number <= last; ++number) {
        scale.ticks.append(number * step);
        scale.labels.append(labelOf(number * step, step, unit, measure, locale));
    }
    scale.lower = first * step;
    scale.upper = nothing ? 1 : last * step;
    return scale;
}
