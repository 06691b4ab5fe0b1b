// SPDX-License-Identifier: MIT
// Percolation: from cliques to the communities of one k. At k, cliques of at least k nodes that
// share k-1 nodes or more are adjacent; a community is a connected set of them.
#ifndef PLEXOR_PERCOLATION_H
#define PLEXOR_PERCOLATION_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Community_sets.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"
#include "support/Pace.h"
#include "support/Progress.h"

#include <memory>
#include <vector>

namespace cpm {

namespace Percolation_sub {

/// How a level gets from clique to clique: by the overlaps of the cliques as they are, or by those
/// from before a merge.
class Adjacency {
public:
    virtual ~Adjacency() = default;
    /// Whether each community lies inside one community of the next smaller k.
    virtual bool Levels_nest() const = 0;
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

} // namespace Percolation_sub

class Percolation {
public:
    /// What a search has found, the number of nodes and the numbers of the links. What is found
    /// and the numbers must outlive this object.
    Percolation(Found_cliques const& found, Node n_nodes, Edge_numbering const& edges);
    /// The same of cliques, ranked before, that several of these share, each going its own way
    /// through the levels, on a thread of its own if it likes.
    Percolation(Found_cliques const& found, std::shared_ptr<Ranked_cliques const> cliques,
                Edge_numbering const& edges);

    /// Finds the communities at k, any number. They are listed in the order of their first clique,
    /// those without an approximated clique before the others; the cliques of a community in the
    /// order in which they joined: a clique brings in all unvisited cliques adjacent to it,
    /// ascending, before the first of these is looked at, which is then followed to the end before
    /// the next. What is in `coms` gives its memory. The progress, where there is one, may cancel:
    /// the next level is then found as if there had been none before.
    void Coms_from_appr_ovlp_matr(Communities& coms, std::uint32_t k, Progress* progress = nullptr);

private:
    bool Grow_community(Clique_number first, Pace& pace);
    void Join(std::size_t first_new);
    void List(Communities& coms);

    std::shared_ptr<Ranked_cliques const> cliques_;
    std::size_t n_exact_;
    std::unique_ptr<Percolation_sub::Adjacency> adjacency_;
    Community_sets sets_;
    std::uint32_t last_k_ = 0;                 ///< 0: none yet
    Flat_array<Adjacent_clique> members_;      ///< of the community under way
    Flat_array<std::uint32_t> to_follow_;      ///< places of those not yet followed, the next last
    List_of_lists<Clique_number> com_cliques_; ///< as found
};

} // namespace cpm

#endif
