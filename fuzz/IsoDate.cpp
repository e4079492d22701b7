// SPDX-License-Identifier: GPL-3.0-or-later
// A date is what a regular expression and Qt's calendar make of it, and what QDateTime writes for
// any instant and any distance from UTC reads back as that instant.

#include "model/IsoDate.h"

#include "Choices.h"
#include "Property.h"
#include "SlowReader.h"
#include "Target.h"
#include "support/Describe.h"

#include <QDateTime>

namespace {

using SlowReader::Fraction;

std::string_view view(const QByteArray &text)
{
    return {text.constData(), static_cast<size_t>(text.size())};
}

void checkText(const QByteArray &text)
{
    // As Latin-1, in which every byte is a character and none beyond ASCII can be part of a date.
    const QString slowly = QString::fromLatin1(text);
    const auto exact = SessionParser::isoFrac(view(text));
    const auto plain = SessionParser::iso(view(text));
    holds(!exact || !plain, "a text is in one form at most");
    same(describe(exact), describe(SlowReader::date(slowly, Fraction::Wanted)), "with a fraction");
    same(describe(plain), describe(SlowReader::date(slowly, Fraction::Unwanted)), "without one");
}

void checkInstant(Choices choices)
{
    // What four digits of a year can say, whatever the distance from UTC.
    const qint64 first = QDateTime(QDate(1, 1, 2), QTime(), Qt::UTC).toMSecsSinceEpoch();
    const qint64 last = QDateTime(QDate(9999, 12, 30), QTime(), Qt::UTC).toMSecsSinceEpoch();
    const auto chosen = choices.value<quint64>() % static_cast<quint64>(last - first);
    const qint64 instant = first + static_cast<qint64>(chosen);
    const int east = 60 * (choices.below(2 * 14 * 60 + 1) - 14 * 60);
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(instant, Qt::UTC).toOffsetFromUtc(east);
    const auto expected = TimePoint(std::chrono::milliseconds(instant));
    same(describe(SessionParser::isoFrac(view(date.toString(Qt::ISODateWithMs).toLatin1()))),
         describe(expected), "an instant to the millisecond");
    same(describe(SessionParser::iso(view(date.toString(Qt::ISODate).toLatin1()))),
         describe(std::chrono::floor<std::chrono::seconds>(expected)), "an instant to the second");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    checkText(input);
    checkInstant(Choices(input));
}

QByteArrayList seeds()
{
    return {"2025-01-02T03:04:05.678Z",      "2025-01-02T03:04:05Z",
            "2024-02-29T23:59:59.9+14:00",   "2023-02-29T00:00:00Z",
            "0000-01-01T00:00:00.000-23:59", "9999-12-31T23:59:59.9999999999+23:59",
            "1969-12-31T23:59:59.999Z",      "2025-01-02T24:00:00Z",
            "2016-12-31T23:59:60Z",          "2025-01-02t03:04:05z",
            "2025-01-02 03:04:05.678"};
}

QByteArrayList words()
{
    return {"2025-01-02T", "03:04:05", ".000",       "Z", "+00:00",
            "-23:59",      "-02-29",   "9999-12-31", "T"};
}

} // namespace Target
