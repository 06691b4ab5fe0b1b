// SPDX-License-Identifier: MIT
// The beginning of the search by ascending candidates, up to the first look at the clock.
//
// Takes    a node, its neighbours that are not done, those that are.
// Leaves   whether the clock is looked at, and the sets of three nodes found before.
// Order    pairs of candidates lexicographically.
// Cost     the walk ends at the first pair that may grow into something new. Up to there each
//          candidate is looked up once, when its turn comes or that of one before it, by walking
//          its neighbours or by searching among them, whichever is less; and a pair costs little
//          more than the shorter of the lists of its two. A known set is compared with its own
//          links. Memory: a number a link looked at, a few numbers a candidate.
// Tested   Before_first_clock_test.cpp against a literal walk of two steps,
// Clique_find_time_test.cpp.
#include "Clique_find/Before_first_clock.h"

#include <array>
#include <iterator>

namespace cpm {

namespace {

// Hands out what two ascending lists share, ascending, as long as `take` returns true. The longer
// list is crossed in steps that double until they are too long: however much longer it is, that
// costs little more than walking the shorter one.
template <class Take>
void For_each_common(std::span<std::uint32_t const> a, std::span<std::uint32_t const> b,
                     Take const& take) {
    auto const shorter = a.size() < b.size() ? a : b;
    auto const longer = a.size() < b.size() ? b : a;
    auto place = longer.begin();
    for (std::uint32_t const wanted : shorter) {
        auto const left = longer.end() - place;
        std::ptrdiff_t step = 1;
        while (step < left && place[step] < wanted) {
            step *= 2;
        }
        place = std::lower_bound(place + step / 2, place + std::min(step, left), wanted);
        if (place == longer.end() || (*place == wanted && !take(wanted))) {
            return;
        }
    }
}

bool Any_common(std::span<std::uint32_t const> a, std::span<std::uint32_t const> b) {
    bool any = false;
    For_each_common(a, b, [&any](std::uint32_t) {
        any = true;
        return false;
    });
    return any;
}

void Common(std::span<std::uint32_t const> a, std::span<std::uint32_t const> b,
            std::vector<std::uint32_t>& common) {
    common.clear();
    For_each_common(a, b, [&common](std::uint32_t place) {
        common.push_back(place);
        return true;
    });
}

bool Includes(std::span<std::uint32_t const> all, std::span<std::uint32_t const> some) {
    std::size_t n_common = 0;
    For_each_common(all, some, [&n_common](std::uint32_t) {
        ++n_common;
        return true;
    });
    return n_common == some.size();
}

} // namespace

void Placed_nodes::clear() {
    for (Node const node : nodes_) {
        places_[node] = 0;
    }
    nodes_.clear();
}

void Before_first_clock::Lists::Start(std::size_t n_candidates) {
    lists_.clear();
    numbers_.assign(n_candidates, 0);
}

void Before_first_clock::Lists::Close_list(Place candidate) {
    lists_.Close_list();
    numbers_[candidate] = static_cast<std::uint32_t>(lists_.size());
}

bool Before_first_clock::Reads_clock(Node centre, Placed_nodes const& candidates,
                                     Placed_nodes const& done, Pace& pace, Set_list& found) {
    centre_ = centre;
    candidates_ = &candidates;
    done_ = &done;
    later_.Start(candidates.size());
    done_with_.Start(candidates.size());
    known_with_.assign(candidates.size(), 0);
    n_known_ = 0;
    for (Place first = 0; first < candidates.size(); ++first) {
        if (Try_first(first, pace, found)) {
            return true;
        }
    }
    return false;
}

// Invariant: a pair inside a known set that `first` lies in needs a closer look only when something
//            outside of the set may join it.
// Relies on: a part of a known set is known.
// Buys:      where nearly all candidates lie in one known set, a pair costs as much as there is
//            outside of it.
// Breaks if: `outside_known_` lacks a candidate that is in no known set with `first`.
// Pinned by: Before_first_clock_test
bool Before_first_clock::Try_first(Place first, Pace& pace, Set_list& found) {
    Look_behind(first);
    first_known_ = known_with_[first];
    known_before_ = n_known_;
    outside_known_.clear();
    std::ranges::copy_if(later_[first], std::back_inserter(outside_known_), [this](Place place) {
        return first_known_ == 0 || known_with_[place] != first_known_;
    });
    Places outside = outside_known_;
    for (std::size_t i = 0; i < later_[first].size(); ++i) {
        Place const second = later_[first][i];
        if (!outside.empty() && outside.front() == second) {
            outside = outside.subspan(1);
        } else if (!Any_behind(second, outside)) {
            continue;
        }
        pace.Spend(later_[first].size() - i); // only for those who wait: nothing is stopped here
        Tighten(first, i);
        if (!Mehet_tovabb(first, second)) {
            continue;
        }
        if (!joining_.empty()) {
            reached_at_ = {first, second};
            return true;
        }
        Iktatjuk_az_uj_math_cliquet(first, second, found);
    }
    return false;
}

void Before_first_clock::Look_behind(Place candidate) {
    if (later_.Has(candidate)) {
        return;
    }
    candidates_->For_each_neighbour_of((*candidates_)[candidate], std::size_t{candidate} + 1,
                                       [this](std::size_t place) { later_.Append(place); });
    later_.Close_list(candidate);
}

void Before_first_clock::Look_at_done(Place candidate) {
    if (done_with_.Has(candidate)) {
        return;
    }
    done_->For_each_neighbour_of((*candidates_)[candidate], 0,
                                 [this](std::size_t place) { done_with_.Append(place); });
    done_with_.Close_list(candidate);
}

// Whether the candidate is linked with one of these after it.
bool Before_first_clock::Any_behind(Place candidate, Places places) {
    if (places.empty()) {
        return false;
    }
    Look_behind(candidate);
    return Any_common(places, later_[candidate]);
}

// Gathers what may join the pair of `first` and its neighbour number i.
void Before_first_clock::Tighten(Place first, std::size_t i) {
    joining_.clear();
    if (i + 1 < later_[first].size()) {
        Place const second = later_[first][i];
        Look_behind(second);
        Common(later_[first].subspan(i + 1), later_[second], joining_);
    }
}

// Whether a pair may still grow into something new: not when it is known with all that may join.
// Pairs often follow each other that lie in the same known set; such a pair is not looked into.
bool Before_first_clock::Mehet_tovabb(Place first, Place second) {
    if (Inside_last_known(second)) {
        return false;
    }
    if (!Known(first, second)) {
        return true;
    }
    if (!joining_.empty()) { // `first` comes after no candidate to come: it needs no number
        ++n_known_;
        known_with_[second] = n_known_;
        for (Place const place : joining_) {
            known_with_[place] = n_known_;
        }
    }
    return false;
}

bool Before_first_clock::Inside_last_known(Place second) const {
    std::uint32_t const number = known_with_[second];
    bool const holds_first = number > known_before_ || (number != 0 && number == first_known_);
    return holds_first && std::ranges::all_of(joining_, [this, number](Place place) {
               return known_with_[place] == number;
           });
}

// Invariant: a set lies in a clique found at a done node exactly when its nodes are two by two
//            linked and some done node is linked with all of them.
// Relies on: at a done node all maximal cliques with it have been found, of three nodes or more.
// Buys:      no clique is looked at, however many there are.
// Breaks if: a node becomes done before its search has come to its end.
// Pinned by: Before_first_clock_test, Clique_find_time_test
bool Before_first_clock::Known(Place first, Place second) {
    Look_at_done(first);
    Look_at_done(second);
    if (joining_.empty()) {
        return Any_common(done_with_[first], done_with_[second]);
    }
    Common(done_with_[first], done_with_[second], done_of_all_);
    for (std::size_t i = 0; i < joining_.size() && !done_of_all_.empty(); ++i) {
        Place const next = joining_[i];
        Look_behind(next);
        if (!Includes(later_[next], Places(joining_).subspan(i + 1))) {
            return false;
        }
        Look_at_done(next);
        Common(done_of_all_, done_with_[next], done_of_more_);
        done_of_all_.swap(done_of_more_);
    }
    return !done_of_all_.empty();
}

void Before_first_clock::Iktatjuk_az_uj_math_cliquet(Place first, Place second,
                                                     Set_list& found) const {
    std::array<Node, 3> clique{centre_, (*candidates_)[first], (*candidates_)[second]};
    std::ranges::sort(clique);
    found.Add(clique);
}

} // namespace cpm
