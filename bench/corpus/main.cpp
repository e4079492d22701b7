// SPDX-License-Identifier: GPL-3.0-or-later
#include "corpus/Corpus.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>

namespace {

int usage()
{
    std::fputs("usage: plinthar_corpus [--seed=N] [--bytes=N] [--files=N] [--largest=N]\n"
               "                       [--longest-line=N] [--cjk-percent=N] PROJECTS-FOLDER\n",
               stderr);
    return 2;
}

template <typename Number>
bool takeOption(std::string_view argument, std::string_view name, Number &value)
{
    if (!argument.starts_with(name))
        return false;
    argument.remove_prefix(name.size());
    const char *const end = argument.data() + argument.size();
    const auto result = std::from_chars(argument.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

bool takeAnyOption(std::string_view argument, corpus::Shape &shape)
{
    return takeOption(argument, "--seed=", shape.seed) ||
           takeOption(argument, "--bytes=", shape.bytes) ||
           takeOption(argument, "--files=", shape.files) ||
           takeOption(argument, "--largest=", shape.largest) ||
           takeOption(argument, "--longest-line=", shape.longestLine) ||
           takeOption(argument, "--cjk-percent=", shape.cjkPercent);
}

} // namespace

int main(int argc, char **argv)
{
    corpus::Shape shape;
    const char *folder = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--", 2) != 0 && !folder)
            folder = argv[i];
        else if (!takeAnyOption(argv[i], shape))
            return usage();
    }
    if (!folder)
        return usage();
    try {
        const corpus::Truth truth = corpus::write(folder, shape);
        std::printf(
            "%llu bytes, %llu lines, %llu sessions, %llu turns, %llu records, %llu tokens\n",
            static_cast<unsigned long long>(truth.bytes),
            static_cast<unsigned long long>(truth.lines),
            static_cast<unsigned long long>(truth.sessions),
            static_cast<unsigned long long>(truth.turns),
            static_cast<unsigned long long>(truth.records),
            static_cast<unsigned long long>(truth.tokens));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "plinthar_corpus: %s\n", error.what());
        return 1;
    }
    return 0;
}
