// SPDX-License-Identifier: MIT
#include "Clique_find/Node_order.h"

#include "records/Vertex_maps.h"
#include "support/Graph_makers.h"

#include <gtest/gtest.h>

namespace cpm::test {
namespace {

TEST(Node_order, Nodes_with_fewer_neighbours_come_first_then_smaller_indices) {
    // Neighbours: 1 has 3, 2 has 2, 3 has 2, 4 has 1.
    Node_order const order(To_index_links({{1, 2}, {1, 3}, {1, 4}, {2, 3}}));
    EXPECT_EQ(order.Nodes(), (std::vector<Node>{4, 2, 3, 1}));
    EXPECT_EQ(order.size(), 4U);
}

TEST(Node_order, Neighbours_are_split_by_their_place_each_part_ascending) {
    Node_order const order(To_index_links({{1, 2}, {1, 3}, {1, 4}, {2, 3}}));
    EXPECT_EQ(To_vector(order.Later(1)), std::vector<Node>());
    EXPECT_EQ(To_vector(order.Earlier(1)), (std::vector<Node>{2, 3, 4}));
    EXPECT_EQ(To_vector(order.Later(2)), (std::vector<Node>{1, 3}));
    EXPECT_EQ(To_vector(order.Earlier(2)), std::vector<Node>());
    EXPECT_EQ(To_vector(order.Later(3)), (std::vector<Node>{1}));
    EXPECT_EQ(To_vector(order.Earlier(3)), (std::vector<Node>{2}));
    EXPECT_EQ(To_vector(order.Later(4)), (std::vector<Node>{1}));
}

TEST(Node_order, No_nodes_have_an_empty_order) {
    EXPECT_EQ(Node_order(Index_links()).size(), 0U);
}

TEST(Node_order, Random_networks_are_split_as_by_the_places) {
    Random_numbers random(19);
    for (int round = 0; round < 100; ++round) {
        Index_links const links = To_index_links(Random_links(2 + random.Below(30), 30, random));
        Node_order const order(links);
        Vtx_map vertices;
        Vtx_map_from_link_map(vertices, links);
        ASSERT_EQ(order.size(), vertices.size());
        std::vector<std::size_t> place(vertices.size() + 1);
        for (std::size_t i = 0; i < order.size(); ++i) {
            place[order.Nodes()[i]] = i;
        }
        for (Vtx const& vertex : vertices) {
            std::vector<Node> later;
            std::vector<Node> earlier;
            for (Node const other : vertex.Neighs_c()) {
                (place[other] > place[vertex.Index()] ? later : earlier).push_back(other);
            }
            ASSERT_EQ(To_vector(order.Later(vertex.Index())), later);
            ASSERT_EQ(To_vector(order.Earlier(vertex.Index())), earlier);
        }
    }
}

} // namespace
} // namespace cpm::test
