// SPDX-License-Identifier: MIT
// The search of Bron and Kerbosch with a pivot, over words.
#include "Clique_find/One_word_problem.h"

#include "support/Cpu_dispatch.h"

#include <algorithm>
#include <cassert>

namespace cpm::Bron_kerbosch_sub {

namespace {

constexpr std::size_t steps_a_branch = 16; // beside those for each word looked at

using Word = std::uint64_t;

void Keep(One_word_problem& problem, Word clique) {
    if (problem.room < sizeof(Word)) {
        problem.all_kept = false;
        return;
    }
    problem.room -= sizeof(Word);
    problem.found.push_back(clique);
}

} // namespace

// A branch is a clique R, the candidates P that extend it, and the excluded nodes linked with all
// of R: bits X for candidates already tried, words of `excluded` (cut down to P) for the others.
// A clique found in a branch lies in R and P, and holds something of P unless P is empty: so an
// excluded node without a link into P forbids nothing there, and one linked with all of P forbids
// everything.
PLEXOR_COUNTS_BITS
bool Search_words(One_word_problem& problem, Word all, Pace* pace) {
    struct Branch {
        Word clique = 0;
        Word candidates = 0;
        Word tried = 0;
        Word to_try = 0;
        std::size_t excluded_begin = 0;
        std::size_t excluded_end = 0;
    };
    std::array<Branch, word_bits + 1> branches;
    std::array<Word, word_bits> const& rows = problem.rows;
    Flat_array<Word>& excluded = problem.excluded;
    assert(all != 0 &&
           std::ranges::all_of(excluded, [all](Word row) { return (row & ~all) == 0; }));
    std::size_t depth = 0;
    branches[0] = {0, all, 0, 0, 0, excluded.size()};
    bool opened = false;

    while (true) {
        Branch& branch = branches[depth];
        if (!opened) {
            // Stage 1: choose a pivot; a clique without it holds a candidate not linked with it.
            opened = true;
            Word const set = branch.candidates;
            int const size = std::popcount(set);
            int best = -1;
            int least = size;
            Word best_row = 0;
            for (Word rest = set; rest != 0;) {
                auto const i = static_cast<std::size_t>(std::countl_zero(rest));
                rest &= ~First_bit(i);
                int const links = std::popcount(rows[i] & set);
                least = std::min(least, links);
                if (links > best) {
                    best = links;
                    best_row = rows[i];
                }
            }
            bool hopeless = false;
            for (Word rest = branch.tried; rest != 0;) {
                auto const i = static_cast<std::size_t>(std::countl_zero(rest));
                rest &= ~First_bit(i);
                int const links = std::popcount(rows[i] & set);
                hopeless |= links == size;
                if (links > best) {
                    best = links;
                    best_row = rows[i];
                }
            }
            for (std::size_t e = branch.excluded_begin; e < branch.excluded_end; ++e) {
                int const links = std::popcount(excluded[e] & set);
                hopeless |= links == size;
                if (links > best) {
                    best = links;
                    best_row = excluded[e];
                }
            }
            if (hopeless) {
                branch.to_try = 0;
            } else if (least == size - 1) {
                Keep(problem, branch.clique | set); // all of P is one clique
                branch.to_try = 0;
            } else {
                branch.to_try = set & ~best_row;
            }
            // What stage 2 will do for each candidate to try is counted here, too: at each of them
            // the counting itself would show.
            auto const n_passes = 1 + static_cast<std::size_t>(std::popcount(branch.to_try));
            std::size_t const n_excluded = branch.excluded_end - branch.excluded_begin;
            if (pace != nullptr && pace->Spend(n_passes * (steps_a_branch + n_excluded) +
                                               static_cast<std::size_t>(size))) {
                return false;
            }
        }
        if (branch.to_try == 0) {
            if (depth == 0) {
                return true;
            }
            --depth;
            continue;
        }
        // Stage 2: the branch of the next candidate.
        auto const i = static_cast<std::size_t>(std::countl_zero(branch.to_try));
        Word const bit = First_bit(i);
        Word const candidates = branch.candidates & rows[i];
        Word const tried = branch.tried & rows[i];
        branch.to_try &= ~bit;
        branch.candidates &= ~bit;
        branch.tried |= bit;
        excluded.Resize_uninitialised(branch.excluded_end);
        bool hopeless = candidates == 0 && tried != 0;
        for (std::size_t e = branch.excluded_begin; e < branch.excluded_end && !hopeless; ++e) {
            Word const row = excluded[e];
            if ((row & bit) != 0) {
                Word const links = row & candidates;
                hopeless = links == candidates;
                if (links != 0) {
                    excluded.push_back(links);
                }
            }
        }
        if (hopeless) {
            continue;
        }
        if (candidates == 0) {
            Keep(problem, branch.clique | bit);
            continue;
        }
        branches[depth + 1] = {branch.clique | bit, candidates,     tried, 0,
                               branch.excluded_end, excluded.size()};
        ++depth;
        opened = false;
    }
}

} // namespace cpm::Bron_kerbosch_sub
