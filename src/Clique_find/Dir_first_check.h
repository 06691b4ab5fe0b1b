// SPDX-License-Identifier: MIT
// Dir_first_check: how far the directed search of a node gets before it has to look at the clock.
#ifndef PLEXOR_DIR_FIRST_CHECK_H
#define PLEXOR_DIR_FIRST_CHECK_H

#include "Clique_find/Circles.h"
#include "Clique_find/Dir_surroundings.h"
#include "graph/Types.h"

#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

namespace cpm {

class Dir_first_check {
public:
    /// Walks the lines of the centre and two candidates in the order of the search, up to the first
    /// one that a further candidate may join and that, with all that may, is not known yet. False
    /// when there is none. Known is what lies in a clique with a done node. Appends to `found` the
    /// sets of three nodes met by then that no candidate may join as they stand and that are not
    /// known.
    bool Reached(Dir_surroundings const& around, Set_list& found);

private:
    struct Neighbour {
        Place place = 0;
        Arcs arcs = 0; ///< seen from the node whose neighbour this is
    };
    using Gaps = std::uint8_t; ///< gaps of a line of two nodes, a bit each, the front gap lowest

    void Set_up(Dir_surroundings const& around);
    std::span<Neighbour const> Neighbours(Place place) const {
        return {neighbours_.data() + begins_[place], neighbours_.data() + begins_[place + 1]};
    }
    Arcs Arcs_between(Place a, Place b) const;
    void Tighten_dir(Place first, bool in_front);
    void Tighten_dir(Gaps gap, Place second);
    bool Try_second(Place first, Set_list& found);
    void Merge_already_full_and_possibs(std::initializer_list<Place> placed,
                                        std::vector<Place> const& joining);
    bool Mehet_tovabb();
    bool Known();
    void Iktatjuk_az_uj_vert_clt(Place first, Place second, Set_list& found);

    Dir_surroundings const* around_ = nullptr;
    std::vector<Neighbour> neighbours_; ///< ascending at each place
    std::vector<std::size_t> begins_;
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
