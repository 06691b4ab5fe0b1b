// SPDX-License-Identifier: MIT
// Directed_bron_kerbosch: finds the acyclic sets around one node: sets of nodes, two by two
// linked, whose one-way links (those without a reverse) close no cycle. Just these can be put in a
// line such that every node has a link to every later one.
#ifndef PLEXOR_DIRECTED_BRON_KERBOSCH_H
#define PLEXOR_DIRECTED_BRON_KERBOSCH_H

#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Time_budget.h"
#include "graph/Types.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace cpm {

namespace Directed_bron_kerbosch_sub {

/// What the kernel works in; kept from node to node.
struct Memory {
    Place centre = 0;
    std::size_t n_words = 0;
    /// Three sets of bits a place: with which candidates and whether with the centre the node is
    /// linked at all, to which of them it has a one-way link, and from which.
    Flat_array<std::uint64_t> rows;
    std::vector<std::uint64_t> lined_up; ///< the centre, and the candidates placed so far
    std::vector<std::uint64_t> level_sets;
    std::vector<std::uint64_t> work;
    std::vector<Place> rivals;

    /// An open branch: the set so far has grown by one candidate.
    struct Level {
        std::size_t rivals_begin = 0; ///< in rivals; they end where the next level's begin
        Place placed = 0;             ///< the candidate that opened the branch
        bool acyclic = false;         ///< no one-way links close a cycle here or further on
    };
    std::vector<Level> levels;

    struct Pivot {
        std::size_t branches = 0;
        Place place = 0;
    };
    std::vector<Pivot> pivots;
    Set_list found;
    std::size_t room = 0; ///< so many bytes of sets may still be kept
    bool all_kept = true;
};

} // namespace Directed_bron_kerbosch_sub

class Directed_bron_kerbosch {
public:
    /// Finds every acyclic set of the centre and two candidates or more that no other candidate and
    /// no excluded node can join. False when the pace ended the search, or when they need more than
    /// `max_bytes`: then the search goes on to its end to see whether there is time for that, and
    /// All_kept() is false.
    bool Find(Dir_surroundings const& around, Pace* pace,
              std::size_t max_bytes = std::numeric_limits<std::size_t>::max());
    bool All_kept() const { return memory_.all_kept; }
    /// Gives back the memory that sets found have needed.
    void Forget() { memory_.found = {}; }
    /// The sets, each by ascending places, in no particular order.
    Set_list const& Found() const { return memory_.found; }

private:
    bool Set_up(Dir_surroundings const& around, Pace* pace);

    Directed_bron_kerbosch_sub::Memory memory_;
};

} // namespace cpm

#endif
