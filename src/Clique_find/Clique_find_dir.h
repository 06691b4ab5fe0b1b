// SPDX-License-Identifier: MIT
// The directed clique searches: all maximal sets of three nodes or more that can be put in a line
// such that every node has a link to every later one.
#ifndef PLEXOR_CLIQUE_FIND_DIR_H
#define PLEXOR_CLIQUE_FIND_DIR_H

#include "Clique_find/Clique_limit.h"
#include "Clique_find/Clock.h"
#include "Clique_find/Dir_first_check.h"
#include "Clique_find/Dir_kernel.h"
#include "Clique_find/Dir_order.h"
#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Gap_walk.h"
#include "Clique_find/Known_cliques.h"
#include "Clique_find/Local_cliques.h"
#include "Clique_find/Time_limited.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <vector>

namespace cpm {

/// Finds every directed clique of a directed graph. The nodes are taken by ascending number of
/// neighbours, then index; the cliques listed at a node are those whose first node it is, see
/// Dir_order. Throws Too_large at more than `max_cliques` cliques.
void Clique_find_dir(Set_list& cliques, Graph const& graph, Progress& progress,
                     std::size_t max_cliques = max_n_cliques);

/// Finds directed cliques, each node within `max_time` seconds. A node that needs longer is tried
/// again when all others have been; when every node left has overrun in a row the search ends.
/// `core` receives the nodes left then, ascending. Throws Too_large at more than `max_cliques`.
void Clique_find_dir_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                          double max_time, Clock& clock, Progress& progress,
                          std::size_t max_cliques = max_n_cliques);

namespace Clique_find_dir_sub_routines {

/// The cliques of one node after the other; holds the working memory that they share.
class Dir_node_search : public Clique_find_time_sub_routines::Node_finder {
public:
    /// Cliques are appended to the list, those of each node before it is done. It must outlive
    /// this.
    Dir_node_search(Graph const& graph, Set_list const& cliques, Progress& progress)
        : pace_(progress), known_(cliques, graph.size()), around_(graph, known_) {}

    /// Appends the cliques that hold the node and no done node.
    void Main_inc_dir_investigator(Node node, Set_list& cliques);
    /// The same within a time.
    void Main_inc_dir_inv_time(Node node, Time_budget& budget, Set_list& found);

    void Find(Node node, Time_budget& budget, Set_list& found) override {
        Main_inc_dir_inv_time(node, budget, found);
    }
    void Done(Node node) override {
        around_.Done(node);
        known_.Update();
    }

private:
    bool Find_around(std::size_t most_bytes, Set_list& cliques);
    bool Find_without_circles(std::size_t most_bytes);
    void Append_clique(Node_set places, Set_list& cliques);

    Pace pace_;
    Known_cliques known_;
    Dir_surroundings around_;
    Dir_first_check first_check_;
    Local_cliques local_;
    Dir_kernel kernel_;
    Dir_order order_;
    Gap_walk walk_;
    std::vector<Node> places_; ///< 0, 1, 2, ...
    Set_list sets_;
    std::vector<Node> clique_;
    Set_list before_first_look_;
};

} // namespace Clique_find_dir_sub_routines

} // namespace cpm

#endif
