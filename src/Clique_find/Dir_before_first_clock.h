// SPDX-License-Identifier: MIT
// Dir_before_first_clock: how far the directed search of a node gets before it has to look at the
// clock.
#ifndef PLEXOR_DIR_BEFORE_FIRST_CLOCK_H
#define PLEXOR_DIR_BEFORE_FIRST_CLOCK_H

#include "Clique_find/Cycles.h"
#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Time_budget.h"
#include "graph/Types.h"

#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

namespace cpm {

class Dir_before_first_clock {
public:
    /// Walks the lines of the centre and two candidates in the order of the search, up to the first
    /// one that a further candidate may join and that, with all that may, is not known yet. False
    /// when there is none. Known is what lies in a clique with a done node. Appends to `found` the
    /// sets of three nodes met by then that no candidate may join as they stand and that are not
    /// known.
    /// The surroundings have been looked at, the links among them not.
    bool Reads_clock(Dir_surroundings& around, Pace& pace, Set_list& found);

    /// The candidates and excluded nodes that a candidate is linked with, ascending; found when
    /// they are first asked for. They stay until the next call of Reads_clock().
    std::span<Local_neighbour const> Neighbours(Place candidate, Pace& pace);
    /// The line at which the clock is looked at: the gap of the line of the centre alone that its
    /// first candidate went into, and the gap of that line that its second one went into.
    struct Line {
        std::uint32_t first_gap = 0;
        Place first = 0;
        std::uint32_t second_gap = 0;
        Place second = 0;
    };
    Line Reached_at() const { return reached_at_; }

private:
    using Gaps = std::uint8_t; ///< gaps of a line of two nodes, a bit each, the front gap lowest

    Arcs Arcs_between(Place candidate, Place other);
    void Tighten_dir(Place first, bool in_front);
    void Tighten_dir(Gaps gap, Place second);
    bool Try_second(Place first, Set_list& found);
    void Merge_already_full_and_possibs(std::initializer_list<Place> placed,
                                        std::vector<Place> const& joining);
    bool Mehet_tovabb();
    bool Known();
    void Iktatjuk_az_uj_vert_clt(Place first, Place second, Set_list& found);

    Dir_surroundings* around_ = nullptr;
    Line reached_at_;
    Pace* pace_ = nullptr;
    std::vector<std::vector<Local_neighbour>>
        neighbours_; ///< of each candidate that has been looked at
    std::vector<bool> looked_at_;
    std::vector<Place> joining_; ///< candidates that may join the line of the centre and one more
    std::vector<Gaps> gaps_;     ///< and into which gaps each may go; of all others 0
    std::vector<Place> joining_three_; ///< candidates that may join the line of three
    std::vector<Place> merged_;        ///< the line's candidates and those that may join it
    std::vector<One_way_link> one_way_;
    std::vector<std::uint32_t> known_with_; ///< number of the last known set with a place, or 0
    std::uint32_t n_known_ = 0;
    std::unordered_set<std::uint64_t> found_pairs_;
};

} // namespace cpm

#endif
