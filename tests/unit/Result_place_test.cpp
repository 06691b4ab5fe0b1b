// SPDX-License-Identifier: MIT
#include "Plexor_io/Result_place.h"

#include "support/Temp_dir.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

TEST(Result_place, Makes_the_directory_of_k_and_the_one_it_is_in) {
    Temp_dir const dir;
    EXPECT_EQ(Prepare_k_dir(dir.Path() + "/out", 12), dir.Path() + "/out/k=12");
    EXPECT_TRUE(std::filesystem::is_directory(dir.Path() + "/out/k=12"));
}

TEST(Result_place, Keeps_what_is_in_the_directory) {
    Temp_dir const dir;
    std::string const k_dir = Prepare_k_dir(dir.Path(), 3);
    Write_file(k_dir + "/communities", "kept");
    Prepare_k_dir(dir.Path(), 3);
    EXPECT_EQ(Read_file(k_dir + "/communities"), "kept");
}

TEST(Result_place, Nothing_stands_before_the_name_without_a_word) {
    EXPECT_EQ(Word_before("", '_'), "");
    EXPECT_EQ(Word_before("directed", '_'), "directed_");
    EXPECT_EQ(Word_before("intensity", ' '), "intensity ");
}

} // namespace
} // namespace cpm
