// SPDX-License-Identifier: MIT
// The communities of the plain model at one k: percolation of cliques through their overlaps, or of
// explicit k-cliques under a link weight intensity threshold, and what is counted about them.
#ifndef PLEXOR_PLAIN_COMMUNITIES_H
#define PLEXOR_PLAIN_COMMUNITIES_H

#include "Plain_cliques.h"

#include <map>
#include <ostream>
#include <set>
#include <vector>

namespace cpm::model {

/// The lists agree by position; the first `n_exact` communities hold no approximated clique.
struct Communities {
    std::vector<Nodes> nodes;
    std::vector<std::vector<Pair>> links;
    std::vector<std::vector<unsigned>> cliques; // empty under an intensity threshold
    unsigned n_exact = 0;
};

Communities Percolate(Found_cliques const& found, unsigned k, Reached& reached);

using K_cliques = std::set<Nodes>;

/// Every set of k nodes inside a clique whose links have an intensity above `threshold`.
/// Throws std::logic_error when a link is missing, as the next one does.
K_cliques Find_k_cliques(Cliques const& cliques, Index_links const& links, unsigned k,
                         double threshold, std::ostream& out);

Communities Percolate_k_cliques(K_cliques const& k_cliques, Index_links const& links, unsigned k,
                                double threshold, std::ostream& out);

/// Value -> how often it occurs.
using Distribution = std::map<unsigned, unsigned>;

struct Statistics {
    Distribution membership;
    Distribution size;
    Distribution overlap;
    Distribution degree;
};

Statistics Count(std::vector<Nodes> const& communities, unsigned node_count);

/// Pairs of communities, the smaller position first, that share nodes -> how many.
std::map<Pair, unsigned> Community_graph(std::vector<Nodes> const& communities);

} // namespace cpm::model

#endif
