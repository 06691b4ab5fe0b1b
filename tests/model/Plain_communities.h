// SPDX-License-Identifier: MIT
// The communities of the plain model at one k: from cliques that overlap, or from single k-cliques
// under an intensity threshold; and what is counted about them.
#ifndef PLEXOR_PLAIN_COMMUNITIES_H
#define PLEXOR_PLAIN_COMMUNITIES_H

#include "Plain_cliques.h"

namespace cpm::model {

struct Community {
    Nodes nodes;
    std::vector<Pair> links;
    std::vector<unsigned> cliques; // empty under an intensity threshold
    bool exact = true;             // holds no approximated clique
};

/// The exact communities come first.
std::vector<Community> Percolate(Found_cliques const& found, unsigned k, Reached& reached);

/// Every set of k nodes inside a clique whose links have an intensity above `threshold`.
/// Throws std::logic_error when a link is missing, as the next one does.
std::set<Nodes> Find_k_cliques(Cliques const& cliques, Index_links const& links, unsigned k,
                               double threshold, std::ostream& out);

std::vector<Community> Percolate_k_cliques(std::set<Nodes> const& k_cliques,
                                           Index_links const& links, unsigned k, double threshold,
                                           std::ostream& out);

/// For each of "membership", "size", "overlap" and "degree": value -> how often it occurs.
using Statistics = std::map<std::string, std::map<unsigned, unsigned>>;

Statistics Count(std::vector<Nodes> const& communities, unsigned node_count);

} // namespace cpm::model

#endif
