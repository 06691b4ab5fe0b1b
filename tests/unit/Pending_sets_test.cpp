// SPDX-License-Identifier: MIT
#include "Clique_find/Pending_sets.h"

#include "support/Graph_makers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace cpm::test {
namespace {

Set_list Sets_of_four(Node last) {
    Set_list sets;
    for (Node a = 2; a <= last; ++a) {
        for (Node b = a + 1; b <= last; ++b) {
            for (Node c = b + 1; c <= last; ++c) {
                sets.Add(std::vector<Node>{1, a, b, c});
            }
        }
    }
    return sets;
}

TEST(Pending_sets, When_they_are_full_what_comes_first_of_an_attempt_stays) {
    Set_list const sets = Sets_of_four(30);
    constexpr std::size_t max_bytes = 40000;
    Pending_sets pending(30, max_bytes);
    pending.Add(sets);
    std::size_t const n = pending.Sets().size();
    EXPECT_LE(pending.Bytes(), max_bytes);
    EXPECT_GT(pending.Bytes(), max_bytes - 100);
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_TRUE(std::ranges::equal(pending.Sets()[i], sets[i]));
    }
    pending.Add(Sets_of_four(31));
    EXPECT_EQ(pending.Sets().size(), n);
    pending.Add(Set_list{{1, 2, 3}});
    EXPECT_EQ(pending.Sets().size(), n + 1) << "sets of three nodes are always kept";
}

TEST(Pending_sets, Sets_of_nodes_done_meanwhile_make_room) {
    Set_list const sets = Sets_of_four(30);
    Pending_sets pending(30, 40000);
    pending.Add(sets);
    std::size_t const n = pending.Sets().size();
    pending.Done(2); // is in the first sets
    pending.Add(sets);
    EXPECT_LE(pending.Bytes(), 40000U);
    EXPECT_GT(pending.Sets().size(), n / 2);
    EXPECT_TRUE(std::ranges::any_of(To_vectors(pending.Sets()),
                                    [](auto const& set) { return set[1] != 2; }));
    Set_list cliques;
    Progress nobody;
    pending.Register(cliques, nobody);
    EXPECT_FALSE(cliques.empty());
    EXPECT_TRUE(std::ranges::none_of(cliques.Flat(), [](Node node) { return node == 2; }));
}

} // namespace
} // namespace cpm::test
