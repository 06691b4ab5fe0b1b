// SPDX-License-Identifier: MIT
#include "support/Errors.h"

#include "support/Caught_text.h"

#include <gtest/gtest.h>

namespace cpm {
namespace {

using test::Caught;

TEST(Error_texts, A_message_is_kept_as_it_is) {
    EXPECT_EQ(Caught(Xerror_msg(" two\nlines \n")), " two\nlines \n");
    EXPECT_EQ(Caught(Xerror_msg("")), "");
}

TEST(Error_kinds, All_are_logic_errors) {
    EXPECT_THROW(throw Xerror_msg("x"), std::logic_error);
    EXPECT_THROW(throw Too_large("x"), Xerror_msg);
    EXPECT_THROW(throw Missing_link("x"), Xerror_msg);
}

} // namespace
} // namespace cpm
