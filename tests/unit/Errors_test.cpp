// SPDX-License-Identifier: MIT
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <string>

namespace cpm {
namespace {

/// What the handler of a run sees: the text of a standard exception.
template <class Error> std::string Caught(Error const& error) {
    try {
        throw error;
    } catch (std::exception const& caught) {
        return caught.what();
    }
}

TEST(Error_texts, A_message_is_kept_as_it_is) {
    EXPECT_EQ(Caught(Xerror_msg(" two\nlines \n")), " two\nlines \n");
    EXPECT_EQ(Caught(Xerror_msg("")), "");
}

TEST(Error_texts, A_file_that_cannot_be_read) {
    Xep_read_file const error("net.txt");
    EXPECT_EQ(Caught(error), "ERROR: Something went wrong when trying to read from net.txt");
    EXPECT_EQ(error.File(), "net.txt");
}

TEST(Error_texts, A_file_without_a_name_that_cannot_be_read) {
    Xep_read_file const error;
    EXPECT_EQ(Caught(error),
              "ERROR: Something went wrong when trying to read from  the file I was reading");
    EXPECT_EQ(error.File(), " the file I was reading");
}

TEST(Error_texts, A_file_that_is_not_there) {
    Xep_file_not_found const error("net.txt");
    EXPECT_EQ(Caught(error), "ERROR : File not found: 'net.txt' ");
    EXPECT_EQ(error.File(), "net.txt");
}

TEST(Error_texts, A_wrong_line_of_some_file) {
    Xep_wrong_line const error("ab");
    EXPECT_EQ(Caught(error), "ERROR: Wrong line found in ' the file I was reading' :\nab");
    EXPECT_EQ(error.File(), " the file I was reading");
    EXPECT_EQ(error.Line(), "ab");
}

TEST(Error_texts, A_wrong_line_of_a_named_file) {
    Xep_wrong_line const error("ab", "net.txt");
    EXPECT_EQ(Caught(error), "ERROR: Wrong line found in 'net.txt' :\nab");
    EXPECT_EQ(error.File(), "net.txt");
    EXPECT_EQ(error.Line(), "ab");
}

TEST(Error_kinds, All_are_logic_errors) {
    EXPECT_THROW(throw Xerror_msg("x"), std::logic_error);
    EXPECT_THROW(throw Xep_read_file(), std::logic_error);
    EXPECT_THROW(throw Xep_file_not_found("x"), std::logic_error);
    EXPECT_THROW(throw Xep_wrong_line("x"), std::logic_error);
}

TEST(Error_kinds, Problems_of_the_link_file_are_of_one_kind) {
    EXPECT_THROW(throw Xep_file_not_found("x"), Xep_read_file);
    EXPECT_THROW(throw Xep_wrong_line("x"), Xep_read_file);
}

TEST(Memory_error, Passes_as_the_standard_one_with_a_text_that_helps) {
    EXPECT_THROW(throw Out_of_memory(), std::bad_alloc);
    EXPECT_EQ(Caught(Out_of_memory()),
              "ERROR: not enough memory for this network. Try a weight threshold (-w, -W), a time "
              "limit for the clique search (-t), or a machine with more memory.");
}

TEST(Memory_error, Once_installed_it_is_what_a_failed_allocation_throws) {
    std::new_handler const before = std::get_new_handler();
    Out_of_memory::Install();
    std::new_handler const installed = std::set_new_handler(before);
    ASSERT_NE(installed, nullptr);
    EXPECT_THROW(installed(), Out_of_memory);
}

} // namespace
} // namespace cpm
