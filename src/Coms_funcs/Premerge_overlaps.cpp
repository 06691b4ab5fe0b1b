// SPDX-License-Identifier: MIT
#include "Coms_funcs/Premerge_overlaps.h"

#include <algorithm>

namespace cpm {

Premerge_overlaps::Premerge_overlaps(Set_list const& before, Set_list const& cliques,
                                     std::size_t n_exact, Node n_nodes)
    : before_{&before, Groups<Clique_number>::Of_members(before, 0, std::size_t{n_nodes} + 1)},
      after_{&cliques, Groups<Clique_number>::Of_members(cliques, 0, std::size_t{n_nodes} + 1)},
      n_exact_(n_exact), seen_for_(std::max(before.size(), cliques.size()), 0) {}

void Premerge_overlaps::Row(Clique_number clique, std::uint32_t min_shared,
                            std::vector<Clique_overlap>& row) {
    row.clear();
    Old_entries(clique, min_shared, row);
    Extend_ovlp_matr(clique, min_shared, row);
    std::sort(row.begin(), row.end());
}

// The entries of the rows before the merge that nothing has been written over.
void Premerge_overlaps::Old_entries(Clique_number clique, std::uint32_t min_shared,
                                    std::vector<Clique_overlap>& row) {
    if (clique >= before_.cliques->size()) {
        return;
    }
    For_each_sharing(before_, clique, min_shared, [&](Clique_number other, std::uint32_t shared) {
        if (other < after_.cliques->size() && !Is_overwritten(clique, other)) {
            row.push_back({other, shared});
        }
    });
}

// The entries that are written when approximated cliques are added: those of an approximated clique
// with any clique it shares nodes with, and its own size.
void Premerge_overlaps::Extend_ovlp_matr(Clique_number clique, std::uint32_t min_shared,
                                         std::vector<Clique_overlap>& row) {
    For_each_sharing(after_, clique, min_shared, [&](Clique_number other, std::uint32_t shared) {
        if (clique >= n_exact_ || other >= n_exact_) {
            row.push_back({other, shared});
        }
    });
}

bool Premerge_overlaps::Is_overwritten(Clique_number a, Clique_number b) const {
    return (a >= n_exact_ || b >= n_exact_) && Shared(*after_.cliques, a, b) > 0;
}

std::uint32_t Premerge_overlaps::Shared(Set_list const& cliques, Clique_number a, Clique_number b) {
    Node_set const first = cliques[a];
    Node_set const second = cliques[b];
    std::uint32_t shared = 0;
    auto i = first.begin();
    auto j = second.begin();
    while (i != first.end() && j != second.end()) {
        if (*i == *j) {
            ++shared;
        }
        auto const smaller = *i;
        i += *i <= *j ? 1 : 0;
        j += *j <= smaller ? 1 : 0;
    }
    return shared;
}

// Takes the cliques of one side that share `min_shared` nodes or more, and at least one, with the
// clique. Each of them holds one of any size - min_shared + 1 of its nodes: take the rarest.
template <class Take>
void Premerge_overlaps::For_each_sharing(Side const& side, Clique_number clique,
                                         std::uint32_t min_shared, Take const& take) {
    Node_set const nodes = (*side.cliques)[clique];
    std::uint32_t const needed = std::max(min_shared, 1U);
    if (nodes.size() < needed) {
        return;
    }
    if (++round_ == 0) {
        std::fill(seen_for_.begin(), seen_for_.end(), 0);
        round_ = 1;
    }
    std::vector<Node> rarest(nodes.begin(), nodes.end());
    std::sort(rarest.begin(), rarest.end(),
              [&](Node a, Node b) { return side.holders[a].size() < side.holders[b].size(); });
    for (std::size_t n = 0; n + needed <= rarest.size(); ++n) {
        for (Clique_number const other : side.holders[rarest[n]]) {
            if (seen_for_[other] != round_ && (*side.cliques)[other].size() >= needed) {
                seen_for_[other] = round_;
                std::uint32_t const shared = Shared(*side.cliques, clique, other);
                if (shared >= needed) {
                    take(other, shared);
                }
            }
        }
    }
}

} // namespace cpm
