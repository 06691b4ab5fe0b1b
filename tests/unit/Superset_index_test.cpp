// SPDX-License-Identifier: MIT
#include "Clique_find/Superset_index.h"

#include "support/Random_numbers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace cpm::test {
namespace {

using Set = std::vector<Node>;

Set Random_set(Node largest, std::uint32_t size, Random_numbers& random) {
    std::set<Node> nodes;
    for (std::uint32_t i = 0; i < size; ++i) {
        nodes.insert(1 + random.Below(largest));
    }
    return {nodes.begin(), nodes.end()};
}

std::vector<std::uint32_t> Holders(Superset_index const& index, Set const& part) {
    std::vector<std::uint32_t> holders;
    bool const stopped = index.Any_superset(part, [&](std::uint32_t i) {
        holders.push_back(i);
        return false;
    });
    EXPECT_FALSE(stopped);
    return holders;
}

TEST(Superset_index, Finds_the_sets_that_hold_a_part_ascending) {
    Random_numbers random(1);
    for (int run = 0; run < 300; ++run) {
        // Nodes further apart than 64, and sets so large that their members are looked up.
        Node const largest = 3 + random.Below(run % 2 == 0 ? 12 : 300);
        Set_list sets;
        std::uint32_t const n_sets = random.Below(30);
        for (std::uint32_t i = 0; i < n_sets; ++i) {
            sets.Add(Random_set(largest, random.Below(run % 3 == 0 ? 200 : 8), random));
        }
        Superset_index const index(sets);
        for (int question = 0; question < 20; ++question) {
            Set const part = Random_set(largest + 5, random.Below(4), random);
            std::vector<std::uint32_t> expected;
            for (std::uint32_t i = 0; i < sets.size(); ++i) {
                if (std::ranges::includes(sets[i], part)) {
                    expected.push_back(i);
                }
            }
            ASSERT_EQ(Holders(index, part), expected);
            ASSERT_EQ(index.Any_superset(part), !expected.empty());
        }
    }
}

TEST(Superset_index, No_set_holds_anything_when_there_are_none) {
    Set_list const none;
    Superset_index const index(none);
    EXPECT_FALSE(index.Any_superset(Set{}));
    EXPECT_FALSE(index.Any_superset(Set{1}));
}

TEST(Superset_index, Every_set_holds_the_empty_one) {
    Set_list const sets{{}, {4, 5}};
    EXPECT_EQ(Holders(Superset_index(sets), {}), (std::vector<std::uint32_t>{0, 1}));
}

TEST(Superset_index, Stops_when_the_visitor_has_seen_enough) {
    Set_list const sets{{1, 2}, {1, 2, 3}, {1, 2, 4}};
    std::vector<std::uint32_t> seen;
    EXPECT_TRUE(Superset_index(sets).Any_superset(Set{1, 2}, [&](std::uint32_t i) {
        seen.push_back(i);
        return i == 1;
    }));
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{0, 1}));
}

TEST(Superset_index, Answers_for_the_nodes_that_are_asked_for) {
    Set_list const sets{{1, 2, 3}, {2, 3, 4}};
    std::vector<bool> const asked{false, false, true, true}; // nodes 2 and 3
    EXPECT_EQ(Holders(Superset_index(sets, &asked), {2, 3}), (std::vector<std::uint32_t>{0, 1}));
}

} // namespace
} // namespace cpm::test
