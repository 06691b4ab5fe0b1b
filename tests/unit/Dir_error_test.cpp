// SPDX-License-Identifier: MIT
#include "Plexor_io/Dir_error.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

TEST(Sentences_of_error_numbers, Every_known_number_has_its_sentence) {
    EXPECT_EQ(Dir_error(1), "The filesyst. does not  support  the removal of directories.");
    EXPECT_EQ(Dir_error(2), "A component of the path file_name does not exist.");
    EXPECT_EQ(Dir_error(5), "An I/O error occurred.");
    EXPECT_EQ(Dir_error(12), "Insufficient memory to complete the operation.");
    EXPECT_EQ(Dir_error(13), "Permission denied.");
    EXPECT_EQ(Dir_error(14), "Bad address.");
    EXPECT_EQ(Dir_error(16), "The rename fails because oldpath or newpath is a directory that  is "
                             "in use by some process.");
    EXPECT_EQ(Dir_error(17), "pathname already exists.");
    EXPECT_EQ(Dir_error(18), "oldpath and newpath are not on the same filesystem.");
    EXPECT_EQ(Dir_error(20), "A component of the path is not a directory.");
    EXPECT_EQ(Dir_error(21), "newpath is an existing directory, but oldpath is not a directory.");
    EXPECT_EQ(Dir_error(22), "an attempt was made to make a directory a subdirectory of itself.");
    EXPECT_EQ(Dir_error(28), "no room for the new directory entry.");
    EXPECT_EQ(Dir_error(30), "The file is on a read-only filesystem.");
    EXPECT_EQ(Dir_error(36), "pathname too long.");
    EXPECT_EQ(Dir_error(39), "newpath is a non-empty directory, i.e., contains entries other than "
                             ". and .. .");
    EXPECT_EQ(Dir_error(40), "Too  many symbolic links encountered while traversing the path.");
}

TEST(Sentences_of_error_numbers, Any_other_number_is_named) {
    EXPECT_EQ(Dir_error(3), " Other error occured, errno=3");
    EXPECT_EQ(Dir_error(0), " Other error occured, errno=0");
    EXPECT_EQ(Dir_error(-1), " Other error occured, errno=-1");
}

} // namespace
} // namespace cpm
