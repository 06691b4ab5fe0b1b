// SPDX-License-Identifier: MIT
#include "graph/Convert_links.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace cpm {
namespace {

using Named = std::map<std::pair<std::string, std::string>, double>;
using Indexed = std::map<std::pair<Node, Node>, double>;
using Index_names = std::map<Node, std::string>;

Link_map To_link_map(Named const& named, bool weighted) {
    std::map<std::string, Node> place;
    for (auto const& [names, weight] : named) {
        place[names.first] = 0;
        place[names.second] = 0;
    }
    Link_map links;
    for (auto& [name, number] : place) {
        number = static_cast<Node>(links.names.size());
        links.names.Add(name);
    }
    for (auto const& [names, weight] : named) {
        links.links.push_back({place[names.first], place[names.second]});
        if (weighted) {
            links.weights.push_back(weight);
        }
    }
    return links;
}

struct Result {
    Indexed links;
    Index_names names;
    friend bool operator==(Result const&, Result const&) = default;
};

Result Converted(Named const& named, bool directed, bool weighted = true) {
    Index_links index_links;
    index_links.pairs.push_back({7, 8}); // what was there before goes
    index_links.weights.push_back(3);
    Names_map names;
    names.Add("before");
    Convert_s_links(index_links, names, To_link_map(named, weighted), directed);
    EXPECT_EQ(index_links.weights.size(), weighted ? index_links.pairs.size() : 0U);
    EXPECT_EQ(names[0], "");
    Result result;
    for (std::size_t i = 0; i < index_links.size(); ++i) {
        Node_pair const pair = index_links.pairs[i];
        EXPECT_TRUE(i == 0 || index_links.pairs[i - 1] < pair);
        result.links[{pair.first, pair.second}] = index_links.Weight(i);
    }
    for (Node i = 1; i < names.size(); ++i) {
        result.names[i] = std::string(names[i]);
    }
    return result;
}

TEST(Convert_s_links, Undirected_a_link_and_its_reverse_become_one) {
    EXPECT_EQ(Converted({{{"a", "b"}, 1}, {{"b", "a"}, 2}}, false),
              (Result{{{{1, 2}, 3}}, {{1, "a"}, {2, "b"}}}));
}

TEST(Convert_s_links, Directed_a_link_and_its_reverse_stay_two) {
    EXPECT_EQ(Converted({{{"a", "b"}, 1}, {{"b", "a"}, 2}}, true),
              (Result{{{{1, 2}, 1}, {{2, 1}, 2}}, {{1, "a"}, {2, "b"}}}));
}

TEST(Convert_s_links, Without_weights_every_weight_is_0) {
    EXPECT_EQ(Converted({{{"a", "b"}, 1}, {{"b", "a"}, 2}}, false, false),
              (Result{{{{1, 2}, 0}}, {{1, "a"}, {2, "b"}}}));
}

TEST(Convert_s_links, Names_are_numbered_as_the_ordered_links_meet_them) {
    EXPECT_EQ(Converted({{{"z", "y"}, 0}, {{"a", "b"}, 0}}, false),
              (Result{{{{1, 2}, 0}, {{3, 4}, 0}}, {{1, "a"}, {2, "b"}, {3, "z"}, {4, "y"}}}));
    EXPECT_EQ(Converted({{{"a", "b"}, 0}, {{"a", "c"}, 0}, {{"c", "b"}, 0}}, false),
              (Result{{{{1, 2}, 0}, {{1, 3}, 0}, {{2, 3}, 0}}, {{1, "a"}, {2, "b"}, {3, "c"}}}));
}

TEST(Convert_s_links, Undirected_the_smaller_index_comes_first_whatever_the_names) {
    // c has index 2, b has index 3.
    EXPECT_EQ(Converted({{{"a", "c"}, 1}, {{"b", "c"}, 5}}, false),
              (Result{{{{1, 2}, 1}, {{2, 3}, 5}}, {{1, "a"}, {2, "c"}, {3, "b"}}}));
    EXPECT_EQ(Converted({{{"a", "c"}, 1}, {{"b", "c"}, 5}}, true),
              (Result{{{{1, 2}, 1}, {{3, 2}, 5}}, {{1, "a"}, {2, "c"}, {3, "b"}}}));
}

TEST(Convert_s_links, No_links_give_no_names) {
    EXPECT_EQ(Converted({}, false), Result());
    EXPECT_EQ(Converted({}, true, false), Result());
}

TEST(Convert_s_links, Random_links_agree_with_maps) {
    test::Random_numbers random(17);
    for (int round = 0; round < 200; ++round) {
        Named named;
        for (std::uint32_t left = random.Below(60); left > 0; --left) {
            std::string const a = std::to_string(random.Below(20));
            std::string const b = std::to_string(random.Below(20));
            if (a != b) {
                named[{a, b}] = 0.1 * random.Below(100);
            }
        }
        bool const directed = round % 2 == 0;
        Result expected;
        std::map<std::string, Node> index;
        auto const index_of = [&](std::string const& name) {
            if (index.count(name) == 0) {
                Node const next = static_cast<Node>(index.size() + 1);
                index[name] = next;
                expected.names[index[name]] = name;
            }
            return index[name];
        };
        for (auto const& [names, weight] : named) {
            Node const first = index_of(names.first);
            Node const second = index_of(names.second);
            bool const swap = !directed && second < first;
            expected.links[swap ? std::pair(second, first) : std::pair(first, second)] += weight;
        }
        ASSERT_EQ(Converted(named, directed), expected) << "round " << round;
    }
}

} // namespace
} // namespace cpm
