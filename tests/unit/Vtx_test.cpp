// SPDX-License-Identifier: MIT
#include "records/Vtx.h"

#include "support/Errors.h"

#include <gtest/gtest.h>

#include <sstream>

namespace cpm {
namespace {

using Nodes = std::vector<Node>;

Nodes Listed(Node_set nodes) {
    return {nodes.begin(), nodes.end()};
}

template <class Step> std::string Error_of(Step step) {
    try {
        step();
    } catch (Xerror_msg const& error) {
        return error.what();
    }
    return "no error";
}

Vtx Node_with_inc_sets() {
    Vtx vertex(5, Nodes{2, 3, 8}, "five");
    vertex.Add_inc_neigh(0, 3);
    vertex.Add_inc_neigh(0, 2);
    vertex.Add_inc_neigh(1, 8);
    vertex.Add_inc_neigh(1, 2);
    return vertex;
}

void Expect_as_made(Vtx const& vertex) {
    EXPECT_EQ(vertex.Index(), 5u);
    EXPECT_EQ(vertex.Name(), "five");
    EXPECT_EQ(Listed(vertex.Neighs_c()), (Nodes{2, 3, 8}));
    ASSERT_EQ(vertex.Inc_neighs_c().size(), 2u);
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[0]), (Nodes{2, 3}));
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[1]), (Nodes{2, 8}));
}

TEST(Ordered_nodes, Inserts_anywhere_and_refuses_repeats) {
    Ordered_nodes nodes;
    for (Node const node : {5u, 2u, 9u, 7u, 1u}) {
        EXPECT_TRUE(nodes.Insert(node));
    }
    for (Node const node : {1u, 5u, 9u}) {
        EXPECT_FALSE(nodes.Insert(node));
    }
    EXPECT_EQ(Listed(nodes), (Nodes{1, 2, 5, 7, 9}));
}

TEST(Ordered_nodes, Erases_first_last_and_inner_nodes) {
    Ordered_nodes nodes(Nodes{1, 2, 5, 7, 9});
    EXPECT_FALSE(nodes.Erase(0));
    EXPECT_FALSE(nodes.Erase(6));
    EXPECT_FALSE(nodes.Erase(10));
    for (Node const node : {1u, 9u, 5u}) {
        EXPECT_TRUE(nodes.Erase(node));
    }
    EXPECT_EQ(Listed(nodes), (Nodes{2, 7}));
    EXPECT_TRUE(nodes.Erase(2));
    EXPECT_TRUE(nodes.Erase(7));
    EXPECT_FALSE(nodes.Erase(7));
    EXPECT_EQ(nodes.size(), 0u);
}

TEST(Ordered_nodes, Unites_with_a_set) {
    Ordered_nodes nodes(Nodes{2, 5});
    nodes.Insert_all(Nodes{1, 2, 9});
    EXPECT_EQ(Listed(nodes), (Nodes{1, 2, 5, 9}));
    nodes.Insert_all({});
    EXPECT_EQ(Listed(nodes), (Nodes{1, 2, 5, 9}));
}

TEST(Vtx, Default_record_has_index_0_and_name_0) {
    Vtx const vertex;
    EXPECT_EQ(vertex.Index(), 0u);
    EXPECT_EQ(vertex.Name(), "0");
    EXPECT_TRUE(vertex.Neighs_c().empty());
    EXPECT_TRUE(vertex.Inc_neighs_c().empty());
}

TEST(Vtx, Is_named_after_its_index) {
    EXPECT_EQ(Vtx(7).Name(), "7");
    EXPECT_EQ(Vtx(4294967295, Nodes{1}).Name(), "4294967295");
    EXPECT_EQ(Vtx(7, Nodes{1, 2}, "seven").Name(), "seven");
}

TEST(Vtx, Accessors_without_c_give_copies) {
    Vtx vertex = Node_with_inc_sets();
    Ordered_nodes const neighs = vertex.Neighs();
    std::vector<Ordered_nodes> const inc_neighs = vertex.Inc_neighs();
    vertex.Remove_neigh(2);
    EXPECT_EQ(Listed(neighs), (Nodes{2, 3, 8}));
    EXPECT_EQ(Listed(inc_neighs[1]), (Nodes{2, 8}));
}

TEST(Vtx, Add_neigh_refuses_a_neighbour_that_is_there) {
    Vtx vertex(1);
    vertex.Add_neigh(4);
    vertex.Add_neigh(2);
    EXPECT_EQ(Error_of([&] { vertex.Add_neigh(4); }),
              "ERROR: Vtx::Add_neigh() : attempt to add already exisiting neigh. ");
    EXPECT_EQ(Listed(vertex.Neighs_c()), (Nodes{2, 4}));
}

TEST(Vtx, Add_inc_neigh_at_the_count_starts_a_set) {
    Vtx vertex(1, Nodes{2, 3});
    vertex.Add_inc_neigh(0, 3);
    vertex.Add_inc_neigh(0, 3);
    ASSERT_EQ(vertex.Inc_neighs_c().size(), 1u);
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[0]), (Nodes{3}));
}

TEST(Vtx, Add_inc_neigh_beyond_the_count_is_an_error) {
    Vtx vertex(1, Nodes{2, 3});
    vertex.Add_inc_neigh(0, 3);
    EXPECT_EQ(Error_of([&] { vertex.Add_inc_neigh(2, 2); }),
              "ERROR: Vtx::Add_inc_neigh() : vec_ind too large");
    EXPECT_EQ(vertex.Inc_neighs_c().size(), 1u);
}

TEST(Vtx, Add_inc_neigh_wants_a_neighbour) {
    Vtx vertex(1, Nodes{2, 3});
    EXPECT_EQ(Error_of([&] { vertex.Add_inc_neigh(0, 4); }),
              "ERROR: Vtx::Add_inc_neigh() : new ind. neigh. is not a neigh.");
    EXPECT_TRUE(vertex.Inc_neighs_c().empty());
}

TEST(Vtx, Remove_neigh_clears_it_from_every_inc_set) {
    Vtx vertex = Node_with_inc_sets();
    vertex.Remove_neigh(2);
    EXPECT_EQ(Listed(vertex.Neighs_c()), (Nodes{3, 8}));
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[0]), (Nodes{3}));
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[1]), (Nodes{8}));
    EXPECT_EQ(Error_of([&] { vertex.Remove_neigh(2); }),
              "ERROR: Vtx::Remove_neigh() : attempt to remove a non-existing neigh.");
}

TEST(Vtx, Remove_inc_neigh_leaves_the_neighbour) {
    Vtx vertex = Node_with_inc_sets();
    vertex.Remove_inc_neigh(1, 2);
    EXPECT_EQ(Listed(vertex.Neighs_c()), (Nodes{2, 3, 8}));
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[0]), (Nodes{2, 3}));
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[1]), (Nodes{8}));
}

TEST(Vtx, Remove_inc_neigh_wants_a_set_and_a_member) {
    Vtx vertex = Node_with_inc_sets();
    EXPECT_EQ(Error_of([&] { vertex.Remove_inc_neigh(2, 2); }),
              "ERROR: Vtx::Remove_inc_neigh() : vec_ind too large");
    EXPECT_EQ(Error_of([&] { vertex.Remove_inc_neigh(0, 8); }),
              "ERROR: Vtx::Remove_inc_neigh() : attempt to remove a non-existing inc. neigh.");
    Expect_as_made(vertex);
}

TEST(Vtx, Copies_are_whole_and_independent) {
    Vtx vertex = Node_with_inc_sets();
    Vtx const copy(vertex);
    Vtx assigned(1, Nodes{9});
    assigned = vertex;
    vertex.Remove_neigh(2);
    vertex.Set_index(6);
    vertex.Set_name("six");
    Expect_as_made(copy);
    Expect_as_made(assigned);
}

TEST(Vtx, Self_assignment_changes_nothing) {
    Vtx vertex = Node_with_inc_sets();
    Vtx const& same = vertex;
    vertex = same;
    Expect_as_made(vertex);
}

TEST(Vtx, Takes_its_own_sets_as_arguments) {
    Vtx vertex = Node_with_inc_sets();
    vertex.Set_neighs(vertex.Neighs_c());
    vertex.Set_inc_neighs(vertex.Inc_neighs_c());
    Expect_as_made(vertex);
    vertex.Set_neighs(vertex.Inc_neighs_c()[0]);
    EXPECT_EQ(Listed(vertex.Neighs_c()), (Nodes{2, 3}));
}

TEST(Vtx, Defaults_clear_everything) {
    Vtx vertex = Node_with_inc_sets();
    vertex.Set_defaults();
    EXPECT_EQ(vertex.Index(), 0u);
    EXPECT_EQ(vertex.Name(), "0");
    EXPECT_TRUE(vertex.Neighs_c().empty());
    EXPECT_TRUE(vertex.Inc_neighs_c().empty());
}

TEST(Vtx, Is_ordered_by_index) {
    EXPECT_TRUE(Vtx(1) < Vtx(2));
    EXPECT_FALSE(Vtx(2) < Vtx(2));
    EXPECT_FALSE(Vtx(3) < Vtx(2));
}

#ifndef _GLIBCXX_DEBUG // checked containers are larger
TEST(Vtx, Stays_small) {
    EXPECT_LE(sizeof(Vtx), 96u);
}
#endif

TEST(Vtx_text, Vertical) {
    std::ostringstream text;
    g_ver::operator<<(text, Node_with_inc_sets());
    EXPECT_EQ(text.str(), "5 'five' :\n neighs. :\n  2\n  3\n  8\n  inc_neighs. : \n"
                          "  2\n  3\n  2\n  8\n");
}

TEST(Vtx_text, Horizontal) {
    std::ostringstream text;
    g_hor::operator<<(text, Node_with_inc_sets());
    EXPECT_EQ(text.str(), "{5 'five' : neighs. :{2, 3, 8}  inc_neighs. :   {2, 3} , {2, 8}}");
}

TEST(Vtx_text, Horizontal_without_inc_sets_is_closed_too) {
    std::ostringstream text;
    g_hor::operator<<(text, Vtx(1));
    EXPECT_EQ(text.str(), "{1 '1' : neighs. :{}  inc_neighs. : }");
}

TEST(Vtx_text, Export_with_separators) {
    std::ostringstream text;
    export_data(text, Node_with_inc_sets(), ";", " ", ",");
    EXPECT_EQ(text.str(), "5 (five) : neighs. : 2,3,8; inc_neighs. : 2,3; 2,8");
}

} // namespace
} // namespace cpm
