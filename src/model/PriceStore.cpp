// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/PriceStore.h"

#include "model/Files.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>

namespace {

/// Both files have a few kilobytes. Anything beyond this (in bytes) is not ours.
constexpr qint64 largestFile = qint64(16) << 20;

QString pricesFile()
{
    return PriceStore::dir() + QStringLiteral("/prices.json");
}

QString projectsFile()
{
    return PriceStore::dir() + QStringLiteral("/projects.json");
}

QByteArray encode(const QJsonArray &array)
{
    QByteArray json = QJsonDocument(array).toJson(QJsonDocument::Compact);
    return json.replace('/', "\\/"); // a slash can only stand inside a string
}

std::optional<QJsonArray> decode(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    return document.array();
}

bool isFinite(const PriceRow &row)
{
    return std::isfinite(row.input) && std::isfinite(row.output) && std::isfinite(row.cacheWrite) &&
           std::isfinite(row.cacheRead);
}

} // namespace

namespace PriceStore {

QString dir()
{
    QString path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                   QStringLiteral("/Plinthar");
    QDir().mkpath(path);
    return path;
}

const QList<PriceRow> &defaults()
{
    const auto row = [](const QString &key, double input, double output, double cacheWrite,
                        double cacheRead) {
        return PriceRow{QUuid::createUuid(), key, input, output, cacheWrite, cacheRead};
    };
    static const QList<PriceRow> rows{row(QStringLiteral("opus"), 15, 75, 18.75, 1.5),
                                      row(QStringLiteral("sonnet"), 3, 15, 3.75, 0.3),
                                      row(QStringLiteral("haiku"), 1, 5, 1.25, 0.1),
                                      row(QStringLiteral("default"), 3, 15, 3.75, 0.3)};
    return rows;
}

std::optional<QByteArray> encodePrices(const QList<PriceRow> &rows)
{
    if (!std::all_of(rows.cbegin(), rows.cend(), isFinite))
        return std::nullopt;
    QJsonArray array;
    for (const PriceRow &row : rows)
        array.append(toJson(row));
    return encode(array);
}

std::optional<QList<PriceRow>> decodePrices(const QByteArray &json)
{
    const std::optional<QJsonArray> array = decode(json);
    if (!array)
        return std::nullopt;
    QList<PriceRow> rows;
    for (const QJsonValue value : *array) {
        // A value that is no object becomes an empty one, which lacks every key.
        const std::optional<PriceRow> row = priceRowFromJson(value.toObject());
        if (!row)
            return std::nullopt;
        rows.append(*row);
    }
    return rows;
}

QByteArray encodeAdded(const QStringList &paths)
{
    return encode(QJsonArray::fromStringList(paths));
}

std::optional<QStringList> decodeAdded(const QByteArray &json)
{
    const std::optional<QJsonArray> array = decode(json);
    if (!array)
        return std::nullopt;
    QStringList paths;
    for (const QJsonValue value : *array) {
        if (!value.isString())
            return std::nullopt;
        paths.append(value.toString());
    }
    return paths;
}

QList<PriceRow> loadPrices()
{
    const auto json = readSmallFile(pricesFile(), largestFile);
    const auto rows = json ? decodePrices(*json) : std::nullopt;
    return rows && !rows->isEmpty() ? *rows : defaults();
}

void savePrices(const QList<PriceRow> &rows)
{
    if (const auto json = encodePrices(rows))
        writeInPlace(pricesFile(), *json);
}

QStringList loadAdded()
{
    const auto json = readSmallFile(projectsFile(), largestFile);
    const auto paths = json ? decodeAdded(*json) : std::nullopt;
    return paths.value_or(QStringList());
}

void saveAdded(const QStringList &paths)
{
    writeInPlace(projectsFile(), encodeAdded(paths));
}

} // namespace PriceStore
