// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <sys/resource.h>

/// While it lives, no file that this process or a child of it writes can grow beyond that size (in
/// bytes): a disk that is full.
class LargestFile {
public:
    explicit LargestFile(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit now{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    ~LargestFile()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    LargestFile(const LargestFile &) = delete;
    LargestFile &operator=(const LargestFile &) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int) = SIG_DFL;
};
