// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QString>

/// A token count as its short text: 1.23M, 12.3k, or below 10,000 the number with the locale's
/// digit grouping (a comma where the locale has none).
QString fmtTokens(qint64 count, const QLocale &locale = QLocale());

/// A duration in seconds as its short text: 1h 2m, 2m 5s or 59s. The fraction is dropped.
QString fmtDuration(double seconds);

/// At most the first `length` UTF-16 units of a text, without cutting a character in two.
QString beginningOf(const QString &text, qsizetype length);

/// An amount in US dollars as $12.34, rounded as the C library does, whatever the locale.
QString fmtCost(double dollars);
