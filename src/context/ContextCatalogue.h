// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "context/ContextFile.h"
#include "context/FileLook.h"

#include <QList>

/// The instruction files that are offered for a project, in the order in which they are shown: the
/// project's own and the home folder's. What cannot be read counts as not there.
QList<ContextFile> contextFiles(const QString &project, const QString &home, const FileLook &look);
