// SPDX-License-Identifier: MIT
// Takes    the clique list; then one k after the other, best from large to small.
// Leaves   the communities at k as cliques.
// Order    everything: see Walk() and Grow_community().
// Cost     a level: each clique of the level visited and followed once, see Adjacent_cliques.
// Tested   Percolation_test.cpp (against a stored matrix), the runs against the plain model.
#include "Coms_funcs/Percolation_walk.h"

#include "Coms_funcs/Adjacent_cliques.h"
#include "Coms_funcs/Premerge_overlaps.h"

#include <algorithm>
#include <cassert>
#include <utility>
#include <vector>

namespace cpm {

namespace {

using Percolation_walk_sub::Adjacency;

class By_overlap : public Adjacency {
public:
    By_overlap(Ranked_cliques const& cliques, bool nested) : cliques_(cliques), nested_(nested) {}

    // Deliberate: at k = 1 cliques without a common node are still not adjacent. A clique of k-1
    // nodes can only be adjacent to one that holds all of it.
    void Start_level(std::uint32_t k) override {
        std::uint32_t const min_shared = std::max(k - 1, 1U);
        cliques_.Start_level(min_shared, nested_ ? min_shared : k);
    }
    std::size_t Next_unvisited(std::size_t from) const override {
        return cliques_.Next_unvisited(from);
    }
    void Visit_first(Clique_number first, Flat_array<Adjacent_clique>& members) override {
        cliques_.Visit_adjacent({first, all_new}, members);
    }
    void Visit_adjacent(Adjacent_clique const& from,
                        Flat_array<Adjacent_clique>& members) override {
        cliques_.Visit_adjacent(from, members);
    }

private:
    Adjacent_cliques cliques_;
    bool nested_;
};

// Of two cliques that once stood elsewhere nothing is known but how many nodes they shared: what
// one brings in is taken as all new.
class By_premerge_overlap : public Adjacency {
public:
    By_premerge_overlap(Found_cliques const& found, Node n_nodes)
        : overlaps_(*found.before_merge, found.cliques, found.n_exact, n_nodes),
          visited_(found.cliques.size()) {}

    void Start_level(std::uint32_t k) override {
        k_ = k;
        std::fill(visited_.begin(), visited_.end(), false);
    }
    std::size_t Next_unvisited(std::size_t from) const override {
        while (from < visited_.size() && visited_[from]) {
            ++from;
        }
        return from;
    }
    // Deliberate: a community starts with all of a row, those that another community has included,
    // and only if one of the entries is k or more.
    void Visit_first(Clique_number first, Flat_array<Adjacent_clique>& members) override {
        overlaps_.Row(first, k_ - 1, row_);
        if (std::ranges::any_of(row_, [&](Clique_overlap const& e) { return e.shared >= k_; })) {
            for (Clique_overlap const& entry : row_) {
                Visit(entry.clique, members);
            }
        }
    }
    void Visit_adjacent(Adjacent_clique const& from,
                        Flat_array<Adjacent_clique>& members) override {
        overlaps_.Row(from.clique, k_ - 1, row_);
        for (Clique_overlap const& entry : row_) {
            if (!visited_[entry.clique]) {
                Visit(entry.clique, members);
            }
        }
    }

private:
    void Visit(Clique_number clique, Flat_array<Adjacent_clique>& members) {
        visited_[clique] = true;
        members.push_back({clique, all_new});
    }

    Premerge_overlaps overlaps_;
    std::uint32_t k_ = 0;
    std::vector<bool> visited_;
    std::vector<Clique_overlap> row_;
};

std::unique_ptr<Adjacency> Make_adjacency(Found_cliques const& found,
                                          Ranked_cliques const& cliques) {
    if (found.before_merge) {
        return std::make_unique<By_premerge_overlap>(found, cliques.Number_of_nodes());
    }
    return std::make_unique<By_overlap>(cliques, found.nested);
}

} // namespace

Ranked_cliques Rank_cliques(Found_cliques& found, Node n_nodes) {
    Ranked_cliques ranked(found.cliques, n_nodes);
    if (!found.before_merge) {
        found.cliques = Set_list();
    }
    return ranked;
}

Percolation_walk::Percolation_walk(Found_cliques const& found, Ranked_cliques const& cliques)
    : cliques_(cliques), nested_(Levels_nest(found)), adjacency_(Make_adjacency(found, cliques)) {}

void Percolation_walk::Walk(std::uint32_t k, Community_taker& taker, Progress* progress) {
    constexpr std::uint32_t cliques_a_tick = 2048;
    Pace pace(progress, cliques_a_tick);
    // Deliberate: at k = 0 the least overlap k - 1 is the largest number there is, so nothing is
    // found.
    if (k == 0) {
        return;
    }
    adjacency_->Start_level(k);
    for (std::size_t c = adjacency_->Next_unvisited(0); c < cliques_.size();
         c = adjacency_->Next_unvisited(c + 1)) {
        auto const first = static_cast<Clique_number>(c);
        if (cliques_[first].size() >= k && Grow_community(first, pace)) {
            taker.Take(members_);
        }
    }
}

// Grows the community of an unvisited clique of k nodes or more; false when it begins none.
//
// Invariant: the cliques join in the order of the recursive walk: all that a clique brings in,
//            ascending, before the first of these is followed, which is followed to the end first.
// Relies on: what a clique brings in is pushed in descending order, so that the smallest is on top
//            of the stack and all that comes of it is finished before the next one shows.
// Buys:      no recursion: a chain of cliques can be as long as the list.
// Breaks if: a clique is visited when it is followed and not when it is brought in.
// Pinned by: Percolation_test (against recursion; a chain of 300,000 cliques).
bool Percolation_walk::Grow_community(Clique_number first, Pace& pace) {
    members_.clear();
    to_follow_.clear();
    adjacency_->Visit_first(first, members_);
    if (members_.empty()) {
        return false;
    }
    Push(0);
    while (!to_follow_.empty()) {
        pace.Spend(1);
        Adjacent_clique const next = members_[to_follow_.back()];
        to_follow_.pop_back();
        if (std::size_t const left = to_follow_.size(); left > 3) {
            cliques_.Prefetch_header(members_[to_follow_[left - 4]].clique);
            cliques_.Prefetch_nodes(members_[to_follow_[left - 2]].clique);
        }
        std::size_t const first_new = members_.size();
        adjacency_->Visit_adjacent(next, members_);
        Push(first_new);
    }
    if (nested_) {
        // The first clique is adjacent to itself and was visited with nothing new; the community's
        // nodes and links begin with all of it.
        std::ranges::find(members_, first, &Adjacent_clique::clique)->new_nodes = all_new;
    }
    return true;
}

// The cliques visited last will be followed in ascending order.
void Percolation_walk::Push(std::size_t first_new) {
    for (std::size_t place = members_.size(); place > first_new; --place) {
        to_follow_.push_back(static_cast<std::uint32_t>(place - 1));
    }
}

} // namespace cpm
