// SPDX-License-Identifier: GPL-3.0-or-later
// A price table written to prices.json and read again is the same table, to the last bit of every
// price; one with a price that is no number is not written.

#include "Choices.h"
#include "Property.h"
#include "Target.h"
#include "model/PriceStore.h"
#include "support/StrictJson.h"

#include <array>
#include <cmath>

namespace {

void checkRoundTrip(const QList<PriceRow> &rows)
{
    bool finite = true;
    for (const PriceRow &row : rows) {
        for (const double price : {row.input, row.output, row.cacheWrite, row.cacheRead})
            finite = finite && std::isfinite(price);
    }
    const auto json = PriceStore::encodePrices(rows);
    holds(json.has_value() == finite, "what has no digits is not written");
    if (!json)
        return;
    holds(isStrictJsonObject("{\"a\":" + *json + '}'), "what is written is JSON");
    holds(json->count('/') == json->count("\\/"), "every slash has its backslash");
    holds(PriceStore::decodePrices(*json) == rows, "the table comes back");
}

PriceRow row(Choices &choices)
{
    PriceRow row;
    row.id = QUuid::fromRfc4122(choices.bytes(16).leftJustified(16, '\0'));
    row.key = choices.text();
    for (double *price : {&row.input, &row.output, &row.cacheWrite, &row.cacheRead}) {
        // As written by hand, or any double that there is.
        *price = choices.below(2) ? choices.below(10'000) / 100.0 : choices.value<double>();
    }
    return row;
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    if (const auto rows = PriceStore::decodePrices(input))
        checkRoundTrip(*rows);
    Choices choices(input);
    QList<PriceRow> rows;
    while (!choices.atEnd())
        rows.append(row(choices));
    checkRoundTrip(rows);
}

QByteArrayList seeds()
{
    const QByteArray id = R"({"id":"01234567-89AB-CDEF-0123-456789abcdef","key":"a\/b",)";
    const QByteArray prices = R"("input":15,"output":0.1,"cacheWrite":1e-7,"cacheRead":-0})";
    return {PriceStore::encodePrices(PriceStore::defaults()).value_or(QByteArray()),
            "[]",
            "{}",
            '[' + id + prices + ']',
            '[' + id + prices + ',' + id + R"("input":"1"}])",
            "[1]",
            '[' + id + R"("input":18446744073709551616,"output":1e308,"cacheWrite":5e-324,)" +
                R"("cacheRead":123456789012345678}])",
            QByteArray(16, 'i') + "\4opus" + QByteArray("\1\2\3", 3).repeated(4),
            QByteArray(16, '\xff') + QByteArray("\0\0\0\0\0\0\0\0\xf0\x7f", 10).repeated(4)};
}

QByteArrayList words()
{
    return {R"({"id":"01234567-89AB-CDEF-0123-456789ABCDEF",)",
            "\"key\":\"x\"",
            "\"input\":",
            "\"output\":",
            "\"cacheWrite\":",
            "\"cacheRead\":",
            "1e400",
            "5e-324",
            "-0.0",
            "9007199254740993",
            "9223372036854775807",
            QByteArray("\0\0\0\0\0\0\xf8\x7f", 8),
            QByteArray("\xff\xff\xff\xff\xff\xff\xef\x7f", 8)};
}

} // namespace Target
