// SPDX-License-Identifier: GPL-3.0-or-later

// The program that an AgentDouble runs.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/prctl.h>
#include <unistd.h>

int main(int argc, char **argv)
{
    constexpr std::string_view user = "--user=";
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        if (option == "--ignore-term")
            std::signal(SIGTERM, SIG_IGN);
        if (option.substr(0, user.size()) == user) {
            const auto id = static_cast<uid_t>(std::atoi(argv[i] + user.size()));
            if (::setresuid(id, id, id) != 0)
                return 1;
        }
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // after the change of user, which takes it back
    ::alarm(900);
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
        ::pause();
}
