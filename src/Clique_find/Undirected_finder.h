// SPDX-License-Identifier: MIT
// Undirected_finder: the maximal cliques of one node of an undirected network.
#ifndef PLEXOR_UNDIRECTED_FINDER_H
#define PLEXOR_UNDIRECTED_FINDER_H

#include "Clique_find/Ascending_walk.h"
#include "Clique_find/Before_first_clock.h"
#include "Clique_find/Bron_kerbosch.h"
#include "Clique_find/Finder.h"
#include "Clique_find/Known_cliques.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <memory>
#include <vector>

namespace cpm {

class Undirected_finder : public Finder {
public:
    /// The graph and the progress must outlive this.
    Undirected_finder(Graph const& graph, Progress& progress);

    void Find(Node node, Set_list& cliques) override { Clique_find_main_inv(node, cliques); }
    void Find_within(Node node, Time_budget& budget, Set_list& found) override;

private:
    // What a search within a time needs besides.
    struct Within_time {
        explicit Within_time(Graph const& graph)
            : done(graph.size() + 1, false), known(graph.size()), candidates(graph),
              excluded(graph), walk(graph) {}

        std::vector<bool> done;
        Known_cliques known;
        Placed_nodes candidates;
        Placed_nodes excluded;
        Before_first_clock before_clock;
        Ascending_walk walk;
        Set_list before_first_look;
    };

    void Clique_find_main_inv(Node node, Set_list& cliques);
    void Clique_find_main_time_part(Node node, Time_budget& budget, Set_list& found);
    void Look_around(Node node);
    bool Find_all(Node node, Set_list& found);

    enum class Outcome { gathered, nothing_to_find, time_is_up };
    template <bool by_order> Outcome Gather(Node_set candidates, Node_set excluded);
    void Mark(Node_set nodes, std::size_t first_place);
    void Unmark(Node_set nodes);
    std::span<std::uint32_t const> Marked(Node_set nodes);

    Graph const& graph_;
    Pace pace_;
    Bron_kerbosch local_;
    Flat_array<std::uint32_t> place_;   ///< node -> 1 + its place in the problem, or 0
    std::vector<std::uint32_t> marked_; ///< the places of the nodes looked at
    std::size_t steps_ = 0;             ///< of gathering at this node
    std::unique_ptr<Within_time> timed_;
};

} // namespace cpm

#endif
