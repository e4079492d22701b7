// SPDX-License-Identifier: GPL-3.0-or-later

// Files that take their time, loaded into a program before the C library. While "hold-fsync" is in
// the folder PLINTHAR_TEST_TOOLS, nothing that is written gets to the disk; while "hold-open" is
// there, logs cannot be opened, as on a network folder whose server does not answer. What waits
// makes "fsync-begun" or "open-begun" there.

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool makePath(char *path, size_t size, const char *name)
{
    const char *const folder = std::getenv("PLINTHAR_TEST_TOOLS");
    if (!folder || std::strlen(folder) + std::strlen(name) >= size)
        return false;
    std::strcpy(path, folder);
    std::strcat(path, name);
    return true;
}

void waitWhile(const char *gate, const char *begun)
{
    char gatePath[4096];
    char begunPath[4096];
    if (!makePath(gatePath, sizeof gatePath, gate) || !makePath(begunPath, sizeof begunPath, begun))
        return;
    while (::access(gatePath, F_OK) == 0) {
        const auto file = ::syscall(SYS_openat, AT_FDCWD, begunPath, O_CREAT | O_WRONLY, 0600);
        ::close(static_cast<int>(file));
        ::usleep(10'000);
    }
}

} // namespace

extern "C" int fsync(int file)
{
    waitWhile("/hold-fsync", "/fsync-begun");
    return static_cast<int>(::syscall(SYS_fsync, file));
}

extern "C" int open(const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    const char *const end = std::strrchr(path, '.');
    if (end && std::strcmp(end, ".jsonl") == 0)
        waitWhile("/hold-open", "/open-begun");
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
