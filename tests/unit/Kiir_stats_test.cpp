// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_stats.h"

#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

std::string const about = " from net.txt\n# more\n";

Community_distributions Some_distributions() {
    Community_distributions distributions;
    distributions.membership = {{0, 5}, {1, 7}};
    distributions.size = {{3, 2}};
    distributions.overlap = {{1, 1}};
    distributions.degree = {{1, 2}, {12, 5000000000}};
    return distributions;
}

TEST(Kiir_stats_PX, Writes_four_files) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", about, console};
    Kiir_stats_PX(Some_distributions(), "", {files, 3});
    std::string const k_dir = dir.Path() + "/k=3/";
    EXPECT_EQ(Read_file(k_dir + "membership_distribution"),
              "# The node membership distr. in the  communities at k=3\n# from net.txt\n# more\n\n"
              "0 5\n1 7\n\n");
    EXPECT_EQ(Read_file(k_dir + "size_distribution"),
              "# The size distr. of the  communities at k=3\n# from net.txt\n# more\n\n3 2\n\n");
    EXPECT_EQ(Read_file(k_dir + "overlap_distribution"),
              "# The overlap size distr. of the  communities at k=3\n# from net.txt\n# more\n\n"
              "1 1\n\n");
    EXPECT_EQ(Read_file(k_dir + "degree_distribution"),
              "# The com. degree distr. of the  communities at k=3\n# from net.txt\n# more\n\n"
              "1 2\n12 5000000000\n\n");
    EXPECT_EQ(console.Output(), "");
}

TEST(Kiir_stats_PX, The_suffix_ends_the_name_and_enters_the_header) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", about, console};
    Kiir_stats_PX(Some_distributions(), "_exact", {files, 3});
    EXPECT_EQ(Read_file(dir.Path() + "/k=3/size_distribution_exact"),
              "# The size distr. of the _exact communities at k=3\n# from net.txt\n# more\n\n"
              "3 2\n\n");
}

TEST(Kiir_stats_PX, The_kind_of_run_begins_the_name_and_enters_the_header) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "directed", about, console};
    Kiir_stats_PX(Some_distributions(), "_appr", {files, 3});
    EXPECT_EQ(Read_file(dir.Path() + "/k=3/directed_size_distribution_appr"),
              "# The size distr. of the _apprdirected  communities at k=3\n# from net.txt\n"
              "# more\n\n3 2\n\n");
}

TEST(Kiir_stats_PX, Only_the_bare_suffix_appr_is_given_a_full_stop) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", about, console};
    Kiir_stats_PX(Some_distributions(), "appr", {files, 3});
    EXPECT_TRUE(Read_file(dir.Path() + "/k=3/overlap_distributionappr")
                    .starts_with("# The overlap size distr. of the appr. communities at k=3\n"));
}

TEST(Kiir_PX_dist, An_empty_distribution_is_the_header_and_two_empty_lines) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", about, console};
    Kiir_PX_dist(place.Prepare().File("dist"), {}, "# header\n", files);
    EXPECT_EQ(Read_file(dir.Path() + "/dist"), "# header\n\n\n");
}

TEST(Kiir_PX_dist, A_file_that_cannot_be_opened_is_told) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    Run_files files{place, "", about, console};
    Prepared_dir const k_dir = place.Prepare(3);
    std::filesystem::create_directory(dir.Path() + "/k=3/dist");
    Kiir_PX_dist(k_dir.File("dist"), {}, "# header\n", files);
    EXPECT_EQ(files.not_written, std::vector<std::string>{dir.Path() + "/k=3/dist"});
    EXPECT_EQ(console.Output(), " WARNING: could not write '" + dir.Path() + "/k=3/dist'.\n");
}

} // namespace
} // namespace cpm
