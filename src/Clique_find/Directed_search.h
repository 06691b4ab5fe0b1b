// SPDX-License-Identifier: MIT
// Maximal acyclic sets, by branching with pivots on bit rows.
//
// Takes    the surroundings of a node.
// Leaves   each set of the centre and two candidates or more that is a directed clique and no part
//          of one with another candidate or an excluded node.
// Order    none: the caller sorts.
// Cost     what counts in practice is a few branches a set, each of so many words a candidate as
//          the candidates fill. Memory: three rows of bits a node, and the sets of this one node.
// Tested   Clique_find_dir_test.cpp: all subsets of random digraphs, and the literal gap search.
//
// A set is acyclic when it is two by two linked and its one-way links close no cycle; every
// part of it then is, too. That is all that branching needs: a node that cannot join a set cannot
// join a larger one.
#ifndef PLEXOR_DIRECTED_SEARCH_H
#define PLEXOR_DIRECTED_SEARCH_H

#include "Clique_find/Directed_bron_kerbosch.h"
#include "support/Bits.h"

#include <algorithm>
#include <bit>

namespace cpm::Directed_bron_kerbosch_sub {

using Word = std::uint64_t;
inline constexpr std::size_t steps_a_branch = 64; // beside those for each word looked at

enum Kind : std::size_t { linked, to, from, n_kinds };

// Where the row of a node begins.
inline Word* Row_in(Memory& memory, Place row, Kind kind) {
    return memory.rows.data() + (n_kinds * row + kind) * memory.n_words;
}

// The search, with the number of words a set takes known to the compiler, or 0.
template <std::size_t fixed_words> class Search {
public:
    explicit Search(Memory& memory) : memory_(memory) {}
    bool Recurrent_inc_inv_dir(Pace* pace);

private:
    // A level's sets. Its candidates can each join the set so far; the tried ones could, and so
    // could its rivals, which are excluded nodes.
    enum Level_set : std::size_t { candidates, tried, to_try, cyclic, n_level_sets };

    std::size_t N() const { return fixed_words != 0 ? fixed_words : memory_.n_words; }
    Word const* Row(Place row, Kind kind) const { return Row_in(memory_, row, kind); }
    Word* Set_of(std::size_t depth, Level_set set) {
        return memory_.level_sets.data() + (n_level_sets * depth + set) * N();
    }
    std::size_t Depth() const { return memory_.levels.size() - 1; }
    Word* Work(std::size_t i) { return memory_.work.data() + i * N(); }
    bool Empty(Word const* set) const { return !Meet(set, set); }
    bool Meet(Word const* a, Word const* b) const;
    std::size_t Common(Word const* a, Word const* b) const;
    template <class Visit> void For_each_bit(Word const* set, Visit visit) const;

    // Of the branch that was opened last. Looking for cycles takes some walks over the rows.
    std::size_t Steps_of_branch() const {
        Memory::Level const& level = memory_.levels.back();
        std::size_t const rows = memory_.pivots.size() + memory_.rivals.size() - level.rivals_begin;
        return steps_a_branch + (level.acyclic ? 1 : 4) * N() * (rows + 16);
    }
    void Open_root();
    void Tighten_dir(Place placed);
    void Close();
    bool No_more_possible_member();
    bool Mehet_tovabb();
    void Look_for_cycles();
    std::size_t Cycle_breakers(Place pivot, Word* breakers);
    void Follow(Kind kind, Word const* within, Word const* begin, Word* reached, Word* all_ends);
    void Iktatjuk_az_uj_vert_clt();

    Memory& memory_;
};

template <std::size_t fixed_words>
bool Search<fixed_words>::Meet(Word const* a, Word const* b) const {
    Word common = 0;
    for (std::size_t w = 0; w < N(); ++w) {
        common |= a[w] & b[w];
    }
    return common != 0;
}

template <std::size_t fixed_words>
std::size_t Search<fixed_words>::Common(Word const* a, Word const* b) const {
    std::size_t common = 0;
    for (std::size_t w = 0; w < N(); ++w) {
        common += static_cast<std::size_t>(std::popcount(a[w] & b[w]));
    }
    return common;
}

template <std::size_t fixed_words>
template <class Visit>
void Search<fixed_words>::For_each_bit(Word const* set, Visit visit) const {
    for (std::size_t w = 0; w < N(); ++w) {
        cpm::For_each_bit(set[w],
                          [&](std::size_t bit) { visit(static_cast<Place>(w * word_bits + bit)); });
    }
}

template <std::size_t fixed_words> bool Search<fixed_words>::Recurrent_inc_inv_dir(Pace* pace) {
    Open_root();
    bool opened = true;
    while (true) {
        if (opened) {
            opened = false;
            if (No_more_possible_member()) {
                Iktatjuk_az_uj_vert_clt();
            } else if (Mehet_tovabb()) {
                memory_.level_sets.resize(n_level_sets * N() * (Depth() + 2));
            }
            if (pace != nullptr && pace->Spend(Steps_of_branch())) {
                return false;
            }
        }
        Word* const open = Set_of(Depth(), to_try);
        std::size_t w = 0;
        while (w < N() && open[w] == 0) {
            ++w;
        }
        if (w < N()) {
            Tighten_dir(static_cast<Place>(w * word_bits + Lowest_bit(open[w])));
            opened = true;
        } else if (Depth() > 0) {
            Close();
        } else {
            return true;
        }
    }
}

template <std::size_t fixed_words> void Search<fixed_words>::Open_root() {
    std::size_t const n_places = memory_.rows.size() / (n_kinds * N());
    Place const centre = memory_.centre;
    memory_.lined_up.assign(N(), 0);
    Set_bit(memory_.lined_up.data(), centre);
    memory_.level_sets.assign(n_level_sets * N(), 0);
    memory_.work.resize(8 * N());
    for (Place i = 0; i < centre; ++i) {
        Set_bit(Set_of(0, candidates), i);
        Set_bit(Set_of(0, cyclic), i);
    }
    Set_bit(Set_of(0, cyclic), centre);
    memory_.rivals.clear();
    for (Place i = centre + 1; i < n_places; ++i) {
        memory_.rivals.push_back(i);
    }
    memory_.levels.assign(1, {});
    Look_for_cycles();
}

// The nodes of `within` that can be reached from `begin` by way of nodes of `within` alone, against
// the one-way links when `kind` is `from`. `all_ends` is where the links of `begin` and of those
// nodes lead to, inside or outside.
template <std::size_t fixed_words>
void Search<fixed_words>::Follow(Kind kind, Word const* within, Word const* begin, Word* reached,
                                 Word* all_ends) {
    for (std::size_t w = 0; w < N(); ++w) {
        reached[w] = 0;
        all_ends[w] = begin[w];
    }
    for (std::size_t w = 0; w < N();) {
        Word const next = all_ends[w] & within[w] & ~reached[w];
        if (next == 0) {
            ++w;
            continue;
        }
        auto const bit = Lowest_bit(next);
        reached[w] |= next & (~next + 1);
        Word const* const row = Row(static_cast<Place>(w * word_bits + bit), kind);
        std::size_t first = w;
        for (std::size_t k = 0; k < N(); ++k) {
            all_ends[k] |= row[k];
            if (k < first && (all_ends[k] & within[k] & ~reached[k]) != 0) {
                first = k;
            }
        }
        w = first;
    }
}

// Opens the branch of the next candidate to try: it is placed, and the candidates are tightened to
// those that can join it, too. A node that could join before closes a cycle with the placed one
// when it has a one-way link to it or to one that leads to it, and one from it or from one that it
// leads to.
template <std::size_t fixed_words>
[[gnu::always_inline]] inline void Search<fixed_words>::Tighten_dir(Place placed) {
    Memory::Level const level = memory_.levels.back();
    std::size_t const depth = Depth();
    Word const* const lined_up = memory_.lined_up.data();
    Word* const before = Work(0); // the placed node and those that lead to it
    Word* const after = Work(1);
    Word* const into_before = Work(2); // the nodes with a one-way link into `before`
    Word* const out_of_after = Work(3);
    bool const cycles =
        !level.acyclic && (Meet(Row(placed, to), lined_up) || Meet(Row(placed, from), lined_up));
    if (cycles) {
        Follow(from, lined_up, Row(placed, from), before, into_before);
        Follow(to, lined_up, Row(placed, to), after, out_of_after);
        Set_bit(before, placed);
        Set_bit(after, placed);
    }
    Clear_bit(Set_of(depth, to_try), placed);
    Clear_bit(Set_of(depth, candidates), placed);
    Word const* const links = Row(placed, linked);
    Word* const still = Set_of(depth + 1, candidates);
    Word* const still_tried = Set_of(depth + 1, tried);
    for (std::size_t w = 0; w < N(); ++w) {
        Word const can_join = cycles ? links[w] & ~(into_before[w] & out_of_after[w]) : links[w];
        still[w] = Set_of(depth, candidates)[w] & can_join;
        still_tried[w] = Set_of(depth, tried)[w] & can_join;
        Set_of(depth + 1, to_try)[w] = 0;
    }
    Set_bit(Set_of(depth, tried), placed);
    Set_bit(memory_.lined_up.data(), placed);

    // A rival without a link to a candidate can extend only the set so far, which is not
    // maximal while there are candidates.
    bool const no_more = Empty(still);
    std::size_t const rivals_end = memory_.rivals.size();
    for (std::size_t i = level.rivals_begin; i < rivals_end; ++i) {
        Place const rival = memory_.rivals[i];
        if (Has_bit(Row(rival, linked), placed) && (no_more || Meet(Row(rival, linked), still)) &&
            !(cycles && Meet(Row(rival, to), before) && Meet(Row(rival, from), after))) {
            memory_.rivals.push_back(rival);
        }
    }
    memory_.levels.push_back({rivals_end, placed, level.acyclic});
    if (!level.acyclic) {
        Look_for_cycles();
    }
}

template <std::size_t fixed_words> void Search<fixed_words>::Close() {
    memory_.rivals.resize(memory_.levels.back().rivals_begin);
    Clear_bit(memory_.lined_up.data(), memory_.levels.back().placed);
    memory_.levels.pop_back();
}

template <std::size_t fixed_words> bool Search<fixed_words>::No_more_possible_member() {
    return Empty(Set_of(Depth(), candidates));
}

// Keeps in `cyclic` what may still lie on a cycle: a node there has a one-way link to another
// one, and one from another one. A cycle may have one rival: that is one with both such links.
template <std::size_t fixed_words> void Search<fixed_words>::Look_for_cycles() {
    std::size_t const depth = Depth();
    Word* const on_cycle = Set_of(depth, cyclic);
    Word* const inside = Work(4);
    for (std::size_t w = 0; w < N(); ++w) {
        inside[w] = memory_.lined_up[w] | Set_of(depth, candidates)[w];
        Word const within = inside[w] | Set_of(depth, tried)[w];
        on_cycle[w] = depth == 0 ? within : within & Set_of(depth - 1, cyclic)[w];
    }
    bool changed = true;
    while (changed) {
        changed = false;
        For_each_bit(on_cycle, [&](Place i) {
            if (!Meet(Row(i, to), on_cycle) || !Meet(Row(i, from), on_cycle)) {
                Clear_bit(on_cycle, i);
                changed = true;
            }
        });
    }
    auto const rivals =
        memory_.rivals.begin() + static_cast<std::ptrdiff_t>(memory_.levels.back().rivals_begin);
    memory_.levels.back().acyclic =
        Empty(on_cycle) && std::none_of(rivals, memory_.rivals.end(), [&](Place rival) {
            return Meet(Row(rival, to), inside) && Meet(Row(rival, from), inside);
        });
}

// Finds candidates of which a set must hold one to close a cycle with the pivot; returns how many.
// Such a cycle runs through nodes linked with the pivot, in the set so far and the candidates,
// and somewhere through a candidate, since the pivot can join the set so far. The first candidate
// on its way from the pivot is one reached directly or over the set so far; the last one leads
// back in the same way. The smaller of these two choices is taken.
template <std::size_t fixed_words>
std::size_t Search<fixed_words>::Cycle_breakers(Place pivot, Word* breakers) {
    std::size_t const depth = Depth();
    Word const* const set = Set_of(depth, candidates);
    Word* const on_cycle = Work(0); // with the pivot
    Word* const way = Work(1);
    Word* const reached = Work(2);
    Word* const ends = Work(3);
    std::fill(breakers, breakers + N(), 0);
    bool const is_candidate = pivot < memory_.centre;
    if (is_candidate && !Has_bit(Set_of(depth, cyclic), pivot)) {
        return 0;
    }
    for (std::size_t w = 0; w < N(); ++w) {
        way[w] = memory_.lined_up[w] | (set[w] & Row(pivot, linked)[w]);
    }
    if (!Meet(Row(pivot, to), way) || !Meet(Row(pivot, from), way)) {
        return 0;
    }
    Follow(to, way, Row(pivot, to), on_cycle, ends);
    Follow(from, on_cycle, Row(pivot, from), reached, ends);
    std::copy(reached, reached + N(), on_cycle);
    if (Empty(on_cycle)) {
        return 0;
    }
    Follow(to, memory_.lined_up.data(), Row(pivot, to), reached, ends);
    Word* const first = Work(1); // the way is not needed any more
    for (std::size_t w = 0; w < N(); ++w) {
        first[w] = ends[w] & set[w] & on_cycle[w];
    }
    Follow(from, memory_.lined_up.data(), Row(pivot, from), reached, ends);
    for (std::size_t w = 0; w < N(); ++w) {
        breakers[w] = ends[w] & set[w] & on_cycle[w];
    }
    std::size_t const n_first = Common(first, first);
    std::size_t const n_last = Common(breakers, breakers);
    if (n_first < n_last) {
        std::copy(first, first + N(), breakers);
    }
    return std::min(n_first, n_last);
}

// Chooses the candidates to try so that no new set is missed; false when there are none, that is
// when every set of this branch can be joined by a node from outside it.
// Invariant: a maximal set without the pivot holds a candidate that is not linked with the pivot,
//            or one that closes a cycle with it.
// Relies on: the pivot can join the set so far; it could join the maximal set otherwise.
// Buys:      only the pivot (if it is a candidate) and those candidates are tried.
// Pinned by: Clique_find_dir_test
template <std::size_t fixed_words>
[[gnu::always_inline]] inline bool Search<fixed_words>::Mehet_tovabb() {
    std::size_t const depth = Depth();
    Memory::Level const& level = memory_.levels.back();
    Word const* const set = Set_of(depth, candidates);
    std::size_t const size = Common(set, set);
    // Stage 1: how many candidates are not linked with each possible pivot.
    std::vector<Memory::Pivot>& pivots = memory_.pivots;
    pivots.clear();
    auto const add = [&](Place row) {
        pivots.push_back({size - Common(Row(row, linked), set), row});
    };
    For_each_bit(set, add);
    For_each_bit(Set_of(depth, tried), add);
    std::for_each(memory_.rivals.begin() + static_cast<std::ptrdiff_t>(level.rivals_begin),
                  memory_.rivals.end(), add);
    // Stage 2: the pivot with the fewest branches, those against cycles included, among the most
    // promising ones.
    constexpr int most_tests = 16;
    std::size_t least = size + 1;
    Word* const branches = Set_of(depth, to_try);
    Word* const breakers = Work(5);
    for (int tests = 0; tests < most_tests && least > 0; ++tests) {
        auto const best = std::ranges::min_element(pivots, {}, &Memory::Pivot::branches);
        if (best->branches >= least) {
            break;
        }
        std::size_t const more = level.acyclic ? 0 : Cycle_breakers(best->place, breakers);
        if (best->branches + more < least) {
            least = best->branches + more;
            for (std::size_t w = 0; w < N(); ++w) {
                branches[w] = set[w] & ~Row(best->place, linked)[w];
                branches[w] |= more != 0 ? breakers[w] : 0;
            }
        }
        if (more == 0) {
            break;
        }
        best->branches = size + 1;
    }
    return least > 0;
}

// The set is complete. It is new when nothing from outside can join it.
template <std::size_t fixed_words> void Search<fixed_words>::Iktatjuk_az_uj_vert_clt() {
    std::size_t const depth = Depth();
    bool const has_rivals = memory_.rivals.size() > memory_.levels.back().rivals_begin;
    if (depth < 2 || has_rivals || !Empty(Set_of(depth, tried))) {
        return;
    }
    std::size_t const bytes = (depth + 1) * sizeof(Place) + sizeof(std::uint64_t);
    if (memory_.room < bytes) {
        memory_.all_kept = false;
        return;
    }
    memory_.room -= bytes;
    For_each_bit(memory_.lined_up.data(), [this](Place i) { memory_.found.Append(i); });
    memory_.found.Close_list();
}

} // namespace cpm::Directed_bron_kerbosch_sub

#endif
