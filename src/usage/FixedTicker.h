// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "usage/PlotLibrary.h"

/// Ticks where the chart wants them, with the texts it wants.
class FixedTicker : public QCPAxisTicker {
public:
    struct Tick {
        double place = 0;
        QString text;
    };

    QList<Tick> ticks;

    void generate(const QCPRange &range, const QLocale &, QChar, int, QVector<double> &places,
                  QVector<double> *between, QVector<QString> *texts) override
    {
        places.clear();
        if (between)
            between->clear();
        if (texts)
            texts->clear();
        for (const Tick &tick : ticks) {
            if (!range.contains(tick.place))
                continue;
            places.append(tick.place);
            if (texts)
                texts->append(tick.text);
        }
    }
};
