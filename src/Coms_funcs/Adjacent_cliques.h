// SPDX-License-Identifier: MIT
// Adjacent_cliques: visits, for one clique at a time, the cliques not yet visited that share enough
// nodes with it. It is what percolation uses of the clique overlap matrix, which is never stored:
// that grows with the square of the cliques of a node.
//
// This is what one level changes, carried on to the next: visited marks, posting lists, the query
// under way. The cliques are const and shared, so that several levels can run side by side.
#ifndef PLEXOR_ADJACENT_CLIQUES_H
#define PLEXOR_ADJACENT_CLIQUES_H

#include "Coms_funcs/Posting_lists.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "Coms_funcs/Visited_cliques.h"
#include "graph/Types.h"

#include <vector>

namespace cpm {

class Adjacent_cliques {
public:
    /// The cliques must outlive this. For `min_very_long` see Posting_lists.
    explicit Adjacent_cliques(Ranked_cliques const& cliques,
                              std::uint32_t min_very_long = Posting_lists::very_long);
    Adjacent_cliques(Adjacent_cliques const&) = delete;
    Adjacent_cliques& operator=(Adjacent_cliques const&) = delete;

    /// Starts a level: no clique is visited, cliques of fewer than `min_size` nodes are inactive,
    /// and the others are adjacent when they share at least `min_shared` nodes (1 or more, and at
    /// most `min_size`). Both going down from level to level is what this is made for; any other
    /// order builds the lists anew.
    void Start_level(std::uint32_t min_shared, std::uint32_t min_size);

    /// Inactive cliques count as visited.
    bool Is_visited(Clique_number clique) const { return visited_[clique]; }
    /// The first clique from this one on that is not visited, or the number of cliques.
    std::size_t Next_unvisited(std::size_t from) const { return visited_.Next_unvisited(from); }
    /// Visits every unvisited clique adjacent to `from` and appends it to `adjacent`, ascending. An
    /// active clique shares its own nodes with itself: when unvisited it is among them.
    /// `from.new_nodes` must hold a node of each of them (all_new always does).
    void Visit_adjacent(Adjacent_clique const& from, Flat_array<Adjacent_clique>& adjacent);

private:
    bool Prepare_query(Adjacent_clique const& from);
    void Visit(Clique_number clique);
    void Visit_if_adjacent(Candidate const& candidate, Flat_array<Adjacent_clique>& adjacent);

    Ranked_cliques const& cliques_;
    Visited_cliques visited_;
    Posting_lists lists_;
    std::uint32_t min_shared_ = 0;  ///< 0: no level started
    std::uint32_t min_size_ = 0;    ///< cliques of so many nodes or more are active
    Flat_array<std::uint8_t> mark_; ///< node -> 1 + its rank in the clique that asks, at most 255;
                                    ///< 0: not in it
    Adjacency_query query_;         ///< the one under way
    std::vector<Candidate> candidates_;
};

} // namespace cpm

#endif
