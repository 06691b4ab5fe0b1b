// SPDX-License-Identifier: MIT
// Community_lister: from the cliques of each community of a level to what the level gives: nodes,
// links and cliques, exact communities first.
#ifndef PLEXOR_COMMUNITY_LISTER_H
#define PLEXOR_COMMUNITY_LISTER_H

#include "Coms_funcs/Community_sets.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace cpm {

class Community_lister {
public:
    /// The cliques, of which the first `n_exact` are exact, and the numbers of the links. Both must
    /// outlive this object. `nested`: each community lies inside one community of a smaller k.
    Community_lister(Ranked_cliques const& cliques, std::size_t n_exact,
                     Edge_numbering const& edges, bool nested);

    /// Starts the level of k. What is in `coms` gives its memory. Going down from level to level,
    /// with nothing left out, is the cheapest way; other orders start afresh.
    void Start_level(std::uint32_t k, Communities& coms);
    /// Adds the sets of the next community, whose cliques are as Community_taker has them. Those
    /// that the level before had need no `new_nodes`.
    void Add_sets(std::span<Adjacent_clique const> members);
    /// Ends the level: puts the communities into their order and hands them over. `com_cliques` has
    /// their cliques as they were added; it is left with whatever memory there is to spare.
    void List(List_of_lists<Clique_number>& com_cliques, Communities& coms);

private:
    std::size_t n_cliques_;
    std::size_t n_exact_;
    bool nested_;
    Community_sets sets_;
    std::uint32_t k_ = 0;      ///< of the level under way
    std::uint32_t last_k_ = 0; ///< 0: none yet, or one that was not ended
};

} // namespace cpm

#endif
