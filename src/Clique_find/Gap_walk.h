// SPDX-License-Identifier: MIT
// Gap_walk: the directed cliques of a node from the first one on, in their order, for as long as
// there is time.
#ifndef PLEXOR_GAP_WALK_H
#define PLEXOR_GAP_WALK_H

#include "Clique_find/Dir_before_first_clock.h"
#include "Clique_find/Dir_order.h"
#include "Clique_find/Dir_surroundings.h"
#include "Clique_find/Time_budget.h"
#include "graph/Types.h"

#include <cstdint>
#include <vector>

namespace cpm {

class Gap_walk {
public:
    /// Lists the acyclic sets of the centre and two candidates or more that no other candidate and
    /// no excluded node can join, in the order of Dir_order, until all are there, or `most` of
    /// them, or the pace says that the time is up. `check` has just looked at
    /// the surroundings, of which the links have not been gathered; with `acyclic` their one-way
    /// links close no cycle. False when the walk did not get as far as the check did.
    bool List(Dir_surroundings const& around, Dir_before_first_clock& check, bool acyclic,
              std::size_t most, Pace& pace);
    /// The sets, each by ascending places with the centre last.
    Set_list const& Found() const { return found_; }
    void Forget() { found_ = {}; }

private:
    using Word = std::uint64_t;
    using Words = std::vector<Word>;
    using Number = std::uint32_t; ///< of a node in the problem

    // A node that may still join the line: into the gaps from `first_gap` to `last_gap`, but only
    // from `untried` on. Gap i is the one before position i of the line.
    struct Joining {
        Number node = 0;
        std::uint32_t first_gap = 0;
        std::uint32_t last_gap = 0;
        std::uint32_t untried = 0;
    };
    // A line, made from the one below by one step; its joining nodes begin at `begin`.
    struct Level {
        std::size_t begin = 0;
        std::uint32_t gap = 0; ///< the next step to try is into this gap,
        Number node = 0;       ///< with a node from this one on
    };
    enum Kind : std::size_t { linked, to, from, n_kinds };

    bool Gather(Place first, Pace& pace);
    bool Walk(std::uint32_t gap, Place first, Pace& pace);
    bool Next_step(std::uint32_t& gap, Number& node);
    void Grow(std::uint32_t gap, Number node);
    void Shrink();
    bool Leads_on();
    bool Keeps_its_order();
    bool Leads_to_goal(Number begin);
    bool Can_be_lined_up();
    bool Has_cycle(Words const& set);
    bool Any_can_join(bool surely);
    bool Met_here();
    void Add();

    Word const* Row(Number node, Kind kind) const {
        return rows_.data() + (n_kinds * node + kind) * n_words_;
    }
    void Set_link(Number a, Number b, Arcs seen_from_a);
    template <class Visit> void For_each_bit(Words const& set, Visit const& visit) const;
    std::span<Joining const> Joining_now() const {
        return std::span(joining_).subspan(levels_.back().begin);
    }

    Dir_surroundings const* around_ = nullptr;
    Dir_before_first_clock* check_ = nullptr;
    std::size_t most_ = 0;
    bool caught_up_ = false;       ///< with the check
    bool may_have_cycles_ = false; ///< one-way links around the centre may close a cycle

    // The problem of the sets with the centre and one candidate: the candidates linked with that
    // one, itself among them, by ascending places; the centre; the excluded nodes linked with it.
    Number n_candidates_ = 0;
    std::size_t n_words_ = 0;
    std::vector<Place> places_;  ///< by number
    Flat_array<Number> numbers_; ///< place -> 1 + its number, or 0
    Flat_array<Word> rows_;      ///< three a node, with bits for candidates and the centre

    std::vector<Number> line_;
    std::vector<std::uint64_t> steps_; ///< that have led to the line
    std::vector<Level> levels_;
    std::vector<Joining> joining_;
    Words all_; ///< the line and the nodes that may join it
    Words work_;
    Words goal_;
    Words reached_;
    First_line first_line_;
    Set_list found_;
    std::vector<Place> set_;
};

} // namespace cpm

#endif
