// SPDX-License-Identifier: MIT
// The driver of the clique searches: which node comes when, and with a time limit what becomes of
// the sets found at a node that took too long and when the search gives up.
#ifndef PLEXOR_SEARCH_DRIVER_H
#define PLEXOR_SEARCH_DRIVER_H

#include "Clique_find/Clique_limit.h"
#include "Clique_find/Clock.h"
#include "Clique_find/Finder.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <functional>
#include <optional>
#include <vector>

namespace cpm {

/// How long a node may take.
struct Time_limit {
    double max_time; ///< in seconds
    Clock& clock;
};

/// Replaces `cliques` by all maximal cliques of three nodes or more; within a limit as far as there
/// is time. `core` receives the nodes that were not done, ascending. Tells the progress.
/// Throws Too_large at more than `max_cliques` cliques.
void Search_graph(Set_list& cliques, Graph const& graph, std::optional<Time_limit> limit,
                  std::vector<Node>& core, Progress& progress,
                  std::size_t max_cliques = max_n_cliques);

/// The same without a limit, by this finder: it is asked for the nodes in the order of the graph,
/// for each once.
void Search_graph(Set_list& cliques, Graph const& graph, Exact_finder& finder, Progress& progress,
                  std::size_t max_cliques = max_n_cliques);

/// Calls visit(clique) for the cliques that a search without a limit lists, in its order, until it
/// returns false, and returns whether it never did. The finder is used likewise. The progress is
/// told which node comes next. Keeps the cliques of one node at a time.
bool Visit_cliques(Graph const& graph, Exact_finder& finder, Progress& progress,
                   std::function<bool(Node_set)> const& visit);

/// Searches the nodes 1 to order.size(), in this order, within the limit. A node that takes longer
/// goes to the end of the queue; when all nodes in the queue have done so in a row, the search
/// ends. Leaves the cliques found, then the sets found at nodes given up that lie in no clique
/// before them, ascending. The beginning of the search has been told already.
void Search_nodes(Set_list& cliques, std::vector<Node> const& order, Finder& finder,
                  Time_limit limit, std::vector<Node>& core, Progress& progress,
                  std::size_t max_cliques = max_n_cliques);

} // namespace cpm

#endif
