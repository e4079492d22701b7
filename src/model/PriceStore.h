// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/PriceRow.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// The two small files in which the program keeps what the user chose: the price table in
/// prices.json and the folders added by hand in projects.json. Both are compact JSON arrays in
/// UTF-8, in which "/" is written as "\\/".
namespace PriceStore {

/// The support folder, "Plinthar" in the user's data folder ($XDG_DATA_HOME). Makes it if it is
/// missing; a failure shows when a file in it is read or written.
QString dir();

/// The built-in price table: the same four rows, with the same ids, on every call.
const QList<PriceRow> &defaults();

/// The table as the content of prices.json; nothing when a price is not finite.
std::optional<QByteArray> encodePrices(const QList<PriceRow> &rows);
/// The reverse; nothing unless the text is an array of complete rows.
std::optional<QList<PriceRow>> decodePrices(const QByteArray &json);

/// The folders as the content of projects.json.
QByteArray encodeAdded(const QStringList &paths);
/// The reverse; nothing unless the text is an array of strings.
std::optional<QStringList> decodeAdded(const QByteArray &json);

/// The saved table, or the default one when prices.json is missing, unusable or empty.
QList<PriceRow> loadPrices();
/// Replaces prices.json. A failure is ignored: the table then holds for this run only.
void savePrices(const QList<PriceRow> &rows);

/// The saved folders, or none when projects.json is missing or unusable.
QStringList loadAdded();
/// Replaces projects.json. A failure is ignored.
void saveAdded(const QStringList &paths);

} // namespace PriceStore
