// SPDX-License-Identifier: MIT
#include "records/Vertex_maps.h"

#include "support/Errors.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

using Nodes = std::vector<Node>;

Nodes Listed(Node_set nodes) {
    return {nodes.begin(), nodes.end()};
}

Index_links Links(std::vector<Node_pair> const& pairs) {
    Index_links links;
    links.pairs.Append(pairs);
    return links;
}

template <class Step> std::string Error_of(Step step) {
    try {
        step();
    } catch (Xerror_msg const& error) {
        return error.what();
    }
    return "no error";
}

TEST(Vtx_map, No_links_give_no_nodes_and_no_order) {
    Vtx_map vertices(3);
    Vtx_map_from_link_map(vertices, Index_links());
    EXPECT_TRUE(vertices.empty());
    std::vector<Node> order{1, 2};
    Sort_Vtx_map(order, vertices);
    EXPECT_TRUE(order.empty());
}

TEST(Vtx_map, Links_make_neighbours_of_both_ends) {
    Vtx_map vertices;
    Vtx_map_from_link_map(vertices, Links({{1, 2}, {1, 4}, {2, 3}, {2, 4}}));
    ASSERT_EQ(vertices.size(), 4u);
    EXPECT_EQ(Listed(vertices[0].Neighs_c()), (Nodes{2, 4}));
    EXPECT_EQ(Listed(vertices[1].Neighs_c()), (Nodes{1, 3, 4}));
    EXPECT_EQ(Listed(vertices[2].Neighs_c()), (Nodes{2}));
    EXPECT_EQ(Listed(vertices[3].Neighs_c()), (Nodes{1, 2}));
    for (Node node = 1; node <= 4; ++node) {
        EXPECT_EQ(vertices[node - 1].Index(), node);
        EXPECT_EQ(vertices[node - 1].Name(), std::to_string(node));
    }
}

TEST(Vtx_map, A_pair_in_both_orders_is_an_error) {
    Vtx_map vertices;
    EXPECT_EQ(Error_of([&] {
                  Vtx_map_from_link_map(vertices, Links({{1, 2}, {2, 1}}));
              }),
              "ERROR: Vtx::Add_neigh() : attempt to add already exisiting neigh. ");
}

TEST(Vtx_map, A_link_to_itself_is_an_error) {
    Vtx_map vertices;
    EXPECT_EQ(Error_of([&] {
                  Vtx_map_from_link_map(vertices, Links({{1, 1}, {1, 2}}));
              }),
              "ERROR: Vtx::Add_neigh() : attempt to add already exisiting neigh. ");
}

TEST(Vtxd_map, No_links_give_no_nodes_and_no_order) {
    Vtxd_map vertices(3);
    Dir_vtx_map_from_link_map(vertices, Index_links());
    EXPECT_TRUE(vertices.empty());
    std::vector<Node> order{1, 2};
    Sort_dir_vtx_map(order, vertices, "Neighs");
    EXPECT_TRUE(order.empty());
}

TEST(Vtxd_map, A_link_and_its_reverse_make_one_neighbour) {
    Vtxd_map vertices;
    Dir_vtx_map_from_link_map(vertices, Links({{1, 2}, {2, 1}}));
    ASSERT_EQ(vertices.size(), 2u);
    EXPECT_EQ(Listed(vertices[0].Oneighs_c()), (Nodes{2}));
    EXPECT_EQ(Listed(vertices[0].Ineighs_c()), (Nodes{2}));
    EXPECT_EQ(Listed(vertices[0].Neighs_c()), (Nodes{2}));
}

TEST(Vtxd_map, Adding_link_by_link_gives_the_same_records) {
    Index_links const links = Links({{1, 4}, {2, 1}, {2, 5}, {3, 1}, {3, 2}, {4, 1}, {5, 3}});
    Vtxd_map vertices;
    Dir_vtx_map_from_link_map(vertices, links);
    Vtxd_map expected;
    for (Node node = 1; node <= 5; ++node) {
        expected.emplace_back(node);
    }
    for (Node_pair const& pair : links.pairs) {
        expected[pair.first - 1].Add_oneigh(pair.second);
        expected[pair.second - 1].Add_ineigh(pair.first);
    }
    ASSERT_EQ(vertices.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(vertices[i].Index(), expected[i].Index());
        EXPECT_EQ(vertices[i].Name(), expected[i].Name());
        EXPECT_EQ(vertices[i].Oneighs(), expected[i].Oneighs());
        EXPECT_EQ(vertices[i].Ineighs(), expected[i].Ineighs());
        EXPECT_EQ(vertices[i].Neighs(), expected[i].Neighs());
    }
}

TEST(Sort_Vtx_map, Fewest_neighbours_first_equal_ones_by_index) {
    Vtx_map vertices;
    Vtx_map_from_link_map(vertices, Links({{1, 2}, {1, 3}, {1, 4}, {2, 4}, {4, 5}, {6, 7}}));
    std::vector<Node> order{9};
    Sort_Vtx_map(order, vertices);
    EXPECT_EQ(order, (Nodes{3, 5, 6, 7, 2, 1, 4}));
}

TEST(Sort_Vtx_map, The_flag_names_the_neighbours_that_count) {
    Vtxd_map vertices;
    Dir_vtx_map_from_link_map(vertices, Links({{1, 2}, {1, 3}, {1, 4}, {2, 1}, {2, 4}, {3, 4}}));
    std::vector<Node> order;
    Sort_dir_vtx_map(order, vertices, "Neighs");
    EXPECT_EQ(order, (Nodes{2, 3, 1, 4}));
    Sort_dir_vtx_map(order, vertices, "Oneighs");
    EXPECT_EQ(order, (Nodes{4, 3, 2, 1}));
    Sort_dir_vtx_map(order, vertices, "Ineighs");
    EXPECT_EQ(order, (Nodes{1, 2, 3, 4}));
}

TEST(Sort_Vtx_map, Any_other_flag_is_an_error) {
    std::vector<Node> order;
    EXPECT_EQ(Error_of([&] { Sort_dir_vtx_map(order, Vtxd_map(), "neighs"); }),
              " Invalid flag 'neighs' given in Sort_vtxd_gmap...\n");
}

} // namespace
} // namespace cpm
