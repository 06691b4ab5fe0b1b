// SPDX-License-Identifier: MIT
// Writes the clique lists: the file "cliques" or "directed_cliques" of a run, and the k-cliques of
// one k. One line a clique: its number, ": ", and each name with a blank behind it, the last one
// too.
#ifndef PLEXOR_KIIR_CLIQUES_H
#define PLEXOR_KIIR_CLIQUES_H

#include "Coms_funcs/K_cliques.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_place.h"
#include "graph/Types.h"

#include <cstdint>
#include <string>

namespace cpm {

/// All maximal cliques. From position `n_exact` on they are approximated: "-" stands before their
/// numbers, 0 included. `alap_szoveg` describes the run.
void Kiir_cliques_PX(Result_place& place, Set_list const& cliques, Name_labels const& labels,
                     std::size_t n_exact, std::string const& com_flag,
                     std::string const& alap_szoveg, Console& console);

/// The k-cliques of one k, into the directory of this k.
void Kiir_k_cliques_PX(Result_place& place, K_clique_list const& k_cliques, std::uint32_t k,
                       Name_labels const& labels, std::string const& alap_szoveg, Console& console);

} // namespace cpm

#endif
