// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Stands for an action that changes a repository, while it is under way.
class ActionGuard {
public:
    ActionGuard();
    ~ActionGuard();
    ActionGuard(const ActionGuard &) = delete;
    ActionGuard &operator=(const ActionGuard &) = delete;
};

/// Waits until every approve(), reject() and commit() that has begun is over. For the end of the
/// program, when no window is left: if the program ended before git does, a hook that prints
/// something would be killed by that, and the commit with it.
void finishGitActions();
