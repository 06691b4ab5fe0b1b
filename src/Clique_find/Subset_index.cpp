// SPDX-License-Identifier: MIT
#include "Clique_find/Subset_index.h"

namespace cpm {

Subset_index::Subset_index(Set_list const& sets, std::vector<bool> const* asked) : sets_(sets) {
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
    // First the size of each node's part, then its end; filling it from behind leaves its begin.
    begins_.Resize(std::size_t{largest} + 2, 0);
    for (Node const node : sets.Flat()) {
        if (counts(node)) {
            ++begins_[node];
        }
    }
    std::uint64_t end = 0;
    for (std::uint64_t& begin : begins_) {
        end += begin;
        begin = end;
    }
    set_numbers_.Resize_uninitialised(end);
    for (std::size_t i = sets.size(); i-- > 0;) {
        for (Node const node : sets[i]) {
            if (counts(node)) {
                set_numbers_[--begins_[node]] = static_cast<std::uint32_t>(i);
            }
        }
    }
}

// Consecutive nodes, which often stand together in sets, get different bits.
Subset_index::Signature Subset_index::Signature_of(Node_set set) {
    Signature signature = 0;
    for (Node const node : set) {
        signature |= Signature{1} << (node % 64);
    }
    return signature;
}

bool Subset_index::Holds(Node_set set, Node_set part) {
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

std::span<std::uint32_t const> Subset_index::Sets_of_rarest(Node_set part) const {
    std::uint64_t begin = 0;
    std::uint64_t end = set_numbers_.size();
    for (Node const node : part) {
        if (std::size_t{node} + 1 >= begins_.size()) {
            return {};
        }
        if (begins_[node + 1] - begins_[node] < end - begin) {
            begin = begins_[node];
            end = begins_[node + 1];
        }
    }
    return {set_numbers_.data() + begin, static_cast<std::size_t>(end - begin)};
}

} // namespace cpm
