// SPDX-License-Identifier: MIT
// Premerge_overlaps: the clique overlap matrix in the rare state in which it does not fit its
// cliques.
//
// A time-limited search leaves the rows of the exact cliques it has found. When approximated
// cliques are merged in, exact cliques that lie inside one of them are dropped, and those after
// them move up; the rows stay as they were. Extend_ovlp_matr() then writes the overlaps with
// approximated cliques over and after them. So an entry of two exact cliques is that of the
// cliques that once stood at these two positions, and so is one of an approximated clique that now
// shares nothing. Deliberate: communities are found from the rows as they are. Pinned by
// Premerge_overlaps_test.cpp and the time-limited directed runs against the plain model.
#ifndef PLEXOR_PREMERGE_OVERLAPS_H
#define PLEXOR_PREMERGE_OVERLAPS_H

#include "graph/Types.h"
#include "support/Grouping.h"

#include <vector>

namespace cpm {

/// An entry of a row.
struct Clique_overlap {
    Clique_number clique = 0;
    std::uint32_t shared = 0;
    friend auto operator<=>(Clique_overlap const&, Clique_overlap const&) = default;
};

class Premerge_overlaps {
public:
    /// The cliques before the merge and those after it, of which the first `n_exact` are exact.
    /// Both must outlive this object.
    Premerge_overlaps(Set_list const& before, Set_list const& cliques, std::size_t n_exact,
                      Node n_nodes);

    /// Leaves in `row` the entries of the clique's row that are `min_shared` or more, ascending by
    /// clique. Entries of positions after the last clique are ignored.
    void Row(Clique_number clique, std::uint32_t min_shared, std::vector<Clique_overlap>& row);

private:
    // A clique list with the cliques of each node.
    struct Side {
        Set_list const* cliques = nullptr;
        Groups<Clique_number> holders; ///< by node
    };

    void Extend_ovlp_matr(Clique_number clique, std::uint32_t min_shared,
                          std::vector<Clique_overlap>& row);
    void Old_entries(Clique_number clique, std::uint32_t min_shared,
                     std::vector<Clique_overlap>& row);
    template <class Take>
    void For_each_sharing(Side const& side, Clique_number clique, std::uint32_t min_shared,
                          Take const& take);
    static std::uint32_t Shared(Set_list const& cliques, Clique_number a, Clique_number b);
    bool Is_overwritten(Clique_number a, Clique_number b) const;

    Side before_;
    Side after_;
    std::size_t n_exact_;
    std::vector<Clique_number> seen_for_; ///< clique -> the round in which it was looked at
    Clique_number round_ = 0;
};

} // namespace cpm

#endif
