// SPDX-License-Identifier: MIT
// Random numbers for tests: the same on every machine and with every library.
#ifndef PLEXOR_RANDOM_NUMBERS_H
#define PLEXOR_RANDOM_NUMBERS_H

#include <cstdint>
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

} // namespace cpm::test

#endif
