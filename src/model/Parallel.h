// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QThread>

#include <algorithm>
#include <atomic>
#include <stop_token>
#include <system_error>
#include <thread>
#include <vector>

/// Runs `work(i)` for every i below `count`, in about this order, on all cores, and returns when
/// that is done. Each core has its own `work`, made by `makeWork()`. After `stop` is requested
/// nothing more is begun.
template <typename MakeWork>
void onAllCores(size_t count, const std::stop_token &stop, MakeWork makeWork)
{
    std::atomic<size_t> taken = 0;
    const auto run = [&] {
        auto work = makeWork();
        for (size_t i = taken++; i < count && !stop.stop_requested(); i = taken++)
            work(i);
    };
    std::vector<std::jthread> helpers;
    try {
        for (size_t i = 1; i < std::min(count, size_t(QThread::idealThreadCount())); ++i)
            helpers.emplace_back(run);
    } catch (const std::system_error &) {
        // The system has no more threads to give: those that there are do all of it.
    }
    run();
}
