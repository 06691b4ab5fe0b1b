// SPDX-License-Identifier: MIT
#include "Coms_funcs/Sliced_lists.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace cpm::test {
namespace {

using Classes = std::vector<Node_class>;
using Sets = std::vector<std::set<Node_class>>;

constexpr std::size_t n_classes = 128;
using Numbers = std::vector<std::uint32_t>;

void Fill(Sliced_list& list, Sets const& sets) {
    for (std::uint32_t i = 0; i < sets.size(); ++i) {
        for (Node_class const one : sets[i]) {
            list.Add(i, one);
        }
    }
}

Numbers Found(Sliced_list const& list, Classes const& nodes, Classes const& needed,
              std::uint32_t most_lacking) {
    Numbers found;
    list.Walk({nodes, needed, most_lacking}, found);
    return found;
}

Numbers By_counting(Sets const& sets, std::vector<bool> const& closed, Classes const& nodes,
                    Classes const& needed, std::uint32_t most_lacking) {
    Numbers found;
    for (std::uint32_t i = 0; i < sets.size(); ++i) {
        auto const has = [&](Node_class one) { return sets[i].contains(one); };
        auto const lacking = std::ranges::count_if(nodes, [&](Node_class c) { return !has(c); });
        if (!closed[i] && lacking <= most_lacking &&
            (needed.empty() || std::ranges::any_of(needed, has))) {
            found.push_back(i);
        }
    }
    return found;
}

Classes Some_classes(std::mt19937& random, std::size_t count, unsigned range) {
    Classes classes(count);
    for (Node_class& one : classes) {
        one = static_cast<Node_class>(random() % range);
    }
    return classes;
}

TEST(Sliced_list, Finds_what_counting_finds) {
    std::mt19937 random(7);
    std::size_t n_found = 0;
    for (std::uint32_t const n_sets : {1U, 63U, 64U, 511U, 512U, 513U, 1500U}) {
        for (unsigned const range : {12U, 128U}) {
            Sets sets(n_sets);
            for (auto& set : sets) {
                Classes const classes = Some_classes(random, 2 + random() % 30, range);
                set.insert(classes.begin(), classes.end());
            }
            Sliced_list list(n_sets, n_classes);
            Fill(list, sets);
            std::vector<bool> closed(n_sets, false);
            for (unsigned round = 0; round < 60; ++round) {
                Classes const nodes = Some_classes(random, random() % 40, range);
                Classes const needed = Some_classes(random, random() % 4, range);
                auto const most_lacking = static_cast<std::uint32_t>(random() % (nodes.size() + 1));
                Numbers const found = Found(list, nodes, needed, most_lacking);
                ASSERT_EQ(found, By_counting(sets, closed, nodes, needed, most_lacking))
                    << n_sets << " sets, round " << round;
                n_found += found.size();
                if (!found.empty()) {
                    std::uint32_t const one = found[random() % found.size()];
                    list.Close(one);
                    closed[one] = true;
                }
            }
        }
    }
    EXPECT_GT(n_found, 1000U);
}

TEST(Sliced_list, Counts_up_to_any_number_of_lacking_nodes) {
    Sliced_list list(3, n_classes);
    list.Add(1, 5);
    for (std::uint32_t const lacking : {0U, 1U, 2U, 3U, 4U, 7U, 8U, 15U, 16U, 100U, 255U}) {
        Classes nodes(lacking + 1, 9); // sets 0 to 2 lack them all
        EXPECT_EQ(Found(list, nodes, {}, lacking), Numbers{}) << lacking;
        EXPECT_EQ(Found(list, nodes, {}, lacking + 1), (Numbers{0, 1, 2})) << lacking;
        nodes.back() = 5;
        EXPECT_EQ(Found(list, nodes, {}, lacking), (Numbers{1})) << lacking;
    }
    // Beyond what the counters hold, sets are found without need, but none is lost.
    EXPECT_EQ(Found(list, Classes(300, 5), {}, 256), (Numbers{0, 1, 2}));
}

TEST(Sliced_list, Of_no_sets_finds_nothing) {
    EXPECT_EQ(Found(Sliced_list(), {1, 2}, {}, 2), Numbers{});
    EXPECT_EQ(Found(Sliced_list(0, n_classes), {1, 2}, {}, 2), Numbers{});
}

TEST(Sliced_lists, Keep_to_their_room) {
    Sliced_lists lists(3 * Sliced_list::Bytes(512, n_classes), 10, n_classes);
    EXPECT_EQ(lists.N_classes(), n_classes);
    EXPECT_EQ(lists.Find(4), nullptr);
    ASSERT_NE(lists.Begin(4, 512), nullptr);
    ASSERT_NE(lists.Begin(5, 513), nullptr);
    EXPECT_NE(lists.Find(4), nullptr);
    EXPECT_NE(lists.Find(5), nullptr);
    EXPECT_EQ(lists.Begin(6, 1), nullptr);
    EXPECT_EQ(lists.Find(6), nullptr);
    // In place of an old list there is its room.
    EXPECT_NE(lists.Begin(5, 512), nullptr);
    EXPECT_NE(lists.Begin(6, 1), nullptr);
    EXPECT_NE(lists.Find(4), nullptr);
    lists.Give_up_all();
    EXPECT_EQ(lists.Find(4), nullptr);
    EXPECT_NE(lists.Begin(9, 3 * 512), nullptr);
    EXPECT_EQ(lists.Begin(9, 3 * 512 + 1), nullptr);
    EXPECT_EQ(lists.Find(9), nullptr);
}

TEST(Sliced_lists, A_new_list_knows_nothing_of_the_old_one) {
    Sliced_lists lists(Sliced_list::Bytes(512, n_classes), 2, n_classes);
    Sliced_list* list = lists.Begin(1, 2);
    list->Add(0, 3);
    list->Close(1);
    list = lists.Begin(1, 2);
    EXPECT_EQ(Found(*list, {3}, {}, 0), Numbers{});
    EXPECT_EQ(Found(*list, {3}, {}, 1), (Numbers{0, 1}));
}

} // namespace
} // namespace cpm::test
