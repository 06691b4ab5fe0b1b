// SPDX-License-Identifier: MIT
// Takes    the clique list; then one k after the other, best from large to small.
// Leaves   the communities at k with their nodes, links and cliques.
// Order    everything: see Coms_from_appr_ovlp_matr(). A stack in place of recursion keeps it: the
//          adjacent of a clique are pushed in descending order, so that the smallest is on top and
//          all that comes of it is finished before the next one shows.
// Cost     a level: each clique of the level visited and followed once, see Adjacent_cliques.
// Tested   Percolation_test.cpp, the runs against the plain model.
#include "Coms_funcs/Percolation.h"

#include <algorithm>
#include <utility>

namespace cpm {

Percolation::Percolation(Set_list const& cliques, std::size_t n_exact, Node n_nodes,
                         Edge_numbering const& pairs, bool nested, Premerge_overlaps* stale)
    : cliques_(cliques), n_exact_(n_exact), index_(cliques, n_nodes), sets_(cliques, index_, pairs),
      nested_(nested), premerge_(stale) {}

void Percolation::Coms_from_appr_ovlp_matr(Communities& coms, std::uint32_t k) {
    std::swap(com_cliques_, coms.cliques); // what is there gives its memory
    com_cliques_.clear();
    // From stale overlaps two communities can have a clique in common: they do not nest.
    sets_.Start_level(k < last_k_ && premerge_ == nullptr);
    last_k_ = k;
    // Deliberate: at k = 0 the least overlap k - 1 is the largest number there is, so nothing is
    // found. At k = 1 cliques without a common node are still no adjacent.
    if (k > 0) {
        if (premerge_ == nullptr) {
            // A clique of k-1 nodes can only be a adjacent clique of one that holds all of it.
            std::uint32_t const min_shared = std::max(k - 1, 1U);
            index_.Start_level(min_shared, nested_ ? min_shared : k);
        } else {
            premerge_visited_.assign(cliques_.size(), false);
        }
        for (std::size_t c = Next_unvisited(0); c < cliques_.size(); c = Next_unvisited(c + 1)) {
            if (cliques_[c].size() >= k) {
                Look_for_new_com(static_cast<Clique_number>(c), k);
            }
        }
    }
    List(coms);
}

// The number of cliques when there is none.
std::size_t Percolation::Next_unvisited(std::size_t from) const {
    if (premerge_ == nullptr) {
        return index_.Next_unvisited(from);
    }
    while (from < cliques_.size() && premerge_visited_[from]) {
        ++from;
    }
    return from;
}

// Starts a community with the adjacent of an unvisited clique of k nodes or more, itself included.
void Percolation::Look_for_new_com(Clique_number first, std::uint32_t k) {
    members_.clear();
    to_follow_.clear();
    if (premerge_ == nullptr) {
        index_.Visit_adjacent({first, Adjacent_cliques::all_new}, members_);
    } else if (!Visit_row(first, k)) {
        return;
    }
    Join(0);
    Extend_com(k);
    if (premerge_ == nullptr) {
        // The first clique is its own adjacent clique and was visited with nothing new; the
        // community's nodes and links begin with all of it.
        std::ranges::find(members_, first, &Adjacent_clique::clique)->new_nodes =
            Adjacent_cliques::all_new;
    } else {
        sets_.Forget(members_);
    }
    sets_.Add_community(members_);
    com_cliques_.Close_list();
}

// Deliberate: from stale overlaps a community starts with all of a row, those that another
// community has included, and only if one of the entries is k or more.
bool Percolation::Visit_row(Clique_number first, std::uint32_t k) {
    premerge_->Row(first, k - 1, row_);
    if (std::ranges::none_of(row_,
                             [&](Clique_overlap const& entry) { return entry.shared >= k; })) {
        return false;
    }
    for (Clique_overlap const& entry : row_) {
        premerge_visited_[entry.clique] = true;
        members_.push_back({entry.clique, Adjacent_cliques::all_new});
    }
    return true;
}

void Percolation::Extend_com(std::uint32_t k) {
    while (!to_follow_.empty()) {
        Adjacent_clique const next = members_[to_follow_.back()];
        to_follow_.pop_back();
        if (std::size_t const left = to_follow_.size(); left > 3) {
            index_.Prefetch_header(members_[to_follow_[left - 4]].clique);
            index_.Prefetch_nodes(members_[to_follow_[left - 2]].clique);
        }
        std::size_t const first_new = members_.size();
        Visit_adjacent(next, k);
        Join(first_new);
    }
}

void Percolation::Visit_adjacent(Adjacent_clique const& from, std::uint32_t k) {
    if (premerge_ == nullptr) {
        index_.Visit_adjacent(from, members_);
        return;
    }
    premerge_->Row(from.clique, k - 1, row_);
    for (Clique_overlap const& entry : row_) {
        if (!premerge_visited_[entry.clique]) {
            premerge_visited_[entry.clique] = true;
            members_.push_back({entry.clique, Adjacent_cliques::all_new});
        }
    }
}

// The adjacent visited last join the community in ascending order and will be followed in it.
void Percolation::Join(std::size_t first_new) {
    for (std::size_t place = first_new; place < members_.size(); ++place) {
        com_cliques_.Append(members_[place].clique);
    }
    for (std::size_t place = members_.size(); place > first_new; --place) {
        to_follow_.push_back(static_cast<std::uint32_t>(place - 1));
    }
}

// Puts the communities into their order, exact ones first, and hands them over.
void Percolation::List(Communities& coms) {
    auto const is_exact = [&](std::uint32_t found) {
        return std::ranges::all_of(com_cliques_[found],
                                   [&](Clique_number c) { return c < n_exact_; });
    };
    order_.resize(com_cliques_.size());
    for (std::size_t i = 0; i < order_.size(); ++i) {
        order_[i] = static_cast<std::uint32_t>(i);
    }
    auto const first_approximated =
        n_exact_ >= cliques_.size() ? order_.end()
                                    : std::stable_partition(order_.begin(), order_.end(), is_exact);
    coms.n_exact = static_cast<std::uint32_t>(first_approximated - order_.begin());
    coms.nodes.clear();
    for (std::uint32_t const found : order_) {
        coms.nodes.Add(sets_.Nodes(found));
    }
    if (coms.n_exact == order_.size()) {
        std::swap(coms.cliques, com_cliques_);
    } else {
        coms.cliques.clear();
        for (std::uint32_t const found : order_) {
            coms.cliques.Add(com_cliques_[found]);
        }
    }
    coms.links = [this](std::size_t community, Link_visitor const& take) {
        sets_.Links(order_[community], take);
    };
}

} // namespace cpm
