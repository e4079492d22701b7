// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/ProcessHandle.h"

#include <QList>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::optional<BootTicks> startTimeOf(qint32 pid)
{
    constexpr qint64 longest = 4096;
    const std::optional<QByteArray> stat =
        readSmallFile(QStringLiteral("/proc/%1/stat").arg(pid), longest);
    return stat ? startTime(*stat) : std::nullopt;
}

} // namespace

BootTicks bootTicks()
{
    timespec now = {};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    static const auto ticks = BootTicks(::sysconf(_SC_CLK_TCK));
    constexpr BootTicks nanoseconds = 1'000'000'000;
    return BootTicks(now.tv_sec) * ticks + BootTicks(now.tv_nsec) * ticks / nanoseconds;
}

std::optional<BootTicks> startTime(const QByteArray &stat)
{
    // The second field is the program's name, in brackets and with whatever in it. The start is the
    // 22nd.
    const qsizetype nameEnd = stat.lastIndexOf(") ");
    if (nameEnd < 0)
        return std::nullopt;
    const QList<QByteArray> fields = stat.mid(nameEnd + 2).split(' ');
    constexpr qsizetype place = 22 - 3;
    bool isNumber = false;
    const BootTicks ticks = fields.value(place).toULongLong(&isNumber);
    return isNumber ? std::optional(ticks) : std::nullopt;
}

ProcessHandle::ProcessHandle(qint32 pid, BootTicks seenAt, By by) : m_pid(pid)
{
    if (pid <= 0) { // which kill() would take for a group of processes
        m_error = ESRCH;
        return;
    }
    if (by == By::Descriptor)
        takeDescriptor();
    if (m_error != 0)
        return;
    m_started = startTimeOf(pid);
    if (!m_started || *m_started > seenAt)
        m_error = ESRCH;
}

/// Through syscall(), since glibc knows the two calls only from 2.36 on.
void ProcessHandle::takeDescriptor()
{
    m_descriptor = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0)));
    if (!m_descriptor.isOpen() && errno == ESRCH)
        m_error = ESRCH; // every other error is one of getting a descriptor: do without
}

int ProcessHandle::terminate() const
{
    if (m_error != 0)
        return m_error;
    if (m_descriptor.isOpen())
        return ::syscall(SYS_pidfd_send_signal, m_descriptor.get(), SIGTERM, nullptr, 0) == 0
                   ? 0
                   : errno;
    if (startTimeOf(m_pid) != m_started)
        return ESRCH;
    return ::kill(m_pid, SIGTERM) == 0 ? 0 : errno;
}
