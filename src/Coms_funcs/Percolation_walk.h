// SPDX-License-Identifier: MIT
// Percolation_walk: which cliques make a community at one k, and in which order they join it. What
// the communities hold is not its business: a level needs nothing of any other one to be walked, so
// that several can be walked side by side, on threads of their own.
#ifndef PLEXOR_PERCOLATION_WALK_H
#define PLEXOR_PERCOLATION_WALK_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"
#include "support/Pace.h"
#include "support/Progress.h"

#include <memory>
#include <span>

namespace cpm {

/// Whether each community lies inside one community of the next smaller k.
inline bool Levels_nest(Found_cliques const& found) {
    return !found.before_merge;
}

/// Ranks the cliques and gives back those found, but where their overlaps are from before a merge,
/// which are found in them as they are.
Ranked_cliques Rank_cliques(Found_cliques& found, Node n_nodes);

/// Takes the communities of a level as they are found.
class Community_taker {
public:
    virtual ~Community_taker() = default;
    /// The cliques of the next community in the order in which they joined, each with the nodes
    /// that the clique which led to it lacks; the one that it began with brings all of its nodes.
    virtual void Take(std::span<Adjacent_clique const> members) = 0;
};

namespace Percolation_walk_sub {

/// How a level gets from clique to clique: by the overlaps of the cliques as they are, or by those
/// from before a merge.
class Adjacency {
public:
    virtual ~Adjacency() = default;
    /// Starts the level of k, 1 or more: no clique is visited.
    virtual void Start_level(std::uint32_t k) = 0;
    /// The first clique from this one on that is not visited, or the number of cliques.
    virtual std::size_t Next_unvisited(std::size_t from) const = 0;
    /// Visits the cliques that a community begins with and appends them, ascending; none when
    /// `first`, unvisited and of k nodes or more, begins no community.
    virtual void Visit_first(Clique_number first, Flat_array<Adjacent_clique>& members) = 0;
    /// Visits the unvisited cliques adjacent to `from` and appends them, ascending.
    virtual void Visit_adjacent(Adjacent_clique const& from,
                                Flat_array<Adjacent_clique>& members) = 0;
};

} // namespace Percolation_walk_sub

class Percolation_walk {
public:
    /// What a search has found, and its cliques ranked, which need not be in `found` any more (see
    /// Rank_cliques()): several walks can share them, each on a thread of its own. Both must
    /// outlive this object.
    Percolation_walk(Found_cliques const& found, Ranked_cliques const& cliques);

    /// Hands out the communities at k, any number, in the order of their first clique: see
    /// Percolation. Going down from level to level is the cheapest way. The progress, where there
    /// is one, may cancel; the next level is not affected by that.
    void Walk(std::uint32_t k, Community_taker& taker, Progress* progress = nullptr);

private:
    bool Grow_community(Clique_number first, Pace& pace);
    void Push(std::size_t first_new);

    Ranked_cliques const& cliques_;
    bool nested_; ///< see Levels_nest()
    std::unique_ptr<Percolation_walk_sub::Adjacency> adjacency_;
    Flat_array<Adjacent_clique> members_; ///< of the community under way
    Flat_array<std::uint32_t> to_follow_; ///< places of those not yet followed, the next last
};

} // namespace cpm

#endif
