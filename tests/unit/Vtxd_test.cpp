// SPDX-License-Identifier: MIT
#include "records/Vtxd.h"

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

void Expect_neighbours(Vtxd const& vertex, Nodes const& oneighs, Nodes const& ineighs,
                       Nodes const& neighs) {
    EXPECT_EQ(Listed(vertex.Oneighs_c()), oneighs);
    EXPECT_EQ(Listed(vertex.Ineighs_c()), ineighs);
    EXPECT_EQ(Listed(vertex.Neighs_c()), neighs);
}

Vtxd Node_of_both_directions() {
    Vtxd vertex(4, Nodes{2, 7}, Nodes{1, 2}, "four");
    vertex.Add_inc_neigh(0, 2);
    vertex.Add_inc_neigh(1, 7);
    return vertex;
}

TEST(Vtxd, Neighbours_are_those_of_both_directions) {
    Vtxd const vertex = Node_of_both_directions();
    EXPECT_EQ(vertex.Index(), 4u);
    EXPECT_EQ(vertex.Name(), "four");
    Expect_neighbours(vertex, {2, 7}, {1, 2}, {1, 2, 7});
    EXPECT_EQ(Listed(vertex.Oneighs()), (Nodes{2, 7}));
    EXPECT_EQ(Listed(vertex.Ineighs()), (Nodes{1, 2}));
}

TEST(Vtxd, Is_named_after_its_index) {
    EXPECT_EQ(Vtxd().Name(), "0");
    EXPECT_EQ(Vtxd(7).Name(), "7");
    EXPECT_EQ(Vtxd(7, Nodes{1}, Nodes{}).Name(), "7");
}

TEST(Vtxd, Add_oneigh_refuses_a_repeat_in_its_direction_only) {
    Vtxd vertex(1);
    vertex.Add_ineigh(5);
    vertex.Add_oneigh(5);
    vertex.Add_oneigh(3);
    EXPECT_EQ(Error_of([&] { vertex.Add_oneigh(5); }),
              "ERROR: Vtxd::Add_oneigh() : attempt to add already exisiting neigh. ");
    EXPECT_EQ(Error_of([&] { vertex.Add_ineigh(5); }),
              "ERROR: Vtxd::Add_ineigh() : attempt to add already exisiting neigh. ");
    Expect_neighbours(vertex, {3, 5}, {5}, {3, 5});
}

TEST(Vtxd, Add_neigh_stays_outside_both_directions) {
    Vtxd vertex(1, Nodes{2}, Nodes{3});
    vertex.Add_neigh(9);
    Expect_neighbours(vertex, {2}, {3}, {2, 3, 9});
    vertex.Remove_neigh(9);
    Expect_neighbours(vertex, {2}, {3}, {2, 3});
}

TEST(Vtxd, Remove_oneigh_keeps_a_neighbour_of_the_other_direction) {
    Vtxd vertex = Node_of_both_directions();
    vertex.Remove_oneigh(2);
    Expect_neighbours(vertex, {7}, {1, 2}, {1, 2, 7});
    vertex.Remove_ineigh(2);
    Expect_neighbours(vertex, {7}, {1}, {1, 7});
}

TEST(Vtxd, Remove_ineigh_keeps_a_neighbour_of_the_other_direction) {
    Vtxd vertex = Node_of_both_directions();
    vertex.Remove_ineigh(2);
    Expect_neighbours(vertex, {2, 7}, {1}, {1, 2, 7});
    vertex.Remove_oneigh(2);
    Expect_neighbours(vertex, {7}, {1}, {1, 7});
}

TEST(Vtxd, Removing_wants_a_member_of_the_direction) {
    Vtxd vertex = Node_of_both_directions();
    EXPECT_EQ(Error_of([&] { vertex.Remove_oneigh(1); }),
              "ERROR: Vtxd::Remove_oneigh() : attempt to remove a non-existing oneigh.");
    EXPECT_EQ(Error_of([&] { vertex.Remove_ineigh(7); }),
              "ERROR: Vtxd::Remove_ineigh() : attempt to remove a non-existing ineigh.");
    EXPECT_EQ(Error_of([&] { vertex.Remove_neigh(3); }),
              "ERROR: Vtxd::Remove_neigh() : attempt to remove a non-existing neigh.");
    Expect_neighbours(vertex, {2, 7}, {1, 2}, {1, 2, 7});
}

TEST(Vtxd, Remove_neigh_clears_it_everywhere) {
    Vtxd vertex = Node_of_both_directions();
    Vtx& base = vertex;
    base.Remove_neigh(2);
    Expect_neighbours(vertex, {7}, {1}, {1, 7});
    EXPECT_EQ(vertex.Inc_neighs_c()[0].size(), 0u);
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[1]), (Nodes{7}));
}

TEST(Vtxd, Replacing_a_direction_keeps_its_old_members_as_neighbours) {
    Vtxd vertex = Node_of_both_directions();
    vertex.Set_oneighs(Nodes{8});
    Expect_neighbours(vertex, {8}, {1, 2}, {1, 2, 7, 8});
    vertex.Set_ineighs(Nodes{});
    Expect_neighbours(vertex, {8}, {}, {1, 2, 7, 8});
}

TEST(Vtxd, Takes_its_own_sets_as_arguments) {
    Vtxd vertex = Node_of_both_directions();
    vertex.Set_oneighs(vertex.Oneighs_c());
    vertex.Set_ineighs(vertex.Neighs_c());
    Expect_neighbours(vertex, {2, 7}, {1, 2, 7}, {1, 2, 7});
}

TEST(Vtxd, Copies_are_whole_and_independent) {
    Vtxd vertex = Node_of_both_directions();
    Vtxd const copy(vertex);
    Vtxd assigned(1, Nodes{9}, Nodes{9});
    assigned = vertex;
    vertex.Remove_neigh(2);
    for (Vtxd const* const same : {&copy, static_cast<Vtxd const*>(&assigned)}) {
        EXPECT_EQ(same->Index(), 4u);
        EXPECT_EQ(same->Name(), "four");
        Expect_neighbours(*same, {2, 7}, {1, 2}, {1, 2, 7});
        ASSERT_EQ(same->Inc_neighs_c().size(), 2u);
        EXPECT_EQ(Listed(same->Inc_neighs_c()[0]), (Nodes{2}));
    }
}

TEST(Vtxd, Self_assignment_changes_nothing) {
    Vtxd vertex = Node_of_both_directions();
    Vtxd const& same = vertex;
    vertex = same;
    Vtx const& same_base = vertex;
    vertex = same_base;
    Expect_neighbours(vertex, {2, 7}, {1, 2}, {1, 2, 7});
    EXPECT_EQ(vertex.Name(), "four");
}

TEST(Vtxd, Made_from_an_undirected_record_links_both_ways) {
    Vtx undirected(3, Nodes{1, 2}, "three");
    undirected.Add_inc_neigh(0, 2);
    Vtxd const vertex(undirected);
    EXPECT_EQ(vertex.Index(), 3u);
    EXPECT_EQ(vertex.Name(), "three");
    Expect_neighbours(vertex, {1, 2}, {1, 2}, {1, 2});
    EXPECT_EQ(Listed(vertex.Inc_neighs_c()[0]), (Nodes{2}));
}

TEST(Vtxd, Assigned_from_an_undirected_record_keeps_its_old_neighbours) {
    Vtxd vertex(4, Nodes{7}, Nodes{8});
    vertex = Vtx(3, Nodes{1, 2});
    EXPECT_EQ(vertex.Index(), 3u);
    Expect_neighbours(vertex, {1, 2}, {1, 2}, {1, 2, 7, 8});
}

TEST(Vtxd, Defaults_clear_the_directions_only) {
    Vtxd vertex = Node_of_both_directions();
    vertex.Set_defaults();
    EXPECT_EQ(vertex.Index(), 4u);
    EXPECT_EQ(vertex.Name(), "four");
    Expect_neighbours(vertex, {}, {}, {1, 2, 7});
}

TEST(Vtxd, Is_ordered_by_index_among_both_kinds) {
    EXPECT_TRUE(Vtxd(1) < Vtxd(2));
    EXPECT_FALSE(Vtxd(2) < Vtxd(2));
    EXPECT_TRUE(Vtxd(1) < Vtx(2));
    EXPECT_FALSE(Vtxd(2) < Vtx(2));
    EXPECT_TRUE(Vtx(1) < Vtxd(2));
}

TEST(Vtxd_text, Vertical) {
    std::ostringstream text;
    g_ver::operator<<(text, Node_of_both_directions());
    EXPECT_EQ(text.str(), "4 'four' :\n ineighs. :\n  1\n  2\n oneighs. :\n  2\n  7\n"
                          "  inc_neighs. : \n  2\n  7\n");
}

TEST(Vtxd_text, Horizontal) {
    std::ostringstream text;
    g_hor::operator<<(text, Node_of_both_directions());
    EXPECT_EQ(text.str(),
              "{4 'four' : oneighs. :{2, 7}  ineighs. :{1, 2}  inc_neighs. :   {2} , {7}}");
}

TEST(Vtxd_text, Export_with_separators) {
    std::ostringstream text;
    export_data(text, Node_of_both_directions(), ";", " ", ",");
    EXPECT_EQ(text.str(), "4 (four) : ineighs. : 1,2; oneighs. : 2,7; inc_neighs. : 2; 7");
}

} // namespace
} // namespace cpm
