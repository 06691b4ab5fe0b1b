// SPDX-License-Identifier: MIT
#include "Coms_funcs/K_clique_list.h"

#include "support/Errors.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace cpm {

namespace {

// Sorts sets of equal size where they lie: partitions them by one column into smaller, equal and
// larger, and goes on with the next column in the equal ones. No second array, no index; each
// comparison looks at one node.
class Set_sort {
public:
    Set_sort(Flat_array<Node>& members, std::size_t width)
        : members_(members), width_(width), held_(width) {}

    void Sort(std::size_t n_sets) {
        open_.push_back({0, n_sets, 0});
        while (!open_.empty()) {
            Range const range = open_.back();
            open_.pop_back();
            if (range.end - range.begin <= small) {
                Sort_small(range);
            } else {
                Partition(range);
            }
        }
    }

private:
    // Sets `begin` to `end` - 1, equal in the columns before `column`.
    struct Range {
        std::size_t begin;
        std::size_t end;
        std::size_t column;
    };
    static constexpr std::size_t small = 12;

    Node* Set(std::size_t i) { return members_.data() + i * width_; }
    Node At(std::size_t i, std::size_t column) { return Set(i)[column]; }
    void Swap(std::size_t i, std::size_t j) { std::swap_ranges(Set(i), Set(i) + width_, Set(j)); }

    void Sort_small(Range const& range) {
        auto const less = [&](Node const* a, Node const* b) {
            return std::lexicographical_compare(a + range.column, a + width_, b + range.column,
                                                b + width_);
        };
        for (std::size_t i = range.begin + 1; i < range.end; ++i) {
            if (!less(Set(i), Set(i - 1))) {
                continue;
            }
            std::copy_n(Set(i), width_, held_.data());
            std::size_t to = i;
            do {
                --to;
            } while (to > range.begin && less(held_.data(), Set(to - 1)));
            std::copy_backward(Set(to), Set(i), Set(i + 1));
            std::copy_n(held_.data(), width_, Set(to));
        }
    }

    void Partition(Range const& range) {
        Node const pivot = Pivot(range);
        std::size_t equal = range.begin; // where the ones equal to the pivot begin
        std::size_t larger = range.end;
        for (std::size_t i = range.begin; i < larger;) {
            Node const node = At(i, range.column);
            if (node < pivot) {
                if (i != equal) {
                    Swap(i, equal);
                }
                ++equal;
                ++i;
            } else if (node > pivot) {
                Swap(i, --larger);
            } else {
                ++i;
            }
        }
        Open({range.begin, equal, range.column});
        Open({equal, larger, range.column + 1});
        Open({larger, range.end, range.column});
    }

    void Open(Range const& range) {
        if (range.end - range.begin > 1 && range.column < width_) {
            open_.push_back(range);
        }
    }

    // The median of three medians of three.
    Node Pivot(Range const& range) {
        std::size_t const step = (range.end - range.begin) / 9;
        auto const median = [](Node a, Node b, Node c) {
            return std::max(std::min(a, b), std::min(std::max(a, b), c));
        };
        auto const median_at = [&](std::size_t i) {
            return median(At(i, range.column), At(i + step, range.column),
                          At(i + 2 * step, range.column));
        };
        return median(median_at(range.begin), median_at(range.begin + 3 * step),
                      median_at(range.begin + 6 * step));
    }

    Flat_array<Node>& members_;
    std::size_t width_;
    Flat_array<Node> held_;
    std::vector<Range> open_;
};

} // namespace

void K_clique_list::Sort_and_unite() {
    auto const set = [&](std::size_t i) { return members_.data() + i * k_; };
    auto const less = [&](Node const* a, Node const* b) {
        return std::lexicographical_compare(a, a + k_, b, b + k_);
    };
    std::size_t in_order = 1;
    while (in_order < size_ && less(set(in_order - 1), set(in_order))) {
        ++in_order;
    }
    if (in_order < size_) { // the sets of a single clique come in their order
        Set_sort(members_, k_).Sort(size_);
        std::size_t kept = 1;
        for (std::size_t i = 1; i < size_; ++i) {
            if (less(set(kept - 1), set(i))) {
                if (kept != i) {
                    std::copy_n(set(i), k_, set(kept));
                }
                ++kept;
            }
        }
        size_ = kept;
        members_.Resize_uninitialised(size_ * k_);
    }
    next_unite_ = std::max(2 * size_, min_worth_uniting);
}

void K_clique_list::Finish() {
    Sort_and_unite();
    members_.Shrink_to_fit();
    if (size_ >= std::numeric_limits<std::uint32_t>::max()) {
        throw Xerror_msg("ERROR: there are more than 4294967294 k-cliques at this k.");
    }
}

} // namespace cpm
