// SPDX-License-Identifier: MIT
// The undirected clique searches: all maximal cliques of three nodes or more, node by node.
#ifndef PLEXOR_CLIQUE_FIND_H
#define PLEXOR_CLIQUE_FIND_H

#include "Clique_find/Clique_limit.h"
#include "Clique_find/Local_cliques.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <vector>

namespace cpm {

/// Finds every maximal clique of three nodes or more of an undirected graph. The nodes are taken in
/// its order; the cliques listed at a node are those whose first node in that order it is, in
/// lexicographic order of their other nodes. Throws Too_large at more than `max_cliques` cliques.
void Clique_find(Set_list& cliques, Graph const& graph, Progress& progress,
                 std::size_t max_cliques = max_n_cliques);

namespace Clique_find_sub_routines {

/// The cliques of one node after the other; holds the working memory that they share.
class Node_search {
public:
    Node_search(Graph const& graph, Progress& progress);

    /// Appends the cliques whose first node is `node`.
    void Clique_find_main_inv(Node node, Set_list& cliques);

private:
    bool Gather(Node node);
    bool Gather_excluded(Node_set excluded, std::size_t n_candidates);
    bool Gather_links(Node_set candidates);
    std::span<std::uint32_t const> Places_of(Node_set nodes);

    Graph const& graph_;
    Pace pace_;
    Local_cliques local_;
    Flat_array<std::uint32_t> place_;   ///< node -> 1 + its place among the candidates, or 0
    std::vector<std::uint32_t> marked_; ///< the places of the nodes looked at
    std::size_t steps_ = 0;             ///< of gathering at this node
};

} // namespace Clique_find_sub_routines

} // namespace cpm

#endif
