// SPDX-License-Identifier: MIT
#include "Plexor_io/Header_text.h"

#include "support/Captured_console.h"
#include "support/Errors.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <string>

namespace cpm {
namespace {

namespace fs = std::filesystem;

struct Header_text_beginning : testing::Test {
    Temp_dir here;
    std::string From() const { return " from " + here.Path() + "/net.txt\n"; }
    static std::string Generated(std::string const& input_file, Weight_interval const& weights) {
        std::string text = "what was there before";
        Generate_alap_szoveg(text, input_file, weights);
        return text;
    }
};

TEST_F(Header_text_beginning, No_thresholds) {
    EXPECT_EQ(Generated("net.txt", {}), From() + "# at no lower link weight threshold,\n"
                                                 "# and at no upper link weight threshold.\n");
}

TEST_F(Header_text_beginning, Lower_threshold_with_six_decimals) {
    EXPECT_EQ(Generated("net.txt", {.lower_set = true, .lower = 0.15}),
              From() + "# at a lower link weight threshold of 0.150000,\n"
                       "# and at no upper link weight threshold.\n");
}

TEST_F(Header_text_beginning, The_lower_threshold_stands_in_for_the_upper) {
    EXPECT_EQ(Generated("net.txt", {true, 0.2, true, 0.9}),
              From() + "# at a lower link weight threshold of 0.200000,\n"
                       "# and at an upper link weight threshold of 0.200000.\n");
}

TEST_F(Header_text_beginning, An_upper_threshold_alone_is_shown_as_0) {
    EXPECT_EQ(Generated("net.txt", {.upper_set = true, .upper = 0.9}),
              From() + "# at no lower link weight threshold,\n"
                       "# and at an upper link weight threshold of 0.000000.\n");
}

TEST_F(Header_text_beginning, The_path_of_the_input_file_is_absolute) {
    EXPECT_EQ(Generated("sub/../net.txt", {}), Generated("net.txt", {}));
    EXPECT_EQ(Generated("/data/./net.txt", {}), " from /data/net.txt\n"
                                                "# at no lower link weight threshold,\n"
                                                "# and at no upper link weight threshold.\n");
}

std::string Extended(Run_settings const& settings) {
    std::string text = "before\n";
    Extend_alap_szoveg(text, settings);
    return text;
}

TEST(Header_text_end, Undirected_without_a_limit) {
    EXPECT_EQ(Extended({}), "before\n"
                            "# Links were treated as undirected.\n"
                            "# No time limit was set for the clique search.\n");
}

TEST(Header_text_end, Directed) {
    Run_settings settings;
    settings.directed = true;
    EXPECT_EQ(Extended(settings), "before\n"
                                  "# Links were treated as directed.\n"
                                  "# No time limit was set for the clique search.\n");
}

TEST(Header_text_end, Intensity) {
    Run_settings settings;
    settings.intensity = true;
    settings.intensity_threshold = 0.3;
    EXPECT_EQ(Extended(settings), "before\n"
                                  "# A lower link weight intensity threshold of 0.300000 was set.\n"
                                  "# Links were treated as undirected.\n"
                                  "# No time limit was set for the clique search.\n");
}

TEST(Header_text_end, Time_limit_with_six_decimals) {
    Run_settings settings;
    settings.time_limit_set = true;
    settings.time_limit = 10;
    EXPECT_EQ(Extended(settings),
              "before\n"
              "# Links were treated as undirected.\n"
              "# The maximal allowed time per node during clique search was 10.000000 secs.\n");
}

TEST(Header_text_end, A_single_k) {
    Run_settings settings;
    settings.k_given = true;
    settings.k = 4294967295U;
    EXPECT_EQ(Extended(settings), "before\n"
                                  "# Links were treated as undirected.\n"
                                  "# No time limit was set for the clique search.\n"
                                  "# The communities were extracted solely at k=4294967295.\n");
}

struct Params_file : testing::Test {
    Temp_dir here;
    Captured_console console;
};

TEST_F(Params_file, Holds_the_header_text_and_nothing_else) {
    Result_place place("a/out");
    Run_files files{place, "", " from here\n# more\n", console};
    Kiir_params(files);
    EXPECT_EQ(Read_file("a/out/input_params.txt"),
              "# Plexor was run on links taken from here\n# more\n");
    EXPECT_EQ(console.Output(), "");
}

TEST_F(Params_file, Describes_a_run_in_whole_lines) {
    std::string text;
    Generate_alap_szoveg(text, "net.txt", {.lower_set = true, .lower = 0.5});
    Run_settings settings;
    settings.k_given = true;
    settings.k = 4;
    Extend_alap_szoveg(text, settings);
    Result_place place("out");
    Run_files files{place, "", text, console};
    Kiir_params(files);
    EXPECT_EQ(Read_file("out/input_params.txt"),
              "# Plexor was run on links taken from " + here.Path() +
                  "/net.txt\n"
                  "# at a lower link weight threshold of 0.500000,\n"
                  "# and at no upper link weight threshold.\n"
                  "# Links were treated as undirected.\n"
                  "# No time limit was set for the clique search.\n"
                  "# The communities were extracted solely at k=4.\n");
}

TEST_F(Params_file, Does_not_replace_an_older_one) {
    Result_place place("out");
    Run_files first{place, "", " of the first\n", console};
    Kiir_params(first);
    Run_files second{place, "", " of the second\n", console};
    Kiir_params(second);
    EXPECT_TRUE(first.not_written.empty());
    EXPECT_EQ(second.not_written, std::vector<std::string>{"out/input_params.txt"});
    EXPECT_EQ(Read_file("out/input_params.txt"), "# Plexor was run on links taken of the first\n");
    EXPECT_EQ(console.Output(), " WARNING: could not write 'out/input_params.txt'.\n");
}

TEST_F(Params_file, A_file_in_place_of_the_directory_is_moved_aside) {
    Write_file("out", "x");
    Result_place place("out");
    Run_files files{place, "", "\n", console};
    Kiir_params(files);
    EXPECT_EQ(Read_file("out/input_params.txt"), "# Plexor was run on links taken\n");
    EXPECT_EQ(Read_file("out1"), "x");
}

TEST_F(Params_file, A_directory_that_cannot_be_made_is_an_error) {
    Write_file("file", "x");
    Result_place place("file/out");
    Run_files files{place, "", "\n", console};
    EXPECT_THROW(Kiir_params(files), Xerror_msg);
}

} // namespace
} // namespace cpm
