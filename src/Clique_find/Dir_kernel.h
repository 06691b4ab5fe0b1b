// SPDX-License-Identifier: MIT
// Dir_kernel: finds the sets around one node that can be lined up: sets of nodes, two by two
// linked, whose one-way links (those without a reverse) close no circle. Just these can be put in a
// line such that every node has a link to every later one.
#ifndef PLEXOR_DIR_KERNEL_H
#define PLEXOR_DIR_KERNEL_H

#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Local_cliques.h"
#include "graph/Types.h"

#include <cstdint>
#include <vector>

namespace cpm {

namespace Dir_kernel_sub {

/// What the kernel works in; kept from node to node.
struct Memory {
    Place centre = 0;
    std::size_t n_words = 0;
    /// Three sets of bits a place: with which candidates and whether with the centre the node is
    /// linked at all, to which of them it has a one-way link, and from which.
    std::vector<std::uint64_t> rows;
    std::vector<std::uint64_t> lined_up; ///< the centre, and the candidates placed so far
    std::vector<std::uint64_t> level_sets;
    std::vector<std::uint64_t> work;
    std::vector<Place> rivals;

    /// An open branch: the set lined up so far has grown by one candidate.
    struct Level {
        std::size_t rivals_begin = 0; ///< in rivals; they end where the next level's begin
        Place placed = 0;             ///< the candidate that opened the branch
        bool no_circles = false;      ///< no one-way links close a circle here or further on
    };
    std::vector<Level> levels;

    struct Pivot {
        std::size_t branches = 0;
        Place place = 0;
    };
    std::vector<Pivot> pivots;
    Set_list found;
};

} // namespace Dir_kernel_sub

class Dir_kernel {
public:
    using Stop_check = Local_cliques::Stop_check;

    /// Finds every set of the centre and two candidates or more that can be lined up, and that no
    /// other candidate and no excluded node can join. False when `stop` ended the search, and then
    /// only some of them have been found.
    bool Find(Dir_surroundings const& around, Stop_check const* stop);
    /// The sets, each by ascending places, in no particular order.
    Set_list const& Found() const { return memory_.found; }

private:
    void Set_up(Dir_surroundings const& around);

    Dir_kernel_sub::Memory memory_;
};

} // namespace cpm

#endif
