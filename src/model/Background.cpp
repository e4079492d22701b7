// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Background.h"

namespace Background {

QThreadPool &pool()
{
    // Never destroyed, since the destructor would wait for work that hangs. More threads than
    // cores, because most work waits for the disk or for another program.
    static QThreadPool *const threads = [] {
        constexpr int mostThreads = 16;
        auto *made = new QThreadPool;
        made->setMaxThreadCount(mostThreads);
        return made;
    }();
    return *threads;
}

bool finish(std::chrono::milliseconds patience)
{
    pool().clear();
    return pool().waitForDone(static_cast<int>(patience.count()));
}

} // namespace Background
