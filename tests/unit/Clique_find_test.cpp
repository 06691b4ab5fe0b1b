// SPDX-License-Identifier: MIT
#include "Clique_find/Clique_find.h"

#include "support/Captured_console.h"
#include "support/Cliques_by_sets.h"
#include "support/Graph_makers.h"

#include <gtest/gtest.h>

namespace cpm::test {
namespace {

using Sets = std::vector<std::vector<Node>>;

Sets Cliques(Links const& links) {
    Captured_console console;
    Set_list cliques{{7, 8, 9}}; // what was there before goes
    Clique_find(cliques, Graph(To_index_links(links)), console);
    return To_vectors(cliques);
}

Sets By_sets(Links const& links) {
    Vtx_map vertices;
    Vtx_map_from_link_map(vertices, To_index_links(links));
    Cliques_by_sets by_sets(vertices);
    by_sets.Search("");
    return by_sets.Cliques();
}

TEST(Clique_find, A_triangle_is_one_clique) {
    EXPECT_EQ(Cliques(Complete(1, 3)), (Sets{{1, 2, 3}}));
}

TEST(Clique_find, A_path_has_no_clique) {
    EXPECT_EQ(Cliques({{1, 2}, {2, 3}}), Sets());
}

TEST(Clique_find, Triangles_that_share_a_link_are_two_cliques) {
    EXPECT_EQ(Cliques({{1, 2}, {1, 3}, {2, 3}, {2, 4}, {3, 4}}), (Sets{{1, 2, 3}, {2, 3, 4}}));
}

TEST(Clique_find, Cliques_come_with_their_first_node_in_the_order) {
    // The last node has the fewest neighbours of the two cliques' own nodes.
    Links links = Complete(1, 5);
    links.merge(Links{{4, 6}, {5, 6}});
    EXPECT_EQ(Cliques(links), (Sets{{4, 5, 6}, {1, 2, 3, 4, 5}}));
}

TEST(Clique_find, A_complete_network_is_one_clique_and_each_node_is_reported) {
    Captured_console console;
    Set_list cliques;
    Clique_find(cliques, Graph(To_index_links(Complete(1, 5))), console);
    EXPECT_EQ(To_vectors(cliques), (Sets{{1, 2, 3, 4, 5}}));
    EXPECT_EQ(console.Output(), " Sorting the nodes...\n"
                                " done.\n"
                                "__________________\n"
                                " Locating cliques:\n"
                                " 5 of 5 nodes to do (0.00% done)\n"
                                "__________________\n"
                                " Locating cliques:\n"
                                " 4 of 5 nodes to do (20.00% done)\n"
                                "__________________\n"
                                " Locating cliques:\n"
                                " 3 of 5 nodes to do (40.00% done)\n"
                                "__________________\n"
                                " Locating cliques:\n"
                                " 2 of 5 nodes to do (60.00% done)\n"
                                "__________________\n"
                                " Locating cliques:\n"
                                " 1 of 5 nodes to do (80.00% done)\n"
                                "____________________________\n"
                                " Altogether 1 cliques found.\n");
}

TEST(Clique_find, An_empty_network_is_reported_without_progress) {
    Captured_console console;
    Set_list cliques;
    Clique_find(cliques, Graph(Index_links()), console);
    EXPECT_EQ(cliques.size(), 0U);
    EXPECT_EQ(console.Output(), " Sorting the nodes...\n"
                                " done.\n"
                                "____________________________\n"
                                " Altogether 0 cliques found.\n");
}

TEST(Clique_find, Random_networks_agree_with_the_search_by_sets) {
    Random_numbers random(47);
    for (int round = 0; round < 500; ++round) {
        Node const n = 3 + random.Below(round % 10 == 0 ? 40 : 12);
        Links const links = round % 2 == 0
                                ? Random_links(n, 10 + random.Below(n > 16 ? 35 : 90), random)
                                : Random_teams(n, 2 + random.Below(12), std::min(n, 9U), random);
        ASSERT_EQ(Cliques(links), By_sets(links)) << "round " << round;
    }
}

// One node has more than 64 neighbours with links among them, and done neighbours beside.
TEST(Clique_find, Networks_with_hubs_agree_with_the_search_by_sets) {
    Random_numbers random(53);
    for (int round = 0; round < 6; ++round) {
        Node const n = 100 + random.Below(40);
        Links links = Random_links(n, 6 + random.Below(8), random);
        for (Node node = 2; node <= n; ++node) {
            if (random.Percent(90)) {
                links.insert({1, node});
            }
        }
        // Later than the hub's other neighbours come the nodes of a large clique.
        links.merge(Complete(1, 20));
        ASSERT_EQ(Cliques(links), By_sets(links)) << "round " << round;
    }
}

} // namespace
} // namespace cpm::test
