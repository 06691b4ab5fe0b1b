// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_graph.h"

#include "Plexor_io/Header_text.h"
#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <vector>

namespace cpm {
namespace {

Link_map Links(std::vector<std::string> const& names, std::vector<Node_pair> const& links,
               std::vector<double> const& weights) {
    Link_map map;
    for (std::string const& name : names) {
        map.names.Add(name);
    }
    map.links.Append(links);
    map.weights.Append(weights);
    return map;
}

TEST(Kiir_graph, Undirected_runs_list_a_link_and_its_reverse) {
    Temp_dir const dir;
    Result_place place(dir.Path() + "/out");
    Captured_console console;
    Run_files files{place, "", " from net.txt\n", console};
    Kiir_graph(Links({"a", "b"}, {{0, 1}, {1, 0}}, {1, 2}), false, true, files);
    EXPECT_EQ(Read_file(dir.Path() + "/out/graph"),
              "# The links from net.txt\n# (mutual links and self-links were removed)\n\n"
              "a b 1\nb a 2\n");
    EXPECT_EQ(console.Output(), "");
}

TEST(Kiir_graph, Directed_runs_have_a_file_of_their_own) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "directed", " from net.txt\n# more\n", console};
    Kiir_graph(Links({"a", "b"}, {{0, 1}, {1, 0}}, {1, 2}), true, true, files);
    EXPECT_EQ(Read_file(dir.Path() + "/directed_graph"),
              "# The links from net.txt\n# more\n# (self-links were removed)\n\na b 1\nb a 2\n");
}

TEST(Kiir_graph, Links_without_weights_are_two_names) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", " from x\n", console};
    Kiir_graph(Links({"a", "bb", "c"}, {{0, 1}, {1, 2}}, {}), false, false, files);
    EXPECT_TRUE(Read_file(dir.Path() + "/graph").ends_with(")\n\na bb\nbb c\n"));
}

TEST(Kiir_graph, Weights_have_six_significant_digits) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", " from x\n", console};
    Kiir_graph(Links({"a", "b"}, {{0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}},
                     {0.1 + 0.2, 1234567, 100000, -0.5, 1e-5, 12.3456789}),
               false, true, files);
    EXPECT_TRUE(Read_file(dir.Path() + "/graph")
                    .ends_with("\na b 0.3\na b 1.23457e+06\na b 100000\na b -0.5\na b 1e-05\n"
                               "a b 12.3457\n"));
}

TEST(Kiir_graph, No_links_leave_the_header) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", " from x\n", console};
    Kiir_graph(Link_map(), false, false, files);
    EXPECT_EQ(Read_file(dir.Path() + "/graph"),
              "# The links from x\n# (mutual links and self-links were removed)\n\n");
}

TEST(Kiir_graph, A_file_that_cannot_be_opened_is_told) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", " from x\n", console};
    Kiir_params(files);
    std::filesystem::create_directory(dir.Path() + "/graph");
    Kiir_graph(Link_map(), false, false, files);
    EXPECT_EQ(console.Output(), " WARNING: could not write '" + dir.Path() + "/graph'.\n");
}

} // namespace
} // namespace cpm
