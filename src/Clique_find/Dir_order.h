// SPDX-License-Identifier: MIT
// Dir_order: the order in which the sets found at one node are listed.
#ifndef PLEXOR_DIR_ORDER_H
#define PLEXOR_DIR_ORDER_H

#include "Clique_find/Dir_surroundings.h"
#include "graph/Types.h"

#include <cstdint>
#include <vector>

namespace cpm {

class Dir_order {
public:
    /// Sorts sets that can be lined up, none inside another, each of ascending places of candidates
    /// and then the centre: the numbers of the sets in the order in which they are listed. It is
    /// the order in which they are first met when a line, at first of the centre alone, grows in
    /// every possible way: by gaps from the front, and in a gap by ascending nodes.
    std::vector<std::uint32_t> const& Sort(Dir_surroundings const& around, Set_list const& sets);

private:
    using Word = std::uint64_t;
    using Words = std::vector<Word>;

    void Set_up(Dir_surroundings const& around);
    void Add_first_line(Node_set set);
    void Place_in_gap(std::uint32_t gap, Words& group);
    void Take_reached(Place begin, Words& group, Words& reached);
    Words& Open_group();

    std::size_t n_words_ = 0;
    Words to_; ///< of each candidate and, last, the centre: where its one-way links lead
    Words group_;
    std::vector<Words> groups_; ///< a stack; what lies beyond its top is kept as memory
    std::size_t n_groups_ = 0;
    std::vector<Place> to_walk_;
    List_of_lists<std::uint64_t>
        first_lines_; ///< a set's steps: gap, and in the low half the place
    std::vector<std::uint32_t> order_;
};

} // namespace cpm

#endif
