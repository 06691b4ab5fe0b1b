// SPDX-License-Identifier: MIT
#include "Plexor_io/Switches.h"

#include "support/Errors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cpm {
namespace {

using Map = Switches::Param_map;
using Words = std::vector<std::string>;

Map Split(Words const& arguments) {
    return Switches(arguments).Params();
}

TEST(Switches_class, The_first_argument_is_the_program_name) {
    Switches const switches(Words{"-odd/name", "-i", "a.txt"});
    EXPECT_EQ(switches.Prog_name(), "-odd/name");
    EXPECT_EQ(switches.Params(), (Map{{"-i", {"a.txt"}}}));
}

TEST(Switches_class, Takes_an_argument_vector) {
    std::vector<char const*> const argv{"plexor", "-i", "a.txt", "-D", "beyond"};
    Switches const switches(4, argv.data());
    EXPECT_EQ(switches.Prog_name(), "plexor");
    EXPECT_EQ(switches.Params(), (Map{{"-i", {"a.txt"}}, {"-D", {}}}));
}

TEST(Switches_class, No_argument_at_all_is_an_error) {
    try {
        Switches const switches(0, nullptr);
        FAIL();
    } catch (Xerror_msg const& error) {
        EXPECT_STREQ(error.what(), " program name missing in Switches...\n");
    }
    EXPECT_THROW(Switches(Words{}), Xerror_msg);
}

TEST(Switches_class, A_program_name_alone_has_no_switches) {
    EXPECT_EQ(Split({"plexor"}), Map{});
}

TEST(Switches_class, Values_go_to_the_switch_before_them) {
    EXPECT_EQ(Split({"plexor", "-i", "a.txt", "extra", "-k", "4"}),
              (Map{{"-i", {"a.txt", "extra"}}, {"-k", {"4"}}}));
}

TEST(Switches_class, A_value_before_the_first_switch_has_no_name) {
    EXPECT_EQ(Split({"plexor", "stray", "-i", "a.txt"}),
              (Map{{"---noname", {"stray"}}, {"-i", {"a.txt"}}}));
}

TEST(Switches_class, A_repeated_switch_keeps_its_last_values) {
    EXPECT_EQ(Split({"plexor", "-i", "a.txt", "-D", "-i", "b.txt"}),
              (Map{{"-i", {"b.txt"}}, {"-D", {}}}));
    EXPECT_EQ(Split({"plexor", "-i", "a.txt", "-i"}), (Map{{"-i", {}}}));
}

TEST(Switches_class, A_negative_number_is_a_switch) {
    EXPECT_EQ(Split({"plexor", "-w", "-5"}), (Map{{"-w", {}}, {"-5", {}}}));
}

TEST(Switches_class, A_lone_minus_is_a_value) {
    EXPECT_EQ(Split({"plexor", "-i", "-"}), (Map{{"-i", {"-"}}}));
}

TEST(Switches_class, An_empty_argument_is_a_value) {
    EXPECT_EQ(Split({"plexor", "-i", ""}), (Map{{"-i", {""}}}));
}

TEST(Switches_class, Construct_replaces_the_command_line) {
    Switches switches(Words{"plexor", "-i", "a.txt"});
    switches.Construct({"other", "-k", "3"});
    EXPECT_EQ(switches.Prog_name(), "other");
    EXPECT_EQ(switches.Params(), (Map{{"-k", {"3"}}}));
}

TEST(Gmap, A_const_map_gives_what_is_there) {
    gmap<std::string, int> const map(std::map<std::string, int>{{"a", 1}, {"b", 2}});
    EXPECT_EQ(map["a"], 1);
    EXPECT_EQ(map["b"], 2);
}

TEST(Gmap, A_missing_key_of_a_const_map_is_an_error) {
    gmap<std::string, int> const map(std::map<std::string, int>{{"a", 1}});
    try {
        static_cast<void>(map["b"]);
        FAIL();
    } catch (std::logic_error const& error) {
        EXPECT_STREQ(error.what(), "ERROR: gmap:: Missing Key in \n const T & gmap[] const.\n");
    }
    EXPECT_EQ(map.size(), 1U);
}

TEST(Gmap, Otherwise_it_is_a_map) {
    gmap<std::string, int> map(std::map<std::string, int>{});
    map["a"] = 3;
    EXPECT_EQ(map.at("a"), 3);
    EXPECT_EQ(map["new"], 0);
    EXPECT_EQ(map.size(), 2U);
}

} // namespace
} // namespace cpm
