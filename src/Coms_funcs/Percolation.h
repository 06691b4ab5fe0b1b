// SPDX-License-Identifier: MIT
// Percolation: from cliques to the communities of one k. At k, cliques of at least k nodes that
// share k-1 nodes or more are adjacent; a community is a connected set of them.
#ifndef PLEXOR_PERCOLATION_H
#define PLEXOR_PERCOLATION_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Community_lister.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Percolation_walk.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <memory>
#include <span>

namespace cpm {

class Percolation : private Community_taker {
public:
    /// What a search has found, its cliques ranked, which need not be in `found` any more (see
    /// Rank_cliques()), and the numbers of the links. What is found and the numbers must outlive
    /// this object. Several can share the cliques, each going its own way through the levels, on a
    /// thread of its own if it likes.
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
    void Take(std::span<Adjacent_clique const> members) override;

    std::shared_ptr<Ranked_cliques const> cliques_;
    Percolation_walk walk_;
    Community_lister lister_;
    List_of_lists<Clique_number> com_cliques_; ///< as found
};

} // namespace cpm

#endif
