// SPDX-License-Identifier: MIT
// The order of the acyclic sets.
//
// Takes    the surroundings of a node, sets of its centre and candidates.
// Leaves   their order.
// Order    a line grows by one node at a time, put into the gap before its first node, before its
//          second, ..., or after its last one. All lines are tried: depth first, gaps from the
//          front, in a gap ascending nodes. A set is listed when it is first met.
// Cost     a set of s nodes takes about s times s / 64 steps, and the sorting. Memory: eight bytes
//          a member, for the sets of this one node.
// Tested   Clique_find_dir_test.cpp: the literal search on random digraphs.
//
// Which of a set's lines is met first? The one that at each step takes the first gap, and in it the
// smallest node, with which the line can still be completed to the whole set. (What was tried
// before on the way and is not tried again in a gap cannot be missing then: it came with a smaller
// choice, so from there the set could not be completed.) As sets are met in the order of the steps
// to their first lines, these steps, (gap, node) one after the other, are the key of the sorting.
//
// Invariant: the first gap in which a node can be completed is the one after the last node of the
//            line that leads to it by one-way links within the set, or the gap at the front.
// Relies on: a line can be completed when its order and the one-way links close no cycle.
// Buys:      the whole line in one walk. A node not yet placed belongs to the group of the last
//            node of the line that leads to it, or of the front. From the front on, each group is
//            put into the gap after its node, the smallest one first; a node placed takes from the
//            group what it leads to as its own group, and the next one is placed before it.
// Breaks if: a node's gap were looked for among the nodes placed alone: what leads to it may do so
//            over nodes that are not placed yet.
// Pinned by: Clique_find_dir_test
#include "Clique_find/Dir_order.h"

#include "support/Bits.h"

#include <algorithm>
#include <numeric>

namespace cpm {

std::vector<std::uint32_t> const* Dir_order::Sort(Dir_surroundings const& around,
                                                  Set_list const& sets, Pace* pace) {
    order_.resize(sets.size());
    std::iota(order_.begin(), order_.end(), 0U);
    if (sets.size() < 2) {
        return &order_;
    }
    Set_up(around);
    first_lines_.clear();
    for (std::size_t i = 0; i < sets.size(); ++i) {
        Node_set const set = sets[i];
        others_.assign(n_words_, 0);
        for (Place const place : set.first(set.size() - 1)) {
            Set_bit(others_.data(), place);
        }
        first_lines_.Add(first_line_.Find(set.back(), others_, to_.data(), n_words_));
        if (pace != nullptr && pace->Spend(2 * set.size() * (n_words_ + 4))) {
            return nullptr;
        }
    }
    auto const less = [this](std::uint32_t a, std::uint32_t b) {
        return std::ranges::lexicographical_compare(first_lines_[a], first_lines_[b]);
    };
    return Sort_within(order_.begin(), order_.end(), less, pace) ? &order_ : nullptr;
}

void Dir_order::Set_up(Dir_surroundings const& around) {
    Place const centre = around.Centre();
    n_words_ = Words_for(centre);
    to_.assign((std::size_t{centre} + 1) * n_words_, 0);
    auto const add = [this](Place a, Place b, Arcs seen_from_a) {
        if (seen_from_a == Arc_to) {
            Set_bit(to_.data() + a * n_words_, b);
        } else if (seen_from_a == Arc_from) {
            Set_bit(to_.data() + b * n_words_, a);
        }
    };
    for (Place i = 0; i < centre; ++i) {
        add(centre, i, around.Arcs_with(i));
    }
    for (Local_link const& link : around.Links()) {
        add(link.candidate, link.other, link.arcs);
    }
}

std::vector<std::uint64_t> const& First_line::Find(Place centre, Words const& others,
                                                   Word const* to, std::size_t stride) {
    to_ = to;
    stride_ = stride;
    n_words_ = others.size();
    steps_.clear();
    group_ = others;
    n_groups_ = 0;
    Take_reached(centre, group_, Open_group()); // the line is the centre alone
    std::uint32_t gap = 0;
    Place_in_gap(gap, group_);
    // The groups are those of the line's nodes in their order, the first one's on top.
    while (n_groups_ > 0) {
        group_.swap(groups_[--n_groups_]);
        Place_in_gap(++gap, group_);
    }
    return steps_;
}

// Puts a group into its gap. The order of the nodes placed is the reverse of the order of placing.
void First_line::Place_in_gap(std::uint32_t gap, Words& group) {
    for (std::size_t w = 0; w < n_words_; ++w) {
        while (group[w] != 0) {
            auto const node = static_cast<Place>(w * word_bits + Lowest_bit(group[w]));
            group[w] &= group[w] - 1;
            steps_.push_back(Step(gap, node));
            Take_reached(node, group, Open_group());
        }
    }
}

// Moves what can be reached from a node by way of the group alone out of the group.
void First_line::Take_reached(Place begin, Words& group, Words& reached) {
    reached.assign(n_words_, 0);
    to_walk_.assign(1, begin);
    while (!to_walk_.empty()) {
        Word const* const row = to_ + to_walk_.back() * stride_;
        to_walk_.pop_back();
        for (std::size_t w = 0; w < n_words_; ++w) {
            Word const taken = row[w] & group[w];
            group[w] ^= taken;
            reached[w] |= taken;
            For_each_bit(taken, [&](std::size_t bit) {
                to_walk_.push_back(static_cast<Place>(w * word_bits + bit));
            });
        }
    }
}

First_line::Words& First_line::Open_group() {
    if (n_groups_ == groups_.size()) {
        groups_.emplace_back();
    }
    return groups_[n_groups_++];
}

} // namespace cpm
