// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Plain logs of which only the number of projects, sessions and usage records matters.
struct UsageLogs {
    int projects = 1;
    int sessions = 1; ///< in each project
    int records = 1;  ///< in each session, spread over the last 35 days

    /// Writes them. The projects are named /code/project-000 and so on. False when the disk
    /// refuses.
    bool write(const QString &claudeProjects) const;
};
