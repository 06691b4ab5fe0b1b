// SPDX-License-Identifier: MIT
// Maximal sets that can be lined up, by branching with pivots on bit rows.
//
// Takes    the surroundings of a node.
// Leaves   each set of the centre and two candidates or more that can be lined up, and no more so
//          with any other candidate or excluded node.
// Order    none: the caller sorts.
// Cost     what counts in practice is a few branches a set, each of so many words a candidate as
//          the candidates fill. Memory: three rows of bits a node, and the sets of this one node.
// Tested   Clique_find_dir_test.cpp: all subsets of random digraphs, and the literal gap search.
//
// A set can be lined up when it is two by two linked and its one-way links close no circle; every
// part of it then can, too. That is all that branching needs: a node that cannot join a set cannot
// join a larger one.
#include "Clique_find/Dir_kernel.h"

#include "support/Bits.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace cpm {

namespace {

using Dir_kernel_sub::Memory;
using Word = std::uint64_t;
constexpr std::size_t steps_a_link = 4;
constexpr std::size_t steps_a_branch = 64; // beside those for each word looked at

enum Kind : std::size_t { linked, to, from, n_kinds };

// Where the row of a node begins.
Word* Row_in(Memory& memory, Place row, Kind kind) {
    return memory.rows.data() + (n_kinds * row + kind) * memory.n_words;
}

// The search, with the number of words a set takes known to the compiler, or 0.
template <std::size_t fixed_words> class Search {
public:
    explicit Search(Memory& memory) : memory_(memory) {}
    bool Recurrent_inc_inv_dir(Pace* pace);

private:
    // A level's sets. Its candidates can each join the set lined up; the tried ones could, and so
    // could its rivals, which are excluded nodes.
    enum Level_set : std::size_t { candidates, tried, to_try, circular, n_level_sets };

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

    // Of the branch that was opened last. Looking for circles takes some walks over the rows.
    std::size_t Steps_of_branch() const {
        Memory::Level const& level = memory_.levels.back();
        std::size_t const rows = memory_.pivots.size() + memory_.rivals.size() - level.rivals_begin;
        return steps_a_branch + (level.no_circles ? 1 : 4) * N() * (rows + 16);
    }
    void Open_root();
    void Tighten_dir(Place placed);
    void Close();
    bool No_more_possible_member();
    bool Mehet_tovabb();
    void Look_for_circles();
    std::size_t Circle_breakers(Place pivot, Word* breakers);
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
        Set_bit(Set_of(0, circular), i);
    }
    Set_bit(Set_of(0, circular), centre);
    memory_.rivals.clear();
    for (Place i = centre + 1; i < n_places; ++i) {
        memory_.rivals.push_back(i);
    }
    memory_.levels.assign(1, {});
    Look_for_circles();
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
// those that can join it, too. A node that could join before closes a circle with the placed one
// when it has a one-way link to it or to one that leads to it, and one from it or from one that it
// leads to.
template <std::size_t fixed_words> void Search<fixed_words>::Tighten_dir(Place placed) {
    Memory::Level const level = memory_.levels.back();
    std::size_t const depth = Depth();
    Word const* const lined_up = memory_.lined_up.data();
    Word* const before = Work(0); // the placed node and those that lead to it
    Word* const after = Work(1);
    Word* const into_before = Work(2); // the nodes with a one-way link into `before`
    Word* const out_of_after = Work(3);
    bool const circles =
        !level.no_circles && (Meet(Row(placed, to), lined_up) || Meet(Row(placed, from), lined_up));
    if (circles) {
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
        Word const can_join = circles ? links[w] & ~(into_before[w] & out_of_after[w]) : links[w];
        still[w] = Set_of(depth, candidates)[w] & can_join;
        still_tried[w] = Set_of(depth, tried)[w] & can_join;
        Set_of(depth + 1, to_try)[w] = 0;
    }
    Set_bit(Set_of(depth, tried), placed);
    Set_bit(memory_.lined_up.data(), placed);

    // A rival without a link to a candidate can extend only the set lined up so far, which is not
    // maximal while there are candidates.
    bool const no_more = Empty(still);
    std::size_t const rivals_end = memory_.rivals.size();
    for (std::size_t i = level.rivals_begin; i < rivals_end; ++i) {
        Place const rival = memory_.rivals[i];
        if (Has_bit(Row(rival, linked), placed) && (no_more || Meet(Row(rival, linked), still)) &&
            !(circles && Meet(Row(rival, to), before) && Meet(Row(rival, from), after))) {
            memory_.rivals.push_back(rival);
        }
    }
    memory_.levels.push_back({rivals_end, placed, level.no_circles});
    if (!level.no_circles) {
        Look_for_circles();
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

// Keeps in `circular` what may still lie on a circle: a node there has a one-way link to another
// one, and one from another one. A circle may have one rival: that is one with both such links.
template <std::size_t fixed_words> void Search<fixed_words>::Look_for_circles() {
    std::size_t const depth = Depth();
    Word* const on_circle = Set_of(depth, circular);
    Word* const inside = Work(4);
    for (std::size_t w = 0; w < N(); ++w) {
        inside[w] = memory_.lined_up[w] | Set_of(depth, candidates)[w];
        Word const within = inside[w] | Set_of(depth, tried)[w];
        on_circle[w] = depth == 0 ? within : within & Set_of(depth - 1, circular)[w];
    }
    bool changed = true;
    while (changed) {
        changed = false;
        For_each_bit(on_circle, [&](Place i) {
            if (!Meet(Row(i, to), on_circle) || !Meet(Row(i, from), on_circle)) {
                Clear_bit(on_circle, i);
                changed = true;
            }
        });
    }
    auto const rivals =
        memory_.rivals.begin() + static_cast<std::ptrdiff_t>(memory_.levels.back().rivals_begin);
    memory_.levels.back().no_circles =
        Empty(on_circle) && std::none_of(rivals, memory_.rivals.end(), [&](Place rival) {
            return Meet(Row(rival, to), inside) && Meet(Row(rival, from), inside);
        });
}

// Finds candidates of which a set must hold one to close a circle with the pivot; returns how many.
// Such a circle runs through nodes linked with the pivot, in the set lined up and the candidates,
// and somewhere through a candidate, since the pivot can join the set lined up. The first candidate
// on its way from the pivot is one reached directly or over the set lined up; the last one leads
// back in the same way. The smaller of these two choices is taken.
template <std::size_t fixed_words>
std::size_t Search<fixed_words>::Circle_breakers(Place pivot, Word* breakers) {
    std::size_t const depth = Depth();
    Word const* const set = Set_of(depth, candidates);
    Word* const on_circle = Work(0); // with the pivot
    Word* const way = Work(1);
    Word* const reached = Work(2);
    Word* const ends = Work(3);
    std::fill(breakers, breakers + N(), 0);
    bool const is_candidate = pivot < memory_.centre;
    if (is_candidate && !Has_bit(Set_of(depth, circular), pivot)) {
        return 0;
    }
    for (std::size_t w = 0; w < N(); ++w) {
        way[w] = memory_.lined_up[w] | (set[w] & Row(pivot, linked)[w]);
    }
    if (!Meet(Row(pivot, to), way) || !Meet(Row(pivot, from), way)) {
        return 0;
    }
    Follow(to, way, Row(pivot, to), on_circle, ends);
    Follow(from, on_circle, Row(pivot, from), reached, ends);
    std::copy(reached, reached + N(), on_circle);
    if (Empty(on_circle)) {
        return 0;
    }
    Follow(to, memory_.lined_up.data(), Row(pivot, to), reached, ends);
    Word* const first = Work(1); // the way is not needed any more
    for (std::size_t w = 0; w < N(); ++w) {
        first[w] = ends[w] & set[w] & on_circle[w];
    }
    Follow(from, memory_.lined_up.data(), Row(pivot, from), reached, ends);
    for (std::size_t w = 0; w < N(); ++w) {
        breakers[w] = ends[w] & set[w] & on_circle[w];
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
//            or one that closes a circle with it.
// Relies on: the pivot can join the set lined up; it could join the maximal set otherwise.
// Buys:      only the pivot (if it is a candidate) and those candidates are tried.
// Pinned by: Clique_find_dir_test
template <std::size_t fixed_words> bool Search<fixed_words>::Mehet_tovabb() {
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
    // Stage 2: the pivot with the fewest branches, those against circles included, among the most
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
        std::size_t const more = level.no_circles ? 0 : Circle_breakers(best->place, breakers);
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

// The set lined up is complete. It is new when nothing from outside can join it.
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

} // namespace

bool Dir_kernel::Find(Dir_surroundings const& around, Pace* pace, std::size_t most_bytes) {
    memory_.found.clear();
    memory_.room = most_bytes;
    memory_.all_kept = true;
    if (!Set_up(around, pace)) {
        return false;
    }
    bool finished = false;
    switch (memory_.n_words) {
    case 1:
        finished = Search<1>(memory_).Recurrent_inc_inv_dir(pace);
        break;
    case 2:
        finished = Search<2>(memory_).Recurrent_inc_inv_dir(pace);
        break;
    default:
        finished = Search<0>(memory_).Recurrent_inc_inv_dir(pace);
    }
    return finished && memory_.all_kept;
}

bool Dir_kernel::Set_up(Dir_surroundings const& around, Pace* pace) {
    auto const in_time = [pace](std::size_t steps) {
        return pace == nullptr || !pace->Spend(steps);
    };
    assert(0 < around.Centre() && around.Centre() < around.N_places());
    memory_.centre = around.Centre();
    memory_.n_words = Words_for(memory_.centre);
    memory_.rows.clear();
    for (std::size_t i = 1; i <= around.N_places(); ++i) { // the rows of a hub take long to clear
        memory_.rows.Resize(n_kinds * i * memory_.n_words, 0);
        if (!in_time(n_kinds * memory_.n_words)) {
            return false;
        }
    }
    auto const set_link = [&](Place a, Place b, Arcs seen_from_a) {
        assert(a < around.N_places() && b <= memory_.centre && a != b);
        assert(0 < seen_from_a && seen_from_a <= Arc_both);
        Set_bit(Row_in(memory_, a, linked), b);
        if (seen_from_a != Arc_both) {
            Set_bit(Row_in(memory_, a, seen_from_a == Arc_to ? to : from), b);
        }
    };
    for (Place i = 0; i < around.N_places(); ++i) {
        if (i < memory_.centre) {
            set_link(memory_.centre, i, around.Arcs_with(i));
        }
        if (i != memory_.centre) {
            set_link(i, memory_.centre, Reversed(around.Arcs_with(i)));
        }
    }
    for (Local_link const& link : around.Links()) {
        assert(link.candidate < memory_.centre && link.other < memory_.centre);
        set_link(link.candidate, link.other, link.arcs);
        set_link(link.other, link.candidate, Reversed(link.arcs));
        if (!in_time(steps_a_link)) {
            return false;
        }
    }
    for (Local_link const& link : around.Excluded_links()) {
        assert(link.candidate < memory_.centre && memory_.centre < link.other);
        set_link(link.other, link.candidate, Reversed(link.arcs));
        if (!in_time(steps_a_link)) {
            return false;
        }
    }
    return true;
}

} // namespace cpm
