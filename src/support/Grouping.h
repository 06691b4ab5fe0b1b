// SPDX-License-Identifier: MIT
// Grouping by counting sort: everything with the same small number side by side, the groups
// ascending, each in the order given. Three steps, for callers whose items or counters have shapes
// of their own (links with weights beside them, two ends per link, records that hold a counter):
//
//     ++offsets[key] for each item
//     Counts_to_begins(offsets), then each item goes to offsets[key]++, or
//     Counts_to_ends(offsets), then each item, the last one first, goes to --offsets[key]
//
// Filled from its end, a group's offset arrives at its begin, so that one array serves as counter,
// cursor and index; filled from its begin, the offset arrives at the begin of the next group.
#ifndef PLEXOR_GROUPING_H
#define PLEXOR_GROUPING_H

#include "support/Flat_array.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>

namespace cpm {

/// Turns how many items each group has into where it begins. Takes any range of unsigned numbers.
/// Returns the number of items. With `at`, counters inside of records: `at(record)` is the counter.
template <class Range, class At> std::uint64_t Counts_to_begins(Range& counts, At const& at) {
    std::uint64_t begin = 0;
    for (auto& count : counts) {
        auto& offset = at(count);
        using Offset = std::remove_reference_t<decltype(offset)>;
        begin += std::exchange(offset, static_cast<Offset>(begin));
    }
    return begin;
}
template <class Range> std::uint64_t Counts_to_begins(Range& counts) {
    return Counts_to_begins(
        counts, [](auto& count) -> auto& { return count; });
}

/// Turns how many items each group has into where it ends. Returns the number of items.
template <class Range> std::uint64_t Counts_to_ends(Range& counts) {
    std::uint64_t end = 0;
    for (auto& count : counts) {
        end += count;
        count = static_cast<std::remove_reference_t<decltype(count)>>(end);
    }
    return end;
}

/// Items in groups, each in its order among all. Group i is [i], without search.
template <class T, class Offset = std::uint64_t> class Groups {
public:
    Groups() = default;
    /// Of the numbers 0 to n_items - 1: item i has the key `key(i)`, below `n_keys`, and stands in
    /// its group as `value(i)`. Both are called twice for each item at most.
    template <class Key, class Value>
    Groups(std::size_t n_items, std::size_t n_keys, Key const& key, Value const& value)
        : offsets_(n_keys + 1, 0) {
        for (std::size_t i = 0; i < n_items; ++i) {
            assert(key(i) < n_keys);
            ++offsets_[key(i)];
        }
        Counts_to_ends(offsets_);
        items_.Resize_uninitialised(n_items);
        for (std::size_t i = n_items; i-- > 0;) {
            items_[--offsets_[key(i)]] = static_cast<T>(value(i));
        }
    }

    /// The lists, from `first` on, that hold each member: group m is the numbers of the lists in
    /// which m is, ascending. Members are below `n_keys`; those for which `keep(m)` is false get no
    /// group. `Lists` has size(), and [i] is a range of members.
    template <class Lists, class Keep>
    static Groups Of_members(Lists const& lists, std::size_t first, std::size_t n_keys,
                             Keep const& keep) {
        Groups groups;
        groups.offsets_.Resize(n_keys + 1, 0);
        for (std::size_t i = first; i < lists.size(); ++i) {
            for (auto const member : lists[i]) {
                groups.offsets_[member] += keep(member) ? 1U : 0U;
            }
        }
        groups.items_.Resize_uninitialised(
            static_cast<std::size_t>(Counts_to_ends(groups.offsets_)));
        for (std::size_t i = lists.size(); i-- > first;) {
            for (auto const member : lists[i]) {
                if (keep(member)) {
                    groups.items_[--groups.offsets_[member]] = static_cast<T>(i);
                }
            }
        }
        return groups;
    }
    template <class Lists>
    static Groups Of_members(Lists const& lists, std::size_t first, std::size_t n_keys) {
        return Of_members(lists, first, n_keys, [](auto) { return true; });
    }

    /// The number of groups.
    std::size_t size() const { return offsets_.empty() ? 0 : offsets_.size() - 1; }
    std::span<T const> operator[](std::size_t group) const {
        return {items_.data() + offsets_[group], items_.data() + offsets_[group + 1]};
    }

private:
    Flat_array<Offset> offsets_; ///< where each group begins; one more than there are groups
    Flat_array<T> items_;
};

} // namespace cpm

#endif
