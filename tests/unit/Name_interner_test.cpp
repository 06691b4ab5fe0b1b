// SPDX-License-Identifier: MIT
#include "graph/Name_interner.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

namespace cpm {
namespace {

Node Number(Name_interner& interner, std::string const& name) {
    return interner.Number(name, Name_interner::Key(name, name.size()));
}

TEST(Name_interner, Numbers_names_as_they_are_first_asked_for) {
    Name_interner interner;
    EXPECT_EQ(Number(interner, "b"), 0U);
    EXPECT_EQ(Number(interner, "a_long_name"), 1U);
    EXPECT_EQ(Number(interner, "b"), 0U);
    EXPECT_EQ(Number(interner, "a"), 2U);
    EXPECT_EQ(Number(interner, "a_long_name"), 1U);
    ASSERT_EQ(interner.Names().size(), 3U);
    EXPECT_EQ(interner.Names()[0], "b");
    EXPECT_EQ(interner.Names()[1], "a_long_name");
    EXPECT_EQ(interner.Names()[2], "a");
}

TEST(Name_interner, The_key_does_not_depend_on_what_follows_the_name) {
    for (std::size_t length = 1; length <= 20; ++length) {
        std::string const name(length, 'n');
        std::string const before_z = name + "zzzzzzzz";
        std::string const before_ff = name + "\xff\xff\xff\xff\xff\xff\xff\xff";
        std::uint64_t const alone = Name_interner::Key(name, length);
        EXPECT_EQ(Name_interner::Key({before_z.data(), length}, before_z.size()), alone);
        EXPECT_EQ(Name_interner::Key({before_ff.data(), length}, before_ff.size()), alone);
    }
}

TEST(Name_interner, Keys_of_short_names_tell_them_apart) {
    std::string const nul(1, '\0');
    std::set<std::uint64_t> keys;
    std::set<std::string> const names = {
        "a",
        "a" + nul,
        "a" + nul + nul,
        nul,
        nul + nul,
        "\xff",
        "\xff\xff",
        "a\xff",
        "1234567",
        "1234568",
        "123456",
        "b",
        "ab",
        "ba",
        "\x80",
        "\x07",
        std::string(7, '\0'),
        std::string(7, '\xff'),
    };
    for (std::string const& name : names) {
        EXPECT_NE(Name_interner::Key(name, name.size()), 0U) << "0 is a free slot";
        keys.insert(Name_interner::Key(name, name.size()));
    }
    EXPECT_EQ(keys.size(), names.size());
}

TEST(Name_interner, Names_of_seven_and_eight_bytes_never_meet) {
    Name_interner interner;
    std::string const nul(1, '\0');
    std::set<Node> numbers;
    std::set<std::string> const names = {
        "1234567",        "12345678",           "1234567" + nul,      "123456789",
        "12345678" + nul, std::string(7, '\0'), std::string(8, '\0'), std::string(9, '\0')};
    for (std::string const& name : names) {
        numbers.insert(Number(interner, name));
    }
    EXPECT_EQ(numbers.size(), names.size());
}

// Names of eight bytes and more are found by a hash: the same hash is not the same name.
TEST(Name_interner, Long_names_with_the_same_key_stay_apart) {
    Name_interner interner;
    std::uint64_t const key = Name_interner::Key("first_name", 10);
    EXPECT_EQ(interner.Number("first_name", key), 0U);
    EXPECT_EQ(interner.Number("second_name", key), 1U);
    EXPECT_EQ(interner.Number("first_name", key), 0U);
    EXPECT_EQ(interner.Number("second_name", key), 1U);
}

TEST(Name_interner, Many_random_names_keep_their_numbers) {
    test::Random_numbers random(11);
    Name_interner interner;
    std::map<std::string, Node> numbers;
    for (int round = 0; round < 60000; ++round) {
        std::string name;
        for (std::uint32_t left = 1 + random.Below(12); left > 0; --left) {
            name += static_cast<char>(random.Below(round % 2 == 0 ? 3 : 256));
        }
        Node const next = static_cast<Node>(numbers.size());
        ASSERT_EQ(Number(interner, name), numbers.try_emplace(name, next).first->second);
    }
    ASSERT_EQ(interner.Names().size(), numbers.size());
    interner.Release_table();
    for (auto const& [name, number] : numbers) {
        ASSERT_EQ(interner.Names()[number], name);
    }
}

} // namespace
} // namespace cpm
