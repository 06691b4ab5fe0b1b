// SPDX-License-Identifier: MIT
// Signatures: eight bytes that stand for a clique in a posting list, and the scan along many of
// them, as in signature files. Percolation spends most of its time in this scan, so there is one
// for each generation of processors; all of them find the same.
#ifndef PLEXOR_SIGNATURES_H
#define PLEXOR_SIGNATURES_H

#include "graph/Types.h"

#include <vector>

namespace cpm {

/// The size of a clique in the low byte, and above it a bit for each of its nodes (several may
/// share one). A clique too large for the byte has 255 there and no bits, which rules nothing out.
using Signature = std::uint64_t;

constexpr Signature signature_size_mask = 0xFF;

/// The bit that stands for the node.
Signature Signature_bit(Node node);
/// The bits of all nodes, without the size.
Signature Signature_bits(Node_set nodes);
/// The signature of a clique of these nodes.
Signature Signature_of(Node_set nodes);

/// What one clique asks of a list.
struct Signature_query {
    Signature bits = 0;           ///< those of its nodes
    Signature needed = 0;         ///< an adjacent clique has one of these bits
    std::uint64_t min_shared = 0; ///< nodes that an adjacent clique has in common with it
};

/// Writes the places of the signatures that can belong to an adjacent clique, ascending, to
/// `places`, and returns how many there are. `places` has room for all of them and `scan_slack`
/// more, which are written to without meaning.
constexpr std::size_t scan_slack = 8;
using Signature_scan = std::size_t (*)(Signature const* signatures, std::size_t count,
                                       Signature_query const& query, std::uint32_t* places);

/// The fastest scan that this machine can do.
Signature_scan Fastest_scan();
/// Every scan that this machine can do, for tests.
std::vector<Signature_scan> All_scans();

} // namespace cpm

#endif
