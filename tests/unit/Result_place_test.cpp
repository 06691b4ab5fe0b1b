// SPDX-License-Identifier: MIT
#include "Plexor_io/Result_place.h"

#include "support/Errors.h"
#include "support/Temp_dir.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace cpm {
namespace {

namespace fs = std::filesystem;

constexpr char replaced[] =
    "ERROR: another directory has taken the place of the output directory.\n";
constexpr char refusal[] = "ERROR: the output directory already exists and it is non-empty.\n";

struct Place : testing::Test {
    Temp_dir here;

    /// Makes the file; false when that cannot be done.
    static bool Make(New_file const& file) {
        int const descriptor = file.Make();
        return descriptor >= 0 && ::close(descriptor) == 0;
    }
    static std::string Error_of(std::function<void()> const& step) {
        try {
            step();
        } catch (Xerror_msg const& error) {
            return error.what();
        }
        return "(no error)";
    }
};

using Result_places = Place;

TEST_F(Result_places, Make_the_directories_when_they_are_needed) {
    Result_place place("a/out");
    EXPECT_FALSE(fs::exists("a"));
    New_file const file = place.Prepare().File("cliques");
    EXPECT_TRUE(fs::is_directory("a/out"));
    EXPECT_EQ(file.Path(), "a/out/cliques");
    EXPECT_FALSE(fs::exists("a/out/cliques"));
    EXPECT_TRUE(Make(file));
    EXPECT_TRUE(fs::is_empty("a/out/cliques"));
}

TEST_F(Result_places, Hold_a_directory_for_each_k_in_the_one_that_is_made) {
    Result_place place("out");
    EXPECT_EQ(place.Prepare(12).File("communities").Path(), "out/k=12/communities");
    EXPECT_TRUE(fs::is_directory("out/k=12"));
    EXPECT_TRUE(Make(place.Prepare(12).File("communities")));
    EXPECT_TRUE(Make(place.Prepare(11).File("communities")));
    EXPECT_TRUE(Make(place.Prepare(12).File("graph")));
    EXPECT_TRUE(fs::exists("out/k=12/communities") && fs::exists("out/k=12/graph"));
}

TEST_F(Result_places, A_directory_out_of_reach_when_it_was_asked_for_is_checked_once_made) {
    fs::create_directory("old");
    Write_file("old/cliques", "kept");
    Result_place place("new/../old");
    EXPECT_EQ(Error_of([&] { place.Prepare(); }), refusal);
    Result_place here_itself("other/..");
    EXPECT_EQ(Error_of([&] { here_itself.Prepare(3); }), refusal);
    EXPECT_EQ(Read_file("old/cliques"), "kept");
}

TEST_F(Result_places, A_link_to_an_empty_directory_is_followed) {
    fs::create_directory("there");
    fs::create_symlink("there", "out");
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("cliques")));
    EXPECT_TRUE(Make(place.Prepare(3).File("communities")));
    EXPECT_TRUE(fs::exists("there/cliques") && fs::exists("there/k=3/communities"));
}

TEST_F(Result_places, A_link_that_takes_the_place_of_the_directory_is_refused) {
    fs::create_directory("foreign");
    for (std::string const path : {"out", "slash/"}) {
        Result_place place(path);
        EXPECT_TRUE(Make(place.Prepare().File("input_params.txt")));
        std::string const bare = path.substr(0, path.find('/'));
        fs::rename(bare, bare + "_moved");
        fs::create_symlink("foreign", bare);
        EXPECT_EQ(Error_of([&] { place.Prepare(); }), replaced);
        EXPECT_EQ(Error_of([&] { place.Prepare(3); }), replaced);
    }
    EXPECT_TRUE(fs::is_empty("foreign"));
}

TEST_F(Result_places, A_link_that_leads_back_to_the_directory_is_not_noticed) {
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("input_params.txt")));
    fs::rename("out", "moved");
    fs::create_symlink("moved", "out");
    EXPECT_TRUE(Make(place.Prepare(3).File("communities")));
    EXPECT_TRUE(fs::exists("moved/k=3/communities"));
}

TEST_F(Result_places, Another_directory_in_its_place_is_refused_though_empty) {
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("input_params.txt")));
    fs::rename("out", "moved");
    fs::create_directory("out");
    EXPECT_EQ(Error_of([&] { place.Prepare(); }), replaced);
    EXPECT_TRUE(fs::is_empty("out"));
}

TEST_F(Result_places, A_file_in_its_place_is_moved_aside) {
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("input_params.txt")));
    fs::remove_all("out");
    Write_file("out", "kept");
    EXPECT_TRUE(Make(place.Prepare().File("graph")));
    EXPECT_EQ(Read_file("out1"), "kept");
    EXPECT_TRUE(fs::exists("out/graph"));
}

TEST_F(Result_places, One_that_was_removed_is_made_again) {
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("input_params.txt")));
    EXPECT_TRUE(Make(place.Prepare(3).File("communities")));
    fs::remove_all("out");
    EXPECT_TRUE(Make(place.Prepare(3).File("graph")));
    EXPECT_TRUE(fs::exists("out/k=3/graph"));
}

TEST_F(Result_places, A_link_in_place_of_the_directory_of_k_is_not_followed) {
    fs::create_directory("foreign");
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("cliques")));
    fs::create_symlink("../foreign", "out/k=3");
    EXPECT_FALSE(Make(place.Prepare(3).File("communities")));
    EXPECT_FALSE(Make(place.Prepare(3).File("graph")));
    EXPECT_TRUE(fs::is_empty("foreign"));
}

TEST_F(Result_places, Of_two_that_find_the_same_directory_empty_one_is_refused) {
    Result_place first("out");
    Result_place second("out");
    New_file const file_of_first = first.Prepare().File("input_params.txt");
    New_file const file_of_second = second.Prepare().File("input_params.txt");
    EXPECT_TRUE(Make(file_of_second));
    EXPECT_EQ(Error_of([&] { (void)file_of_first.Make(); }), refusal);
    EXPECT_TRUE(Make(second.Prepare().File("graph")));
}

TEST_F(Result_places, A_file_that_is_there_already_counts_as_not_writable) {
    Result_place place("out");
    EXPECT_TRUE(Make(place.Prepare().File("input_params.txt")));
    Write_file("out/cliques", "kept");
    EXPECT_FALSE(Make(place.Prepare().File("cliques")));
    EXPECT_FALSE(Make(place.Prepare().File("input_params.txt")));
    EXPECT_EQ(Read_file("out/cliques"), "kept");
}

TEST_F(Result_places, A_file_with_too_long_a_path_counts_as_not_writable) {
    std::string path;
    while (path.size() < 4080) {
        path += path.empty() ? "" : "/";
        path += std::string(99, 'p');
    }
    path.resize(4090);
    Result_place place(path);
    Prepared_dir const dir = place.Prepare();
    EXPECT_TRUE(Make(dir.File("four"))); // 4095 bytes
    EXPECT_FALSE(Make(dir.File("five5")));
}

} // namespace
} // namespace cpm
