// SPDX-License-Identifier: MIT
// From links between names to links between node indices.
#ifndef PLEXOR_CONVERT_LINKS_H
#define PLEXOR_CONVERT_LINKS_H

#include "graph/Types.h"

namespace cpm {

/// Numbers the nodes 1, 2, 3, ... as they are first met in the order of the links, the source
/// before the target, and gives the links by these numbers. Undirected: a link and its reverse
/// become one link, smaller number first, and their weights add up in the order of the links.
void Convert_s_links(Index_links& index_links, Names_map& names, Link_map const& links,
                     bool directed);

} // namespace cpm

#endif
