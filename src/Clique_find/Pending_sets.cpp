// SPDX-License-Identifier: MIT
// Takes    the sets found at nodes whose time was up, and which nodes were done later.
// Leaves   each set without a done node once.
// Order    lexicographic, once registered.
// Cost     a set is hashed; at the end all are sorted, and only those of three nodes are looked for
//          in the clique list. Memory: no more than max_bytes_pending, and as much again for their
//          list.
// Tested   Pending_sets_test.cpp, Search_driver_test.cpp
#include "Clique_find/Pending_sets.h"

#include "Clique_find/Superset_index.h"
#include "Clique_find/Time_budget.h"

#include <algorithm>
#include <numeric>

namespace cpm {

namespace {

constexpr std::size_t steps_a_comparison = 64;

std::uint32_t Hash(Node_set set) {
    std::uint64_t hash = set.size();
    for (Node const node : set) {
        hash = (hash ^ node) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 29;
    }
    return static_cast<std::uint32_t>(hash);
}

// Which nodes are in the sets.
std::vector<bool> Nodes_of(Set_list const& sets, std::vector<std::uint32_t> const& numbers,
                           std::size_t n_nodes) {
    std::vector<bool> in(n_nodes);
    for (std::uint32_t const number : numbers) {
        for (Node const node : sets[number]) {
            in[node] = true;
        }
    }
    return in;
}

} // namespace

void Pending_sets::Add(Set_list const& found) {
    if (Bytes() >= bytes_to_drop_at_) {
        Drop_done();
        bytes_to_drop_at_ = std::max(bytes_to_drop_at_, 2 * Bytes());
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (found[i].size() > 3 && !Has_room(found[i])) {
            return;
        }
        if (Is_new(found[i], sets_.size())) {
            sets_.Add(found[i]);
        }
    }
}

bool Pending_sets::Has_room(Node_set set) {
    std::size_t const bytes = set.size() * sizeof(Node) + bytes_a_set;
    if (Bytes() + bytes <= max_bytes_) {
        return true;
    }
    if (n_dropped_for_room_ == n_done_) {
        return false; // nothing has been done since this was tried last
    }
    n_dropped_for_room_ = n_done_;
    Drop_done();
    return Bytes() + bytes <= max_bytes_;
}

// Whether the set is not among those kept; it is taken for the one of this number from now on.
bool Pending_sets::Is_new(Node_set set, std::size_t number) {
    Slot const fresh{Hash(set), static_cast<std::uint32_t>(number + 1)};
    Slot const& slot = slots_.Find_or_add(
        fresh, [&](Slot const& other) { return std::ranges::equal(sets_[other.number - 1], set); });
    return slot.number == fresh.number;
}

void Pending_sets::Drop_done() {
    sets_.Keep_if([&](std::size_t i) {
        return std::ranges::none_of(sets_[i], [&](Node node) { return done_[node]; });
    });
    slots_.Clear(sets_.size() + 1);
    for (std::size_t i = 0; i < sets_.size(); ++i) {
        Is_new(sets_[i], i);
    }
}

// Invariant: the cliques hold every clique of the network that has a done node, and no other sets.
// Relies on: a node is done only after a search that came to its end.
// Buys:      a set that no node extends is one of the cliques exactly when it has a done node, and
//            lies in no other one. Sets with a done node are dropped; and only sets of three nodes,
//            of which that is not known (see Finder), must be looked for.
// Breaks if: a finder leaves a set of four nodes or more that some node extends.
// Pinned by: Search_driver_test, Clique_find_dir_test
void Pending_sets::Register(Set_list& cliques, Progress& progress) {
    Pace pace(progress);
    Drop_done();
    slots_ = {};
    std::vector<std::uint32_t> order(sets_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        pace.Spend(steps_a_comparison);
        return std::ranges::lexicographical_compare(sets_[a], sets_[b]);
    });
    std::vector<std::uint32_t> triples;
    std::ranges::copy_if(order, std::back_inserter(triples),
                         [&](std::uint32_t number) { return sets_[number].size() == 3; });
    std::vector<bool> keep(sets_.size(), true);
    if (!triples.empty()) {
        std::vector<std::uint32_t> place_of(sets_.size());
        for (std::uint32_t place = 0; place < order.size(); ++place) {
            place_of[order[place]] = place;
        }
        std::vector<bool> const asked = Nodes_of(sets_, triples, done_.size());
        Superset_index const in_cliques(cliques, &asked);
        Superset_index const in_pending(sets_, &asked);
        for (std::uint32_t const triple : triples) {
            // An earlier set that is dropped lies in a clique itself, which so holds this one, too.
            auto const comes_first = [&](std::uint32_t other) {
                return place_of[other] < place_of[triple];
            };
            keep[triple] = !in_cliques.Any_superset(sets_[triple]) &&
                           !in_pending.Any_superset(sets_[triple], comes_first);
            pace.Spend(steps_a_comparison);
        }
    }
    for (std::uint32_t const number : order) {
        if (keep[number]) {
            cliques.Add(sets_[number]);
        }
    }
}

} // namespace cpm
