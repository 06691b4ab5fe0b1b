// SPDX-License-Identifier: MIT
// Small weighted networks for tests of the intensity method, with weights that make ties, zeros,
// infinities and what is not a number; and their maximal cliques, found the slow way.
#ifndef PLEXOR_WEIGHTED_NETWORKS_H
#define PLEXOR_WEIGHTED_NETWORKS_H

#include "graph/Types.h"
#include "support/Graph_makers.h"
#include "support/Random_numbers.h"

#include <initializer_list>
#include <limits>
#include <vector>

namespace cpm::test {

struct Weighted_link {
    Node first;
    Node second;
    double weight;
};

/// Links in ascending order.
inline Index_links Weighted(std::initializer_list<Weighted_link> links) {
    Index_links result;
    for (Weighted_link const& link : links) {
        result.pairs.push_back({link.first, link.second});
        result.weights.push_back(link.weight);
    }
    return result;
}

/// The links, each with the same weight.
inline Index_links All_of_weight(double weight, Index_links links) {
    links.weights.clear();
    links.weights.Resize(links.size(), weight);
    return links;
}

/// All maximal cliques of three nodes or more, found among all sets of nodes (few, please).
inline Set_list Maximal_cliques(Index_links const& links) {
    Node const n = Last_node(links);
    auto const is_clique = [&](std::uint32_t set) {
        for (Node a = 1; a <= n; ++a) {
            for (Node b = a + 1; b <= n; ++b) {
                if ((set >> a & set >> b & 1U) != 0 && links.Find({a, b}) == links.size()) {
                    return false;
                }
            }
        }
        return true;
    };
    Set_list cliques;
    for (std::uint32_t set = 0; set < 2U << n; set += 2) {
        bool maximal = is_clique(set);
        std::vector<Node> nodes;
        for (Node a = 1; a <= n && maximal; ++a) {
            std::uint32_t const bit = 1U << a;
            if ((set & bit) != 0) {
                nodes.push_back(a);
            } else {
                maximal = !is_clique(set | bit);
            }
        }
        if (maximal && nodes.size() >= 3) {
            cliques.Add(nodes);
        }
    }
    return cliques;
}

/// A random network of up to nine nodes, its weights out of one of several small sets, and a
/// threshold that often is met exactly.
struct Random_weighted_network {
    Index_links links;
    Set_list cliques;
    double intensity;

    explicit Random_weighted_network(std::uint32_t seed) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        struct Weights {
            std::vector<double> weights;
            std::vector<double> thresholds;
        };
        static std::vector<Weights> const kinds = {
            {{0.3}, {0.3, 0.29999999999999998, 0.30000000000000004, 0.1, 0.0}},
            {{1}, {1, 0.5, -1, infinity}},
            {{2, 8}, {4, 2, 8, 3.9999999999999996, 2.8}},
            {{0.5, 1, 2, 4}, {1, 2, 1.4142135623730951, 0.7}},
            {{0.1, 0.2, 0.4, 0.8}, {0.2, 0.4, 0.28284271247461906, 0.1}},
            {{1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 3, 4.5, 6, 8}},
            {{0, 1, 2}, {0, 1, 1.5, -2}},
            {{-1, 1, 2, 3}, {0, 1, 1.5, -1.5}},
            {{-3, -2}, {0, 2}},
            {{1e-300, 1, 1e300}, {1, 1e-200, 1e200}},
            {{infinity, 1, 5}, {1, 3, infinity}},
            {{1, 4}, {2, std::numeric_limits<double>::quiet_NaN()}},
        };
        Random_numbers random(seed);
        Node const n = 3 + random.Below(7);
        links = random.Percent(50)
                    ? To_index_links(Random_links(n, 40 + random.Below(61), random))
                    : To_index_links(Random_teams(n, 2 + random.Below(4), n, random));
        Weights const& kind = kinds[random.Below(static_cast<std::uint32_t>(kinds.size()))];
        auto const any_of = [&](std::vector<double> const& values) {
            return values[random.Below(static_cast<std::uint32_t>(values.size()))];
        };
        for (std::size_t i = 0; i < links.size(); ++i) {
            links.weights.push_back(any_of(kind.weights));
        }
        intensity = any_of(kind.thresholds);
        cliques = Maximal_cliques(links);
    }
};

} // namespace cpm::test

#endif
