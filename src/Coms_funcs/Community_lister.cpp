// SPDX-License-Identifier: MIT
// Takes    the communities of one k after the other, as cliques.
// Leaves   them with their nodes and links.
// Order    those without an approximated clique before the others, both as they were found.
// Cost     see Community_sets.
// Tested   Percolation_test.cpp, the runs against the plain model.
#include "Coms_funcs/Community_lister.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace cpm {

Community_lister::Community_lister(Ranked_cliques const& cliques, std::size_t n_exact,
                                   Edge_numbering const& edges, bool nested)
    : n_cliques_(cliques.size()), n_exact_(n_exact), nested_(nested), sets_(cliques, edges) {}

// Invariant: cliques of one community at a larger k are in one community at this k.
// Relies on: cliques adjacent at k + 1 share k nodes, so they are adjacent at k; and a clique large
//            enough for k + 1 is large enough for k. Overlaps from before a merge are the same at
//            each k, but their communities can have cliques in common, so that nothing nests.
// Buys:      sets of nodes and links are carried from level to level; only what new cliques bring
//            is added.
// Breaks if: a level is started at the same or a larger k without giving up what was carried.
// Pinned by: Percolation_test (levels in any order), Find_coms_test (one k after the other gives
//            what each gives alone).
void Community_lister::Start_level(std::uint32_t k, Communities& coms) {
    coms.links.reset(); // so that what nobody else keeps is carried on without a copy
    sets_.Start_level(k < last_k_ && nested_);
    k_ = k;
    last_k_ = 0; // until this level is whole
}

void Community_lister::Add_sets(std::span<Adjacent_clique const> members) {
    if (!nested_) {
        sets_.Forget(members);
    }
    sets_.Add_community(members);
}

// Puts the communities into their order, exact ones first, and hands them over.
void Community_lister::List(List_of_lists<Clique_number>& com_cliques, Communities& coms) {
    last_k_ = k_;
    auto const is_exact = [&](std::uint32_t found) {
        return std::ranges::all_of(com_cliques[found],
                                   [&](Clique_number c) { return c < n_exact_; });
    };
    std::vector<std::uint32_t> order(com_cliques.size()); // place in the output -> place as found
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = static_cast<std::uint32_t>(i);
    }
    auto const first_approximated =
        n_exact_ >= n_cliques_ ? order.end()
                               : std::stable_partition(order.begin(), order.end(), is_exact);
    coms.n_exact = static_cast<std::uint32_t>(first_approximated - order.begin());
    coms.nodes.clear();
    for (std::uint32_t const found : order) {
        coms.nodes.Add(sets_.Nodes(found));
    }
    if (coms.n_exact == order.size()) {
        std::swap(coms.cliques, com_cliques);
    } else {
        coms.cliques.clear();
        for (std::uint32_t const found : order) {
            coms.cliques.Add(com_cliques[found]);
        }
    }
    coms.links = sets_.Links(std::move(order));
}

} // namespace cpm
