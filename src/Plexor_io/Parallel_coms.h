// SPDX-License-Identifier: MIT
// Parallel_coms: the communities of every k from the cliques to the files, on several threads. A
// level is written by a thread that has made it, beside the work on others.
#ifndef PLEXOR_PARALLEL_COMS_H
#define PLEXOR_PARALLEL_COMS_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Plexor_io/Level_writer.h"
#include "Plexor_io/Result_files.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <cstdint>

namespace cpm {

/// What the communities are made from. What is referred to must outlive it.
struct Parallel_coms_input {
    Found_cliques& found;     ///< its cliques are given back once ranked
    Index_links const& links; ///< asked for in intensity runs only
    Edge_numbering const& edges;
    std::uint32_t largest_clique;
    Level_context const& context;
};

/// Finds the communities of each k from the largest clique's size down to 3 and writes their files.
/// Says on the console and tells the progress what one thread would, level after level; the
/// calling thread does this and nothing else. Throws the error of the first level that has one;
/// then there may be files of levels after it as well.
void Find_all_coms(Parallel_coms_input const& input, unsigned n_threads, Run_files& files,
                   Progress& progress);

} // namespace cpm

#endif
