// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/PriceRow.h"

namespace {

/// Only the 36-character form counts: QUuid would also take braces and a form without hyphens.
std::optional<QUuid> uuidFromJson(const QJsonValue &value)
{
    const QString text = value.toString();
    const QUuid id = QUuid::fromString(text);
    if (id.toString(QUuid::WithoutBraces).compare(text, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return id;
}

} // namespace

QJsonObject toJson(const PriceRow &row)
{
    return {{QStringLiteral("id"), row.id.toString(QUuid::WithoutBraces).toUpper()},
            {QStringLiteral("key"), row.key},
            {QStringLiteral("input"), row.input},
            {QStringLiteral("output"), row.output},
            {QStringLiteral("cacheWrite"), row.cacheWrite},
            {QStringLiteral("cacheRead"), row.cacheRead}};
}

std::optional<PriceRow> priceRowFromJson(const QJsonObject &object)
{
    const std::optional<QUuid> id = uuidFromJson(object.value(u"id"));
    const QJsonValue key = object.value(u"key");
    const QJsonValue input = object.value(u"input");
    const QJsonValue output = object.value(u"output");
    const QJsonValue cacheWrite = object.value(u"cacheWrite");
    const QJsonValue cacheRead = object.value(u"cacheRead");
    if (!id || !key.isString() || !input.isDouble() || !output.isDouble() ||
        !cacheWrite.isDouble() || !cacheRead.isDouble())
        return std::nullopt;
    return PriceRow{*id,
                    key.toString(),
                    input.toDouble(),
                    output.toDouble(),
                    cacheWrite.toDouble(),
                    cacheRead.toDouble()};
}
