// SPDX-License-Identifier: MIT
// Writes the communities of one k: their nodes, their cliques and their links, each into a file of
// its own in the directory of this k. The records are numbered as the communities are; "-" stands
// before the number of a community that holds an approximated clique.
#ifndef PLEXOR_KIIR_COMS_H
#define PLEXOR_KIIR_COMS_H

#include "Plexor_io/Link_writer.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_files.h"
#include "graph/Types.h"

#include <cstdint>
#include <string>

namespace cpm {

/// The names of the nodes of each community.
void Kiir_coms_PX(Communities const& coms, Name_labels const& labels, Level_files const& files);

/// The numbers of the cliques of each community. From `n_exact_cliques` on the cliques are
/// approximated, which "-" shows.
void Kiir_coms_cliques_PX(Communities const& coms, std::size_t n_exact_cliques,
                          Level_files const& files);

/// The links inside each community, one per line.
void Kiir_com_links_PX(Communities const& coms, Link_writer const& lines, Level_files const& files);

} // namespace cpm

#endif
