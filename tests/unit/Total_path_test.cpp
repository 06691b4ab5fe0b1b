// SPDX-License-Identifier: MIT
#include "Plexor_io/Total_path.h"

#include "support/Errors.h"
#include "support/Temp_dir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace cpm {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

TEST(Path_components, Splits_at_every_slash) {
    EXPECT_EQ(Get_path_list("a/b"), (Names{"a", "b"}));
    EXPECT_EQ(Get_path_list("/home/u"), (Names{"", "home", "u"}));
    EXPECT_EQ(Get_path_list("a//b/"), (Names{"a", "", "b"}));
    EXPECT_EQ(Get_path_list("/"), (Names{""}));
    EXPECT_EQ(Get_path_list(""), Names{});
}

struct Total_path : testing::Test {
    Temp_dir here;
};

TEST_F(Total_path, A_relative_path_begins_in_the_working_directory) {
    EXPECT_EQ(Get_total_path("net.txt"), here.Path() + "/net.txt");
    EXPECT_EQ(Get_total_path("a/b"), here.Path() + "/a/b");
}

TEST_F(Total_path, Dots_are_resolved) {
    fs::create_directories("home/u");
    fs::current_path("home/u");
    EXPECT_EQ(Get_total_path("../x/./y"), here.Path() + "/home/x/y");
    EXPECT_EQ(Get_total_path("./y"), here.Path() + "/home/u/y");
    EXPECT_EQ(Get_total_path("a/../../y/"), here.Path() + "/home/y");
}

TEST_F(Total_path, An_absolute_path_stays) {
    EXPECT_EQ(Get_total_path("/a/b"), "/a/b");
    EXPECT_EQ(Get_total_path("/a/../b/./c"), "/b/c");
    EXPECT_EQ(Get_total_path("/a//b/"), "/a//b");
    EXPECT_EQ(Get_total_path("/"), "/");
}

TEST_F(Total_path, Dots_at_the_end_stay_unless_a_slash_ends_them) {
    EXPECT_EQ(Get_total_path("/a/.."), "/a/..");
    EXPECT_EQ(Get_total_path("."), here.Path() + "/.");
    EXPECT_EQ(Get_total_path(".."), here.Path() + "/..");
    EXPECT_EQ(Get_total_path("/a/../"), "/");
    EXPECT_EQ(Get_total_path("/a/./"), "/a");
}

TEST_F(Total_path, Going_up_stops_when_nothing_is_left) {
    EXPECT_EQ(Get_total_path("/../a"), "a");
    EXPECT_EQ(Get_total_path("/../../a"), "../a");
}

TEST_F(Total_path, Works_in_the_root) {
    fs::current_path("/");
    EXPECT_EQ(Get_total_path("net.txt"), "/net.txt");
}

TEST_F(Total_path, An_empty_path_is_empty) {
    EXPECT_EQ(Get_total_path(""), "");
}

TEST_F(Total_path, Without_a_working_directory_there_is_no_path) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(here.Path() + "/gone");
    try {
        Get_total_path("net.txt");
        FAIL();
    } catch (Xerror_msg const& error) {
        EXPECT_STREQ(error.what(), "ERROR: Get_total_path() called on net.txt and\n"
                                   "A component of the path file_name does not exist.");
    }
}

} // namespace
} // namespace cpm
