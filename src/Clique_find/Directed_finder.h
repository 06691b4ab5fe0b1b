// SPDX-License-Identifier: MIT
// Directed_finder: the maximal sets with one node of a directed network that can be put in a line
// such that every node has a link to every later one.
#ifndef PLEXOR_DIRECTED_FINDER_H
#define PLEXOR_DIRECTED_FINDER_H

#include "Clique_find/Bron_kerbosch.h"
#include "Clique_find/Dir_before_first_clock.h"
#include "Clique_find/Dir_order.h"
#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Directed_bron_kerbosch.h"
#include "Clique_find/Finder.h"
#include "Clique_find/Gap_walk.h"
#include "Clique_find/Known_cliques.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <limits>
#include <vector>

namespace cpm {

class Directed_finder : public Finder {
public:
    /// The graph and the progress must outlive this.
    Directed_finder(Graph const& graph, Progress& progress)
        : pace_(progress), known_(graph.size()), around_(graph, known_) {}

    void Find(Node node, Set_list& cliques) override { Main_inc_dir_investigator(node, cliques); }
    void Find_within(Node node, Time_budget& budget, Set_list& found) override;

private:
    static constexpr std::size_t no_bound = std::numeric_limits<std::size_t>::max();

    void Main_inc_dir_investigator(Node node, Set_list& cliques);
    void Main_inc_dir_inv_time(Node node, Time_budget& budget, Set_list& found);
    bool Find_around(std::size_t max_bytes, Set_list& cliques);
    bool Find_acyclic(std::size_t max_bytes);
    void Append_clique(Node_set places, Set_list& cliques);

    Pace pace_;
    Known_cliques known_;
    Dir_surroundings around_;
    Dir_before_first_clock before_clock_;
    Bron_kerbosch local_;
    Directed_bron_kerbosch kernel_;
    Dir_order order_;
    Gap_walk walk_;
    bool acyclic_ = false;     ///< the one-way links around the node
    std::vector<Node> places_; ///< 0, 1, 2, ...
    Set_list sets_;
    std::vector<Node> clique_;
    Set_list before_first_look_;
};

} // namespace cpm

#endif
