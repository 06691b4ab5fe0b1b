// SPDX-License-Identifier: MIT
#include "Plexor_io/Line_reader.h"

#include "Plexor_io/Link_file_errors.h"
#include "support/Random_numbers.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace cpm {
namespace {

using Lines = std::vector<std::string>;

// All lines of a file of this text. Checks on the way that what is promised readable is.
Lines Lines_of(std::string const& text) {
    Temp_dir const dir;
    Write_file("file", text);
    Line_reader reader("file");
    Lines lines;
    std::string_view line;
    while (reader.Next_block()) {
        while (reader.Next_line(line)) {
            EXPECT_GE(reader.Readable(line.data()), line.size());
            char const* const last = line.data() + reader.Readable(line.data()) - 1;
            EXPECT_EQ(*last, *last) << "an address sanitizer would object";
            lines.emplace_back(line);
        }
    }
    EXPECT_FALSE(reader.Next_block()) << "the end stays the end";
    EXPECT_FALSE(reader.Next_line(line));
    return lines;
}

// The same, by hand.
Lines Split(std::string const& text) {
    Lines lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t const end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

TEST(Line_reader, An_empty_file_has_no_lines) {
    EXPECT_EQ(Lines_of(""), Lines());
}

TEST(Line_reader, Lines_come_without_their_line_feeds) {
    EXPECT_EQ(Lines_of("a\nbc\n"), (Lines{"a", "bc"}));
    EXPECT_EQ(Lines_of("a\r\nbc\r\n"), (Lines{"a\r", "bc\r"}));
}

TEST(Line_reader, The_last_line_needs_no_line_feed) {
    EXPECT_EQ(Lines_of("a\nbc"), (Lines{"a", "bc"}));
    EXPECT_EQ(Lines_of("a"), (Lines{"a"}));
}

TEST(Line_reader, Empty_lines_are_lines) {
    EXPECT_EQ(Lines_of("\n"), (Lines{""}));
    EXPECT_EQ(Lines_of("a\n\n\nb\n\n"), (Lines{"a", "", "", "b", ""}));
}

TEST(Line_reader, A_line_may_hold_any_other_byte) {
    std::string const bytes("a\0b\xff\x80\v\f", 7);
    EXPECT_EQ(Lines_of(bytes + "\n" + bytes), (Lines{bytes, bytes}));
}

TEST(Line_reader, A_line_may_be_longer_than_a_block) {
    std::string const first(300000, 'x');
    std::string const second(2000000, 'y');
    EXPECT_EQ(Lines_of(first + "\n" + second + "\nz"), (Lines{first, second, "z"}));
    EXPECT_EQ(Lines_of(second), (Lines{second}));
}

TEST(Line_reader, A_line_may_end_where_a_block_ends) {
    constexpr std::size_t block = std::size_t{1} << 18;
    for (std::size_t const length :
         {block - 2, block - 1, block, block + 1, 2 * block - 1, 2 * block, 2 * block + 1}) {
        std::string const line(length, 'x');
        EXPECT_EQ(Lines_of(line), (Lines{line})) << length;
        EXPECT_EQ(Lines_of(line + "\n"), (Lines{line})) << length;
        EXPECT_EQ(Lines_of(line + "\na\n"), (Lines{line, "a"})) << length;
    }
}

TEST(Line_reader, Random_texts_are_split_at_line_feeds) {
    test::Random_numbers random(3);
    for (int round = 0; round < 10; ++round) {
        std::string text;
        std::uint32_t const longest = round % 2 == 0 ? 40 : 100000;
        while (text.size() < 900000) {
            text.append(random.Below(longest), static_cast<char>('a' + random.Below(26)));
            text += '\n';
        }
        text.resize(text.size() - random.Below(3));
        ASSERT_EQ(Lines_of(text), Split(text)) << round;
    }
}

TEST(Line_reader, A_missing_file_is_not_found) {
    try {
        Line_reader const reader("/no/such/file");
        FAIL() << "no error";
    } catch (Xep_file_not_found const& error) {
        EXPECT_STREQ(error.what(), "ERROR : File not found: '/no/such/file' ");
    }
}

TEST(Line_reader, A_directory_opens_but_cannot_be_read) {
    Line_reader reader("/");
    try {
        reader.Next_block();
        FAIL() << "no error";
    } catch (Xep_read_file const& error) {
        EXPECT_STREQ(error.what(), "ERROR: Something went wrong when trying to read from /");
    }
}

} // namespace
} // namespace cpm
