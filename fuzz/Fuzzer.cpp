// SPDX-License-Identifier: GPL-3.0-or-later
#include "Target.h"

#include <cstdint>

/// libFuzzer calls this with every input that it makes up. A Broken ends the program, by which the
/// fuzzer notices.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Target::check(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    return 0;
}
