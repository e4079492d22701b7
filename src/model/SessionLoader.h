// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "model/ReloadProgress.h"
#include "model/Session.h"

#include <QList>
#include <QStringList>

#include <stop_token>

/// What a reload finds on disk.
struct LoadedProjects {
    QList<Project> projects; ///< by name
    SessionMap sessions;     ///< an entry for every project
};

/// Reads everything from disk: finds the projects, then reads the logs of all of them on all cores,
/// the large ones last, each on all cores together. The result does not depend on how the work was
/// spread. For a background task; after `stop` is requested it returns soon, with an incomplete
/// result.
namespace SessionLoader {

LoadedProjects load(const QStringList &added, const QString &claudeProjectsRoot,
                    const std::stop_token &stop = {}, ReloadProgress *progress = nullptr);

/// The sessions of the projects, newest first in each; an empty list for a project without logs.
SessionMap loadSessions(const QList<Project> &projects, const std::stop_token &stop = {},
                        ReloadProgress *progress = nullptr);

} // namespace SessionLoader
