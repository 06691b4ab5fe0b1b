// SPDX-License-Identifier: MIT
// The search under a time limit, node by node.
//
// Takes    the nodes in their order, a finder of the cliques of one node.
// Leaves   the cliques of the nodes done; then what was found at the nodes given up.
// Order    the nodes done, in the order they were done; then the pending sets, lexicographically.
// Cost     beside the finder's: a node a report; pending sets are hashed, at the end sorted, and
//          only those of three nodes are looked for in the clique list. Memory: the pending sets.
// Tested   Time_limited_test.cpp, Clique_find_test.cpp, Clique_find_dir_test.cpp.
#include "Clique_find/Time_limited.h"

#include "Clique_find/Subset_index.h"

#include <algorithm>
#include <deque>
#include <numeric>

namespace cpm::Clique_find_time_sub_routines {

namespace {

// What was found at nodes that took too long. A node that is tried again finds most of it again, so
// repeats are told by a hash table; sorting comes once, when the search has ended. Of one attempt
// only so many sets are kept, as if its time had been up right after the last of them: there can be
// millions a second, and hard nodes are not to fill the memory. (Sets of three nodes are all kept:
// up to the first look at the clock nothing else is found.)
class Pending_sets {
public:
    void Add(Set_list const& found) {
        std::size_t n_large = 0;
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (found[i].size() == 3 || ++n_large <= most_large_sets) {
                Add(found[i]);
            }
        }
    }
    /// Without repeats, ascending. Nothing can be added from then on.
    Set_list const& Sorted();

private:
    static constexpr std::size_t most_large_sets = 1000;

    void Add(Node_set set);
    void Grow();
    static std::uint64_t Hash(Node_set set);

    Set_list sets_;
    Flat_array<std::uint64_t> hashes_;       ///< one a set
    std::vector<std::uint32_t> slots_{0, 0}; ///< 1 + a set's number, or 0; no more than half full
};

std::uint64_t Pending_sets::Hash(Node_set set) {
    std::uint64_t hash = set.size();
    for (Node const node : set) {
        hash = (hash ^ node) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 29;
    }
    return hash;
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
        Grow();
    }
}

void Pending_sets::Grow() {
    slots_.assign(2 * slots_.size(), 0);
    std::size_t const mask = slots_.size() - 1;
    for (std::size_t i = 0; i < sets_.size(); ++i) {
        std::size_t slot = hashes_[i] & mask;
        while (slots_[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots_[slot] = static_cast<std::uint32_t>(i + 1);
    }
}

Set_list const& Pending_sets::Sorted() {
    slots_ = {};
    std::vector<std::uint32_t> order(sets_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) {
        return std::ranges::lexicographical_compare(sets_[a], sets_[b]);
    });
    Set_list sorted;
    for (std::uint32_t const i : order) {
        sorted.Add(sets_[i]);
    }
    sets_ = std::move(sorted);
    return sets_;
}

// The pending sets of three nodes, and which nodes they speak of.
struct Triples {
    std::vector<std::uint32_t> numbers;
    std::vector<bool> nodes;
};

// Invariant: the cliques hold every clique of the network that has a done node, and no other sets.
// Relies on: a node is done only after a search that came to its end.
// Buys:      a set that no node extends is one of the cliques exactly when it has a done node, and
//            lies in no other one. Only sets of three nodes, of which that is not known (see
//            Node_finder), must be looked for.
// Breaks if: a finder leaves a set of four nodes or more that some node extends.
// Pinned by: Time_limited_test, Clique_find_dir_test
void Register_pending(Set_list& cliques, Set_list const& pending, std::vector<bool> const& done) {
    std::vector<bool> keep(pending.size(), false);
    Triples triples;
    triples.nodes.resize(done.size(), false);
    for (std::size_t i = 0; i < pending.size(); ++i) {
        keep[i] = std::ranges::none_of(pending[i], [&](Node node) { return done[node]; });
        if (keep[i] && pending[i].size() == 3) {
            triples.numbers.push_back(static_cast<std::uint32_t>(i));
            for (Node const node : pending[i]) {
                triples.nodes[node] = true;
            }
        }
    }
    if (!triples.numbers.empty()) {
        Subset_index const in_cliques(cliques, &triples.nodes);
        Subset_index const in_pending(pending, &triples.nodes);
        for (std::uint32_t const i : triples.numbers) {
            // A dropped set that holds this one lies in a clique itself, which so holds this one.
            keep[i] =
                !in_cliques.Any_holder(pending[i]) &&
                !in_pending.Any_holder(pending[i], [i](std::uint32_t other) { return other < i; });
        }
    }
    for (std::size_t i = 0; i < pending.size(); ++i) {
        if (keep[i]) {
            cliques.Add(pending[i]);
        }
    }
}

std::uint32_t Count(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

} // namespace

void Search_in_time(Set_list& cliques, std::vector<Node> const& order, Node_finder& finder,
                    double max_time, Clock& clock, std::vector<Node>& core, Progress& progress) {
    cliques.clear();
    std::deque<Node> queue(order.begin(), order.end());
    std::vector<bool> done(order.size() + 1, false);
    Pending_sets pending;
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
            done[node] = true;
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
        Register_pending(cliques, pending.Sorted(), done);
    }
    progress.Search_done(Count(cliques.size()), core.empty());
    cliques.Shrink_to_fit();
}

} // namespace cpm::Clique_find_time_sub_routines
