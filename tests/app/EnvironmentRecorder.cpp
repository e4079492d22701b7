// SPDX-License-Identifier: GPL-3.0-or-later

// A library to be loaded into every program of a process tree. In those that are named by
// RECORD_PROGRAMS it writes the environment, variables separated by NUL, to RECORD_FOLDER/<name>.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

__attribute__((constructor)) static void record()
{
    const char *const folder = std::getenv("RECORD_FOLDER");
    const char *const programs = std::getenv("RECORD_PROGRAMS");
    const std::string name = std::string(" ") + program_invocation_short_name + ' ';
    if (!folder || !programs || !std::strstr(programs, name.c_str()))
        return;
    const std::string path = std::string(folder) + '/' + program_invocation_short_name;
    const std::string unfinished = path + '.' + std::to_string(::getpid());
    std::FILE *const file = std::fopen(unfinished.c_str(), "we");
    if (!file)
        return;
    for (char **variable = environ; *variable; ++variable)
        std::fwrite(*variable, 1, std::strlen(*variable) + 1, file);
    std::fclose(file);
    std::rename(unfinished.c_str(), path.c_str()); // whoever sees it sees all of it
}
