// SPDX-License-Identifier: MIT
#include "Coms_funcs/Edge_numbering.h"

#include "graph/Link_order.h"
#include "support/Errors.h"
#include "support/Grouping.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <limits>

namespace cpm {

namespace {

[[noreturn]] void Throw_too_many() {
    throw Too_large("ERROR: the network has more than 4294967295 links.");
}

// Whether one of the sets holds more pairs than can be numbered: the table would fill the memory
// before it showed.
bool One_is_too_large(Set_list const& cliques, std::size_t n_exact) {
    std::uint64_t largest = 0;
    for (std::size_t c = n_exact; c < cliques.size(); ++c) {
        largest = std::max<std::uint64_t>(largest, cliques[c].size());
    }
    return largest * largest / 2 - largest / 2 > std::numeric_limits<Link_number>::max();
}

} // namespace

Edge_numbering::Edge_numbering(Index_links const& links, Node n_nodes, Set_list const& cliques,
                               std::size_t n_exact) {
    assert(std::ranges::all_of(links.pairs, [&](Node_pair const& pair) {
        return pair.first != pair.second && std::max(pair.first, pair.second) <= n_nodes;
    }));
    assert(std::ranges::all_of(cliques.Flat(), [&](Node node) { return node <= n_nodes; }));
    if (One_is_too_large(cliques, n_exact)) {
        Throw_too_many();
    }
    Flat_array<Node_pair> pairs = links.pairs;
    bool const undirected =
        std::ranges::all_of(pairs, [](Node_pair const& pair) { return pair.first < pair.second; });
    if (!undirected) {
        for (Node_pair& pair : pairs) {
            pair = {std::min(pair.first, pair.second), std::max(pair.first, pair.second)};
        }
        Flat_array<double> no_weights;
        Sort_and_merge(pairs, no_weights, n_nodes + 1);
    }
    bool const all_exact = n_exact >= cliques.size();
    // The approximated cliques that hold a node, for each node.
    auto const approximated =
        all_exact ? Groups<Clique_number>()
                  : Groups<Clique_number>::Of_members(cliques, n_exact, std::size_t{n_nodes} + 1);
    larger_.Reserve(pairs.size());
    std::size_t next = 0;
    Flat_array<Node> seen_for(n_nodes + 1, 0); // the node whose row holds this one already
    for (Node first = 0; first <= n_nodes; ++first) {
        offsets_.push_back(static_cast<Link_number>(larger_.size()));
        for (; next < pairs.size() && pairs[next].first == first; ++next) {
            seen_for[pairs[next].second] = first;
            larger_.push_back(pairs[next].second);
        }
        if (!all_exact) {
            std::size_t const row = offsets_.back();
            for (Clique_number const c : approximated[first]) {
                for (Node const second : cliques[c]) {
                    if (second > first && seen_for[second] != first) {
                        seen_for[second] = first;
                        larger_.push_back(second);
                    }
                }
            }
            std::sort(larger_.begin() + row, larger_.end());
        }
        if (larger_.size() > std::numeric_limits<Link_number>::max()) {
            Throw_too_many();
        }
    }
    offsets_.push_back(static_cast<Link_number>(larger_.size()));
}

void Edge_numbering::Append_numbers(Node first, Node_set others,
                                    std::vector<Link_number>& numbers) const {
    constexpr std::size_t steps_of_a_search = 8;
    Node_set const row = Larger_neighbours(first);
    if (row.size() / steps_of_a_search > others.size()) {
        for (Node const other : others) {
            numbers.push_back(Number(first, other));
        }
        return;
    }
    Link_number number = First_number(first);
    for (Node const other : others) {
        while (larger_[number] != other) {
            ++number;
        }
        assert(number < offsets_[first + 1]);
        numbers.push_back(number);
    }
}

} // namespace cpm
