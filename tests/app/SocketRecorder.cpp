// SPDX-License-Identifier: GPL-3.0-or-later

// A library to be loaded into every program of a process tree. It writes the name of each program
// and the kind of every socket that it makes to the file RECORD_SOCKETS, one a line: "plinthar",
// "plinthar unix", "plinthar other 2" (with the number of the address family).

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <sys/socket.h>

namespace {

void record(const std::string &what)
{
    const int error = errno;
    if (const char *const path = std::getenv("RECORD_SOCKETS")) {
        if (std::FILE *const file = std::fopen(path, "ae")) {
            // One write, so that programs which write at the same time do not mix.
            std::fputs((program_invocation_short_name + what + '\n').c_str(), file);
            std::fclose(file);
        }
    }
    errno = error;
}

void recordFamily(int family)
{
    record(family == AF_UNIX ? std::string(" unix") : " other " + std::to_string(family));
}

} // namespace

__attribute__((constructor)) static void recordProgram()
{
    record({});
}

// The C library's functions, put before it.

extern "C" int socket(int family, int type, int protocol) noexcept
{
    recordFamily(family);
    static const auto real = reinterpret_cast<int (*)(int, int, int)>(::dlsym(RTLD_NEXT, "socket"));
    return real(family, type, protocol);
}

extern "C" int socketpair(int family, int type, int protocol, int *ends) noexcept
{
    recordFamily(family);
    static const auto real =
        reinterpret_cast<int (*)(int, int, int, int *)>(::dlsym(RTLD_NEXT, "socketpair"));
    return real(family, type, protocol, ends);
}
