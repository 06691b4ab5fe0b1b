// SPDX-License-Identifier: MIT
// Visited_cliques: which cliques a level has visited, one bit each. Cliques too small for the level
// count as visited: one test less in the walks over lists.
#ifndef PLEXOR_VISITED_CLIQUES_H
#define PLEXOR_VISITED_CLIQUES_H

#include "graph/Types.h"
#include "support/Bits.h"

#include <cstddef>

namespace cpm {

class Visited_cliques {
public:
    explicit Visited_cliques(std::size_t n_cliques) : n_cliques_(n_cliques) { Deactivate_all(); }

    void Deactivate_all() {
        inactive_.clear();
        inactive_.Resize(Words_for(n_cliques_), ~std::uint64_t{0});
    }
    /// From the next Start_level() on the clique is one to be visited.
    void Activate(Clique_number clique) { Clear_bit(inactive_.data(), clique); }
    /// Calls `take(clique)` for all active ones, ascending.
    template <class Take> void For_each_active(Take const& take) const {
        for (std::size_t w = 0; w < inactive_.size(); ++w) {
            For_each_bit(~inactive_[w], [&](std::size_t bit) {
                take(static_cast<Clique_number>(w * word_bits + bit));
            });
        }
    }

    void Start_level() { visited_ = inactive_; }
    void Visit(Clique_number clique) { Set_bit(visited_.data(), clique); }
    bool operator[](Clique_number clique) const { return Has_bit(visited_.data(), clique); }
    /// The first clique from this one on that is not visited, or the number of cliques.
    std::size_t Next_unvisited(std::size_t from) const {
        if (from >= n_cliques_) {
            return n_cliques_;
        }
        std::size_t w = from / word_bits;
        std::uint64_t rest = ~visited_[w] & (~std::uint64_t{0} << (from % word_bits));
        while (rest == 0 && ++w < visited_.size()) {
            rest = ~visited_[w];
        }
        return rest == 0 ? n_cliques_ : w * word_bits + Lowest_bit(rest);
    }

private:
    std::size_t n_cliques_;
    Flat_array<std::uint64_t> inactive_; ///< set after the last clique
    Flat_array<std::uint64_t> visited_;  ///< likewise
};

} // namespace cpm

#endif
