// SPDX-License-Identifier: MIT
// The search under a time limit, node by node.
//
// Takes    the nodes in their order, a finder of the cliques of one node.
// Leaves   the cliques of the nodes done; then what was found at the nodes given up.
// Order    the nodes done, in the order they were done; then the pending sets, lexicographically.
// Cost     beside the finder's: a node a report; pending sets are hashed, at the end sorted, and
//          only those of three nodes are looked for in the clique list. Memory: of the pending
//          sets no more than most_bytes_pending, and as much again for their list.
// Tested   Time_limited_test.cpp, Clique_find_test.cpp, Clique_find_dir_test.cpp.
#include "Clique_find/Time_limited.h"

#include "Clique_find/Subset_index.h"

#include <algorithm>
#include <deque>
#include <numeric>

namespace cpm::Clique_find_time_sub_routines {

std::uint64_t Pending_sets::Hash(Node_set set) {
    std::uint64_t hash = set.size();
    for (Node const node : set) {
        hash = (hash ^ node) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 29;
    }
    return hash;
}

void Pending_sets::Add(Set_list const& found) {
    if (Bytes() >= bytes_to_drop_at_) {
        Drop_done();
        bytes_to_drop_at_ = std::max(bytes_to_drop_at_, 2 * Bytes());
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (found[i].size() > 3 && !Has_room(found[i])) {
            return;
        }
        Add(found[i]);
    }
}

bool Pending_sets::Has_room(Node_set set) {
    std::size_t const bytes = set.size() * sizeof(Node) + bytes_a_set;
    if (Bytes() + bytes <= most_bytes_) {
        return true;
    }
    if (n_dropped_for_room_ == n_done_) {
        return false; // nothing has been done since this was tried last
    }
    n_dropped_for_room_ = n_done_;
    Drop_done();
    return Bytes() + bytes <= most_bytes_;
}

void Pending_sets::Add(Node_set set) {
    std::uint64_t const hash = Hash(set);
    std::size_t const mask = slots_.size() - 1;
    std::size_t slot = hash & mask;
    for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
        std::uint32_t const other = slots_[slot] - 1;
        if (hashes_[other] == hash && std::ranges::equal(sets_[other], set)) {
            return;
        }
    }
    sets_.Add(set);
    hashes_.push_back(hash);
    slots_[slot] = static_cast<std::uint32_t>(sets_.size());
    if (2 * sets_.size() >= slots_.size()) {
        Fill_slots(2 * slots_.size());
    }
}

void Pending_sets::Fill_slots(std::size_t n_slots) {
    slots_.clear();
    slots_.Resize(n_slots, 0);
    std::size_t const mask = n_slots - 1;
    for (std::size_t i = 0; i < sets_.size(); ++i) {
        std::size_t slot = hashes_[i] & mask;
        while (slots_[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots_[slot] = static_cast<std::uint32_t>(i + 1);
    }
}

void Pending_sets::Drop_done() {
    std::size_t n_kept = 0;
    sets_.Keep_if([&](std::size_t i) {
        bool const keep = std::ranges::none_of(sets_[i], [&](Node node) { return done_[node]; });
        if (keep) {
            hashes_[n_kept++] = hashes_[i];
        }
        return keep;
    });
    hashes_.Resize_uninitialised(n_kept);
    Fill_slots(slots_.size());
}

void Pending_sets::Finish() {
    Drop_done();
    slots_.Release();
    hashes_.Release();
}

namespace {

constexpr std::size_t steps_a_comparison = 64;

// The pending sets of three nodes, and which nodes they speak of.
struct Triples {
    std::vector<std::uint32_t> places; ///< in the order of all pending sets
    std::vector<bool> nodes;
};

// Invariant: the cliques hold every clique of the network that has a done node, and no other sets.
// Relies on: a node is done only after a search that came to its end.
// Buys:      a set that no node extends is one of the cliques exactly when it has a done node, and
//            lies in no other one. Sets with a done node are gone already; and only sets of three
//            nodes, of which that is not known (see Node_finder), must be looked for.
// Breaks if: a finder leaves a set of four nodes or more that some node extends.
// Pinned by: Time_limited_test, Clique_find_dir_test
void Register_pending(Set_list& cliques, Pending_sets& pending_sets, std::size_t n_nodes,
                      Progress& progress) {
    Pace pace(progress);
    pending_sets.Finish();
    Set_list const& pending = pending_sets.Sets();
    std::vector<std::uint32_t> order(pending.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        pace.Spend(steps_a_comparison);
        return std::ranges::lexicographical_compare(pending[a], pending[b]);
    });
    Triples triples;
    triples.nodes.resize(n_nodes + 1, false);
    for (std::uint32_t place = 0; place < order.size(); ++place) {
        if (pending[order[place]].size() == 3) {
            triples.places.push_back(place);
            for (Node const node : pending[order[place]]) {
                triples.nodes[node] = true;
            }
        }
    }
    std::vector<bool> keep(pending.size(), true);
    if (!triples.places.empty()) {
        std::vector<std::uint32_t> place_of(pending.size());
        for (std::uint32_t place = 0; place < order.size(); ++place) {
            place_of[order[place]] = place;
        }
        Subset_index const in_cliques(cliques, &triples.nodes);
        Subset_index const in_pending(pending, &triples.nodes);
        for (std::uint32_t const place : triples.places) {
            // An earlier set that is dropped lies in a clique itself, which so holds this one, too.
            Node_set const set = pending[order[place]];
            keep[place] = !in_cliques.Any_holder(set) &&
                          !in_pending.Any_holder(
                              set, [&](std::uint32_t other) { return place_of[other] < place; });
            pace.Spend(steps_a_comparison);
        }
    }
    for (std::size_t place = 0; place < order.size(); ++place) {
        if (keep[place]) {
            cliques.Add(pending[order[place]]);
        }
    }
}

std::uint32_t Count(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

} // namespace

void Search_in_time(Set_list& cliques, std::vector<Node> const& order, Node_finder& finder,
                    double max_time, Clock& clock, std::vector<Node>& core, Progress& progress,
                    std::size_t max_cliques) {
    cliques.clear();
    std::deque<Node> queue(order.begin(), order.end());
    Pending_sets pending(order.size());
    Set_list found;
    std::uint32_t skipped_in_row = 0;
    bool go_on = true;
    while (!queue.empty() && go_on) {
        // Invariant: the queue holds just the nodes that are not done.
        progress.Node_started(Count(queue.size()), Count(order.size()));
        Node const node = queue.front();
        queue.pop_front();
        found.clear();
        Time_budget budget(clock, max_time);
        finder.Find(node, budget, found);
        if (!budget.Too_slow()) {
            for (std::size_t i = 0; i < found.size(); ++i) {
                cliques.Add(found[i]);
            }
            Check_n_cliques(cliques.size(), max_cliques);
            pending.Done(node);
            finder.Done(node);
            skipped_in_row = 0;
            continue;
        }
        queue.push_back(node);
        pending.Add(found);
        ++skipped_in_row;
        progress.Node_overran(node, skipped_in_row, Count(queue.size()));
        if (skipped_in_row >= queue.size()) {
            progress.Remaining_nodes_too_hard();
            go_on = false;
        }
    }

    core.assign(queue.begin(), queue.end());
    std::sort(core.begin(), core.end());
    if (!core.empty()) {
        Register_pending(cliques, pending, order.size(), progress);
        Check_n_cliques(cliques.size(), max_cliques);
    }
    progress.Search_done(Count(cliques.size()), core.empty());
    cliques.Shrink_to_fit();
}

} // namespace cpm::Clique_find_time_sub_routines
