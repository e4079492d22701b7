// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Session.h"

/// The most memory that this process has had so far, in bytes.
qint64 peakMemory();
/// What it has now.
qint64 presentMemory();

/// What sessions take in memory by themselves, in bytes: their structures and the room that their
/// strings and lists have. Text that several of them share counts once.
qint64 sizeOf(const SessionMap &sessions);
