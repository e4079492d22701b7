// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// What this process holds of the system.
struct Footprint {
    qint64 memory = 0; ///< bytes that are allocated and not freed
    qint64 resident = 0;
    int descriptors = 0;
    int threads = 0;
    int children = 0;
    QMap<QString, int> widgets = {}; ///< how many there are of each class

    static Footprint now();
    QString text() const;
    /// What there is more of than there was, for people. Memory counts beyond the tolerance, and
    /// everything else exactly.
    QStringList growthSince(const Footprint &before, qint64 memoryTolerance) const;
};
