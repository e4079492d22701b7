// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <chrono>
#include <stop_token>
#include <utility>

/// Slow work beside the interface thread.
namespace Background {

/// The threads that all background work of the program runs on.
QThreadPool &pool();

/// The threads for saving what the user made and for what the user decided. Work that waits for one
/// of them is done even when the program ends meanwhile, and no other work is in its way.
QThreadPool &savingPool();

/// Calls `work(stop)` on a thread of the pool and then `deliver(result)` on the thread of
/// `context`, unless `context` is gone by then. Call it on that thread. `work` must touch nothing
/// but its own copies, and should return soon after `stop` is requested.
template <typename Work, typename Deliver>
void run(QObject *context, const std::stop_token &stop, Work work, Deliver deliver,
         QThreadPool &threads = pool())
{
    using Result = std::invoke_result_t<Work, std::stop_token>;
    auto *watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, deliver = std::move(deliver)]() mutable {
                         watcher->deleteLater();
                         deliver(watcher->future().takeResult());
                     });
    watcher->setFuture(QtConcurrent::run(&threads, std::move(work), stop));
}

/// Destroys a value on another thread: freeing millions of records takes longer than a frame.
template <typename Value>
void destroy(Value value)
{
    pool().start([value = std::move(value)]() mutable { value = Value(); });
}

/// For the end of the program, when everything has been told to stop: waits until the last work has
/// returned. False when that takes longer than `patience`; what hangs in the system then (on a dead
/// network folder, say) is left to itself.
bool finish(std::chrono::milliseconds patience);

/// Waits until everything has been saved and every decision carried out, however long that takes.
/// For the end of the program, when no window is left: were it to end before, what the user typed
/// would be lost without a word, and a commit would be broken off when its hook prints something.
void finishSaving();

} // namespace Background
