// SPDX-License-Identifier: GPL-3.0-or-later

// Puts stand-ins in the place of programs: linked into a test, or loaded into a program before the
// C library. A file of the program's name in the folder PLINTHAR_TEST_TOOLS is run instead of it;
// so a link that leads nowhere is a program that is missing.

#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

// Called between fork and exec, where nothing may be called but the system.
extern "C" int execv(const char *path, char *const *arguments) noexcept
{
    const char *const folder = std::getenv("PLINTHAR_TEST_TOOLS");
    const char *const name = std::strrchr(path, '/');
    char instead[4096];
    if (folder && name && std::strlen(folder) + std::strlen(name) < sizeof instead) {
        std::strcpy(instead, folder);
        std::strcat(instead, name);
        struct stat info = {};
        if (::lstat(instead, &info) == 0)
            path = instead;
    }
    return ::execve(path, arguments, environ);
}
