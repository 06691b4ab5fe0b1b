// SPDX-License-Identifier: MIT
// The clique searches by their names: undirected and directed, exact and within a time.
#ifndef PLEXOR_CLIQUE_FIND_H
#define PLEXOR_CLIQUE_FIND_H

#include "Clique_find/Clique_limit.h"
#include "Clique_find/Clock.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <vector>

namespace cpm {

// All of them replace `cliques` and throw Too_large at more than `max_cliques` cliques. A clique
// has three nodes or more.

/// Finds every maximal clique of an undirected graph. The nodes are taken in its order; the cliques
/// listed at a node are those whose first node in that order it is, in lexicographic order of their
/// other nodes.
void Clique_find(Set_list& cliques, Graph const& graph, Progress& progress,
                 std::size_t max_cliques = max_n_cliques);

/// Finds every directed clique of a directed graph. The nodes are taken in its order; the cliques
/// listed at a node are those whose first node it is, see Dir_order.
void Clique_find_dir(Set_list& cliques, Graph const& graph, Progress& progress,
                     std::size_t max_cliques = max_n_cliques);

/// Finds maximal cliques of an undirected graph, each node within `max_time` seconds. A node that
/// needs longer is tried again when all others have been; when every node left has overrun in a
/// row the search ends. `core` receives the nodes left then, ascending.
void Clique_find_part_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                           double max_time, Clock& clock, Progress& progress,
                           std::size_t max_cliques = max_n_cliques);

/// The same in a directed graph.
void Clique_find_dir_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                          double max_time, Clock& clock, Progress& progress,
                          std::size_t max_cliques = max_n_cliques);

} // namespace cpm

#endif
