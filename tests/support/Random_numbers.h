// SPDX-License-Identifier: MIT
// Random numbers for tests: the same on every machine and with every library; and how many cases a
// test draws.
#ifndef PLEXOR_RANDOM_NUMBERS_H
#define PLEXOR_RANDOM_NUMBERS_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>

namespace cpm::test {

class Random_numbers {
public:
    explicit Random_numbers(std::uint32_t seed) : engine_(seed) {}
    /// 0 to `end` - 1. (The standard's distributions differ between libraries.)
    std::uint32_t Below(std::uint32_t end) {
        return static_cast<std::uint32_t>(std::uint64_t{engine_()} * end >> 32);
    }
    bool Percent(std::uint32_t chance) { return Below(100) < chance; }

private:
    std::mt19937 engine_;
};

/// How many random cases to try: so many, or, where the environment variable PLEXOR_TEST_ROUNDS has
/// a number, so many times that. All of the first come up in the second.
inline unsigned Rounds(unsigned quick) {
    char const* const times = std::getenv("PLEXOR_TEST_ROUNDS");
    return quick * static_cast<unsigned>(times == nullptr ? 1 : std::max(1, std::atoi(times)));
}

} // namespace cpm::test

#endif
