// SPDX-License-Identifier: MIT
// Writes the file "graph" or "directed_graph": the links as the run uses them.
#ifndef PLEXOR_KIIR_GRAPH_H
#define PLEXOR_KIIR_GRAPH_H

#include "Plexor_io/Result_files.h"
#include "graph/Types.h"

#include <string>

namespace cpm {

/// One line per link, in the order of the link map, with the weight when `weighted`. A link and its
/// reverse are two lines whatever the run.
void Kiir_graph(Link_map const& links, bool directed, bool weighted, Run_files& files);

} // namespace cpm

#endif
