// SPDX-License-Identifier: MIT
// What the values of the library hold: the engine's own arrays.
#ifndef PLEXOR_LIBRARY_DATA_H
#define PLEXOR_LIBRARY_DATA_H

#include "Clique_find/Find_cliques.h"
#include "graph/Types.h"

#include <plexor/Cliques.h>
#include <plexor/Graph.h>

#include <cstdint>
#include <memory>

namespace plexor::detail {

struct Graph_data {
    cpm::Index_links links;
    cpm::Names_map names;               ///< of From_names() only
    cpm::Flat_array<std::uint32_t> ids; ///< node -> the caller's number; of From_edges() only
    cpm::Node n_nodes = 0;
    bool directed = false;
};

struct Clique_data {
    cpm::Found_cliques found;
    std::shared_ptr<Graph_data const> graph;
    std::uint32_t largest = 0;
};

} // namespace plexor::detail

#endif
