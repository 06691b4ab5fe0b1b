// SPDX-License-Identifier: MIT
#include "Clique_find/Superset_index.h"

#include <cassert>

namespace cpm {

Superset_index::Superset_index(Set_list const& sets, std::vector<bool> const* asked) : sets_(sets) {
    auto const counts = [asked](Node node) {
        return asked == nullptr || (node < asked->size() && (*asked)[node]);
    };
    Node largest = 0;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        signatures_.push_back(Signature_of(sets[i]));
        if (!sets[i].empty()) {
            largest = std::max(largest, sets[i].back());
        }
    }
    sets_at_ = Groups<std::uint32_t>::Of_members(sets, 0, std::size_t{largest} + 1, counts);
}

// Consecutive nodes, which often stand together in sets, get different bits.
Superset_index::Signature Superset_index::Signature_of(Node_set set) {
    Signature signature = 0;
    for (Node const node : set) {
        signature |= Signature{1} << (node % 64);
    }
    return signature;
}

bool Superset_index::Holds(Node_set set, Node_set part) {
    constexpr std::size_t much_larger = 16;
    if (part.size() > set.size()) {
        return false;
    }
    if (set.size() / much_larger < part.size()) {
        return std::includes(set.begin(), set.end(), part.begin(), part.end());
    }
    return std::all_of(part.begin(), part.end(), [set](Node node) {
        return std::binary_search(set.begin(), set.end(), node);
    });
}

std::span<std::uint32_t const> Superset_index::Sets_of_rarest(Node_set part) const {
    assert(!part.empty());
    std::span<std::uint32_t const> fewest;
    for (Node const node : part) {
        if (node >= sets_at_.size()) {
            return {};
        }
        if (node == part.front() || sets_at_[node].size() < fewest.size()) {
            fewest = sets_at_[node];
        }
    }
    return fewest;
}

} // namespace cpm
