// SPDX-License-Identifier: MIT
// Bron_kerbosch: the kernel of the clique searches. Given a few candidates, which of them are
// linked, and some excluded nodes by the candidates they are linked with, it finds every maximal
// clique of candidates that no excluded node extends, in lexicographic order.
#ifndef PLEXOR_BRON_KERBOSCH_H
#define PLEXOR_BRON_KERBOSCH_H

#include "Clique_find/One_word_problem.h"
#include "Clique_find/Time_budget.h"
#include "graph/Types.h"

#include <cassert>
#include <limits>
#include <vector>

namespace cpm {

namespace Bron_kerbosch_sub {

/// The first candidates of a list as a number: of two lists, neither the beginning of the other,
/// the one with the smaller number comes first. Equal numbers say nothing.
std::uint64_t First_candidates(std::span<std::uint32_t const> list);

} // namespace Bron_kerbosch_sub

class Bron_kerbosch {
public:
    /// Starts a new problem: candidates 0 to `n_candidates` - 1, no links, no excluded nodes.
    /// False when the pace ended it.
    bool Start(std::size_t n_candidates, Pace* pace = nullptr);
    /// Candidates i and j are linked.
    void Link(std::size_t i, std::size_t j) {
        assert(i != j && i < n_candidates_ && j < n_candidates_);
        Set_bit(Row(i), j);
        Set_bit(Row(j), i);
    }
    /// A further excluded node, not linked yet. They have the numbers 0, 1, ...
    void Add_excluded() { excluded_.Resize(excluded_.size() + n_words_, 0); }
    void Link_excluded(std::size_t e, std::size_t i) {
        assert(i < n_candidates_ && e < N_excluded());
        Set_bit(excluded_.data() + e * n_words_, i);
    }
    void Link_last_excluded(std::size_t i) {
        assert(i < n_candidates_ && !excluded_.empty());
        Set_bit(excluded_.end() - n_words_, i);
    }
    /// Forgets the excluded nodes that are linked with fewer than `least` candidates. False when
    /// the pace ended it.
    bool Drop_excluded(std::size_t least, Pace& pace);

    /// Finds the cliques, in lexicographic order; they stay until the next Start(). False when the
    /// pace ended the search, or when they need more than `max_bytes`: then the search goes on to
    /// its end to see whether there is time for that, and All_kept() is false. None are left then.
    bool Find(Pace* pace = nullptr,
              std::size_t max_bytes = std::numeric_limits<std::size_t>::max());
    bool All_kept() const { return words_.all_kept; }
    /// Appends each clique found, its candidates translated by `names` (ascending, candidate i is
    /// names[i]) and joined by `always`, to the list, in the order of Find().
    /// Cliques of fewer than `least` candidates are left out. False when the pace ended it.
    bool Append_cliques(Node always, Node_set names, std::size_t least, Set_list& cliques,
                        Pace* pace = nullptr);
    /// Gives back the memory that cliques found have needed.
    void Forget();

private:
    // Sets of candidates have the bits of One_word_problem.
    using Word = std::uint64_t;
    static void Set_bit(Word* row, std::size_t i) {
        row[i / word_bits] |= Bron_kerbosch_sub::First_bit(i);
    }
    Word* Row(std::size_t i) { return rows_.data() + i * n_words_; }
    Word const* Row(std::size_t i) const { return rows_.data() + i * n_words_; }
    std::size_t N_excluded() const { return n_words_ == 0 ? 0 : excluded_.size() / n_words_; }

    // A clique of the wide search: its first candidates as a number to sort by, and its place.
    struct Wide_place {
        std::uint64_t key = 0;
        std::uint32_t number = 0;
    };
    // One level of the search among more than 64 candidates. The sets lie in level_words_.
    struct Level {
        std::size_t excluded_begin = 0; ///< the level's excluded nodes in level_excluded_
        std::size_t excluded_end = 0;
    };

    bool Search_wide(Pace* pace);
    void Open_level(std::size_t depth);
    bool Narrow_to_words(Word const* set, std::size_t size, std::size_t depth, std::size_t next,
                         Pace* pace);
    Word Narrowed(Word const* row, Word const* set) const;
    void Add_narrow(Word narrow_set);
    void Add_wide();
    template <class Visit> void For_each_candidate(Word const* set, Visit const& visit) const {
        for (std::size_t w = 0; w < n_words_; ++w) {
            Bron_kerbosch_sub::For_each_from_first(
                set[w], [&](std::size_t i) { visit(w * word_bits + i); });
        }
    }
    bool Order_wide(Pace* pace);

    std::size_t n_candidates_ = 0;
    std::size_t n_words_ = 0;
    Flat_array<Word> rows_;
    Flat_array<Word> excluded_;
    Bron_kerbosch_sub::One_word_problem words_;

    // The wide search: its path, its levels, the candidates of a narrowed problem, and what it has
    // found (lists of candidates).
    std::vector<std::uint32_t> path_;
    std::vector<Level> levels_;
    std::vector<Word> level_words_;
    std::vector<std::uint32_t> level_excluded_;
    std::vector<Word const*> pivots_;
    std::vector<std::uint32_t> narrow_;
    std::vector<std::uint8_t> narrow_place_;
    List_of_lists<std::uint32_t> wide_found_;
    std::vector<Wide_place> wide_order_;
    std::vector<Node> clique_;
};

} // namespace cpm

#endif
