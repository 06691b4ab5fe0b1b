// SPDX-License-Identifier: MIT
// The time-limited undirected search.
#ifndef PLEXOR_CLIQUE_FIND_TIME_H
#define PLEXOR_CLIQUE_FIND_TIME_H

#include "Clique_find/Ascending_walk.h"
#include "Clique_find/Clique_limit.h"
#include "Clique_find/Clock.h"
#include "Clique_find/First_check.h"
#include "Clique_find/Known_cliques.h"
#include "Clique_find/Local_cliques.h"
#include "Clique_find/Time_limited.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <vector>

namespace cpm {

/// Finds maximal cliques of three nodes or more, node by node, each node within `max_time` seconds.
/// A node that needs longer is tried again when all others have been; when every node left has
/// overrun in a row the search ends. `core` receives the nodes left then, ascending.
/// Throws Too_large at more than `max_cliques` cliques.
void Clique_find_part_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                           double max_time, Clock& clock, Progress& progress,
                           std::size_t max_cliques = max_n_cliques);

namespace Clique_find_time_sub_routines {

/// Finds the cliques of one node among the nodes not done: by way of First_check up to the first
/// look at the clock, then by way of Local_cliques; and what is kept of an attempt that has overrun
/// by way of Ascending_walk.
class Timed_node_search : public Node_finder {
public:
    /// The graph and the cliques, to which those of each node done are appended, must outlive this.
    Timed_node_search(Graph const& graph, Set_list const& cliques, Progress& progress);

    void Find(Node node, Time_budget& budget, Set_list& found) override {
        Clique_find_main_time_part(node, budget, found);
    }
    void Done(Node node) override {
        done_[node] = true;
        known_.Update();
    }

private:
    void Clique_find_main_time_part(Node node, Time_budget& budget, Set_list& found);
    void Look_around(Node node);
    bool Find_all(Node node, Set_list& found);
    bool Gather();
    std::size_t Steps_to_look_around(Node node) const;

    Graph const& graph_;
    Pace pace_;
    std::vector<bool> done_;
    Known_cliques known_;
    Placed_nodes candidates_;
    Placed_nodes excluded_;
    First_check first_check_;
    Local_cliques local_;
    Ascending_walk walk_;
    Set_list before_first_look_;
};

} // namespace Clique_find_time_sub_routines

} // namespace cpm

#endif
