// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <stdexcept>

/// A promise that does not hold, with what is known of the case.
struct Broken : std::runtime_error {
    explicit Broken(const QString &what) : std::runtime_error(what.toStdString()) {}
};

inline void holds(bool condition, const char *promise)
{
    if (!condition)
        throw Broken(QString::fromUtf8(promise));
}

/// Two descriptions of the same value, found in two ways.
inline void same(const QString &found, const QString &expected, const char *promise)
{
    if (found != expected)
        throw Broken(QStringLiteral("%1\n  is:       %2\n  expected: %3")
                         .arg(QString::fromUtf8(promise), found, expected));
}
