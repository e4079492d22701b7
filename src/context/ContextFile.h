// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// An instruction file that is offered for editing. It need not exist yet.
struct ContextFile {
    QString path;
    QString scope; ///< projectScope or homeScope
    bool exists = false;

    bool operator==(const ContextFile &other) const = default;
};

/// The scopes, which are also what the sections of the list are called.
inline const QString projectScope = QStringLiteral("Project");
inline const QString homeScope = QStringLiteral("Home");

/// The path as it is shown: below the home folder "~" takes the home folder's place.
QString label(const ContextFile &file, const QString &home);
