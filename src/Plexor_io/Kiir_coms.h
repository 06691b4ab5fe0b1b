// SPDX-License-Identifier: MIT
// Writes the communities of one k: their nodes, their cliques and their links, each into a file of
// its own in the directory of this k. The records are numbered as the communities are; "-" stands
// before the number of a community that holds an approximated clique.
#ifndef PLEXOR_KIIR_COMS_H
#define PLEXOR_KIIR_COMS_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Link_lines.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_place.h"
#include "graph/Types.h"

#include <cstdint>
#include <string>

namespace cpm {

/// The names of the nodes of each community. `com_flag` is the word for the kind of run,
/// `alap_szoveg` describes the run; so for the others.
void Kiir_coms_PX(Communities const& coms, Result_place& place, std::uint32_t k,
                  Name_labels const& labels, std::string const& com_flag,
                  std::string const& alap_szoveg, Console& console);

/// The numbers of the cliques of each community. From `n_exact_cliques` on the cliques are
/// approximated, which "-" shows.
void Kiir_coms_cliques_PX(Communities const& coms, Result_place& place, std::uint32_t k,
                          std::size_t n_exact_cliques, std::string const& com_flag,
                          std::string const& alap_szoveg, Console& console);

/// The links inside each community, one a line.
void Kiir_com_links_PX(Communities const& coms, Result_place& place, std::uint32_t k,
                       Link_lines& lines, std::string const& com_flag,
                       std::string const& alap_szoveg, Console& console);

} // namespace cpm

#endif
