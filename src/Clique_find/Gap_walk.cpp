// SPDX-License-Identifier: MIT
// The beginning of the order of the directed cliques, when there is no time for all.
//
// Takes    the surroundings of a node, and who is linked with whom there.
// Leaves   the sets in their order, up to where the walk was stopped.
// Order    lines grow as in Dir_order: gaps from the front, in a gap ascending nodes.
// Cost     a step looks at the rows of all that may join the line. Rows are gathered for one first
//          candidate at a time: a hub need not be looked at whole. Memory: these rows, and sixteen
//          bytes for each node that may join each line on the way, no more than for each link.
// Tested   Gap_walk_test.cpp
//
// Invariant: a line is left when its nodes and all that may join it are an acyclic set, which is
//            listed here, once for all, or is listed elsewhere.
// Relies on: whatever the line becomes is a part of that set. The set is met first by the steps of
//            its First_line: if these begin with the steps that led here it is met after this
//            line and nowhere before; if they do not, it is met elsewhere. If another node can join
//            the set, no part of it is listed at all.
// Buys:      nothing that has been listed has to be remembered; and the walk keeps up with the
//            search by gaps, which leaves a line only when that set lies in a known one: then it
//            is acyclic.
// Breaks if: a line whose set is not acyclic were left for another reason than that nothing
//            that it may become is met here first (Keeps_its_order), or is maximal (Any_can_join).
// Pinned by: Gap_walk_test, timed_prefix
#include "Clique_find/Gap_walk.h"

#include "support/Bits.h"

#include <algorithm>

namespace cpm {

namespace {

constexpr std::size_t steps_a_line = 64; // beside those for each word looked at

} // namespace

template <class Visit> void Gap_walk::For_each_bit(Words const& set, Visit const& visit) const {
    for (std::size_t w = 0; w < n_words_; ++w) {
        cpm::For_each_bit(
            set[w], [&](std::size_t bit) { visit(static_cast<Number>(w * word_bits + bit)); });
    }
}

bool Gap_walk::List(Dir_surroundings const& around, Dir_before_first_clock& check, bool acyclic,
                    std::size_t most, Pace& pace) {
    around_ = &around;
    check_ = &check;
    most_ = most;
    may_have_cycles_ = !acyclic;
    found_.clear();
    numbers_.clear();
    numbers_.Resize(around.N_places(), 0);
    caught_up_ = false;
    for (std::uint32_t const gap : {0U, 1U}) {
        for (Place first = 0; first < around.Centre(); ++first) {
            if ((around.Arcs_with(first) & (gap == 0 ? Arc_from : Arc_to)) == 0) {
                continue;
            }
            bool const in_time = Gather(first, pace) && Walk(gap, first, pace);
            for (Place const place : places_) {
                numbers_[place] = 0;
            }
            if (!in_time) {
                return caught_up_;
            }
        }
    }
    return true;
}

// Sets up the problem of the sets with the centre and one candidate.
bool Gap_walk::Gather(Place first, Pace& pace) {
    Place const centre = around_->Centre();
    auto const neighbours = check_->Neighbours(first, pace);
    places_.clear();
    for (auto const& neighbour : neighbours) {
        if (neighbour.place < centre) {
            places_.push_back(neighbour.place);
        }
    }
    places_.insert(std::ranges::upper_bound(places_, first), first);
    n_candidates_ = static_cast<Number>(places_.size());
    places_.push_back(centre);
    for (auto const& neighbour : neighbours) {
        if (neighbour.place > centre) {
            places_.push_back(neighbour.place);
        }
    }
    for (std::size_t i = 0; i < places_.size(); ++i) {
        numbers_[places_[i]] = static_cast<Number>(i + 1);
    }
    n_words_ = n_candidates_ / word_bits + 1;
    rows_.clear();
    for (std::size_t i = 1; i <= places_.size(); ++i) {
        rows_.Resize(n_kinds * i * n_words_, 0);
        if (pace.Spend(n_kinds * n_words_)) {
            return false;
        }
    }
    for (Number i = 0; i < places_.size(); ++i) {
        if (i != n_candidates_) {
            Arcs const arcs = around_->Arcs_with(places_[i]);
            Set_link(i, n_candidates_, Reversed(arcs));
            if (i < n_candidates_) {
                Set_link(n_candidates_, i, arcs);
            }
        }
    }
    for (Number i = 0; i < n_candidates_; ++i) {
        auto const all = check_->Neighbours(places_[i], pace);
        for (auto const& neighbour : all) {
            Number const other = numbers_[neighbour.place];
            if (other != 0) {
                Set_link(other - 1, i, Reversed(neighbour.arcs));
            }
        }
        if (pace.Spend(4 * all.size() + 1)) {
            return false;
        }
    }
    return true;
}

void Gap_walk::Set_link(Number a, Number b, Arcs seen_from_a) {
    auto const set = [&](Kind kind) { Set_bit(rows_.data() + (n_kinds * a + kind) * n_words_, b); };
    set(linked);
    if (seen_from_a != Arc_both) {
        set(seen_from_a == Arc_to ? to : from);
    }
}

// The line of the centre alone has been grown by the first candidate, into this gap.
bool Gap_walk::Walk(std::uint32_t gap, Place first, Pace& pace) {
    Number const centre = n_candidates_;
    Number const placed = numbers_[first] - 1;
    line_.assign(1, centre);
    steps_.clear();
    joining_.clear();
    for (Number node = 0; node < centre; ++node) {
        Arcs const arcs = around_->Arcs_with(places_[node]);
        joining_.push_back({node, arcs == Arc_to ? 1U : 0U, arcs == Arc_from ? 0U : 1U, 0});
    }
    levels_.assign(1, {0, 0, 0});
    Grow(gap, placed);
    Dir_before_first_clock::Line const reached = check_->Reached_at();
    bool const reached_here = reached.first_gap == gap && reached.first == first;
    std::uint64_t const reached_step =
        reached_here ? First_line::Step(reached.second_gap, numbers_[reached.second] - 1) : 0;
    bool opened = true;
    while (levels_.size() > 1) {
        if (opened) {
            std::size_t const rows =
                Joining_now().size() + (may_have_cycles_ ? 4 : 1) * places_.size();
            if (pace.Spend(steps_a_line + rows * (n_words_ + 2)) || found_.size() >= most_) {
                return false;
            }
            if (!Leads_on()) {
                caught_up_ = caught_up_ || (levels_.size() == 2 && reached_here);
                Shrink();
            }
            opened = false;
            continue;
        }
        std::uint32_t next_gap = 0;
        Number next = 0;
        bool const found_step = Next_step(next_gap, next);
        if (levels_.size() == 2 && reached_here &&
            (!found_step || First_line::Step(next_gap, next) >= reached_step)) {
            caught_up_ = true;
        }
        if (found_step) {
            Grow(next_gap, next);
            opened = true;
        } else {
            Shrink();
        }
    }
    return found_.size() < most_;
}

// The next step to try on the line.
bool Gap_walk::Next_step(std::uint32_t& gap, Number& node) {
    Level& level = levels_.back();
    while (level.gap <= line_.size()) {
        auto later_gap = static_cast<std::uint32_t>(line_.size() + 1);
        for (Joining const& joining : Joining_now()) {
            std::uint32_t const first = std::max(joining.first_gap, joining.untried);
            if (joining.node >= level.node && first <= level.gap && level.gap <= joining.last_gap) {
                gap = level.gap;
                node = joining.node;
                level.node = node + 1;
                return true;
            }
            std::uint32_t const next = std::max(first, level.gap + 1);
            if (next <= joining.last_gap) {
                later_gap = std::min(later_gap, next);
            }
        }
        level.gap = later_gap;
        level.node = 0;
    }
    return false;
}

// Puts a node into a gap. Gaps before it are used up; in the gap itself, which becomes two, the
// nodes up to this one are.
void Gap_walk::Grow(std::uint32_t gap, Number node) {
    std::size_t const begin = levels_.back().begin;
    std::size_t const end = joining_.size();
    for (std::size_t i = begin; i < end; ++i) {
        Joining joining = joining_[i];
        Number const other = joining.node;
        if (other == node || !Has_bit(Row(node, linked), other)) {
            continue;
        }
        joining.first_gap += joining.first_gap > gap ? 1U : 0U;
        joining.last_gap += joining.last_gap >= gap ? 1U : 0U;
        joining.untried += joining.untried > gap ? 1U : 0U;
        joining.untried = std::max(joining.untried, other < node ? gap + 2 : gap);
        if (Has_bit(Row(node, to), other)) {
            joining.first_gap = std::max(joining.first_gap, gap + 1);
        } else if (Has_bit(Row(node, from), other)) {
            joining.last_gap = std::min(joining.last_gap, gap);
        }
        if (std::max(joining.first_gap, joining.untried) <= joining.last_gap) {
            joining_.push_back(joining);
        }
    }
    line_.insert(line_.begin() + gap, node);
    steps_.push_back(First_line::Step(gap, node));
    levels_.push_back({end, gap, 0});
}

void Gap_walk::Shrink() {
    joining_.resize(levels_.back().begin);
    levels_.pop_back();
    line_.erase(line_.begin() + static_cast<std::uint32_t>(steps_.back() >> 32));
    steps_.pop_back();
}

// Whether the line may become a set that is met here first. If all that it may become can be lined
// up together, that is listed right away.
bool Gap_walk::Leads_on() {
    all_.assign(n_words_, 0);
    for (Number const node : line_) {
        Set_bit(all_.data(), node);
    }
    for (Joining const& joining : Joining_now()) {
        Set_bit(all_.data(), joining.node);
    }
    if (Can_be_lined_up()) {
        if (line_.size() + Joining_now().size() > 2 && !Any_can_join(false) && Met_here()) {
            Add();
        }
        return false;
    }
    return Keeps_its_order() && !Any_can_join(true);
}

// A node after another one in the line, into whose gap it went, is led to from there in every set
// that is met here first; the way runs over nodes that join later.
bool Gap_walk::Keeps_its_order() {
    auto const gap = static_cast<std::uint32_t>(steps_.back() >> 32);
    if (gap == 0) {
        return true;
    }
    goal_.assign(n_words_, 0);
    Set_bit(goal_.data(), static_cast<Number>(steps_.back()));
    work_.assign(n_words_, 0);
    for (Joining const& joining : Joining_now()) {
        Set_bit(work_.data(), joining.node);
    }
    return Leads_to_goal(line_[gap - 1]);
}

// Whether one-way links lead from the node to one of goal_ by way of nodes of work_, which is used
// up.
bool Gap_walk::Leads_to_goal(Number begin) {
    reached_.assign(Row(begin, to), Row(begin, to) + n_words_);
    while (true) {
        Word met = 0;
        for (std::size_t w = 0; w < n_words_; ++w) {
            met |= reached_[w] & goal_[w];
        }
        if (met != 0) {
            return true;
        }
        bool more = false;
        for (std::size_t w = 0; w < n_words_; ++w) {
            Word const next = reached_[w] & work_[w];
            work_[w] &= ~next;
            more = more || next != 0;
            cpm::For_each_bit(next, [&](std::size_t bit) {
                Word const* const row = Row(static_cast<Number>(w * word_bits + bit), to);
                for (std::size_t v = 0; v < n_words_; ++v) {
                    reached_[v] |= row[v];
                }
            });
        }
        if (!more) {
            return false;
        }
    }
}

bool Gap_walk::Can_be_lined_up() {
    for (Joining const& joining : Joining_now()) {
        Word const* const row = Row(joining.node, linked);
        for (std::size_t w = 0; w < n_words_; ++w) {
            Word const itself = w == joining.node / word_bits ? Bit(joining.node) : 0;
            if ((all_[w] & ~row[w]) != itself) {
                return false;
            }
        }
    }
    return !may_have_cycles_ || !Has_cycle(all_);
}

// What no link from the rest leads to is on no cycle: it is taken away, again and again.
bool Gap_walk::Has_cycle(Words const& set) {
    work_ = set;
    bool fewer = true;
    while (fewer) {
        fewer = false;
        For_each_bit(work_, [&](Number node) {
            Word incoming = 0;
            for (std::size_t w = 0; w < n_words_; ++w) {
                incoming |= Row(node, from)[w] & work_[w];
            }
            if (incoming == 0) {
                Clear_bit(work_.data(), node);
                fewer = true;
            }
        });
    }
    return std::ranges::any_of(work_, [](Word word) { return word != 0; });
}

// Whether some other node can join all of the set; or (`surely`) every part of it, even where the
// set itself is not acyclic: then the node must be on no cycle.
bool Gap_walk::Any_can_join(bool surely) {
    for (Number node = 0; node < places_.size(); ++node) {
        if (node <= n_candidates_ && Has_bit(all_.data(), node)) {
            continue;
        }
        Word unlinked = 0;
        Word into = 0;
        Word out_of = 0;
        for (std::size_t w = 0; w < n_words_; ++w) {
            unlinked |= all_[w] & ~Row(node, linked)[w];
            into |= all_[w] & Row(node, from)[w];
            out_of |= all_[w] & Row(node, to)[w];
        }
        if (unlinked != 0) {
            continue;
        }
        if (into == 0 || out_of == 0 || !may_have_cycles_) {
            return true;
        }
        if (surely) {
            continue;
        }
        // The set has no cycle: one with the node leads from it through the set and back.
        work_ = all_;
        goal_.assign(n_words_, 0);
        for (std::size_t w = 0; w < n_words_; ++w) {
            goal_[w] = all_[w] & Row(node, from)[w];
        }
        if (!Leads_to_goal(node)) {
            return true;
        }
    }
    return false;
}

// Whether the set is met first on the way that led here.
bool Gap_walk::Met_here() {
    Words others = all_;
    Clear_bit(others.data(), n_candidates_);
    auto const& steps = first_line_.Find(n_candidates_, others, Row(0, to), n_kinds * n_words_);
    return std::equal(steps_.begin(), steps_.end(), steps.begin());
}

void Gap_walk::Add() {
    set_.clear();
    For_each_bit(all_, [&](Number node) {
        if (node != n_candidates_) {
            set_.push_back(places_[node]);
        }
    });
    set_.push_back(around_->Centre());
    found_.Add(set_);
}

} // namespace cpm
