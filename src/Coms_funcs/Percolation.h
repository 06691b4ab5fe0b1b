// SPDX-License-Identifier: MIT
// Percolation: from cliques to the communities of one k. At k, cliques of at least k nodes that
// share k-1 nodes or more are adjacent; a community is a connected set of them.
#ifndef PLEXOR_PERCOLATION_H
#define PLEXOR_PERCOLATION_H

#include "Coms_funcs/Adjacent_cliques.h"
#include "Coms_funcs/Community_sets.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Premerge_overlaps.h"
#include "graph/Types.h"

#include <vector>

namespace cpm {

class Percolation {
public:
    /// The cliques (the first `n_exact` exact, the others approximated), the number of nodes and
    /// the pairs that the links are numbered by. `nested` says whether a clique of the list may lie
    /// inside another one. `stale` has the overlaps when these are not those of the cliques as they
    /// are; it is null otherwise. All must outlive this object.
    Percolation(Set_list const& cliques, std::size_t n_exact, Node n_nodes,
                Edge_numbering const& pairs, bool nested = false,
                Premerge_overlaps* stale = nullptr);

    /// Finds the communities at k, any number. They are listed in the order of their first clique,
    /// those without an approximated clique before the others; the cliques of a community in the
    /// order in which they joined: a clique brings in all its unvisited adjacent, ascending, before
    /// the first of these is looked at, which is then followed to the end before the next.
    void Coms_from_appr_ovlp_matr(Communities& coms, std::uint32_t k);

private:
    void Look_for_new_com(Clique_number first, std::uint32_t k);
    bool Visit_row(Clique_number first, std::uint32_t k);
    void Extend_com(std::uint32_t k);
    void Visit_adjacent(Adjacent_clique const& from, std::uint32_t k);
    void Join(std::size_t first_new);
    std::size_t Next_unvisited(std::size_t from) const;
    void List(Communities& coms);

    Set_list const& cliques_;
    std::size_t n_exact_;
    Adjacent_cliques index_;
    Community_sets sets_;
    bool nested_;
    Premerge_overlaps* premerge_;
    std::vector<bool> premerge_visited_;       ///< used with stale overlaps only
    std::vector<Clique_overlap> row_;          ///< likewise
    std::uint32_t last_k_ = 0;                 ///< 0: none yet
    Flat_array<Adjacent_clique> members_;      ///< of the community under way
    Flat_array<std::uint32_t> to_follow_;      ///< places of those not yet followed, the next last
    List_of_lists<Clique_number> com_cliques_; ///< as found
    std::vector<std::uint32_t> order_;         ///< place in the output -> place as found
};

} // namespace cpm

#endif
