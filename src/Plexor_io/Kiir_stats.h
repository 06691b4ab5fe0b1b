// SPDX-License-Identifier: MIT
// Writes the distributions of one k, a file each.
#ifndef PLEXOR_KIIR_STATS_H
#define PLEXOR_KIIR_STATS_H

#include "Coms_funcs/Community_graph.h"
#include "Plexor_io/Result_files.h"

#include <cstdint>
#include <string>

namespace cpm {

/// The four distributions. `suffix`, which tells whose they are, ends the names of the files: "",
/// "_merged", "_exact" or "_appr".
void Kiir_stats_PX(Community_distributions const& distributions, std::string const& suffix,
                   Level_files const& files);

/// One file: the header and an end of line, a line for each value with its count, an empty line.
void Kiir_PX_dist(New_file const& new_file, Distribution const& distribution,
                  std::string const& header, Run_files& files);

} // namespace cpm

#endif
