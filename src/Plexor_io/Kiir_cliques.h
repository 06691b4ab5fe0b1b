// SPDX-License-Identifier: MIT
// Writes the clique lists: the file "cliques" or "directed_cliques" of a run, and the k-cliques of
// one k. One line per clique: its number, ": ", and each name with a blank after it, the last one
// too.
#ifndef PLEXOR_KIIR_CLIQUES_H
#define PLEXOR_KIIR_CLIQUES_H

#include "Coms_funcs/K_cliques.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_files.h"
#include "graph/Types.h"

#include <cstdint>
#include <string>

namespace cpm {

/// All maximal cliques. From position `n_exact` on they are approximated: "-" stands before their
/// numbers, 0 included.
void Kiir_cliques_PX(Set_list const& cliques, std::size_t n_exact, Name_labels const& labels,
                     Run_files& files);

/// The k-cliques of one k, into the directory of this k.
void Kiir_k_cliques_PX(K_clique_list const& k_cliques, Name_labels const& labels,
                       Level_files const& files);

} // namespace cpm

#endif
