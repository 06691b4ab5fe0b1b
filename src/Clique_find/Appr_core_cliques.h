// SPDX-License-Identifier: MIT
// What stands in for the cliques of the nodes that a time-limited search has given up: one
// candidate a node, cheap to get.
#ifndef PLEXOR_APPR_CORE_CLIQUES_H
#define PLEXOR_APPR_CORE_CLIQUES_H

#include "graph/Graph.h"
#include "graph/Types.h"

#include <vector>

namespace cpm {

/// The nodes given up, ascending, and the neighbours of each among them.
struct Core {
    std::vector<Node> nodes;
    Set_list neighs; ///< entry i belongs to nodes[i]
};

/// The core of the given nodes, ascending. Links in either direction make neighbours.
Core Core_of_nodes(std::vector<Node> const& nodes, Graph const& graph);

/// Replaces `approx` by the approximated cliques: of the neighbourhoods in the core, by ascending
/// nodes, those that lie in no other neighbourhood (of equal ones the first stays) and in no exact
/// clique. A node is not in its own neighbourhood, and its neighbours need not be linked.
void Appr_core_cliques(Core const& core, Set_list const& exact, Set_list& approx);

/// Joins the lists: `cliques` becomes those of its cliques that lie in no approximated one,
/// followed by the approximated ones that lie in none of its cliques (as they were); `approx` keeps
/// the latter, `n_exact` becomes the number of the former. Returns whether cliques were dropped.
/// `directed` says how the network was searched.
bool Extend_clique_vec(Set_list& cliques, std::size_t& n_exact, Set_list& approx, bool directed);

/// The largest number of nodes of a clique in the list, 0 for no cliques.
std::uint32_t Max_clique_size_in_cl_vec(Set_list const& cliques);

} // namespace cpm

#endif
