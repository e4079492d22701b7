// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>
#include <QUuid>

#include <optional>

/// One row of the price table; prices in US dollars per one million tokens.
struct PriceRow {
    QUuid id = QUuid::createUuid(); ///< identity while the table is edited
    QString key; ///< text to look for in a model's name; "default" is the fallback
    double input = 0;
    double output = 0;
    double cacheWrite = 0;
    double cacheRead = 0;

    bool operator==(const PriceRow &) const = default;
};

/// The row as a JSON object with its field names as keys and the id in upper-case hexadecimal.
QJsonObject toJson(const PriceRow &row);

/// The reverse of toJson(); nothing when a key is missing or a value has a wrong type.
std::optional<PriceRow> priceRowFromJson(const QJsonObject &object);
