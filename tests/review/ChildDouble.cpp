// SPDX-License-Identifier: GPL-3.0-or-later

// A program with as many manners as there are ways to trouble whoever runs it. Every manner ends by
// itself.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void put(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written <= 0)
            std::exit(99);
        bytes.remove_prefix(static_cast<size_t>(written));
    }
}

/// The bytes of both streams in turns, so that neither can be read after the other.
int flood(size_t bytes)
{
    const std::string block(4096, 'o');
    const std::string errors(4096, 'e');
    for (size_t done = 0; done < bytes; done += block.size()) {
        put(1, block);
        put(2, errors);
    }
    return 0;
}

/// All of one stream before the first byte of the other.
int floodOneByOne(size_t bytes)
{
    put(2, std::string(bytes, 'e'));
    put(1, std::string(bytes, 'o'));
    return 0;
}

int closeEarly()
{
    put(1, "before");
    ::close(0);
    ::close(1);
    ::close(2);
    ::usleep(100'000);
    return 5;
}

int echoInput()
{
    char buffer[65536];
    for (ssize_t count = 0; (count = ::read(0, buffer, sizeof buffer)) > 0;)
        put(1, {buffer, static_cast<size_t>(count)});
    return 0;
}

/// Ends at once, and leaves a child that holds both streams until the file is gone.
int leaveGrandchild(const char *file)
{
    const int marker = ::open(file, O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ::close(marker);
    put(1, "last words");
    if (::fork() == 0) {
        for (int turn = 0; turn < 6000 && ::access(file, F_OK) == 0; ++turn)
            ::usleep(10'000);
        ::_exit(0);
    }
    return 3;
}

/// A character of three bytes around every place at which a reader might stop, an end inside
/// another one, and some bytes that are no text at all.
int brokenText()
{
    put(1, "\xef\xbb\xbf");
    for (int i = 0; i < 50'000; ++i)
        put(1, std::string_view("\xe2\x82\xac").substr(0, 2)), put(1, "\xac");
    put(1, "\xff\xc3(");
    put(1, std::string_view("\0", 1));
    put(1, "\xe2\x82");
    put(2, "bad \xfe!");
    return 0;
}

void printInput()
{
    char target[4096];
    const ssize_t length = ::readlink("/proc/self/fd/0", target, sizeof target - 1);
    std::printf("%.*s", static_cast<int>(length < 0 ? 0 : length), target);
}

/// Nothing but the three streams is to be open in a child.
void printOpenFiles()
{
    for (int fd = 0; fd < 1024; ++fd)
        if (::fcntl(fd, F_GETFD) != -1)
            std::printf("%d ", fd);
}

void printSignals()
{
    struct sigaction action = {};
    ::sigaction(SIGPIPE, nullptr, &action);
    sigset_t blocked;
    ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
    std::printf("%s %s", action.sa_handler == SIG_DFL ? "default" : "other",
                ::sigismember(&blocked, SIGTERM) ? "blocked" : "free");
}

} // namespace

int main(int argc, char **argv)
{
    const std::string_view manner = argc > 1 ? argv[1] : "";
    const char *argument = argc > 2 ? argv[2] : "";
    if (manner == "exit")
        return std::atoi(argument);
    if (manner == "flood")
        return flood(static_cast<size_t>(std::atoll(argument)));
    if (manner == "flood-one-by-one")
        return floodOneByOne(static_cast<size_t>(std::atoll(argument)));
    if (manner == "close-early")
        return closeEarly();
    if (manner == "echo")
        return echoInput();
    if (manner == "grandchild")
        return leaveGrandchild(argument);
    if (manner == "broken-text")
        return brokenText();
    if (manner == "kill-self") {
        const rlimit noCoreFile = {0, 0};
        ::setrlimit(RLIMIT_CORE, &noCoreFile);
        put(1, "before");
        std::signal(std::atoi(argument), SIG_DFL);
        std::raise(std::atoi(argument));
    }
    if (manner == "input")
        printInput();
    if (manner == "open-files")
        printOpenFiles();
    if (manner == "signals")
        printSignals();
    if (manner == "arguments")
        for (int i = 2; i < argc; ++i)
            std::printf("[%s]", argv[i]);
    if (manner == "folder") {
        char folder[4096];
        std::printf("%s", ::getcwd(folder, sizeof folder));
    }
    if (manner == "variable") {
        const char *value = std::getenv(argument);
        std::printf("%s", value ? value : "(unset)");
    }
    return 0;
}
