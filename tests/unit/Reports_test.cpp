// SPDX-License-Identifier: MIT
#include "Plexor_io/Reports.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <random>
#include <string>

namespace cpm::Clique_find_report_sub_routines {
namespace {

std::string Progress_line(std::uint32_t to_do, std::uint32_t total) {
    Text text;
    Report_progress("t", "nodes", to_do, total, text);
    return std::string(text.View().substr(4));
}

// The percentage as the standard library formats it.
std::string Plain_progress_line(std::uint32_t to_do, std::uint32_t total) {
    std::array<char, 64> percentage{};
    std::snprintf(percentage.data(), percentage.size(), "%.2f", 100.0 * (total - to_do) / total);
    return " " + std::to_string(to_do) + " of " + std::to_string(total) + " nodes to do (" +
           percentage.data() + "% done)\n";
}

TEST(Report_progress, Underlines_the_title_from_above) {
    Text text;
    Report_progress(" Locating cliques:", "nodes", 1, 4, text);
    EXPECT_EQ(text.View(), "__________________\n Locating cliques:\n 1 of 4 nodes to do "
                           "(75.00% done)\n");
}

TEST(Report_progress, Everything_to_do_is_no_percent_done) {
    EXPECT_EQ(Progress_line(4, 4), " 4 of 4 nodes to do (0.00% done)\n");
}

TEST(Report_progress, The_underline_is_as_wide_as_the_longer_title) {
    Text text;
    Report_progress("ab", "abcde", "x", 3, 3, text);
    EXPECT_EQ(text.View(), "_____\nab\nabcde\n 3 of 3 x to do (0.00% done)\n");
    text.Clear();
    Report_progress("abcde", "ab", "x", 3, 3, text);
    EXPECT_EQ(text.View(), "_____\nabcde\nab\n 3 of 3 x to do (0.00% done)\n");
}

TEST(Report_progress, There_is_at_least_one_underscore) {
    Text text;
    Report_progress("", "x", 1, 1, text);
    EXPECT_EQ(text.View(), "_\n\n 1 of 1 x to do (0.00% done)\n");
}

// Ties at the third decimal are where a percentage found in other ways would differ: exact ones
// (1 of 32 is 3.125) and those that a double cannot hold (1 of 800 is 0.125, 3 of 20000 is 0.015).
TEST(Report_progress, Percentages_are_those_of_the_standard_library) {
    for (std::uint32_t total = 1; total <= 300; ++total) {
        for (std::uint32_t to_do = 0; to_do <= total; ++to_do) {
            ASSERT_EQ(Progress_line(to_do, total), Plain_progress_line(to_do, total));
        }
    }
    for (std::uint32_t const total : {800u, 20000u, 40000u, 100000u}) {
        for (std::uint32_t to_do = 0; to_do <= total; to_do += total > 20000 ? 7 : 1) {
            ASSERT_EQ(Progress_line(to_do, total), Plain_progress_line(to_do, total));
        }
    }
    std::mt19937 random(1);
    for (unsigned i = 0; i < test::Rounds(20000); ++i) {
        auto const total = static_cast<std::uint32_t>(random() | 1u);
        auto const to_do = static_cast<std::uint32_t>(random() % total);
        ASSERT_EQ(Progress_line(to_do, total), Plain_progress_line(to_do, total));
    }
}

TEST(Report_progress, More_to_do_than_there_was_wraps_around) {
    EXPECT_EQ(Progress_line(5, 4), " 5 of 4 nodes to do (107374182375.00% done)\n");
}

TEST(Report_hard_node, Says_how_many_were_skipped_in_a_row) {
    Text text;
    Report_hard_node(17, 3, 40, text);
    EXPECT_EQ(text.View(), " Exceeded allowed time at node no.17,\n"
                           " skipping, 3 out of 40 skipped in a row, (7.50%)\n");
}

TEST(Report_all_rem_nodes_to_hard, Underline_is_43_wider_than_the_word) {
    Text text;
    Report_all_rem_nodes_to_hard("cliques", text);
    EXPECT_EQ(text.View(), std::string(50, '_') +
                               "\n The extraction of cliques has been found too slow \n"
                               " at all of the remaining nodes.\n");
}

TEST(Report_clique_search_end, Underline_counts_the_digits) {
    Text text;
    Report_clique_search_end("cliques", 12, text);
    EXPECT_EQ(text.View(), std::string(29, '_') + "\n Altogether 12 cliques found.\n");
    for (auto const& [count, digits] : {std::pair<std::uint32_t, std::size_t>{0, 1},
                                        {9, 1},
                                        {10, 2},
                                        {999, 3},
                                        {1000, 4},
                                        {4294967295, 10}}) {
        text.Clear();
        Report_clique_search_end("k-cliques", count, text);
        EXPECT_EQ(text.View(), std::string(digits + 29, '_') + "\n Altogether " +
                                   std::to_string(count) + " k-cliques found.\n");
    }
}

TEST(Report_clique_search_end, Takes_a_line_more) {
    Text text;
    Report_clique_search_end("cliques", 3, " no approximation was needed", text);
    EXPECT_EQ(text.View(), std::string(28, '_') +
                               "\n Altogether 3 cliques found.\n no approximation was needed\n");
}

} // namespace
} // namespace cpm::Clique_find_report_sub_routines
