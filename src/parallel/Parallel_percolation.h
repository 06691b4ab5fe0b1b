// SPDX-License-Identifier: MIT
// Parallel_percolation: the communities of several k, as two parts of a piece of work (Pipeline).
// The walk from clique to clique, most of the work, needs nothing of another level; what the
// communities hold is made of what those of the level before hold, one level after the other.
#ifndef PLEXOR_PARALLEL_PERCOLATION_H
#define PLEXOR_PARALLEL_PERCOLATION_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Community_lister.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Percolation_walk.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace cpm {

class Parallel_percolation {
public:
    /// For the levels of these k, descending, each once. Levels are spoken of by their places. What
    /// is found, its cliques ranked, and the numbers of the links must outlive this object.
    Parallel_percolation(Found_cliques const& found, Ranked_cliques const& cliques,
                         Edge_numbering const& edges, std::vector<std::uint32_t> ks,
                         unsigned n_threads);
    ~Parallel_percolation();

    /// Walks a level. A thread, one of those numbered 0 to n_threads - 1, does one at a time, the
    /// places ascending; several threads may be here at once.
    void Walk(std::size_t place, unsigned thread, Progress& progress);
    /// Makes the communities of a level that was walked. Called for places 0, 1, 2, ..., one at a
    /// time, while others are walked.
    void Join(std::size_t place, Progress& progress);
    /// Those of a level that was joined, once.
    Communities Take(std::size_t place);

private:
    struct Level;

    Found_cliques const& found_;
    Ranked_cliques const& cliques_;
    std::vector<std::uint32_t> ks_;
    std::vector<std::unique_ptr<Percolation_walk>> walks_; ///< by thread, made when it begins
    Community_lister lister_;
    Flat_array<Adjacent_clique> members_;        ///< of the community that is joined
    std::vector<std::unique_ptr<Level>> levels_; ///< by place; those under way
};

} // namespace cpm

#endif
