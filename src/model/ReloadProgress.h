// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <atomic>

/// How far a reload has come. The threads that read add to it; whoever shows it looks at it now and
/// then.
struct ReloadProgress {
    std::atomic<qsizetype> logsFound = 0; ///< 0 while the projects are being looked for
    std::atomic<qsizetype> logsRead = 0;
};
