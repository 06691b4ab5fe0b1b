// SPDX-License-Identifier: MIT
// The whole library:
//
//     Graph graph = Graph::From_edges(edges);
//     Levels levels(graph, Find_cliques(graph));
//     while (std::optional<Level> level = levels.Next()) { ... (*level)[0] ... }
#ifndef PLEXOR_API_PLEXOR_H
#define PLEXOR_API_PLEXOR_H

#include <plexor/Cliques.h>
#include <plexor/Communities.h>
#include <plexor/Error.h>
#include <plexor/Graph.h>
#include <plexor/Progress.h>

#endif
