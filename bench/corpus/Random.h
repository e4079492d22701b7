// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace corpus {

/// A sequence of numbers that a seed determines on every machine and with every library. (What the
/// distributions of the standard library make of a generator is left to the implementation.)
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    /// The next 64 bits, by the "splitmix64" recurrence.
    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15u;
        std::uint64_t bits = m_state;
        bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9u;
        bits = (bits ^ (bits >> 27)) * 0x94d049bb133111ebu;
        return bits ^ (bits >> 31);
    }

    /// A number from 0 to `count` - 1. Their slightly unequal shares do not matter here.
    std::uint64_t below(std::uint64_t count) { return next() % count; }

    /// A number from `least` to `most`.
    std::uint64_t between(std::uint64_t least, std::uint64_t most)
    {
        return least + below(most - least + 1);
    }

    /// True in `share` of a thousand cases.
    bool permille(std::uint64_t share) { return below(1000) < share; }

    /// One of the values, all alike.
    template <typename Values>
    const auto &oneOf(const Values &values)
    {
        return values[below(values.size())];
    }

private:
    std::uint64_t m_state;
};

/// A point of a distribution: `permille` of a thousand values are at most `value`.
struct Quantile {
    std::uint64_t permille = 0;
    std::uint64_t value = 0;
};

/// A value with these quantiles, whole numbers all the way. The last one must be at 1000.
template <size_t Count>
std::uint64_t draw(const std::array<Quantile, Count> &quantiles, Random &random)
{
    const std::uint64_t place = random.below(1'000'000);
    Quantile low = quantiles.front();
    for (const Quantile &high : quantiles) {
        const std::uint64_t width = (high.permille - low.permille) * 1000;
        if (width > 0 && place < high.permille * 1000)
            return low.value + (high.value - low.value) * (place - low.permille * 1000) / width;
        low = high;
    }
    return low.value;
}

} // namespace corpus
