// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the soak found wrong; thrown.
struct Finding {
    QString what;
};

/// Throws when something does not hold.
inline void require(bool holds, const QString &what)
{
    if (!holds)
        throw Finding{what};
}
