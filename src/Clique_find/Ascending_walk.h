// SPDX-License-Identifier: MIT
// Ascending_walk: the cliques of a node from the first one on, in their order, for as long as there
// is time.
#ifndef PLEXOR_ASCENDING_WALK_H
#define PLEXOR_ASCENDING_WALK_H

#include "Clique_find/Before_first_clock.h"
#include "Clique_find/Time_budget.h"
#include "graph/Graph.h"
#include "graph/Types.h"

#include <cstdint>
#include <vector>

namespace cpm {

class Ascending_walk {
public:
    /// The order must outlive the walk.
    explicit Ascending_walk(Graph const& order);

    /// What to walk: the cliques of `centre` and two candidates or more that no other candidate and
    /// no excluded node extends. The candidates and the excluded nodes are neighbours of `centre`.
    struct Problem {
        Node centre = 0;
        Placed_nodes const& candidates;
        Placed_nodes const& excluded;
    };

    /// Appends the cliques in lexicographic order of their candidates, from those with the pair of
    /// candidates `begin` on, until all are there, or `found` has `most` sets, or the pace says
    /// that the time is up.
    void List(Problem const& problem, Before_first_clock::Pair begin, std::size_t most, Pace& pace,
              Set_list& found);

private:
    using Word = std::uint64_t;
    using Place = std::uint32_t;
    // An open branch: the candidate it was opened with, and its excluded nodes in active_. Its
    // words are the candidates left, all after that one, and those tried.
    struct Level {
        std::uint32_t placed = 0;
        std::size_t excluded_begin = 0;
    };

    bool Gather(Problem const& problem, Place first, Place second, Pace& pace);
    bool Walk(Problem const& problem, Place first, std::size_t most, Pace& pace, Set_list& found);
    bool Hopeless(Word const* left, Word const* tried, std::size_t excluded_begin) const;
    bool Is_clique(Word const* set) const;
    Word const* Row(std::size_t i) const { return rows_.data() + i * n_words_; }
    Word const* Excluded_row(std::size_t i) const { return excluded_.data() + i * n_words_; }
    template <class Visit> void For_each_bit(Word const* set, Visit const& visit) const;

    Graph const& order_;
    Flat_array<std::uint32_t> number_; ///< node -> 1 + its number, excluded ones after, or 0

    // The problem of the cliques with the centre and one candidate: the candidates after that one
    // which are linked with it, and what may extend such a clique.
    std::vector<Place> later_;
    std::vector<Node> extending_;
    std::size_t n_words_ = 0;
    Flat_array<Word> rows_;     ///< of the candidates: with which of them each is linked
    Flat_array<Word> excluded_; ///< of the others
    std::size_t n_tried_ = 0;   ///< so many of the first candidates are done already

    std::vector<Level> levels_;
    Flat_array<Word> level_words_;
    std::vector<std::uint32_t> active_; ///< numbers of the excluded nodes linked with all placed
    std::vector<Node> clique_;
};

} // namespace cpm

#endif
