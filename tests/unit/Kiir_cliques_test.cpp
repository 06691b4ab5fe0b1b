// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_cliques.h"

#include "Plexor_io/Header_text.h"
#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <vector>

namespace cpm {
namespace {

std::string const about = " from net.txt\n# more\n";

Names_map Five_names() {
    Names_map names;
    for (char const* const name : {"", "a", "b", "c", "d", "a name of seventeen"}) {
        names.Add(name);
    }
    return names;
}

struct Writing {
    Temp_dir dir;
    Result_place place{dir.Path()};
    Captured_console console;
    Names_map names = Five_names();
    Name_labels labels{names};

    Run_files Files() { return {place, "", about, console}; }
    std::string Cliques(Set_list const& cliques, std::size_t n_exact, std::string const& com_flag,
                        std::string const& file = "cliques") {
        Run_files files{place, com_flag, about, console};
        Kiir_cliques_PX(cliques, n_exact, labels, files);
        return Read_file(dir.Path() + "/" + file);
    }
};

TEST(Kiir_cliques_PX, Every_name_is_followed_by_a_blank) {
    Writing writing;
    EXPECT_EQ(writing.Cliques({{1, 2, 3}, {3, 4, 5}}, 2, ""),
              "# The cliques from net.txt\n# more\n\n0: a b c \n1: c d a name of seventeen \n");
    EXPECT_EQ(writing.console.Output(), "");
}

TEST(Kiir_cliques_PX, Approximate_cliques_keep_their_position_after_a_sign) {
    Writing writing;
    EXPECT_EQ(writing.Cliques({{1, 2, 3}, {2, 3}, {4}}, 1, ""),
              "# The cliques from net.txt\n# more\n"
              "# Negative indices indicate approximate cliques.\n\n0: a b c \n-1: b c \n-2: d \n");
}

TEST(Kiir_cliques_PX, The_first_approximate_clique_may_be_number_0) {
    Writing writing;
    EXPECT_TRUE(writing.Cliques({{1, 2, 3}}, 0, "").ends_with("cliques.\n\n-0: a b c \n"));
}

TEST(Kiir_cliques_PX, No_cliques_leave_the_header) {
    Writing writing;
    EXPECT_EQ(writing.Cliques({}, 0, ""), "# The cliques from net.txt\n# more\n\n");
}

TEST(Kiir_cliques_PX, Directed_runs_have_a_file_of_their_own) {
    Writing writing;
    EXPECT_EQ(writing.Cliques({{1, 2}}, 1, "directed", "directed_cliques"),
              "# The directed cliques from net.txt\n# more\n\n0: a b \n");
}

TEST(Kiir_cliques_PX, Intensity_runs_do_not_show_in_the_clique_file) {
    Writing writing;
    EXPECT_EQ(writing.Cliques({{1, 2}}, 1, "intensity"),
              "# The cliques from net.txt\n# more\n\n0: a b \n");
}

TEST(Kiir_cliques_PX, A_second_time_replaces_the_file) {
    Writing writing;
    std::string const once = writing.Cliques({{1, 2}}, 1, "");
    writing.Cliques({{1, 2}, {3, 4}, {1, 4}}, 3, "");
    EXPECT_EQ(writing.Cliques({{1, 2}}, 1, ""), once);
}

TEST(Kiir_cliques_PX, A_file_that_cannot_be_opened_is_told) {
    Writing writing;
    Run_files files = writing.Files();
    Kiir_params(files);
    std::filesystem::create_directory(writing.dir.Path() + "/cliques");
    Kiir_cliques_PX({{1, 2}}, 1, writing.labels, files);
    EXPECT_EQ(writing.console.Output(),
              " WARNING: could not write '" + writing.dir.Path() + "/cliques'.\n");
}

TEST(Kiir_k_cliques_PX, Are_numbered_in_their_order) {
    Writing writing;
    K_clique_list k_cliques(3);
    k_cliques.Add(std::vector<Node>{1, 2, 3});
    k_cliques.Add(std::vector<Node>{2, 3, 5});
    k_cliques.Finish();
    Run_files files = writing.Files();
    Kiir_k_cliques_PX(k_cliques, writing.labels, {files, 3});
    EXPECT_EQ(Read_file(writing.dir.Path() + "/k=3/k-cliques"),
              "# The k-cliques at k=3 from net.txt\n# more\n\n"
              "0: a b c \n1: b c a name of seventeen \n");
}

TEST(Kiir_k_cliques_PX, No_k_cliques_leave_the_header) {
    Writing writing;
    Run_files files = writing.Files();
    Kiir_k_cliques_PX(K_clique_list(1), writing.labels, {files, 1});
    EXPECT_EQ(Read_file(writing.dir.Path() + "/k=1/k-cliques"),
              "# The k-cliques at k=1 from net.txt\n# more\n\n");
}

} // namespace
} // namespace cpm
