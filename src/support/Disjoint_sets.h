// SPDX-License-Identifier: MIT
// A disjoint-set forest. Path halving, and the smaller number is the root: so the root of a set is
// its smallest member, which is what results are ordered by, and linking by size would lose it.
#ifndef PLEXOR_DISJOINT_SETS_H
#define PLEXOR_DISJOINT_SETS_H

#include "support/Flat_array.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace cpm {

class Disjoint_sets {
public:
    /// The numbers 0 to size - 1, each a set of its own.
    explicit Disjoint_sets(std::size_t size) {
        parent_.Resize_uninitialised(size);
        for (std::size_t i = 0; i < size; ++i) {
            parent_[i] = static_cast<std::uint32_t>(i);
        }
    }

    std::size_t size() const { return parent_.size(); }
    /// The smallest number in the same set.
    std::uint32_t Find(std::uint32_t number) {
        while (parent_[number] != number) {
            parent_[number] = parent_[parent_[number]]; // halves the way for the next time
            number = parent_[number];
        }
        return number;
    }
    /// Makes one set of those of the two.
    void Unite(std::uint32_t a, std::uint32_t b) {
        a = Find(a);
        b = Find(b);
        parent_[std::max(a, b)] = std::min(a, b);
    }
    /// Numbers the sets from 0 on, in the order of their smallest members, and gives up the forest:
    /// the set of each number.
    Flat_array<std::uint32_t> Number_sets() && {
        // Invariant: the entries before i are numbers of sets, those from i on are parents.
        // Relies on: a parent is never larger.
        std::uint32_t n_sets = 0;
        for (std::size_t i = 0; i < parent_.size(); ++i) {
            parent_[i] = parent_[i] == i ? n_sets++ : parent_[parent_[i]];
        }
        return std::move(parent_);
    }

private:
    Flat_array<std::uint32_t> parent_; ///< itself for the smallest of a set
};

} // namespace cpm

#endif
