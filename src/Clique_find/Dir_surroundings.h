// SPDX-License-Identifier: MIT
// Dir_surroundings: what the directed search sees from one node: the neighbours that are not done,
// its candidates, the done ones, which are excluded, and the links of the candidates with both.
#ifndef PLEXOR_DIR_SURROUNDINGS_H
#define PLEXOR_DIR_SURROUNDINGS_H

#include "Clique_find/Known_cliques.h"
#include "Clique_find/Time_budget.h"
#include "graph/Graph.h"
#include "graph/Types.h"

#include <cstdint>
#include <vector>

namespace cpm {

/// A place in the surroundings: candidates have the places 0, 1, ... by ascending index; then comes
/// the node in the centre, then come the excluded nodes.
using Place = std::uint32_t;

/// A link of a candidate with another candidate or an excluded node.
struct Local_link {
    Place candidate = 0;
    Place other = 0;
    Arcs arcs = 0; ///< seen from the candidate
};

/// One of a candidate's neighbours there.
struct Local_neighbour {
    Place place = 0;
    Arcs arcs = 0; ///< seen from the candidate
};

class Dir_surroundings {
public:
    /// No node is done yet. The graph, which is directed, and what is known must outlive this.
    Dir_surroundings(Graph const& graph, Known_cliques const& known);

    void Done(Node node);

    /// Looks at the neighbours of a node that is not done, and not yet at the links among them.
    /// False when there are fewer than two candidates, or one known clique holds all.
    bool Look_around(Node node);
    /// The same where just the nodes are done that come earlier in the order of the graph.
    bool Look_around_by_order(Node node);
    /// After that: lists the candidates, and then the excluded nodes, that a candidate is linked
    /// with, in each case ascending. Returns the steps that this took.
    std::size_t List_neighbours(Place candidate, std::vector<Local_neighbour>& neighbours);

    /// Gathers the links. Candidates without a link to another candidate and excluded nodes with
    /// less than two links are left out: a clique has three nodes or more. The others change their
    /// places. False when no candidates are left then, or the pace ended it.
    bool Gather_links(Pace& pace);

    Place N_places() const { return static_cast<Place>(names_.size()); }
    /// The place of the node itself, which is also the number of the candidates.
    Place Centre() const { return centre_; }
    Node Name(Place place) const { return names_[place]; }
    /// How the node in the centre is linked with those in the other places.
    Arcs Arcs_with(Place place) const { return arcs_[place]; }
    /// The links between candidates, each listed once.
    std::span<Local_link const> Links() const { return {links_.data(), links_.size()}; }
    /// The links between candidates and excluded nodes, ascending by excluded nodes.
    std::span<Local_link const> Excluded_links() const {
        return {excluded_links_.data(), excluded_links_.size()};
    }

    /// Whether some link among the node and its candidates has no reverse.
    bool One_way() const { return one_way_; }
    /// False when no one-way links among the node, its candidates and one excluded node close a
    /// cycle. (True says nothing.)
    bool May_have_cycles() const;

private:
    void Forget();
    bool Look_at(Node node);
    bool Walk_links(Pace& pace);
    void Leave_out_idle_nodes();
    void Renumber(Flat_array<Local_link>& links) const;

    Graph const& graph_;
    Known_cliques const& known_;
    std::vector<bool> done_;  ///< empty as long as no node is done
    Flat_array<Place> place_; ///< node -> 1 + its place (the centre has none), or 0
    bool marked_ = false;     ///< place_ tells the places of the names

    Place centre_ = 0;
    bool one_way_ = false;
    Flat_array<Node> names_; ///< by place
    Flat_array<Arcs> arcs_;
    Flat_array<Local_link> links_;
    Flat_array<Local_link> excluded_links_;
    // Within one step:
    std::vector<Local_neighbour> excluded_neighbours_;
    Flat_array<Node> excluded_names_;
    Flat_array<Arcs> excluded_arcs_;
    Flat_array<Place> kept_; ///< place -> 1 + its place without the idle nodes, or 0
};

} // namespace cpm

#endif
