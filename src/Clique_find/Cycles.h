// SPDX-License-Identifier: MIT
// Cycles: whether links that run one way lead back to where they began.
#ifndef PLEXOR_CYCLES_H
#define PLEXOR_CYCLES_H

#include <cstddef>
#include <cstdint>
#include <span>

namespace cpm {

/// A link from the first to the second of two things that are numbered from 0.
struct One_way_link {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
};

/// Whether some of the links, among things numbered below `n`, close a cycle.
bool Has_cycle(std::span<One_way_link const> links, std::size_t n);

} // namespace cpm

#endif
