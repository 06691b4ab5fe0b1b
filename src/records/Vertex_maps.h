// SPDX-License-Identifier: MIT
// A network as one record per node, and the orders in which searches take the nodes. Every node
// has a link, so the records are dense.
#ifndef PLEXOR_VERTEX_MAPS_H
#define PLEXOR_VERTEX_MAPS_H

#include "graph/Types.h"
#include "records/Vtx.h"
#include "records/Vtxd.h"

#include <string>
#include <vector>

namespace cpm {

/// The record of node i stands at position i - 1.
using Vtx_map = std::vector<Vtx>;
using Vtxd_map = std::vector<Vtxd>;

/// Builds the records of undirected links. Throws what Vtx::Add_neigh() throws when a pair occurs
/// in both orders, or a node is linked to itself.
void Vtx_map_from_link_map(Vtx_map& vertices, Index_links const& links);

/// Builds the records of directed links, each from the first node of its pair to the second.
void Dir_vtx_map_from_link_map(Vtxd_map& vertices, Index_links const& links);

/// The nodes by their number of neighbours, lowest first; at equal numbers by index.
void Sort_Vtx_map(std::vector<Node>& order, Vtx_map const& vertices);

/// As Sort_Vtx_map(), by the neighbours that `flag` names: "Neighs", "Ineighs" or "Oneighs". Any
/// other flag throws Xerror_msg " Invalid flag '<flag>' given in Sort_vtxd_gmap...\n".
void Sort_dir_vtx_map(std::vector<Node>& order, Vtxd_map const& vertices, std::string const& flag);

} // namespace cpm

#endif
