// SPDX-License-Identifier: MIT
// Takes    the clique list; then one k after the other, best from large to small.
// Leaves   the communities at k with their nodes, links and cliques.
// Order    everything: see Percolation_walk and Community_lister.
// Cost     the sum of these two.
// Tested   Percolation_test.cpp (against a stored matrix), the runs against the plain model.
#include "Coms_funcs/Percolation.h"

#include <utility>

namespace cpm {

Percolation::Percolation(Found_cliques const& found, std::shared_ptr<Ranked_cliques const> cliques,
                         Edge_numbering const& edges)
    : cliques_(std::move(cliques)), walk_(found, *cliques_),
      lister_(*cliques_, found.n_exact, edges, Levels_nest(found)) {}

void Percolation::Coms_from_appr_ovlp_matr(Communities& coms, std::uint32_t k, Progress* progress) {
    std::swap(com_cliques_, coms.cliques);
    com_cliques_.clear();
    lister_.Start_level(k, coms);
    walk_.Walk(k, *this, progress);
    lister_.List(com_cliques_, coms);
}

void Percolation::Take(std::span<Adjacent_clique const> members) {
    for (Adjacent_clique const& member : members) {
        com_cliques_.Append(member.clique);
    }
    com_cliques_.Close_list();
    lister_.Add_sets(members);
}

} // namespace cpm
