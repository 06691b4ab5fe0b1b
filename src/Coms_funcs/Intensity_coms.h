// SPDX-License-Identifier: MIT
// Communities by link weight intensity: two k-cliques are adjacent when they share k-1 nodes and
// the intensity of these is above the threshold as well; a community is a connected set of them.
#ifndef PLEXOR_INTENSITY_COMS_H
#define PLEXOR_INTENSITY_COMS_H

#include "Coms_funcs/K_clique_list.h"
#include "graph/Types.h"
#include "support/Progress.h"

namespace cpm {

/// Finds the communities of the k-cliques (lexicographic, each once), in the order of their first
/// k-clique; all count as exact and none has cliques. The links of a community are those of its
/// last k-clique, then those of the one before, and so on, in each in the order of the pairs, so
/// that a link shared by several k-cliques comes several times; a link's number is its position
/// among `links`, which must hold every pair inside the k-cliques. The links are made when asked
/// for, from the k-cliques, which `coms.links` keeps, and from `links`, which must outlive it.
/// Tells its progress at each k-clique. At k = 2 the nodes that k-cliques share have no link
/// between them: throws Xerror_msg "ERROR: Get_sub_links_and_thresh_abs: missing link.\n" at the
/// first k-clique that a later one shares a node with.
void Intensity_coms_from_k_cliques(K_clique_list k_cliques, Communities& coms,
                                   Index_links const& links, double intensity, Progress& progress);

} // namespace cpm

#endif
