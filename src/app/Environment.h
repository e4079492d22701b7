// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Puts the environment in order for the programs that this one runs, which inherit it. Has to come
/// before anything that may start a thread, since reading and changing the environment at the same
/// time is not safe.
void prepareEnvironment();
