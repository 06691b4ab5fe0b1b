// SPDX-License-Identifier: MIT
#include "graph/Graph.h"

#include "records/Vertex_maps.h"
#include "support/Graph_makers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace cpm::test {
namespace {

std::vector<Arcs> Listed(std::span<Arcs const> arcs) {
    return {arcs.begin(), arcs.end()};
}

TEST(Graph, Nodes_with_fewer_neighbours_come_first_then_smaller_indices) {
    // Neighbours: 1 has 3, 2 has 2, 3 has 2, 4 has 1.
    Graph const graph(To_index_links({{1, 2}, {1, 3}, {1, 4}, {2, 3}}));
    EXPECT_EQ(graph.Nodes(), (std::vector<Node>{4, 2, 3, 1}));
    EXPECT_EQ(graph.size(), 4U);
}

TEST(Graph, Neighbours_are_split_by_their_place_each_part_ascending) {
    Graph const graph(To_index_links({{1, 2}, {1, 3}, {1, 4}, {2, 3}}));
    EXPECT_EQ(To_vector(graph.Later(1)), std::vector<Node>());
    EXPECT_EQ(To_vector(graph.Earlier(1)), (std::vector<Node>{2, 3, 4}));
    EXPECT_EQ(To_vector(graph.Later(2)), (std::vector<Node>{1, 3}));
    EXPECT_EQ(To_vector(graph.Earlier(2)), std::vector<Node>());
    EXPECT_EQ(To_vector(graph.Later(3)), (std::vector<Node>{1}));
    EXPECT_EQ(To_vector(graph.Earlier(3)), (std::vector<Node>{2}));
    EXPECT_EQ(To_vector(graph.Later(4)), (std::vector<Node>{1}));
}

TEST(Graph, No_nodes_have_an_empty_order) {
    EXPECT_EQ(Graph(Index_links()).size(), 0U);
}

TEST(Graph, Random_networks_are_split_as_by_the_places) {
    Random_numbers random(19);
    for (int round = 0; round < 100; ++round) {
        Index_links const links = To_index_links(Random_links(2 + random.Below(30), 30, random));
        Graph const graph(links);
        Vtx_map vertices;
        Vtx_map_from_link_map(vertices, links);
        ASSERT_EQ(graph.size(), vertices.size());
        std::vector<std::size_t> place(vertices.size() + 1);
        for (std::size_t i = 0; i < graph.size(); ++i) {
            place[graph.Nodes()[i]] = i;
        }
        for (Vtx const& vertex : vertices) {
            std::vector<Node> later;
            std::vector<Node> earlier;
            for (Node const other : vertex.Neighs_c()) {
                (place[other] > place[vertex.Index()] ? later : earlier).push_back(other);
            }
            ASSERT_EQ(To_vector(graph.Later(vertex.Index())), later);
            ASSERT_EQ(To_vector(graph.Earlier(vertex.Index())), earlier);
        }
    }
}

TEST(Graph, A_neighbour_in_both_directions_is_one) {
    Index_links links;
    links.pairs.Append(std::vector<Node_pair>{{1, 2}, {2, 1}, {2, 3}, {4, 2}});
    Graph const graph(links, true);
    EXPECT_TRUE(graph.Directed());
    EXPECT_EQ(graph.Nodes(), (std::vector<Node>{1, 3, 4, 2}));
    EXPECT_EQ(To_vector(graph.Later(4)), (std::vector<Node>{2}));
    EXPECT_EQ(Listed(graph.Later_arcs(4)), (std::vector<Arcs>{Arc_to}));
    EXPECT_EQ(To_vector(graph.Earlier(2)), (std::vector<Node>{1, 3, 4}));
    EXPECT_EQ(Listed(graph.Earlier_arcs(2)), (std::vector<Arcs>{Arc_both, Arc_to, Arc_from}));
    EXPECT_EQ(graph.Degree(2), 3U);
    std::vector<std::pair<Node, Arcs>> met;
    graph.For_each_arc(2, [&](Node neighbour, Arcs arcs) { met.push_back({neighbour, arcs}); });
    EXPECT_EQ(met, (std::vector<std::pair<Node, Arcs>>{{1, Arc_both}, {3, Arc_to}, {4, Arc_from}}));
}

// Against the vertex records, which are made in another way.
TEST(Graph, Random_directed_networks_are_those_of_their_records) {
    Random_numbers random(23);
    for (int round = 0; round < 200; ++round) {
        Node const n = 2 + random.Below(30);
        Index_links links;
        for (Node a = 1; a <= n; ++a) {
            for (Node b = 1; b <= n; ++b) {
                if (a != b && (random.Percent(30) || b == a % n + 1)) {
                    links.pairs.push_back({a, b});
                }
            }
        }
        Graph const graph(links, true);
        Vtxd_map vertices;
        Dir_vtx_map_from_link_map(vertices, links);
        std::vector<Node> order;
        Sort_dir_vtx_map(order, vertices, "Neighs");
        ASSERT_EQ(graph.Nodes(), order);
        for (Vtxd const& vertex : vertices) {
            std::vector<Node> later;
            std::vector<Arcs> later_arcs;
            std::vector<Arcs> earlier_arcs;
            std::vector<std::pair<Node, Arcs>> all;
            auto const has = [](Node_set nodes, Node node) {
                return std::ranges::binary_search(nodes, node);
            };
            for (Node const other : vertex.Neighs_c()) {
                auto const arcs =
                    static_cast<Arcs>((has(vertex.Oneighs_c(), other) ? Arc_to : 0) |
                                      (has(vertex.Ineighs_c(), other) ? Arc_from : 0));
                all.push_back({other, arcs});
                if (std::ranges::find(order, other) > std::ranges::find(order, vertex.Index())) {
                    later.push_back(other);
                    later_arcs.push_back(arcs);
                } else {
                    earlier_arcs.push_back(arcs);
                }
            }
            std::vector<std::pair<Node, Arcs>> met;
            graph.For_each_arc(vertex.Index(), [&](Node neighbour, Arcs arcs) {
                met.push_back({neighbour, arcs});
            });
            ASSERT_EQ(met, all);
            ASSERT_EQ(To_vector(graph.Later(vertex.Index())), later);
            ASSERT_EQ(Listed(graph.Later_arcs(vertex.Index())), later_arcs);
            ASSERT_EQ(Listed(graph.Earlier_arcs(vertex.Index())), earlier_arcs);
        }
    }
}

} // namespace
} // namespace cpm::test
