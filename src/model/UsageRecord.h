// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/TimePoint.h"

#include <QString>

/// The token counts of one message of an assistant. Counts missing from the log are 0.
struct UsageRecord {
    TimePoint date;        ///< when the message was logged
    QString model;         ///< the model's name as logged; empty when the log names none
    qint64 input = 0;      ///< "input_tokens"
    qint64 output = 0;     ///< "output_tokens"
    qint64 cacheWrite = 0; ///< "cache_creation_input_tokens"
    qint64 cacheRead = 0;  ///< "cache_read_input_tokens"
};
