// SPDX-License-Identifier: MIT
#include "Plexor_io/Name_labels.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cpm {
namespace {

// A name of each length from 1 to 40; node i's has i characters. That is short and long names, and
// with 14 and 15 characters the longest short and the shortest long one.
struct Names_of_all_lengths {
    Names_map names;
    std::vector<Node> nodes;
    std::string text;

    Names_of_all_lengths() {
        names.Add("");
        for (Node node = 1; node <= 40; ++node) {
            std::string const name(node, static_cast<char>('a' + node % 26));
            names.Add(name);
            nodes.push_back(node);
            text += name + ' ';
        }
    }
};

TEST(Name_labels, Each_name_is_followed_by_a_blank) {
    Names_of_all_lengths const all;
    Text text;
    Name_labels(all.names).Put(all.nodes, text);
    EXPECT_EQ(text.View(), all.text);
}

TEST(Name_labels, A_record_ends_with_a_blank_and_an_end_of_line) {
    Names_map names;
    for (char const* const name : {"", "ann", "bob"}) {
        names.Add(name);
    }
    Name_labels const labels(names);
    Text text;
    labels.Put_record(7, false, std::vector<Node>{1, 2}, text);
    labels.Put_record(8, true, std::vector<Node>{2}, text);
    EXPECT_EQ(text.View(), "7: ann bob \n-8: bob \n");
}

} // namespace
} // namespace cpm
