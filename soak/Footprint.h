// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What this process holds of the system.
struct Footprint {
    qint64 memory = 0; ///< bytes that are allocated and not freed
    qint64 resident = 0;
    qsizetype widgets = 0;
    int descriptors = 0;
    int threads = 0;
    int children = 0;

    static Footprint now();
    QString text() const;
};
