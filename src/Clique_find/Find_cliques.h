// SPDX-License-Identifier: MIT
// Find_cliques: chooses the clique search and completes its list by approximated cliques.
#ifndef PLEXOR_FIND_CLIQUES_H
#define PLEXOR_FIND_CLIQUES_H

#include "Clique_find/Clique_limit.h"
#include "Clique_find/Clock.h"
#include "Clique_find/Finder.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <optional>

namespace cpm {

/// All cliques of a run.
struct Found_cliques {
    Set_list cliques;        ///< exact ones first
    std::size_t n_exact = 0; ///< how many these are
    bool nested = false;     ///< a clique of the list may lie inside another one
    /// The exact cliques before approximated ones were merged in, kept when the merge dropped some
    /// of them: the overlaps are then still those of this list.
    std::optional<Set_list> before_merge = std::nullopt;
};

/// Finds all maximal cliques of three nodes or more. With a time limit (seconds a node, measured by
/// the clock) the nodes that take longer are given up, and their cliques approximated.
/// Throws Too_large when there are more than `max_cliques` cliques of all kinds.
void Find_cliques(Found_cliques& found, Graph const& graph, std::optional<double> max_time_per_node,
                  Clock& clock, Progress& progress, std::size_t max_cliques = max_n_cliques);

/// The same without a limit, by this finder (see Search_graph()).
void Find_cliques(Found_cliques& found, Graph const& graph, Exact_finder& finder,
                  Progress& progress, std::size_t max_cliques = max_n_cliques);

} // namespace cpm

#endif
