// SPDX-License-Identifier: MIT
#include "Plexor_io/Find_coms.h"

#include "Plexor_io/Console_progress.h"
#include "support/Captured_console.h"
#include "support/Graph_makers.h"
#include "support/Temp_dir.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>

namespace cpm::test {
namespace {

using File_names = std::set<std::string>;

// Nodes 1 to n, named after themselves, and cliques of which the first are exact.
struct One_run {
    Temp_dir dir;
    Result_place place{dir.Path() + "/out"};
    Captured_console console;
    Run_files files{place, "", " from net\n", console};
    Console_progress progress{console};
    Run_settings settings;
    Found_cliques found;
    Index_links links;
    Names_map names;
    std::optional<Name_labels> labels;
    std::uint32_t largest = 0;

    One_run(Links const& all_links, Set_list const& cliques, std::size_t n_exact) {
        found.cliques = cliques;
        found.n_exact = n_exact;
        for (auto const& [a, b] : all_links) {
            links.pairs.push_back({a, b});
        }
        names.Add("");
        for (Node node = 1; node <= Last_node(links); ++node) {
            names.Add("n" + std::to_string(node));
        }
        labels.emplace(names);
        for (std::size_t c = 0; c < cliques.size(); ++c) {
            largest = std::max(largest, static_cast<std::uint32_t>(cliques[c].size()));
        }
    }
    Coms_input Input() { return {found, links, *labels, Last_node(links), largest, settings}; }
    void Find(std::uint32_t k) { Coms_finder(Input(), files, progress).Find_coms(k); }
    File_names Files(std::uint32_t k) const {
        File_names names_of_k;
        for (auto const& entry : std::filesystem::directory_iterator(Path(k))) {
            names_of_k.insert(entry.path().filename().string());
        }
        return names_of_k;
    }
    // The lines of a file that are not comments or empty.
    std::string Lines(std::uint32_t k, std::string const& file) const {
        std::istringstream text(Read_file(Path(k) + "/" + file));
        std::string lines;
        for (std::string line; std::getline(text, line);) {
            lines += line.empty() || line[0] == '#' ? "" : line + "\n";
        }
        return lines;
    }

private:
    std::string Path(std::uint32_t k) const { return dir.Path() + "/out/k=" + std::to_string(k); }
};

Links const two_triangles{{1, 2}, {1, 3}, {2, 3}, {3, 4}, {3, 5}, {4, 5}};
Set_list const their_cliques{{1, 2, 3}, {3, 4, 5}};

std::string Report(std::uint32_t k, std::uint32_t kmax) {
    Text text;
    Coms_report_sub::Report_com_export(k, kmax, text);
    return std::string(text.View());
}

TEST(Report_com_export, Tells_how_much_of_the_way_down_to_3_is_done) {
    EXPECT_EQ(Report(5, 5),
              std::string(49, '_') + "\n Extracting communities at k=5 (completed 16.67%)\n");
    EXPECT_EQ(Report(3, 5),
              std::string(49, '_') + "\n Extracting communities at k=3 (completed 83.33%)\n");
    EXPECT_EQ(Report(3, 3),
              std::string(49, '_') + "\n Extracting communities at k=3 (completed 50.00%)\n");
}

TEST(Report_com_export, The_line_above_grows_with_the_digits_of_k) {
    EXPECT_EQ(Report(12, 12),
              std::string(50, '_') + "\n Extracting communities at k=12 (completed 5.00%)\n");
    EXPECT_EQ(Report(100, 102),
              std::string(51, '_') + "\n Extracting communities at k=100 (completed 2.50%)\n");
}

// 100 * (4294967295 + 0.5) / 2 and so on: the differences are unsigned.
TEST(Report_com_export, A_k_above_the_largest_clique_is_far_beyond_done) {
    EXPECT_EQ(Report(5, 4), std::string(49, '_') +
                                "\n Extracting communities at k=5 (completed 214748364775.00%)\n");
    EXPECT_EQ(Report(3, 0),
              std::string(49, '_') + "\n Extracting communities at k=3 (completed 100.00%)\n")
        << "4294967293.5 of 4294967294";
}

TEST(Num_width, Counts_the_digits) {
    EXPECT_EQ(Coms_report_sub::Num_width(0), 1U);
    EXPECT_EQ(Coms_report_sub::Num_width(9), 1U);
    EXPECT_EQ(Coms_report_sub::Num_width(10), 2U);
    EXPECT_EQ(Coms_report_sub::Num_width(99), 2U);
    EXPECT_EQ(Coms_report_sub::Num_width(100), 3U);
    EXPECT_EQ(Coms_report_sub::Num_width(999999999), 9U);
    EXPECT_EQ(Coms_report_sub::Num_width(1000000000), 10U);
    EXPECT_EQ(Coms_report_sub::Num_width(4294967295U), 10U);
}

TEST(Find_coms, Writes_the_files_of_exact_communities) {
    One_run run(two_triangles, their_cliques, 2);
    run.Find(3);
    EXPECT_EQ(run.Files(3),
              (File_names{"communities", "communities_cliques", "communities_links",
                          "graph_of_communities", "membership_distribution", "size_distribution",
                          "overlap_distribution", "degree_distribution"}));
    EXPECT_EQ(run.Lines(3, "communities"), "0: n1 n2 n3 \n1: n3 n4 n5 \n");
    EXPECT_EQ(run.Lines(3, "graph_of_communities"), "0 1 1\n");
    EXPECT_EQ(run.Lines(3, "size_distribution"), "3 2\n");
    EXPECT_EQ(run.console.Output(), std::string(49, '_') +
                                        "\n Extracting communities at k=3 (completed 50.00%)\n"
                                        " done.\n"
                                        " Writing commmunities to disk...\n"
                                        " done.\n"
                                        " Calculating statistics...\n"
                                        " done.\n");
}

TEST(Find_coms, Files_of_a_directed_run_say_so) {
    One_run run(two_triangles, their_cliques, 2);
    run.settings.directed = true;
    run.settings.com_flag = "directed";
    run.Find(3);
    EXPECT_EQ(run.Files(3),
              (File_names{"directed_communities", "directed_communities_cliques",
                          "directed_communities_links", "graph_of_directed_communities",
                          "directed_membership_distribution", "directed_size_distribution",
                          "directed_overlap_distribution", "directed_degree_distribution"}));
}

TEST(Find_coms, With_approximated_communities_there_are_three_sets_of_statistics) {
    One_run run(two_triangles, their_cliques, 1);
    run.Find(3);
    File_names expected{"communities", "communities_cliques", "communities_links",
                        "graph_of_communities"};
    for (std::string const distribution : {"membership", "size", "overlap", "degree"}) {
        for (std::string const part : {"_merged", "_exact", "_appr"}) {
            expected.insert(distribution + "_distribution" + part);
        }
    }
    EXPECT_EQ(run.Files(3), expected);
    EXPECT_EQ(run.Lines(3, "communities"), "0: n1 n2 n3 \n-1: n3 n4 n5 \n");
    EXPECT_EQ(run.Lines(3, "size_distribution_merged"), "3 2\n");
    EXPECT_EQ(run.Lines(3, "size_distribution_exact"), "3 1\n");
    EXPECT_EQ(run.Lines(3, "size_distribution_appr"), "3 1\n");
    EXPECT_EQ(run.Lines(3, "membership_distribution_merged"), "0 0\n1 4\n2 1\n");
    EXPECT_EQ(run.Lines(3, "membership_distribution_exact"), "0 2\n1 3\n");
}

TEST(Find_coms, An_intensity_run_writes_k_cliques_and_neither_cliques_nor_parts) {
    // Even of cliques that are not exact all communities are.
    One_run run(two_triangles, their_cliques, 1);
    run.settings.intensity = true;
    run.settings.intensity_threshold = 1.5;
    run.settings.weighted = true;
    run.settings.com_flag = "intensity";
    run.links.weights.Resize(run.links.size(), 2);
    run.links.weights[0] = 0.5; // 1-2
    run.Find(3);
    EXPECT_EQ(run.Files(3),
              (File_names{"k-cliques", "intensity_communities", "intensity_communities_links",
                          "graph_of_intensity_communities", "intensity_membership_distribution",
                          "intensity_size_distribution", "intensity_overlap_distribution",
                          "intensity_degree_distribution"}));
    EXPECT_EQ(run.Lines(3, "intensity_communities"), "0: n3 n4 n5 \n");
    std::string const text = run.console.Output();
    EXPECT_EQ(text.find("Extracting communities at k="), std::string::npos);
    EXPECT_NE(text.find("\n__________________________\n Writing k-clques to disk.\n"),
              std::string::npos);
    EXPECT_TRUE(text.ends_with(" Writing commmunities to disk...\n"
                               " done.\n"
                               " Calculating statistics...\n"
                               " done.\n"));
}

TEST(Find_coms, Without_a_clique_of_k_nodes_all_files_are_written) {
    One_run run(two_triangles, their_cliques, 1); // approximated cliques, but no communities
    run.Find(4);
    EXPECT_EQ(run.Files(4),
              (File_names{"communities", "communities_cliques", "communities_links",
                          "graph_of_communities", "membership_distribution", "size_distribution",
                          "overlap_distribution", "degree_distribution"}));
    EXPECT_EQ(run.Lines(4, "communities"), "");
    EXPECT_EQ(run.Lines(4, "membership_distribution"), "0 5\n");
    EXPECT_NE(run.console.Output().find("k=4 (completed 429496729550.00%)\n"), std::string::npos);
}

TEST(Find_coms, One_k_after_the_other_gives_what_each_gives_alone) {
    Random_numbers random(127);
    Links const links = Random_teams(20, 9, 8, random);
    Set_list cliques;
    for (auto const& [a, b] : links) { // triangles and larger sets; any list of sets will do
        std::vector<Node> clique{a, b};
        for (Node node = b + 1; node <= 20; ++node) {
            if (std::ranges::all_of(clique, [&](Node m) { return links.count({m, node}) > 0; })) {
                clique.push_back(node);
            }
        }
        if (clique.size() > 2) {
            cliques.Add(clique);
        }
    }
    ASSERT_GT(cliques.size(), 10U);
    std::size_t const n_exact = cliques.size() - 3;
    One_run together(links, cliques, n_exact);
    together.found.nested = true;
    ASSERT_GT(together.largest, 4U);
    Coms_finder finder(together.Input(), together.files, together.progress);
    for (std::uint32_t k = together.largest; k > 2; --k) {
        finder.Find_coms(k);
    }
    for (std::uint32_t k = together.largest; k > 2; --k) {
        One_run alone(links, cliques, n_exact);
        alone.found.nested = true;
        alone.Find(k);
        ASSERT_EQ(together.Files(k), alone.Files(k)) << k;
        for (std::string const& file : alone.Files(k)) {
            EXPECT_EQ(together.Lines(k, file), alone.Lines(k, file)) << k << ", " << file;
        }
    }
}

// After a merge that dropped a clique the overlaps are those of the list before it.
TEST(Find_coms, Stale_overlaps_are_followed_when_the_merge_dropped_cliques) {
    Links links = Complete(1, 4);
    links.merge(Links{{2, 5}, {3, 5}, {6, 7}, {6, 8}, {7, 8}});
    // {1, 2, 3} went into the approximated clique; the others moved up.
    Set_list const cliques{{2, 3, 5}, {6, 7, 8}, {1, 2, 3, 4}};
    One_run run(links, cliques, 2);
    run.found.before_merge = Set_list{{1, 2, 3}, {2, 3, 5}, {6, 7, 8}};
    run.found.nested = true;
    run.Find(3);
    // The first two rows are those of {1, 2, 3} and {2, 3, 5}, which share two nodes.
    EXPECT_EQ(run.Lines(3, "communities"), "-0: n1 n2 n3 n4 n5 n6 n7 n8 \n");
    EXPECT_EQ(run.Lines(3, "communities_cliques"), "-0: 0 1 -2 \n");
    One_run fitting(links, cliques, 2);
    fitting.Find(3);
    EXPECT_EQ(fitting.Lines(3, "communities"), "0: n6 n7 n8 \n-1: n1 n2 n3 n4 n5 \n");
}

} // namespace
} // namespace cpm::test
