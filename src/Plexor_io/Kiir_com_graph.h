// SPDX-License-Identifier: MIT
// Writes the community graph of one k: a line for each two communities that share nodes.
#ifndef PLEXOR_KIIR_COM_GRAPH_H
#define PLEXOR_KIIR_COM_GRAPH_H

#include "Coms_funcs/Community_graph.h"
#include "Plexor_io/Result_files.h"

#include <cstdint>
#include <string>

namespace cpm {

/// Walks the graph, which counts the statistics on the way. The communities from `n_exact_coms` on
/// hold approximated cliques, which "-" before their numbers shows.
void Kiir_com_graph_PX(Community_graph& graph, std::size_t n_exact_coms, Level_files const& files);

} // namespace cpm

#endif
