// SPDX-License-Identifier: MIT
// Level_pipeline: the levels of a run, made by several threads ahead of whoever asks for them.
#ifndef PLEXOR_LEVEL_PIPELINE_H
#define PLEXOR_LEVEL_PIPELINE_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"
#include "parallel/Parallel_percolation.h"
#include "parallel/Pipeline.h"
#include "support/Progress.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace cpm {

/// What the levels are made from. What is referred to must outlive the pipeline.
struct Level_pipeline_input {
    Found_cliques const& found;
    Ranked_cliques const* ranked; ///< those found; none: the communities are made by intensity
    Edge_numbering const& edges;
};

/// Takes what belongs to a level. A level is spoken of by its place, a thread by its number, both
/// from 0 on; several threads call at a time, for different levels.
class Level_taker {
public:
    virtual ~Level_taker() = default;
    /// Makes a level by intensity and keeps it. Not called in other runs.
    virtual void Make_by_intensity(std::size_t place, unsigned thread, Progress& progress) = 0;
    /// Takes the communities of a level made by overlaps.
    virtual void Take(Communities coms, std::size_t place, unsigned thread, Progress& progress) = 0;
};

/// The k of a run over every level: from this one down to 3, or none where it is smaller.
std::vector<std::uint32_t> Levels_down_from(std::uint32_t k);

class Level_pipeline : private Piece_work {
public:
    /// Begins with the levels of these k, descending, each once. The taker must outlive this
    /// object. Throws std::system_error when there is no thread to be had.
    Level_pipeline(Level_taker& taker, Level_pipeline_input const& input,
                   std::vector<std::uint32_t> const& ks, unsigned n_threads);

    /// Waits until the next level has been taken, that at place 0 first. Ticks and throws as
    /// Pipeline::Next() does, and is called no more often.
    void Next(Progress& progress);

private:
    void Prepare(std::size_t place, unsigned thread, Progress& progress) override;
    void Join(std::size_t place, unsigned thread, Progress& progress) override;
    void Finish(std::size_t place, unsigned thread, Progress& progress) override;

    Level_taker& taker_;
    std::optional<Parallel_percolation> percolation_; ///< none with an intensity
    Pipeline pipeline_;                               ///< ended first
};

} // namespace cpm

#endif
