// SPDX-License-Identifier: MIT
#include "Plexor_io/Out_dir.h"

#include "Plexor_io/Direktoriz.h"
#include "support/Errors.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace cpm {
namespace {

namespace fs = std::filesystem;

constexpr Weight_interval no_thresholds{};

Weight_interval Lower(double lower) {
    return {.lower_set = true, .lower = lower};
}

Weight_interval Upper(double upper) {
    return {.upper_set = true, .upper = upper};
}

Run_settings Intensity(double threshold) {
    Run_settings settings;
    settings.intensity = true;
    settings.intensity_threshold = threshold;
    return settings;
}

TEST(Name_of_output_dir, Is_the_input_file_with_files) {
    EXPECT_EQ(Output_dir_name("net.txt", no_thresholds, 6, std::nullopt, {}), "net.txt_files");
}

TEST(Name_of_output_dir, Keeps_the_directory_of_the_input_file) {
    EXPECT_EQ(Output_dir_name("../a b/./net.txt", no_thresholds, 6, std::nullopt, {}),
              "../a b/./net.txt_files");
}

TEST(Name_of_output_dir, Lower_threshold) {
    EXPECT_EQ(Output_dir_name("net.txt", Lower(0.15), 6, std::nullopt, {}),
              "net.txt_files_0.150000_w");
    EXPECT_EQ(Output_dir_name("net.txt", Lower(0.15), 3, std::nullopt, {}),
              "net.txt_files_0.150_w");
}

TEST(Name_of_output_dir, Upper_threshold) {
    EXPECT_EQ(Output_dir_name("net.txt", Upper(1.35), 3, std::nullopt, {}),
              "net.txt_files_w_1.350");
}

TEST(Name_of_output_dir, Both_thresholds) {
    EXPECT_EQ(Output_dir_name("net.txt", {true, 0.5, true, 2}, 1, std::nullopt, {}),
              "net.txt_files_0.5_w_2.0");
}

TEST(Name_of_output_dir, No_digits_give_no_decimal_point) {
    EXPECT_EQ(Output_dir_name("net.txt", Lower(0.15), 0, std::nullopt, {}), "net.txt_files_0_w");
}

TEST(Name_of_output_dir, Directed) {
    Run_settings directed;
    directed.directed = true;
    EXPECT_EQ(Output_dir_name("net.txt", no_thresholds, 6, std::nullopt, directed),
              "net.txt_files-d");
    EXPECT_EQ(Output_dir_name("net.txt", Lower(0.5), 1, std::nullopt, directed),
              "net.txt_files_0.5_w-d");
}

TEST(Name_of_output_dir, Intensity_threshold) {
    EXPECT_EQ(Output_dir_name("net.txt", no_thresholds, 2, std::nullopt, Intensity(0.3)),
              "net.txt_files-w-th0.30");
}

TEST(Name_of_output_dir, A_given_name_replaces_all_but_the_intensity_threshold) {
    Run_settings directed;
    directed.directed = true;
    EXPECT_EQ(Output_dir_name("net.txt", Lower(0.15), 6, "out", directed), "out");
    EXPECT_EQ(Output_dir_name("net.txt", Lower(0.15), 2, "out", Intensity(0.3)), "out-w-th0.30");
}

TEST(Community_flag, Tells_the_kind_of_search) {
    std::string flag = "before";
    Generate_com_flag(flag, false, false);
    EXPECT_EQ(flag, "");
    Generate_com_flag(flag, true, false);
    EXPECT_EQ(flag, "directed");
    Generate_com_flag(flag, false, true);
    EXPECT_EQ(flag, "intensity");
}

TEST(Community_flag, Intensity_wins) {
    std::string flag;
    Generate_com_flag(flag, true, true);
    EXPECT_EQ(flag, "intensity");
}

struct Checking_the_output_dir : testing::Test {
    Temp_dir here;
};

TEST_F(Checking_the_output_dir, A_missing_one_is_accepted) {
    EXPECT_NO_THROW(Check_out_dir("out"));
    EXPECT_FALSE(fs::exists("out"));
}

TEST_F(Checking_the_output_dir, An_empty_one_is_accepted) {
    fs::create_directory("out");
    EXPECT_NO_THROW(Check_out_dir("out"));
}

TEST_F(Checking_the_output_dir, A_file_is_accepted) {
    Write_file("out", "x");
    EXPECT_NO_THROW(Check_out_dir("out"));
    EXPECT_EQ(Read_file("out"), "x");
}

TEST_F(Checking_the_output_dir, One_that_holds_a_file_is_refused) {
    fs::create_directory("out");
    Write_file("out/.hidden", "");
    bool known_empty = false;
    std::string message;
    ASSERT_TRUE(Is_there_such_dir("out", known_empty, message));
    if (known_empty) {
        GTEST_SKIP() << "on this file system a directory of one entry has the size of an empty one";
    }
    try {
        Check_out_dir("out");
        FAIL();
    } catch (Xerror_msg const& error) {
        EXPECT_STREQ(error.what(),
                     "ERROR: the output directory already exists and it is non-empty.\n");
    }
    EXPECT_TRUE(fs::exists("out/.hidden"));
}

} // namespace
} // namespace cpm
