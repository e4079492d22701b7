// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ActionGuard.h"

#include <condition_variable>
#include <mutex>

namespace {

struct Actions {
    std::mutex mutex;
    std::condition_variable over;
    int count = 0;
};

Actions &actions()
{
    // Never destroyed, since an action may outlive main().
    static auto *const all = new Actions;
    return *all;
}

} // namespace

ActionGuard::ActionGuard()
{
    const std::lock_guard lock(actions().mutex);
    ++actions().count;
}

ActionGuard::~ActionGuard()
{
    const std::lock_guard lock(actions().mutex);
    --actions().count;
    actions().over.notify_all();
}

void finishGitActions()
{
    std::unique_lock lock(actions().mutex);
    actions().over.wait(lock, [] { return actions().count == 0; });
}
