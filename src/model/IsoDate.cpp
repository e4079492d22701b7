// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/IsoDate.h"

namespace {

/// Takes a text apart from its left end. Every step tells whether it found what it wants.
class Scanner {
public:
    explicit Scanner(std::string_view text) : m_rest(text) {}

    bool atEnd() const { return m_rest.empty(); }

    bool take(char wanted)
    {
        if (m_rest.empty() || m_rest.front() != wanted)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    std::optional<int> takeDigit()
    {
        if (m_rest.empty() || m_rest.front() < '0' || m_rest.front() > '9')
            return std::nullopt;
        const int digit = m_rest.front() - '0';
        m_rest.remove_prefix(1);
        return digit;
    }

    /// A number of exactly `digits` digits that is at most `most`.
    bool takeNumber(int digits, int most, int &number)
    {
        number = 0;
        for (int i = 0; i < digits; ++i) {
            const std::optional<int> digit = takeDigit();
            if (!digit)
                return false;
            number = number * 10 + *digit;
        }
        return number <= most;
    }

    /// At least one digit; the first three are the milliseconds.
    bool takeFraction(int &milliseconds)
    {
        milliseconds = 0;
        int unit = 100;
        int count = 0;
        while (const std::optional<int> digit = takeDigit()) {
            milliseconds += *digit * unit;
            unit /= 10;
            ++count;
        }
        return count > 0;
    }

private:
    std::string_view m_rest;
};

bool takeDay(Scanner &scanner, std::chrono::sys_days &day)
{
    int year = 0;
    int month = 0;
    int dayOfMonth = 0;
    if (!scanner.takeNumber(4, 9999, year) || !scanner.take('-') ||
        !scanner.takeNumber(2, 12, month) || !scanner.take('-') ||
        !scanner.takeNumber(2, 31, dayOfMonth))
        return false;
    const std::chrono::year_month_day date(std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(dayOfMonth)));
    day = std::chrono::sys_days(date);
    return date.ok();
}

bool takeTime(Scanner &scanner, bool fraction, std::chrono::milliseconds &time)
{
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    if (!scanner.takeNumber(2, 23, hour) || !scanner.take(':') ||
        !scanner.takeNumber(2, 59, minute) || !scanner.take(':') ||
        !scanner.takeNumber(2, 59, second))
        return false;
    if (fraction && (!scanner.take('.') || !scanner.takeFraction(millisecond)))
        return false;
    time = std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second) +
           std::chrono::milliseconds(millisecond);
    return true;
}

bool takeOffset(Scanner &scanner, std::chrono::minutes &offset)
{
    offset = std::chrono::minutes(0);
    if (scanner.take('Z'))
        return true;
    const bool west = scanner.take('-');
    if (!west && !scanner.take('+'))
        return false;
    int hours = 0;
    int minutes = 0;
    if (!scanner.takeNumber(2, 23, hours) || !scanner.take(':') ||
        !scanner.takeNumber(2, 59, minutes))
        return false;
    offset = std::chrono::hours(hours) + std::chrono::minutes(minutes);
    if (west)
        offset = -offset;
    return true;
}

std::optional<TimePoint> parse(std::string_view text, bool fraction)
{
    Scanner scanner(text);
    std::chrono::sys_days day;
    std::chrono::milliseconds time;
    std::chrono::minutes offset;
    if (!takeDay(scanner, day) || !scanner.take('T') || !takeTime(scanner, fraction, time) ||
        !takeOffset(scanner, offset) || !scanner.atEnd())
        return std::nullopt;
    return day + time - offset;
}

} // namespace

namespace SessionParser {

std::optional<TimePoint> isoFrac(std::string_view text)
{
    return parse(text, true);
}

std::optional<TimePoint> iso(std::string_view text)
{
    return parse(text, false);
}

} // namespace SessionParser
