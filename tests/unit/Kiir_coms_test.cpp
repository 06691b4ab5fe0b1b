// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_coms.h"

#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <vector>

namespace cpm {
namespace {

std::string const about = " from net.txt\n# more\n";

// The network 1-2, 1-3, 2-3, 2-4, 3-4 with names a to d, and what is written about it.
struct Writing {
    Temp_dir dir;
    Captured_console console;
    Names_map names;
    Index_links links;

    Writing() {
        for (char const* const name : {"", "a", "b", "c", "d"}) {
            names.Add(name);
        }
        links.pairs.Append(std::vector<Node_pair>{{1, 2}, {1, 3}, {2, 3}, {2, 4}, {3, 4}});
    }
    std::string Coms(Communities const& coms, std::string const& com_flag = "",
                     std::string const& file = "k=3/communities") {
        std::string const out = Fresh();
        Result_place place(out);
        Run_files files{place, com_flag, about, console};
        Kiir_coms_PX(coms, Name_labels(names), {files, 3});
        return Read_file(out + "/" + file);
    }
    std::string Cliques(Communities const& coms, std::size_t n_exact_cliques,
                        std::string const& com_flag = "",
                        std::string const& file = "k=3/communities_cliques") {
        std::string const out = Fresh();
        Result_place place(out);
        Run_files files{place, com_flag, about, console};
        Kiir_coms_cliques_PX(coms, n_exact_cliques, {files, 3});
        return Read_file(out + "/" + file);
    }
    std::string Links(Communities const& coms, std::string const& com_flag = "",
                      std::string const& file = "k=3/communities_links") {
        std::string const out = Fresh();
        Result_place place(out);
        Edge_numbering const pairs(links, 4, {}, 0);
        Name_labels const labels(names);
        Link_writer lines(pairs, links, labels);
        Run_files files{place, com_flag, about, console};
        Kiir_com_links_PX(coms, lines, {files, 3});
        return Read_file(out + "/" + file);
    }

    /// A path for results that nothing has been written to.
    std::string Fresh() { return dir.Path() + "/" + std::to_string(n_written_++); }

private:
    unsigned n_written_ = 0;
};

class Two_links : public Community_links {
    void Visit(std::size_t community, Node_set nodes, Link_visitor& visitor) const override {
        if (community == 0) {
            visitor.Numbers(std::vector<Link_number>{0});
            visitor.Numbers(std::vector<Link_number>{1, 2});
        } else {
            visitor.All_pairs(nodes);
        }
    }
};

// Two communities, of which `n_exact` are exact. The links of the first one come in two pieces,
// those of the second one are all pairs of its nodes.
Communities Two_communities(std::uint32_t n_exact) {
    Communities coms;
    coms.nodes = Set_list{{1, 2, 3}, {2, 3, 4}};
    coms.cliques = List_of_lists<Clique_number>{{5, 0, 12345}, {1}};
    coms.n_exact = n_exact;
    coms.links = std::make_shared<Two_links>();
    return coms;
}

Communities No_communities() {
    return {};
}

TEST(Kiir_coms_PX, Lists_the_names_of_each_community) {
    Writing writing;
    EXPECT_EQ(writing.Coms(Two_communities(2)),
              "# The communities at k=3\n# from net.txt\n# more\n\n0: a b c \n1: b c d \n");
    EXPECT_EQ(writing.console.Output(), "");
}

TEST(Kiir_coms_PX, Approximate_communities_keep_their_position_after_a_sign) {
    Writing writing;
    EXPECT_EQ(writing.Coms(Two_communities(1)),
              "# The communities at k=3\n# from net.txt\n# more\n"
              "# Negative indices indicate approximate communities.\n\n0: a b c \n-1: b c d \n");
    EXPECT_TRUE(writing.Coms(Two_communities(0)).ends_with("\n\n-0: a b c \n-1: b c d \n"));
}

TEST(Kiir_coms_PX, The_kind_of_run_enters_the_header_and_the_name_of_the_file) {
    Writing writing;
    EXPECT_TRUE(writing.Coms(Two_communities(2), "directed", "k=3/directed_communities")
                    .starts_with("# The directed communities at k=3\n# from"));
    EXPECT_TRUE(writing.Coms(Two_communities(2), "intensity", "k=3/intensity_communities")
                    .starts_with("# The intensity communities at k=3\n# from"));
}

TEST(Kiir_coms_PX, No_communities_leave_the_header) {
    Writing writing;
    EXPECT_EQ(writing.Coms(No_communities()),
              "# The communities at k=3\n# from net.txt\n# more\n\n");
}

TEST(Kiir_coms_cliques_PX, Lists_the_cliques_in_their_order) {
    Writing writing;
    EXPECT_EQ(writing.Cliques(Two_communities(2), 20000),
              "# The contained cliques in the communities at k=3\n# from net.txt\n# more\n\n"
              "0: 5 0 12345 \n1: 1 \n");
}

TEST(Kiir_coms_cliques_PX, Marks_approximate_cliques_in_approximate_communities_only) {
    Writing writing;
    EXPECT_TRUE(writing.Cliques(Two_communities(0), 5).ends_with("\n\n-0: -5 0 -12345 \n-1: 1 \n"));
    EXPECT_TRUE(
        writing.Cliques(Two_communities(0), 0).ends_with("\n\n-0: -5 -0 -12345 \n-1: -1 \n"));
    EXPECT_TRUE(writing.Cliques(Two_communities(1), 0).ends_with("\n\n0: 5 0 12345 \n-1: -1 \n"));
}

TEST(Kiir_coms_cliques_PX, The_kind_of_run_enters_the_header_twice) {
    Writing writing;
    EXPECT_TRUE(
        writing.Cliques(Two_communities(2), 9, "directed", "k=3/directed_communities_cliques")
            .starts_with("# The contained directed cliques in the directed communities at k=3\n"));
}

TEST(Kiir_coms_cliques_PX, No_communities_leave_the_header) {
    Writing writing;
    EXPECT_EQ(writing.Cliques(No_communities(), 0),
              "# The contained cliques in the communities at k=3\n# from net.txt\n# more\n\n");
}

TEST(Kiir_com_links_PX, Lists_the_links_under_the_number) {
    Writing writing;
    EXPECT_EQ(writing.Links(Two_communities(2)),
              "# The links inside the communities at k=3\n# from net.txt\n# more\n\n"
              "0:\na b\na c\nb c\n1:\nb c\nb d\nc d\n");
}

TEST(Kiir_com_links_PX, Approximate_communities_have_a_sign_and_no_line_in_the_header) {
    Writing writing;
    EXPECT_EQ(writing.Links(Two_communities(0)),
              "# The links inside the communities at k=3\n# from net.txt\n# more\n\n"
              "-0:\na b\na c\nb c\n-1:\nb c\nb d\nc d\n");
}

TEST(Kiir_com_links_PX, Directed_links_are_written_as_they_were_read) {
    Writing writing;
    writing.links.pairs.clear();
    writing.links.pairs.Append(std::vector<Node_pair>{{1, 3}, {2, 1}, {3, 2}, {4, 2}, {4, 3}});
    EXPECT_EQ(writing.Links(Two_communities(2), "directed", "k=3/directed_communities_links"),
              "# The links inside the directed communities at k=3\n# from net.txt\n# more\n\n"
              "0:\nb a\na c\nc b\n1:\nc b\nd b\nd c\n");
}

TEST(Kiir_com_links_PX, No_communities_leave_the_header) {
    Writing writing;
    EXPECT_EQ(writing.Links(No_communities()),
              "# The links inside the communities at k=3\n# from net.txt\n# more\n\n");
}

TEST(Kiir_coms, Files_that_cannot_be_opened_are_told) {
    Writing writing;
    Result_place place(writing.dir.Path());
    std::string expected;
    for (char const* const name : {"communities", "communities_cliques", "communities_links"}) {
        std::filesystem::create_directories(writing.dir.Path() + "/k=3/" + name);
        expected += " WARNING: could not write '" + writing.dir.Path() + "/k=3/" + name + "'.\n";
    }
    Communities const coms = Two_communities(2);
    Edge_numbering const pairs(writing.links, 4, {}, 0);
    Name_labels const labels(writing.names);
    Link_writer lines(pairs, writing.links, labels);
    Run_files files{place, "", about, writing.console};
    Kiir_coms_PX(coms, labels, {files, 3});
    Kiir_coms_cliques_PX(coms, 9, {files, 3});
    Kiir_com_links_PX(coms, lines, {files, 3});
    EXPECT_EQ(writing.console.Output(), expected);
}

} // namespace
} // namespace cpm
