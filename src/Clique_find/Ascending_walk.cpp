// SPDX-License-Identifier: MIT
// The beginning of the order, when there is no time for all.
//
// Takes    a node, its candidates and excluded nodes, the pair from which on cliques are wanted.
// Leaves   the cliques in their order, up to where the walk was stopped.
// Order    lexicographic by candidates: each level takes its candidates ascending.
// Cost     no pivot, so more branches than Bron_kerbosch has; each costs a row of bits for each
//          node that may extend the clique. Rows are gathered for one first candidate at a time: a
//          hub need not be looked at whole. Memory: these rows.
// Tested   Ascending_walk_test.cpp
//
// Invariant: the walk keeps up with the search by single steps, which drops a branch when its
//            clique with all its candidates lies in a known clique.
// Relies on: a known clique that holds all of them and more has a node that is tried or excluded
//            here and linked with all of them; one that is just them was met in this branch.
// Buys:      what that search would have listed in the time is listed.
// Breaks if: a branch that Hopeless() drops is only dropped once it has been walked.
// Pinned by: Ascending_walk_test, timed_prefix
#include "Clique_find/Ascending_walk.h"

#include "support/Bits.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace cpm {

namespace {

constexpr std::size_t steps_a_branch = 32; // beside those for each word looked at

} // namespace

Ascending_walk::Ascending_walk(Graph const& order) : order_(order) {}

template <class Visit>
void Ascending_walk::For_each_bit(Word const* set, Visit const& visit) const {
    for (std::size_t w = 0; w < n_words_; ++w) {
        cpm::For_each_bit(set[w], [&](std::size_t bit) { visit(w * word_bits + bit); });
    }
}

void Ascending_walk::List(Problem const& problem, Before_first_clock::Pair begin, std::size_t most,
                          Pace& pace, Set_list& found) {
    if (number_.empty()) {
        number_.Resize(order_.size() + 1, 0);
    }
    for (Place first = begin.first; first < problem.candidates.size(); ++first) {
        bool go_on = Gather(problem, first, first == begin.first ? begin.second : 0, pace);
        for (Place const place : later_) {
            number_[problem.candidates[place]] = 0;
        }
        for (Node const node : extending_) {
            number_[node] = 0;
        }
        go_on = go_on && (later_.empty() || Walk(problem, first, most, pace, found));
        if (!go_on) {
            return;
        }
    }
}

// Sets up the problem of the cliques with one candidate. A link stands with that of its two ends
// which comes first in the order of the nodes.
bool Ascending_walk::Gather(Problem const& problem, Place first, Place second, Pace& pace) {
    Node const name = problem.candidates[first];
    later_.clear();
    extending_.clear();
    n_tried_ = 0;
    problem.candidates.For_each_neighbour_of(name, 0, [&](std::size_t place) {
        if (place > first) {
            later_.push_back(static_cast<Place>(place));
            n_tried_ += place < second ? 1U : 0U;
        } else {
            extending_.push_back(problem.candidates[place]);
        }
    });
    if (later_.empty()) {
        return !pace.Spend(steps_a_branch + extending_.size());
    }
    problem.excluded.For_each_neighbour_of(
        name, 0, [&](std::size_t place) { extending_.push_back(problem.excluded[place]); });
    std::uint32_t number = 0;
    for (Place const place : later_) {
        number_[problem.candidates[place]] = ++number;
    }
    for (Node const node : extending_) {
        number_[node] = ++number;
    }
    auto const n = static_cast<std::uint32_t>(later_.size());
    n_words_ = (n + word_bits - 1) / word_bits;
    rows_.clear();
    excluded_.clear();
    for (std::size_t i = 1; i <= number; ++i) {
        Flat_array<Word>& rows = i <= n ? rows_ : excluded_;
        rows.Resize(rows.size() + n_words_, 0);
        if (pace.Spend(n_words_)) {
            return false;
        }
    }
    for (std::uint32_t i = 0; i < number; ++i) {
        Node_set const later =
            order_.Later(i < n ? problem.candidates[later_[i]] : extending_[i - n]);
        for (Node const node : later) {
            std::uint32_t const other = number_[node];
            if (other == 0 || (i >= n && other > n)) {
                continue;
            }
            std::uint32_t const j = other - 1;
            if (i < n && j < n) {
                Set_bit(rows_.data() + i * n_words_, j);
                Set_bit(rows_.data() + j * n_words_, i);
            } else {
                Set_bit(excluded_.data() + (std::max(i, j) - n) * n_words_, std::min(i, j));
            }
        }
        if (pace.Spend(2 * later.size() + 1)) {
            return false;
        }
    }
    return true;
}

// Whether some node is linked with all placed and with all that are left.
bool Ascending_walk::Hopeless(Word const* left, Word const* tried,
                              std::size_t excluded_begin) const {
    auto const holds_all = [&](Word const* row) {
        for (std::size_t w = 0; w < n_words_; ++w) {
            if ((left[w] & ~row[w]) != 0) {
                return false;
            }
        }
        return true;
    };
    for (std::size_t e = excluded_begin; e < active_.size(); ++e) {
        if (holds_all(Excluded_row(active_[e]))) {
            return true;
        }
    }
    for (std::size_t w = 0; w < n_words_; ++w) {
        for (Word rest = tried[w]; rest != 0; rest &= rest - 1) {
            if (holds_all(Row(w * word_bits + Lowest_bit(rest)))) {
                return true;
            }
        }
    }
    return false;
}

bool Ascending_walk::Is_clique(Word const* set) const {
    for (std::size_t w = 0; w < n_words_; ++w) {
        for (Word rest = set[w]; rest != 0; rest &= rest - 1) {
            std::size_t const i = w * word_bits + Lowest_bit(rest);
            Word const* const row = Row(i);
            for (std::size_t v = 0; v < n_words_; ++v) {
                if ((set[v] & ~row[v]) != (v == w ? Bit(i) : 0)) {
                    return false;
                }
            }
        }
    }
    return true;
}

bool Ascending_walk::Walk(Problem const& problem, Place first, std::size_t most, Pace& pace,
                          Set_list& found) {
    std::size_t const n = n_words_;
    auto const add = [&](Word const* rest) {
        clique_.clear();
        clique_.push_back(problem.candidates[first]);
        for (std::size_t depth = 1; depth < levels_.size(); ++depth) {
            clique_.push_back(problem.candidates[later_[levels_[depth].placed]]);
        }
        For_each_bit(rest,
                     [&](std::size_t i) { clique_.push_back(problem.candidates[later_[i]]); });
        clique_.insert(std::ranges::upper_bound(clique_, problem.centre), problem.centre);
        found.Add(clique_);
        return found.size() < most;
    };
    levels_.assign(1, {});
    active_.resize(excluded_.size() / n);
    std::iota(active_.begin(), active_.end(), 0U);
    level_words_.clear();
    level_words_.Resize(2 * n, 0);
    for (std::size_t i = 0; i < later_.size(); ++i) {
        Set_bit(level_words_.data() + (i < n_tried_ ? n : 0), i);
    }
    std::size_t w = 0; // no word of the level before this one has a candidate left
    while (true) {
        std::size_t const depth = levels_.size() - 1;
        level_words_.Resize(2 * n * (depth + 2));
        Word* const left = level_words_.data() + 2 * n * depth;
        Word* const tried = left + n;
        while (w < n && left[w] == 0) {
            ++w;
        }
        if (w == n) {
            if (depth == 0) {
                return true;
            }
            active_.resize(levels_.back().excluded_begin);
            w = levels_.back().placed / word_bits;
            levels_.pop_back();
            continue;
        }
        std::size_t const next = w * word_bits + Lowest_bit(left[w]);
        left[w] &= ~Bit(next);
        Word* const next_left = tried + n;
        Word* const next_tried = next_left + n;
        Word const* const row = Row(next);
        bool leads_on = false;
        bool all_linked = true; // with this one: then the branches after it have nothing new
        std::size_t n_extending = 0;
        for (std::size_t v = 0; v < n; ++v) {
            next_left[v] = left[v] & row[v];
            next_tried[v] = tried[v] & row[v];
            leads_on = leads_on || next_left[v] != 0;
            all_linked = all_linked && next_left[v] == left[v];
            n_extending += static_cast<std::size_t>(std::popcount(next_tried[v]));
        }
        tried[w] |= Bit(next);
        if (all_linked) {
            std::fill(left, left + n, Word{0});
        }
        std::size_t const excluded_begin = levels_.back().excluded_begin;
        std::size_t const excluded_end = active_.size();
        for (std::size_t e = excluded_begin; e < excluded_end; ++e) {
            if (Has_bit(Excluded_row(active_[e]), next)) {
                active_.push_back(active_[e]);
            }
        }
        n_extending += active_.size() - excluded_end;
        if (pace.Spend(steps_a_branch + (excluded_end - excluded_begin) + n * (4 + n_extending))) {
            return false;
        }
        // (With nothing left, any node that is linked with all placed holds all that are left.)
        bool open = !Hopeless(next_left, next_tried, excluded_end);
        if (open && (!leads_on || Is_clique(next_left))) {
            levels_.push_back({static_cast<std::uint32_t>(next), excluded_end});
            bool const go_on = add(next_left);
            levels_.pop_back();
            if (!go_on) {
                return false;
            }
            open = false;
        }
        if (open) {
            levels_.push_back({static_cast<std::uint32_t>(next), excluded_end});
            w = next / word_bits;
        } else {
            active_.resize(excluded_end);
        }
    }
}

} // namespace cpm
