// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/PriceRow.h"
#include "model/Session.h"

#include <QList>
#include <QString>

#include <stop_token>

/// One session as the Sessions table shows it.
struct SessionRow {
    QString id;
    TimePoint start;
    double duration = 0; ///< in seconds
    QString firstPrompt;
    QString preview; ///< the beginning of the first prompt on one line, for painting
    qint64 turns = 0;
    qint64 input = 0;
    qint64 output = 0;
    qint64 cache = 0;
    double cost = 0; ///< in US dollars

    const QString &key() const { return id; }
};

/// Everything that the Sessions table shows.
struct SessionTable {
    QList<SessionRow> rows;
    double cost = 0; ///< in US dollars, over all rows
};

/// The table of a project's sessions, in their order, priced with a price table.
SessionTable makeSessionTable(const QList<Session> &sessions, const QList<PriceRow> &prices,
                              const std::stop_token &stop = {});

/// How many usage records the sessions have together.
qsizetype recordCount(const QList<Session> &sessions);
