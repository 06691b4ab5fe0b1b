// SPDX-License-Identifier: MIT
#include "Plexor_io/Result_files.h"

#include "support/Captured_console.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

TEST(Run_files, Put_the_word_for_the_kind_of_run_before_a_name) {
    Temp_dir const dir;
    Result_place place(dir.Path());
    Captured_console console;
    EXPECT_EQ((Run_files{place, "", "", console}.Flag_before('_')), "");
    EXPECT_EQ((Run_files{place, "directed", "", console}.Flag_before('_')), "directed_");
    EXPECT_EQ((Run_files{place, "intensity", "", console}.Flag_before(' ')), "intensity ");
}

} // namespace
} // namespace cpm
