// SPDX-License-Identifier: MIT
#include "Plexor_io/Link_writer.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

namespace cpm {
namespace {

Names_map Names(std::vector<std::string> const& names) {
    Names_map map;
    map.Add("");
    for (std::string const& name : names) {
        map.Add(name);
    }
    return map;
}

Index_links Links(std::vector<Node_pair> const& pairs) {
    Index_links links;
    links.pairs.Append(pairs);
    return links;
}

std::string Lines(Link_writer& lines, std::vector<Link_number> const& numbers) {
    Text text;
    lines.Put(numbers, text);
    return std::string(text.View());
}

std::string Lines_of_all_pairs(Link_writer& lines, std::vector<Node> const& nodes) {
    Text text;
    lines.Put_all_pairs(nodes, text);
    return std::string(text.View());
}

TEST(Link_writer, Undirected_links_have_the_smaller_index_first) {
    Index_links const links = Links({{1, 2}, {1, 3}, {2, 3}});
    Edge_numbering const pairs(links, 3, {}, 0);
    Names_map const names = Names({"z", "y", "x"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines(lines, {0, 1, 2}), "z y\nz x\ny x\n");
}

TEST(Link_writer, Directed_links_keep_their_direction) {
    Index_links const links = Links({{1, 3}, {2, 1}, {3, 2}});
    Edge_numbering const pairs(links, 3, {}, 0);
    Names_map const names = Names({"A", "B", "C"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines(lines, {0, 1, 2}), "B A\nA C\nC B\n");
}

TEST(Link_writer, A_link_and_its_reverse_are_one_line_smaller_index_first) {
    Index_links const links = Links({{1, 2}, {2, 1}, {2, 3}, {3, 1}});
    Edge_numbering const pairs(links, 3, {}, 0);
    Names_map const names = Names({"A", "B", "C"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines(lines, {0, 1, 2}), "A B\nC A\nB C\n");
}

TEST(Link_writer, Nodes_of_an_approximated_clique_that_are_not_linked_come_larger_index_first) {
    Index_links const links = Links({{1, 2}, {2, 3}});
    Set_list const cliques{{1, 2, 3}};
    Edge_numbering const pairs(links, 3, cliques, 0);
    Names_map const names = Names({"A", "B", "C"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines(lines, {pairs.Number(1, 2), pairs.Number(1, 3), pairs.Number(2, 3)}),
              "A B\nC A\nB C\n");
    EXPECT_EQ(Lines_of_all_pairs(lines, {1, 2, 3}), "A B\nC A\nB C\n");
}

TEST(Link_writer, Numbers_come_in_any_order_and_repeatedly) {
    Index_links const links = Links({{1, 2}, {1, 3}, {1, 4}, {2, 3}});
    Edge_numbering const pairs(links, 4, {}, 0);
    Names_map const names = Names({"a", "b", "c", "d"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines(lines, {}), "");
    EXPECT_EQ(Lines(lines, {3}), "b c\n");
    EXPECT_EQ(Lines(lines, {2, 3, 0, 1, 1, 0}), "a d\nb c\na b\na c\na c\na b\n");
}

TEST(Link_writer, No_links_no_lines) {
    Index_links const links;
    Edge_numbering const pairs(links, 0, {}, 0);
    Names_map const names = Names({});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines(lines, {}), "");
}

// Runs of every length, with names short and long, against line by line.
TEST(Link_writer, A_run_of_links_is_its_lines_one_after_the_other) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < 60; ++i) {
        names.push_back(std::string(1 + i % 35, static_cast<char>('a' + i % 26)));
    }
    std::vector<Node_pair> node_pairs;
    for (Node node = 2; node <= 60; ++node) {
        node_pairs.push_back({1, node});
    }
    Index_links const links = Links(node_pairs);
    Edge_numbering const pairs(links, 60, {}, 0);
    Names_map const name_table = Names(names);
    Name_labels const labels(name_table);
    Link_writer lines(pairs, links, labels);
    for (Link_number first = 0; first < 59; ++first) {
        std::string expected;
        for (std::size_t size = 1; first + size <= 59; ++size) {
            expected += "a " + names[first + size] + '\n';
            std::vector<Link_number> run(size);
            std::iota(run.begin(), run.end(), first);
            ASSERT_EQ(Lines(lines, run), expected);
        }
    }
}

TEST(Link_writer, All_pairs_of_a_clique_come_smaller_index_first) {
    Index_links const links =
        Links({{1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {2, 5}, {3, 4}, {3, 5}});
    Edge_numbering const pairs(links, 5, {}, 0);
    Names_map const names = Names({"d", "", "b", "a", "e"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines_of_all_pairs(lines, {1, 2, 3, 4}), "d \nd b\nd a\n b\n a\nb a\n");
    EXPECT_EQ(Lines_of_all_pairs(lines, {2, 3, 5}), " b\n e\nb e\n");
    EXPECT_EQ(Lines_of_all_pairs(lines, {3, 4}), "b a\n");
}

// One name grows through every length, between short ones.
TEST(Link_writer, All_pairs_of_a_clique_with_long_names) {
    Index_links const links = Links({{1, 2}, {1, 3}, {2, 3}});
    Edge_numbering const pairs(links, 3, {}, 0);
    for (std::size_t size = 0; size < 70; ++size) {
        std::string const name(size, 'n');
        Names_map const names = Names({"a", name, "c"});
        Name_labels const labels(names);
        Link_writer lines(pairs, links, labels);
        ASSERT_EQ(Lines_of_all_pairs(lines, {1, 2, 3}), "a " + name + "\na c\n" + name + " c\n");
    }
}

TEST(Link_writer, All_pairs_of_a_directed_clique_keep_their_direction) {
    Index_links const links = Links({{1, 2}, {1, 4}, {2, 3}, {3, 1}, {3, 2}, {4, 3}});
    Edge_numbering const pairs(links, 4, {}, 0);
    Names_map const names = Names({"A", "B", "C", "D"});
    Name_labels const labels(names);
    Link_writer lines(pairs, links, labels);
    EXPECT_EQ(Lines_of_all_pairs(lines, {1, 2, 3}), "A B\nC A\nB C\n");
    EXPECT_EQ(Lines_of_all_pairs(lines, {1, 3, 4}), "C A\nA D\nD C\n");
}

} // namespace
} // namespace cpm
