// SPDX-License-Identifier: MIT
// Dir_order: the order in which the sets found at one node are listed.
#ifndef PLEXOR_DIR_ORDER_H
#define PLEXOR_DIR_ORDER_H

#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Time_budget.h"
#include "graph/Types.h"

#include <cstdint>
#include <vector>

namespace cpm {

/// The line of a set that is met first, by the steps in which it grows.
class First_line {
public:
    using Word = std::uint64_t;
    using Words = std::vector<Word>;
    /// A step: the gap into which a node goes, and in the low half the node.
    static constexpr std::uint64_t Step(std::uint32_t gap, Place node) {
        return std::uint64_t{gap} << 32 | node;
    }

    /// Of `centre` and `others`, a set of bits. The `others.size()` words at `to` + i * `stride`
    /// say where the one-way links of node i lead. The steps stay until the next call.
    std::vector<std::uint64_t> const& Find(Place centre, Words const& others, Word const* to,
                                           std::size_t stride);

private:
    void Place_in_gap(std::uint32_t gap, Words& group);
    void Take_reached(Place begin, Words& group, Words& reached);
    Words& Open_group();

    Word const* to_ = nullptr;
    std::size_t stride_ = 0;
    std::size_t n_words_ = 0;
    Words group_;
    std::vector<Words> groups_; ///< a stack; what lies beyond its top is kept as memory
    std::size_t n_groups_ = 0;
    std::vector<Place> to_walk_;
    std::vector<std::uint64_t> steps_;
};

class Dir_order {
public:
    /// Sorts acyclic sets, none inside another, each of ascending places of candidates
    /// and then the centre: the numbers of the sets in the order in which they are listed. It is
    /// the order in which they are first met when a line, at first of the centre alone, grows in
    /// every possible way: by gaps from the front, and in a gap by ascending nodes.
    /// Null when the pace ended the sorting.
    std::vector<std::uint32_t> const* Sort(Dir_surroundings const& around, Set_list const& sets,
                                           Pace* pace = nullptr);

private:
    using Word = std::uint64_t;
    using Words = std::vector<Word>;

    void Set_up(Dir_surroundings const& around);

    std::size_t n_words_ = 0;
    Words to_; ///< of each candidate and, last, the centre: where its one-way links lead
    Words others_;
    First_line first_line_;
    List_of_lists<std::uint64_t> first_lines_;
    std::vector<std::uint32_t> order_;
};

} // namespace cpm

#endif
