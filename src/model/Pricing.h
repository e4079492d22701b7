// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/PriceRow.h"
#include "model/UsageRecord.h"

#include <QHash>
#include <QList>

/// The estimated cost of a record in US dollars, not rounded. Its price is that of the first row
/// whose key occurs in the model's name (upper and lower case being the same), else of the row
/// "default", else of the built-in default.
double recordCost(const UsageRecord &record, const QList<PriceRow> &prices);

/// recordCost() for many records with one table: each distinct model is looked up only once.
class Pricer {
public:
    explicit Pricer(const QList<PriceRow> &prices) : m_prices(prices) {}

    /// The same number that recordCost() gives for the record and the table.
    double cost(const UsageRecord &record);

private:
    const PriceRow &rowFor(const QString &model);

    const QList<PriceRow> m_prices;
    QHash<QString, PriceRow> m_rowOfModel;
    QString m_lastModel;
    const PriceRow *m_lastRow = nullptr;
};
