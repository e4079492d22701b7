// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Files.h"

#include <QByteArray>

#include <optional>

/// A point in time as the kernel notes the start of processes: in clock ticks since the boot.
using BootTicks = quint64;

/// Now.
BootTicks bootTicks();

/// When a process was started, from the content of its /proc/<pid>/stat; nothing when that is not
/// what it should be.
std::optional<BootTicks> startTime(const QByteArray &stat);

/// A grip on a process: a signal sent through it reaches that process or none, even when another
/// one has got the number meanwhile.
class ProcessHandle {
public:
    /// What the grip is made of: the kernel's process descriptor, or, where the kernel has none,
    /// the process's start time, which is looked at again right before the signal.
    enum class By { Descriptor, StartTime };

    /// Takes the process that has that number now, if it was already there at `seenAt`. One that is
    /// not there is no error before terminate().
    ProcessHandle(qint32 pid, BootTicks seenAt, By by = By::Descriptor);

    /// Sends SIGTERM. 0, or the number of the system's error: ESRCH when the process is gone.
    int terminate() const;

private:
    void takeDescriptor();

    qint32 m_pid;
    FileDescriptor m_descriptor;
    std::optional<BootTicks> m_started;
    int m_error = 0;
};
