// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_com_graph.h"

#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

std::string const about = " from net.txt\n# more\n";

struct Writing {
    Temp_dir dir;
    Captured_console console;

    std::string Graph(Set_list const& communities, std::uint32_t n_exact,
                      std::string const& com_flag = "",
                      std::string const& file = "k=4/graph_of_communities") {
        Communities coms;
        coms.nodes = communities;
        coms.n_exact = n_exact;
        Community_graph graph;
        Prepare_community_graph(coms, graph);
        std::string const out = Fresh();
        Result_place place(out);
        Run_files files{place, com_flag, about, console};
        Kiir_com_graph_PX(graph, n_exact, {files, 4});
        return Read_file(out + "/" + file);
    }

    /// A path for results that nothing has been written to.
    std::string Fresh() { return dir.Path() + "/" + std::to_string(n_written_++); }

private:
    unsigned n_written_ = 0;
};

TEST(Kiir_com_graph_PX, Lists_pairs_that_share_nodes_ascending) {
    Writing writing;
    EXPECT_EQ(writing.Graph({{1, 2, 3, 4}, {5, 6, 7, 8}, {3, 4, 8, 9}, {2, 3, 4, 5}}, 4),
              "# The graph of at k=4\n# from net.txt\n# more\n\n"
              "0 2 2\n0 3 3\n1 2 1\n1 3 1\n2 3 2\n");
    EXPECT_EQ(writing.console.Output(), "");
}

TEST(Kiir_com_graph_PX, Only_the_approximate_side_of_a_pair_has_a_sign) {
    Writing writing;
    EXPECT_TRUE(
        writing.Graph({{1, 2}, {2, 3}, {1, 3}}, 1).ends_with("\n\n0 -1 1\n0 -2 1\n-1 -2 1\n"));
    EXPECT_TRUE(writing.Graph({{1, 2}, {2, 3}}, 0).ends_with("\n\n-0 -1 1\n"));
}

TEST(Kiir_com_graph_PX, The_kind_of_run_enters_the_header_and_the_name_of_the_file) {
    Writing writing;
    EXPECT_EQ(writing.Graph({{1, 2}, {2, 3}}, 2, "directed", "k=4/graph_of_directed_communities"),
              "# The graph of directed at k=4\n# from net.txt\n# more\n\n0 1 1\n");
}

TEST(Kiir_com_graph_PX, Without_overlaps_there_is_only_the_header) {
    Writing writing;
    EXPECT_EQ(writing.Graph({{1, 2}, {3, 4}}, 2),
              "# The graph of at k=4\n# from net.txt\n# more\n\n");
    EXPECT_EQ(writing.Graph({}, 0), "# The graph of at k=4\n# from net.txt\n# more\n\n");
}

TEST(Kiir_com_graph_PX, Large_numbers_are_whole) {
    Set_list communities;
    for (Node node = 1; node <= 12000; ++node) {
        communities.Append(node);
        communities.Close_list();
    }
    communities.Add(std::vector<Node>{11500});
    Writing writing;
    EXPECT_TRUE(writing.Graph(communities, 12000).ends_with("\n\n11499 -12000 1\n"));
}

} // namespace
} // namespace cpm
