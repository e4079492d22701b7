// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Pricing.h"

#include "model/PriceStore.h"

#include <algorithm>

namespace {

bool isDefault(const PriceRow &row)
{
    return row.key.toLower() == u"default";
}

PriceRow chooseRow(const QString &model, const QList<PriceRow> &prices)
{
    const QString lowered = model.toLower();
    for (const PriceRow &row : prices) {
        if (!row.key.isEmpty() && !isDefault(row) && lowered.contains(row.key.toLower()))
            return row;
    }
    const auto fallback = std::find_if(prices.cbegin(), prices.cend(), isDefault);
    return fallback != prices.cend() ? *fallback : PriceStore::defaults().constLast();
}

double costWith(const PriceRow &row, const UsageRecord &record)
{
    return (static_cast<double>(record.input) * row.input +
            static_cast<double>(record.output) * row.output +
            static_cast<double>(record.cacheWrite) * row.cacheWrite +
            static_cast<double>(record.cacheRead) * row.cacheRead) /
           1'000'000;
}

} // namespace

double recordCost(const UsageRecord &record, const QList<PriceRow> &prices)
{
    return costWith(chooseRow(record.model, prices), record);
}

double Pricer::cost(const UsageRecord &record)
{
    return costWith(rowFor(record.model), record);
}

const PriceRow &Pricer::rowFor(const QString &model)
{
    // Neighbouring records nearly always share the very same string.
    if (m_lastRow && model.constData() == m_lastModel.constData() && model == m_lastModel)
        return *m_lastRow;
    auto known = m_rowOfModel.find(model);
    if (known == m_rowOfModel.end())
        known = m_rowOfModel.insert(model, chooseRow(model, m_prices));
    m_lastModel = model;
    m_lastRow = &*known;
    return *known;
}
