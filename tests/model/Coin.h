// SPDX-License-Identifier: MIT
// Coin: which attempts at nodes overrun their time, by chance but the same everywhere. The program
// of the tests and the plain model toss the same coin.
#ifndef PLEXOR_COIN_H
#define PLEXOR_COIN_H

#include <cstdint>

namespace cpm::model {

struct Coin {
    std::uint32_t seed = 0;
    std::uint32_t percent = 0; ///< of the attempts that overrun; 0: no coin is tossed

    /// Whether the attempt with this number, counted from 1, overruns.
    bool Overruns(std::uint64_t attempt) const {
        std::uint64_t x = (std::uint64_t{seed} << 32) + attempt;
        x = (x ^ (x >> 31)) * 0x9E3779B97F4A7C15U;
        x = (x ^ (x >> 29)) * 0xBF58476D1CE4E5B9U;
        return (x >> 32) % 100 < percent;
    }
};

/// What a clock shows, in seconds, when the time of an attempt is up: more than any limit.
constexpr double coin_time_is_up = 1e300;

} // namespace cpm::model

#endif
