// SPDX-License-Identifier: MIT
// The four distributions at one k: of all communities, of the exact ones, of the approximated ones.
#include "Check_communities.h"

#include <algorithm>
#include <map>
#include <string>

namespace cpm::invariants {

namespace {

using Distributions = std::map<std::string, Distribution>;

// Counted from the communities file.
void Count(std::vector<Node_record> const& communities, Node n_nodes, std::string const& suffix,
           Distributions& expected) {
    Distribution& sizes = expected["size_distribution" + suffix];
    Distribution& degrees = expected["degree_distribution" + suffix];
    Distribution& overlaps = expected["overlap_distribution" + suffix];
    Distribution& memberships = expected["membership_distribution" + suffix];
    memberships[0] = 0; // this line is there in any case
    std::map<Node, std::size_t> of_node;
    for (std::size_t a = 0; a < communities.size(); ++a) {
        ++sizes[communities[a].nodes.size()];
        std::size_t degree = 0;
        for (std::size_t b = 0; b < communities.size(); ++b) {
            Nodes shared;
            std::ranges::set_intersection(communities[a].nodes, communities[b].nodes,
                                          std::back_inserter(shared));
            if (b != a && !shared.empty()) {
                ++degree;
                overlaps[shared.size()] += b > a ? 1 : 0;
            }
        }
        ++degrees[degree];
        for (Node const node : communities[a].nodes) {
            ++of_node[node];
        }
    }
    for (Node node = 1; node <= n_nodes; ++node) {
        ++memberships[of_node[node]];
    }
}

} // namespace

void Check_distributions(Level const& level, Network const& network, Findings& findings) {
    std::vector<Node_record> exact;
    std::vector<Node_record> approximated;
    for (Node_record const& community : level.communities) {
        (community.number.minus ? approximated : exact).push_back(community);
    }
    Distributions expected;
    if (approximated.empty()) {
        Count(exact, network.Count(), "", expected);
    } else {
        Count(level.communities, network.Count(), "_merged", expected);
        Count(exact, network.Count(), "_exact", expected);
        Count(approximated, network.Count(), "_appr", expected);
    }
    for (auto const& [name, distribution] : expected) {
        auto const found = level.distributions.find(name);
        if (found == level.distributions.end()) {
            findings.Add("there is no ", name);
        } else {
            findings.Require(found->second == distribution, "the ", name,
                             " is not that of the communities");
        }
    }
    findings.Require(level.distributions.size() <= expected.size(),
                     "there are distributions that do not belong here");
}

} // namespace cpm::invariants
