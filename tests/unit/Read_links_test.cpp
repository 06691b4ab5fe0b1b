// SPDX-License-Identifier: MIT
#include "Plexor_io/Read_links.h"

#include "Plexor_io/Link_file_errors.h"
#include "support/Random_numbers.h"
#include "support/Temp_dir.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace cpm {
namespace {

using test::Random_numbers;
using Names = std::pair<std::string, std::string>;
using Plain_map = std::map<Names, double>;

Weight_interval const no_bounds;

// The link map as the map that it stands for; fails when its order or its shape is wrong.
Plain_map Plain(Link_map const& links) {
    for (std::size_t i = 1; i < links.names.size(); ++i) {
        EXPECT_LT(links.names[i - 1], links.names[i]);
    }
    EXPECT_TRUE(links.weights.empty() || links.weights.size() == links.links.size());
    Plain_map map;
    for (std::size_t i = 0; i < links.links.size(); ++i) {
        EXPECT_TRUE(i == 0 || links.links[i - 1] < links.links[i]);
        Node_pair const link = links.links[i];
        map[{std::string(links.names[link.first]), std::string(links.names[link.second])}] =
            links.Weight(i);
    }
    return map;
}

class Read_links : public testing::Test {
protected:
    Plain_map Unweighted(std::string const& text) {
        Write_file("net", text);
        Read_unw_links("net", links_);
        EXPECT_TRUE(links_.weights.empty());
        return Plain(links_);
    }
    Plain_map Weighted(std::string const& text, Weight_interval const& interval = no_bounds) {
        Write_file("net", text);
        Read_weighted_links("net", links_, interval);
        return Plain(links_);
    }
    // The text of the error, or "none".
    template <class Error> std::string Error_of(std::string const& text, bool weighted) {
        try {
            weighted ? Weighted(text) : Unweighted(text);
        } catch (Error const& error) {
            return error.what();
        }
        return "none";
    }
    std::string Wrong_line(std::string const& text, bool weighted = false) {
        return Error_of<Xep_wrong_line>(text, weighted);
    }
    std::string Blank_line(std::string const& text, bool weighted = false) {
        return Error_of<std::out_of_range>(text, weighted);
    }

    Link_map links_;

private:
    Temp_dir dir_;
};

std::string Wrong_line_text(std::string const& line) {
    return "ERROR: Wrong line found in ' the file I was reading' :\n" + line;
}

std::string Blank_line_text(std::size_t length) {
    return "basic_string::substr: __pos (which is 4294967295) > this->size() (which is " +
           std::to_string(length) + ")";
}

TEST_F(Read_links, A_link_and_its_reverse_are_two_links) {
    EXPECT_EQ(Unweighted("a b\nb a\n"), (Plain_map{{{"a", "b"}, 0}, {{"b", "a"}, 0}}));
}

TEST_F(Read_links, A_link_read_twice_is_one_link) {
    EXPECT_EQ(Unweighted("a b\nc d\na b\n"), (Plain_map{{{"a", "b"}, 0}, {{"c", "d"}, 0}}));
}

TEST_F(Read_links, Weights_of_a_repeated_link_add_up) {
    EXPECT_EQ(Weighted("a b 0.5\na b 0.25\n"), (Plain_map{{{"a", "b"}, 0.75}}));
}

TEST_F(Read_links, Weights_add_up_in_the_order_of_the_file) {
    // In any other order the small weights would be lost, or not be.
    EXPECT_EQ(Weighted("a b 1e16\nc d 1\na b 1\na b 1\n"),
              (Plain_map{{{"a", "b"}, 1e16}, {{"c", "d"}, 1}}));
    EXPECT_EQ(Weighted("a b 1\na b 1\na b 1e16\n"), (Plain_map{{{"a", "b"}, 1e16 + 2}}));
}

TEST_F(Read_links, A_sum_starts_at_0) {
    double const weight = Weighted("a b -0\n").at({"a", "b"});
    EXPECT_EQ(std::bit_cast<std::uint64_t>(weight), 0U) << "0 + -0 is 0";
}

TEST_F(Read_links, Each_line_is_held_against_the_bounds_by_itself) {
    EXPECT_EQ(Weighted("a b 0.5\na b 0.25\n", {true, 0.3, false, 0}),
              (Plain_map{{{"a", "b"}, 0.5}}));
    EXPECT_EQ(Weighted("a b 0.5\na b 0.25\na b 0.25\n", {false, 0, true, 0.6}),
              (Plain_map{{{"a", "b"}, 1.0}}))
        << "the sum may lie outside";
}

TEST_F(Read_links, A_link_that_no_line_gives_an_accepted_weight_is_no_link) {
    EXPECT_EQ(Weighted("a b 0.5\nc d 2\n", {true, 1, false, 0}), (Plain_map{{{"c", "d"}, 2}}));
    EXPECT_EQ(links_.names.size(), 2U) << "nor are its names among the names";
}

TEST_F(Read_links, Both_bounds_are_strict) {
    EXPECT_EQ(Weighted("a b 0.5\nc d 0.75\n", {true, 0.5, false, 0}),
              (Plain_map{{{"c", "d"}, 0.75}}));
    EXPECT_EQ(Weighted("a b 0.5\nc d 0.25\n", {false, 0, true, 0.5}),
              (Plain_map{{{"c", "d"}, 0.25}}));
}

TEST(Link_in_interval, Takes_what_lies_strictly_inside_the_bounds_that_are_set) {
    EXPECT_TRUE(Link_in_interval(-1e300, {false, 5, false, -5}));
    EXPECT_TRUE(Link_in_interval(2, {true, 1, true, 3}));
    EXPECT_FALSE(Link_in_interval(1, {true, 1, true, 3}));
    EXPECT_FALSE(Link_in_interval(3, {true, 1, true, 3}));
    EXPECT_FALSE(Link_in_interval(0.5, {true, 1, true, 3}));
    EXPECT_FALSE(Link_in_interval(3.5, {true, 1, true, 3}));
    EXPECT_FALSE(Link_in_interval(std::numeric_limits<double>::quiet_NaN(), {true, 1, false, 0}));
    EXPECT_TRUE(Link_in_interval(std::numeric_limits<double>::quiet_NaN(), no_bounds));
}

TEST_F(Read_links, Self_links_are_dropped) {
    EXPECT_EQ(Unweighted("a a 3\n"), Plain_map());
    EXPECT_EQ(Weighted("a a 3\nbb bb 1\nab ba 1\n"), (Plain_map{{{"ab", "ba"}, 1}}));
    EXPECT_EQ(links_.names.size(), 2U);
}

TEST_F(Read_links, A_self_link_needs_a_weight_too) {
    EXPECT_EQ(Wrong_line("a a\n", true), Wrong_line_text("a a"));
}

TEST_F(Read_links, Comments_and_single_characters_are_skipped) {
    EXPECT_EQ(Unweighted("# a comment\n#\n  # one more\n\t#x y\nx\n \tx \n#ab\na b\n"),
              (Plain_map{{{"a", "b"}, 0}}));
    EXPECT_EQ(Weighted("#a b 1\nx\n"), Plain_map());
}

TEST_F(Read_links, A_number_sign_inside_a_line_is_part_of_a_name) {
    EXPECT_EQ(Unweighted("a #b\nc# d#e\n"), (Plain_map{{{"a", "#b"}, 0}, {{"c#", "d#e"}, 0}}));
}

TEST_F(Read_links, A_single_name_is_a_wrong_line) {
    EXPECT_EQ(Wrong_line("ab\n"), Wrong_line_text("ab"));
    EXPECT_EQ(Wrong_line("a b\n \t ab\t \nc d\n"), Wrong_line_text("ab"))
        << "the line without blanks at its ends";
    EXPECT_EQ(Wrong_line("ab 1\n", true), Wrong_line_text("ab 1"));
}

TEST_F(Read_links, A_wrong_line_names_the_line_and_no_file) {
    try {
        Unweighted("ab\n");
        FAIL() << "no error";
    } catch (Xep_wrong_line const& error) {
        EXPECT_EQ(error.Line(), "ab");
        EXPECT_EQ(error.File(), " the file I was reading");
    }
}

TEST_F(Read_links, A_weight_is_needed_only_when_weights_are_read) {
    EXPECT_EQ(Wrong_line("a b\n", true), Wrong_line_text("a b"));
    EXPECT_EQ(Wrong_line("a b x1\n", true), Wrong_line_text("a b x1"));
    EXPECT_EQ(Unweighted("a b x1\n"), (Plain_map{{{"a", "b"}, 0}}));
}

TEST_F(Read_links, Further_fields_are_ignored) {
    EXPECT_EQ(Weighted("a b 0.5 extra\n"), (Plain_map{{{"a", "b"}, 0.5}}));
    EXPECT_EQ(Unweighted("a b 0.5 extra\n"), (Plain_map{{{"a", "b"}, 0}}));
}

TEST_F(Read_links, Any_number_of_blanks_and_tabs_separates) {
    EXPECT_EQ(Weighted(" \ta \t b\t\t1.5 \n"), (Plain_map{{{"a", "b"}, 1.5}}));
}

TEST_F(Read_links, A_missing_file_is_named_and_the_map_stays) {
    Unweighted("a b\n");
    try {
        Read_unw_links("./no such", links_);
        FAIL() << "no error";
    } catch (Xep_file_not_found const& error) {
        EXPECT_STREQ(error.what(), "ERROR : File not found: './no such' ");
    }
    EXPECT_EQ(Plain(links_), (Plain_map{{{"a", "b"}, 0}}));
    EXPECT_THROW(Read_weighted_links("./no such", links_, no_bounds), Xep_file_not_found);
}

TEST_F(Read_links, A_directory_cannot_be_read) {
    try {
        Read_unw_links(".", links_);
        FAIL() << "no error";
    } catch (Xep_file_not_found const&) {
        FAIL() << "it was found";
    } catch (Xep_read_file const& error) {
        EXPECT_STREQ(error.what(), "ERROR: Something went wrong when trying to read from .");
    }
}

TEST_F(Read_links, A_blank_line_ends_in_the_error_of_the_standard_library) {
    EXPECT_EQ(Blank_line("a b\n\nc d\n"), Blank_line_text(0));
    EXPECT_EQ(Blank_line("a b\n\n"), Blank_line_text(0)) << "at the end of the file, too";
    EXPECT_EQ(Blank_line("\n", true), Blank_line_text(0));
    EXPECT_EQ(Blank_line("a b\n \t \nc d\n"), Blank_line_text(3)) << "the line as it was";
    EXPECT_EQ(Blank_line("a b\n  "), Blank_line_text(2)) << "without a line feed";
}

TEST_F(Read_links, The_error_of_the_first_bad_line_counts) {
    EXPECT_EQ(Blank_line("a b\n\nab\n"), Blank_line_text(0));
    EXPECT_EQ(Wrong_line("a b\nab\n\n"), Wrong_line_text("ab"));
}

TEST_F(Read_links, Carriage_returns_are_white_space_inside_but_not_at_the_ends) {
    EXPECT_EQ(Unweighted("a b\r\nc d\r\n"), (Plain_map{{{"a", "b"}, 0}, {{"c", "d"}, 0}}));
    EXPECT_EQ(Weighted("a b 2\r\n"), (Plain_map{{{"a", "b"}, 2}}));
    EXPECT_EQ(Unweighted("a b\r\n\r\n \r\t\nc d\r\n").size(), 2U) << "one character is skipped";
    EXPECT_EQ(Wrong_line("\r\r\n"), Wrong_line_text("\r\r"));
    EXPECT_EQ(Wrong_line("x\r\n"), Wrong_line_text("x\r"));
    EXPECT_EQ(Wrong_line("ab\r\n"), Wrong_line_text("ab\r"));
    EXPECT_EQ(Wrong_line("a b\r\n", true), Wrong_line_text("a b\r"));
}

TEST_F(Read_links, Vertical_tabs_and_form_feeds_separate_but_are_not_trimmed) {
    EXPECT_EQ(Unweighted("a\vb\nc\fd\n\v\f e f\n"),
              (Plain_map{{{"a", "b"}, 0}, {{"c", "d"}, 0}, {{"e", "f"}, 0}}));
    EXPECT_EQ(Unweighted("\v\n\f\na b\n"), (Plain_map{{{"a", "b"}, 0}})) << "single characters";
    EXPECT_EQ(Wrong_line("\v\f\n"), Wrong_line_text("\v\f"));
    EXPECT_EQ(Weighted("a b\v3\n"), (Plain_map{{{"a", "b"}, 3}}));
    EXPECT_EQ(Weighted("\f# b 3\n"), (Plain_map{{{"#", "b"}, 3}})) << "no comment";
}

TEST_F(Read_links, The_last_line_needs_no_line_feed) {
    EXPECT_EQ(Unweighted("a b\nc d"), (Plain_map{{{"a", "b"}, 0}, {{"c", "d"}, 0}}));
    EXPECT_EQ(Weighted("a b 17"), (Plain_map{{{"a", "b"}, 17}}));
    EXPECT_EQ(Unweighted("a b\nx"), (Plain_map{{{"a", "b"}, 0}}));
    EXPECT_EQ(Wrong_line("a b\nxy"), Wrong_line_text("xy"));
}

TEST_F(Read_links, A_file_without_lines_gives_no_links) {
    Unweighted("a b\n");
    EXPECT_EQ(Unweighted(""), Plain_map()) << "and what was in the map is gone";
    EXPECT_EQ(links_.names.size(), 0U);
    EXPECT_EQ(Weighted("# nothing\n"), Plain_map());
}

TEST_F(Read_links, Names_are_told_apart_by_every_byte) {
    std::string const nul(1, '\0');
    std::vector<std::string> const names = {
        "a",
        "a" + nul,
        "a" + nul + nul,
        nul,
        nul + nul,
        "A",
        "\x80",
        "\xff",
        "\x80\xff",
        "\xff\xff",
        "7654321",
        "87654321",
        "7654321" + nul,
        "76543210",
        "987654321",
        "987654320",
        "88888888" + nul,
        "88888888",
        "12345678",
        "12345679",
        std::string(100, 'x'),
        std::string(100, 'x') + "y",
        "1234567\xff",
    };
    std::string text;
    Plain_map expected;
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (std::size_t j = 0; j < names.size(); ++j) {
            text += names[i] + ' ' + names[j] + ' ' + std::to_string(i * 100 + j) + '\n';
            if (i != j) {
                expected[{names[i], names[j]}] = static_cast<double>(i * 100 + j);
            }
        }
    }
    EXPECT_EQ(Weighted(text), expected);
    EXPECT_EQ(links_.names.size(), names.size());
}

TEST_F(Read_links, A_line_may_be_longer_than_what_is_read_at_once) {
    std::string const large_name(700000, 'n');
    std::string const blanks(300000, ' ');
    EXPECT_EQ(Weighted("a b 1\n" + large_name + blanks + "b" + blanks + "2\nb c 3\n"),
              (Plain_map{{{"a", "b"}, 1}, {{large_name, "b"}, 2}, {{"b", "c"}, 3}}));
    EXPECT_EQ(Unweighted("a b" + blanks + blanks + "\nc d"),
              (Plain_map{{{"a", "b"}, 0}, {{"c", "d"}, 0}}));
}

// Names, weights and line ends at every place where one reading of the file may end.
TEST_F(Read_links, Lines_may_lie_across_the_ends_of_blocks) {
    constexpr std::size_t block = std::size_t{1} << 18;
    std::string const tail = "long_name_1 n2 2.5\nlong_name_1 n3 0.5\n";
    for (std::size_t shift = 0; shift <= tail.size() + 1; ++shift) {
        std::string text = "#" + std::string(block - 2 - shift, '-') + "\n";
        ASSERT_EQ(Weighted(text + tail),
                  (Plain_map{{{"long_name_1", "n2"}, 2.5}, {{"long_name_1", "n3"}, 0.5}}))
            << shift;
    }
}

TEST_F(Read_links, Many_names_come_in_byte_order) {
    Random_numbers random(5);
    std::string text;
    Plain_map expected;
    for (int line = 0; line < 20000; ++line) {
        std::string const from = "node" + std::to_string(random.Below(6000));
        std::string const to = std::to_string(random.Below(6000));
        text += from + '\t' + to + '\n';
        expected[{from, to}] = 0;
    }
    EXPECT_EQ(Unweighted(text), expected);
}

// What one line is read as, by the standard streams.
enum class Outcome { skipped, blank, wrong, link };
struct Plain_line {
    Outcome outcome = Outcome::skipped;
    Names names{};
    double weight = 0;
};

Plain_line Read_plainly(std::string const& line, bool weighted) {
    std::string::size_type const first = line.find_first_not_of(" \t");
    if (first == std::string::npos) {
        return {Outcome::blank};
    }
    std::string const trimmed = line.substr(first, line.find_last_not_of(" \t") - first + 1);
    if (trimmed[0] == '#' || trimmed.size() == 1) {
        return {Outcome::skipped};
    }
    Plain_line result{Outcome::link};
    std::istringstream stream(trimmed);
    stream >> result.names.first >> result.names.second;
    if (weighted) {
        stream >> result.weight;
    }
    if (!stream) {
        return {Outcome::wrong};
    }
    return result;
}

class Read_lines : public Read_links {
protected:
    void Compare(std::string const& line, bool weighted) {
        Plain_line const expected = Read_plainly(line, weighted);
        Outcome outcome = Outcome::skipped;
        Plain_map map;
        try {
            map = weighted ? Weighted(line + "\nthe end 1\n") : Unweighted(line + "\nthe end 1\n");
            ASSERT_EQ(map.erase({"the", "end"}), 1U);
            outcome = map.empty() ? Outcome::skipped : Outcome::link;
        } catch (Xep_wrong_line const&) {
            outcome = Outcome::wrong;
        } catch (std::out_of_range const&) {
            outcome = Outcome::blank;
        }
        bool const self_link =
            expected.outcome == Outcome::link && expected.names.first == expected.names.second;
        ASSERT_EQ(outcome, self_link ? Outcome::skipped : expected.outcome) << '"' << line << '"';
        if (outcome == Outcome::link) {
            ASSERT_EQ(map.begin()->first, expected.names) << '"' << line << '"';
            ASSERT_EQ(std::bit_cast<std::uint64_t>(map.begin()->second),
                      std::bit_cast<std::uint64_t>(0.0 + expected.weight))
                << '"' << line << '"';
        }
    }
};

TEST_F(Read_lines, Weights_are_read_as_by_a_stream) {
    for (std::string const number : {"1",
                                     "0.25",
                                     "2.5e-3",
                                     "+1",
                                     "-1",
                                     "+-1",
                                     "-",
                                     "+",
                                     ".",
                                     ".5",
                                     "5.",
                                     "-.5",
                                     "-5.",
                                     "-.",
                                     "e5",
                                     "1e",
                                     "1e+",
                                     "1e-",
                                     "1e+5",
                                     "1E5",
                                     "1e5x",
                                     "1x",
                                     "1,5",
                                     "1.2.3",
                                     "1..2",
                                     "0x10",
                                     "0x1p3",
                                     "0x",
                                     "0xg",
                                     "-0x10",
                                     "inf",
                                     "-inf",
                                     "infinity",
                                     "nan",
                                     "-nan",
                                     "nan(1)",
                                     "INF",
                                     "1e400",
                                     "-1e400",
                                     "1e308",
                                     "2e308",
                                     "1e-400",
                                     "4e-324",
                                     "2e-324",
                                     "5e-324",
                                     "1e-310",
                                     "-1e-310",
                                     "-0",
                                     "-0.0",
                                     "0",
                                     "00012",
                                     "1e0005",
                                     "1e-0005",
                                     "0.1",
                                     "1d5",
                                     "1f",
                                     "1_000",
                                     "1'000",
                                     "9007199254740993",
                                     "0.30000000000000004",
                                     "179769313486231570814527423731704356798070e267",
                                     "1e99999999999999999999",
                                     "1e-99999999999999999999",
                                     "0e99999",
                                     "0.0000000000000000000000000000000000001",
                                     "123456789012345678901234567890",
                                     "1#",
                                     "1\r",
                                     "1\v2",
                                     "--1",
                                     "1-1",
                                     "1+1",
                                     "1e5e5",
                                     "1e5.5",
                                     "\xb2",
                                     "1\xff",
                                     "٣"}) {
        Compare("a b " + number, true);
        Compare("a b " + number + " 7", true);
        Compare("a b\t" + number + "\r", true);
    }
    Compare(std::string("a b 1\0002", 7), true);
    Compare("a b " + std::string(5000, '9'), true);
    Compare("a b 0." + std::string(5000, '0') + "1", true);
    Compare("a b " + std::string(5000, '0') + "1", true);
}

TEST_F(Read_lines, Random_numbers_are_read_as_by_a_stream) {
    Random_numbers random(7);
    std::string const characters = "0123456789012345....eE+-+-xXpinfa ";
    for (unsigned round = 0; round < test::Rounds(300); ++round) {
        std::string line = "a b ";
        for (std::uint32_t left = 1 + random.Below(9); left > 0; --left) {
            line += characters[random.Below(static_cast<std::uint32_t>(characters.size()))];
        }
        Compare(line, true);
    }
}

TEST_F(Read_lines, Random_lines_are_read_as_by_a_stream) {
    Random_numbers random(8);
    std::string const characters = std::string("aab1#.  \t\r\v\f\x80\xff") + std::string(1, '\0');
    for (unsigned round = 0; round < test::Rounds(300); ++round) {
        std::string line;
        for (std::uint32_t left = random.Below(12); left > 0; --left) {
            line += characters[random.Below(static_cast<std::uint32_t>(characters.size()))];
        }
        Compare(line, round % 2 == 0);
    }
}

TEST(trim, Takes_the_characters_off_both_ends_only) {
    EXPECT_EQ(trim("  a b\t ", " \t"), "a b");
    EXPECT_EQ(trim("a", " \t"), "a");
    EXPECT_EQ(trim("\r a", " \t"), "\r a");
    EXPECT_EQ(trim("xxaxx", "x"), "a");
}

TEST(trim, Of_nothing_to_keep_is_out_of_range) {
    EXPECT_THROW(trim("", " \t"), std::out_of_range);
    EXPECT_THROW(trim(" \t ", " \t"), std::out_of_range);
}

} // namespace
} // namespace cpm
