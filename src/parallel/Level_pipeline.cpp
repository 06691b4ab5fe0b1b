// SPDX-License-Identifier: MIT
// Takes    the clique list and which levels are wanted.
// Leaves   the levels with their taker.
// Order    any among the levels that wait; handed out in that of their k.
// Cost     levels that wait: up to two for each thread.
// Tested   Level_pipeline_test.cpp, the levels of the library and of Python, the runs with threads
//          against the plain model.
#include "parallel/Level_pipeline.h"

#include <utility>

namespace cpm {

std::vector<std::uint32_t> Levels_down_from(std::uint32_t k) {
    std::vector<std::uint32_t> ks;
    for (; k > 2; --k) {
        ks.push_back(k);
    }
    return ks;
}

// A level that waits holds its communities, one under way the lists of its thread.
Level_pipeline::Level_pipeline(Level_taker& taker, Level_pipeline_input const& input,
                               std::vector<std::uint32_t> const& ks, unsigned n_threads)
    : taker_(taker),
      percolation_(input.ranked == nullptr ? std::optional<Parallel_percolation>()
                                           : std::optional<Parallel_percolation>(
                                                 std::in_place, input.found, *input.ranked,
                                                 input.edges, ks, n_threads)),
      pipeline_(*this, ks.size(), n_threads, std::size_t{2} * n_threads) {}

void Level_pipeline::Next(Progress& progress) {
    pipeline_.Next(progress);
}

void Level_pipeline::Prepare(std::size_t place, unsigned thread, Progress& progress) {
    if (percolation_) {
        percolation_->Walk(place, thread, progress);
    } else {
        taker_.Make_by_intensity(place, thread, progress);
    }
}

void Level_pipeline::Join(std::size_t place, unsigned, Progress& progress) {
    if (percolation_) {
        percolation_->Join(place, progress);
    }
}

void Level_pipeline::Finish(std::size_t place, unsigned thread, Progress& progress) {
    if (percolation_) {
        taker_.Take(percolation_->Take(place), place, thread, progress);
    }
}

} // namespace cpm
