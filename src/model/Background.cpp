// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Background.h"

#include <QDeadlineTimer>

namespace Background {

namespace {

// Never destroyed, since the destructor would wait for work that hangs. More threads than cores,
// because most work waits for the disk or for another program.
QThreadPool *makePool()
{
    constexpr int mostThreads = 16;
    auto *made = new QThreadPool;
    made->setMaxThreadCount(mostThreads);
    return made;
}

} // namespace

QThreadPool &pool()
{
    static QThreadPool *const threads = makePool();
    return *threads;
}

QThreadPool &savingPool()
{
    static QThreadPool *const threads = makePool();
    return *threads;
}

bool finish(std::chrono::milliseconds patience)
{
    const QDeadlineTimer end(patience);
    pool().clear();
    const bool saved = savingPool().waitForDone(int(end.remainingTime()));
    return pool().waitForDone(int(end.remainingTime())) && saved;
}

void finishSaving()
{
    savingPool().waitForDone();
}

} // namespace Background
