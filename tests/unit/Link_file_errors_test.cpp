// SPDX-License-Identifier: MIT
#include "Plexor_io/Link_file_errors.h"

#include "support/Caught_text.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

using test::Caught;

TEST(Link_file_error_texts, A_file_that_cannot_be_read) {
    Xep_read_file const error("net.txt");
    EXPECT_EQ(Caught(error), "ERROR: Something went wrong when trying to read from net.txt");
    EXPECT_EQ(error.File(), "net.txt");
}

TEST(Link_file_error_texts, A_file_without_a_name_that_cannot_be_read) {
    Xep_read_file const error;
    EXPECT_EQ(Caught(error),
              "ERROR: Something went wrong when trying to read from  the file I was reading");
    EXPECT_EQ(error.File(), " the file I was reading");
}

TEST(Link_file_error_texts, A_file_that_is_not_there) {
    Xep_file_not_found const error("net.txt");
    EXPECT_EQ(Caught(error), "ERROR : File not found: 'net.txt' ");
    EXPECT_EQ(error.File(), "net.txt");
}

TEST(Link_file_error_texts, A_wrong_line_of_some_file) {
    Xep_wrong_line const error("ab");
    EXPECT_EQ(Caught(error), "ERROR: Wrong line found in ' the file I was reading' :\nab");
    EXPECT_EQ(error.File(), " the file I was reading");
    EXPECT_EQ(error.Line(), "ab");
}

TEST(Link_file_error_texts, A_wrong_line_of_a_named_file) {
    Xep_wrong_line const error("ab", "net.txt");
    EXPECT_EQ(Caught(error), "ERROR: Wrong line found in 'net.txt' :\nab");
    EXPECT_EQ(error.File(), "net.txt");
    EXPECT_EQ(error.Line(), "ab");
}

TEST(Link_file_error_kinds, All_are_logic_errors) {
    EXPECT_THROW(throw Xep_read_file(), std::logic_error);
    EXPECT_THROW(throw Xep_file_not_found("x"), std::logic_error);
    EXPECT_THROW(throw Xep_wrong_line("x"), std::logic_error);
}

TEST(Link_file_error_kinds, Problems_of_the_link_file_are_of_one_kind) {
    EXPECT_THROW(throw Xep_file_not_found("x"), Xep_read_file);
    EXPECT_THROW(throw Xep_wrong_line("x"), Xep_read_file);
}

} // namespace
} // namespace cpm
