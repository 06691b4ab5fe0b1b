// SPDX-License-Identifier: MIT
// The beginning of the search by gaps, up to the first look at the clock.
//
// Takes    the surroundings of a node.
// Leaves   whether the clock is looked at, and the sets of three nodes found before.
// Order    lines grow by one node at a time: gaps from the front, in a gap ascending nodes. A node
//          tried in a gap is not tried there again.
// Cost     the search ends at the first line that may grow into something new. Up to there the
//          links of a candidate are looked at once, when it is first asked for; sets are compared
//          by their own links. Memory: two numbers a link looked at.
// Tested   Clique_find_dir_test.cpp: the literal search with clocks that strike at once.
//
// What is found here counts only when the time is up at the first look; so the fast search that
// follows need not find the same sets on its way, and a set here may be such that in another line
// one more node could join it.
#include "Clique_find/Dir_before_first_clock.h"

#include <algorithm>
#include <array>

namespace cpm {

namespace {

constexpr std::uint8_t n_gaps = 3;

} // namespace

bool Dir_before_first_clock::Reads_clock(Dir_surroundings& around, Pace& pace, Set_list& found) {
    around_ = &around;
    pace_ = &pace; // only for those who wait: nothing stops here
    neighbours_.resize(std::max<std::size_t>(neighbours_.size(), around.Centre()));
    looked_at_.assign(around.Centre(), false);
    gaps_.assign(around.Centre(), 0);
    known_with_.assign(around.Centre(), 0);
    n_known_ = 0;
    found_pairs_.clear();
    for (bool const in_front : {true, false}) {
        for (Place first = 0; first < around.Centre(); ++first) {
            if ((around.Arcs_with(first) & (in_front ? Arc_from : Arc_to)) == 0) {
                continue;
            }
            reached_at_ = {in_front ? 0U : 1U, first, 0, 0};
            Tighten_dir(first, in_front);
            Merge_already_full_and_possibs({first}, joining_);
            bool const reached = !joining_.empty() && Mehet_tovabb() && Try_second(first, found);
            for (Place const place : joining_) {
                gaps_[place] = 0;
            }
            if (reached) {
                return true;
            }
        }
    }
    return false;
}

std::span<Local_neighbour const> Dir_before_first_clock::Neighbours(Place candidate, Pace& pace) {
    std::vector<Local_neighbour>& neighbours = neighbours_[candidate];
    if (!looked_at_[candidate]) {
        looked_at_[candidate] = true;
        pace.Spend(around_->List_neighbours(candidate, neighbours));
    }
    return neighbours;
}

// As seen from the candidate; 0 when there is no link.
Arcs Dir_before_first_clock::Arcs_between(Place candidate, Place other) {
    auto const neighbours = Neighbours(candidate, *pace_);
    auto const place = std::ranges::lower_bound(neighbours, other, {}, &Local_neighbour::place);
    return place == neighbours.end() || place->place != other ? Arcs{0} : place->arcs;
}

// The line of the centre and `first`: gathers who may join it, and where. Smaller candidates have
// been tried in the gap into which `first` has gone; the front gap is used up when it has gone
// after the centre.
void Dir_before_first_clock::Tighten_dir(Place first, bool in_front) {
    constexpr Gaps front = 1;
    constexpr Gaps middle = 2;
    constexpr Gaps back = 4;
    joining_.clear();
    for (Local_neighbour const neighbour : Neighbours(first, *pace_)) {
        if (neighbour.place >= around_->Centre()) {
            break;
        }
        Arcs const with_centre = around_->Arcs_with(neighbour.place);
        bool const from_first = (neighbour.arcs & Arc_to) != 0;
        bool const to_first = (neighbour.arcs & Arc_from) != 0;
        bool const untried = neighbour.place > first;
        Gaps gaps = 0;
        if (in_front) {
            if ((with_centre & Arc_from) != 0 && untried) {
                gaps |= static_cast<Gaps>((to_first ? front : 0) | (from_first ? middle : 0));
            }
            if ((with_centre & Arc_to) != 0 && from_first) {
                gaps |= back;
            }
        } else if ((with_centre & Arc_to) != 0 && untried) {
            gaps |= static_cast<Gaps>((to_first ? middle : 0) | (from_first ? back : 0));
        }
        if (gaps != 0) {
            joining_.push_back(neighbour.place);
            gaps_[neighbour.place] = gaps;
        }
    }
}

// The same once `second` has gone into a gap, when the gaps before are used up.
void Dir_before_first_clock::Tighten_dir(Gaps gap, Place second) {
    constexpr std::size_t steps_of_a_search = 8;
    joining_three_.clear();
    auto const consider = [&](Place place, Arcs from_second) {
        bool const around_second = (gaps_[place] & gap) != 0 && place > second && from_second != 0;
        bool const further_back = gaps_[place] >= 2 * gap && (from_second & Arc_to) != 0;
        if (around_second || further_back) {
            joining_three_.push_back(place);
        }
    };
    auto const neighbours = Neighbours(second, *pace_);
    if (neighbours.size() / steps_of_a_search > joining_.size()) {
        for (Place const place : joining_) {
            consider(place, Arcs_between(second, place));
        }
        return;
    }
    for (Local_neighbour const neighbour : neighbours) {
        if (neighbour.place >= around_->Centre()) {
            break;
        }
        consider(neighbour.place, neighbour.arcs);
    }
}

bool Dir_before_first_clock::Try_second(Place first, Set_list& found) {
    for (std::uint8_t i = 0; i < n_gaps; ++i) {
        auto const gap = static_cast<Gaps>(1 << i);
        for (Place const second : joining_) {
            if ((gaps_[second] & gap) == 0) {
                continue;
            }
            Tighten_dir(gap, second);
            Merge_already_full_and_possibs({first, second}, joining_three_);
            if (!Mehet_tovabb()) {
                continue;
            }
            if (!joining_three_.empty()) {
                reached_at_.second_gap = i;
                reached_at_.second = second;
                return true;
            }
            Iktatjuk_az_uj_vert_clt(first, second, found);
        }
    }
    return false;
}

void Dir_before_first_clock::Merge_already_full_and_possibs(std::initializer_list<Place> placed,
                                                            std::vector<Place> const& joining) {
    merged_.assign(placed);
    merged_.insert(merged_.end(), joining.begin(), joining.end());
}

// Whether a line may still grow into something new: not when all that it may become is known.
// Sets often follow each other that lie in the same known set; such a set is not looked for again.
bool Dir_before_first_clock::Mehet_tovabb() {
    std::uint32_t const number = known_with_[merged_.front()];
    if (number != 0 &&
        std::ranges::all_of(merged_, [&](Place place) { return known_with_[place] == number; })) {
        return false;
    }
    if (!Known()) {
        return true;
    }
    ++n_known_;
    for (Place const place : merged_) {
        known_with_[place] = n_known_;
    }
    return false;
}

// Invariant: a set lies in a clique found at a done node exactly when it is acyclic together
//            with some done node.
// Relies on: at a done node all maximal sets with it have been found, of three nodes or more.
// Buys:      no clique is looked at, however many there are.
// Breaks if: a node becomes done before its search has come to its end.
// Pinned by: Clique_find_dir_test
bool Dir_before_first_clock::Known() {
    auto const centre = static_cast<std::uint32_t>(merged_.size());
    auto const excluded = centre + 1;
    one_way_.clear();
    auto const add = [this](std::uint32_t a, std::uint32_t b, Arcs seen_from_a) {
        if (seen_from_a == Arc_to) {
            one_way_.push_back({a, b});
        } else if (seen_from_a == Arc_from) {
            one_way_.push_back({b, a});
        }
    };
    // Stage 1: they are two by two linked.
    Place rarest = merged_.front();
    for (Place const place : merged_) {
        std::size_t const n_neighbours = Neighbours(place, *pace_).size();
        if (n_neighbours < merged_.size()) {
            return false; // without a link to all others and one to an excluded node
        }
        if (n_neighbours < Neighbours(rarest, *pace_).size()) {
            rarest = place;
        }
    }
    for (std::uint32_t i = 0; i < centre; ++i) {
        add(centre, i, around_->Arcs_with(merged_[i]));
        for (std::uint32_t j = 0; j < i; ++j) {
            Arcs const arcs = Arcs_between(merged_[i], merged_[j]);
            if (arcs == 0) {
                return false;
            }
            add(i, j, arcs);
        }
    }
    // Stage 2: some excluded node can join them.
    std::size_t const n_inside = one_way_.size();
    auto const all = Neighbours(rarest, *pace_);
    auto const first_excluded = std::ranges::partition_point(
        all, [this](Local_neighbour neighbour) { return neighbour.place < around_->Centre(); });
    return std::any_of(first_excluded, all.end(), [&](Local_neighbour neighbour) {
        one_way_.resize(n_inside);
        add(centre, excluded, around_->Arcs_with(neighbour.place));
        for (std::uint32_t i = 0; i < centre; ++i) {
            Arcs const arcs = Arcs_between(merged_[i], neighbour.place);
            if (arcs == 0) {
                return false;
            }
            add(i, excluded, arcs);
        }
        return !Has_cycle(one_way_, std::size_t{excluded} + 1);
    });
}

// A set of three nodes. It may have been met before in another line.
void Dir_before_first_clock::Iktatjuk_az_uj_vert_clt(Place first, Place second, Set_list& found) {
    std::uint64_t const pair =
        std::uint64_t{std::min(first, second)} << 32 | std::max(first, second);
    if (!found_pairs_.insert(pair).second) {
        return;
    }
    std::array<Node, 3> set{around_->Name(around_->Centre()), around_->Name(first),
                            around_->Name(second)};
    std::ranges::sort(set);
    found.Add(set);
}

} // namespace cpm
