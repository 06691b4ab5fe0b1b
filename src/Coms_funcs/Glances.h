// SPDX-License-Identifier: MIT
// Glances: what the lists of the Overlap_index tell of a clique at first sight, eight bytes each,
// and the walk along many of them. Percolation spends most of its time in this walk, so there is
// one for each generation of processors; all of them find the same.
#ifndef PLEXOR_GLANCES_H
#define PLEXOR_GLANCES_H

#include "graph/Types.h"

#include <vector>

namespace cpm {

/// The size of a clique in the low byte, and above it a bit for each of its nodes (several may
/// share one). A clique too large for the byte has 255 there and no bits, which rules nothing out.
using Glance = std::uint64_t;

constexpr Glance glance_size_mask = 0xFF;

/// The bit that stands for the node.
Glance Glance_bit(Node node);
/// The bits of all nodes, without the size.
Glance Glance_bits(Node_set nodes);
/// The glance at a clique of these nodes.
Glance First_sight(Node_set nodes);

/// What one clique asks of a list.
struct Glance_question {
    Glance bits = 0;                ///< those of its nodes
    Glance needed = 0;              ///< a partner has one of these bits
    std::uint64_t least_shared = 0; ///< nodes that a partner has in common with it
};

/// Writes the places of the glances that can belong to a partner, ascending, to `places`, and
/// returns how many there are. `places` has room for all of them and `glance_walk_slack` more,
/// which are written to without meaning.
constexpr std::size_t glance_walk_slack = 8;
using Glance_walk = std::size_t (*)(Glance const* glances, std::size_t count,
                                    Glance_question const& question, std::uint32_t* places);

/// The fastest walk that this machine can do.
Glance_walk Fastest_glance_walk();
/// Every walk that this machine can do, for tests.
std::vector<Glance_walk> Glance_walks();

} // namespace cpm

#endif
