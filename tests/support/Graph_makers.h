// SPDX-License-Identifier: MIT
// Small networks for tests.
#ifndef PLEXOR_GRAPH_MAKERS_H
#define PLEXOR_GRAPH_MAKERS_H

#include "graph/Types.h"
#include "support/Random_numbers.h"

#include <set>
#include <utility>
#include <vector>

namespace cpm::test {

/// Undirected links by (smaller, larger) node.
using Links = std::set<std::pair<Node, Node>>;
using Nodes = std::set<Node>;

inline Links Complete(Node from, Node to) {
    Links links;
    for (Node a = from; a <= to; ++a) {
        for (Node b = a + 1; b <= to; ++b) {
            links.insert({a, b});
        }
    }
    return links;
}

/// Each pair of the nodes 1 to n is linked with this chance in a hundred.
inline Links Random_links(Node n, std::uint32_t percent, Random_numbers& random) {
    Links links;
    for (auto const& pair : Complete(1, n)) {
        if (random.Percent(percent)) {
            links.insert(pair);
        }
    }
    return links;
}

/// Overlapping teams: cliques of random nodes.
inline Links Random_teams(Node n, unsigned teams, unsigned largest, Random_numbers& random) {
    Links links;
    for (unsigned t = 0; t < teams; ++t) {
        Nodes team;
        unsigned const size = 2 + random.Below(largest - 1);
        while (team.size() < size) {
            team.insert(1 + random.Below(n));
        }
        for (Node const a : team) {
            for (Node const b : team) {
                if (a < b) {
                    links.insert({a, b});
                }
            }
        }
    }
    return links;
}

/// The same links with every node that has one renumbered without gaps, as the searches need it.
inline Index_links To_index_links(Links const& links) {
    std::vector<Node> number(1, 0);
    Nodes used;
    for (auto const& [a, b] : links) {
        used.insert(a);
        used.insert(b);
    }
    number.resize(used.empty() ? 1 : *used.rbegin() + 1, 0);
    Node next = 0;
    for (Node const node : used) {
        number[node] = ++next;
    }
    Index_links index_links;
    for (auto const& [a, b] : links) {
        index_links.pairs.push_back({number[a], number[b]});
    }
    return index_links;
}

/// Each pair one way, or the other, or both ways.
inline Index_links In_random_directions(Index_links const& pairs, Random_numbers& random) {
    std::set<Node_pair> arcs;
    for (Node_pair const& pair : pairs.pairs) {
        std::uint32_t const ways = random.Below(4);
        if (ways != 0) {
            arcs.insert(pair);
        }
        if (ways == 0 || ways == 3) {
            arcs.insert({pair.second, pair.first});
        }
    }
    Index_links links;
    for (Node_pair const& arc : arcs) {
        links.pairs.push_back(arc);
    }
    return links;
}

inline Node Last_node(Index_links const& links) {
    Node last = 0;
    for (Node_pair const& pair : links.pairs) {
        last = std::max({last, pair.first, pair.second});
    }
    return last;
}

inline std::vector<Node> To_vector(std::span<Node const> nodes) {
    return {nodes.begin(), nodes.end()};
}

inline std::vector<std::vector<Node>> To_vectors(Set_list const& list) {
    std::vector<std::vector<Node>> vectors;
    for (std::size_t i = 0; i < list.size(); ++i) {
        vectors.push_back(To_vector(list[i]));
    }
    return vectors;
}

/// Collects the links of a community as pairs of nodes; a number is the place in `all_pairs`.
/// Both must outlive it.
class To_pairs : public Link_visitor {
public:
    To_pairs(std::span<Node_pair const> all_pairs, std::vector<Node_pair>& result)
        : all_pairs_(all_pairs), result_(result) {}

    void Numbers(std::span<Link_number const> numbers) override {
        for (Link_number const number : numbers) {
            result_.push_back(all_pairs_[number]);
        }
    }
    void All_pairs(Node_set nodes) override {
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            for (Node const larger : nodes.subspan(i + 1)) {
                result_.push_back({nodes[i], larger});
            }
        }
    }

private:
    std::span<Node_pair const> all_pairs_;
    std::vector<Node_pair>& result_;
};

/// The links of a community as pairs of nodes.
inline std::vector<Node_pair> Links_of(Communities const& coms, std::size_t community,
                                       std::span<Node_pair const> all_pairs) {
    std::vector<Node_pair> pairs;
    To_pairs visitor(all_pairs, pairs);
    coms.Visit_links(community, visitor);
    return pairs;
}

} // namespace cpm::test

#endif
