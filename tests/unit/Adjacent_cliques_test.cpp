// SPDX-License-Identifier: MIT
#include "Coms_funcs/Adjacent_cliques.h"

#include "support/Graph_makers.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <random>

namespace cpm::test {
namespace {

std::uint32_t Shared(Node_set a, Node_set b) {
    std::vector<Node> shared;
    std::ranges::set_intersection(a, b, std::back_inserter(shared));
    return static_cast<std::uint32_t>(shared.size());
}

// All pairs, one by one. Visits as the index does.
class By_pairs {
public:
    By_pairs(Set_list const& cliques, Ranked_cliques const& ranked)
        : cliques_(cliques), ranked_(ranked) {}

    void Start_level(std::uint32_t min_shared, std::uint32_t min_size) {
        min_shared_ = min_shared;
        visited_.clear();
        for (Clique_number c = 0; c < cliques_.size(); ++c) {
            visited_.push_back(cliques_[c].size() < min_size); // inactive
        }
    }
    bool Is_visited(Clique_number c) const { return visited_[c]; }
    std::size_t Next_unvisited(std::size_t from) const {
        auto const begin = visited_.begin() + static_cast<std::ptrdiff_t>(from);
        return static_cast<std::size_t>(std::find(begin, visited_.end(), false) - visited_.begin());
    }
    Flat_array<Adjacent_clique> Visit_adjacent(Clique_number from) {
        Flat_array<Adjacent_clique> adjacent;
        for (Clique_number c = 0; c < cliques_.size(); ++c) {
            if (!visited_[c] && Shared(cliques_[from], cliques_[c]) >= min_shared_) {
                visited_[c] = true;
                adjacent.push_back({c, New_nodes(from, c)});
            }
        }
        return adjacent;
    }

private:
    std::uint64_t New_nodes(Clique_number from, Clique_number clique) const {
        std::span<Node const> const ranked = ranked_[clique];
        if (from == clique) {
            return 0;
        }
        if (ranked.size() > 64) {
            return all_new;
        }
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < ranked.size(); ++i) {
            bool const is_new = !std::ranges::binary_search(cliques_[from], ranked[i]);
            bits |= std::uint64_t{is_new ? 1U : 0U} << i;
        }
        return bits;
    }

    Set_list const& cliques_;
    Ranked_cliques const& ranked_;
    std::uint32_t min_shared_ = 0;
    std::vector<bool> visited_;
};

std::vector<std::pair<Clique_number, std::uint64_t>>
Plain(Flat_array<Adjacent_clique> const& adjacent) {
    std::vector<std::pair<Clique_number, std::uint64_t>> plain;
    for (Adjacent_clique const& one : adjacent) {
        plain.push_back({one.clique, one.new_nodes});
    }
    return plain;
}

std::vector<Clique_number> Adjacent_to(Adjacent_cliques& index, Clique_number from) {
    Flat_array<Adjacent_clique> adjacent;
    index.Visit_adjacent({from, all_new}, adjacent);
    std::vector<Clique_number> cliques;
    for (Adjacent_clique const& one : adjacent) {
        cliques.push_back(one.clique);
    }
    return cliques;
}

using Numbers = std::vector<Clique_number>;

TEST(Adjacent_cliques, Nodes_are_ranked_rarest_first_then_by_index) {
    Set_list const cliques{{1, 2, 3}, {2, 3, 4}, {3, 4, 5}};
    Ranked_cliques const ranked(cliques, 6);
    EXPECT_EQ(To_vector(ranked[0]), (std::vector<Node>{1, 2, 3}));
    EXPECT_EQ(To_vector(ranked[1]), (std::vector<Node>{2, 4, 3}));
    EXPECT_EQ(To_vector(ranked[2]), (std::vector<Node>{5, 4, 3}));
    EXPECT_EQ(ranked.Number_of_nodes(), 6U);
}

TEST(Adjacent_cliques, Partners_share_enough_nodes_and_come_ascending) {
    Set_list const cliques{{2, 3, 4}, {3, 4, 5}, {1, 2, 3}, {4, 5, 6}};
    Ranked_cliques const ranked(cliques, 6);
    Adjacent_cliques index(ranked);
    index.Start_level(2, 3);
    EXPECT_EQ(Adjacent_to(index, 0), (Numbers{0, 1, 2}));
    EXPECT_EQ(Adjacent_to(index, 1), (Numbers{3})) << "the others are visited";
    EXPECT_EQ(Adjacent_to(index, 1), Numbers());
    index.Start_level(1, 3);
    EXPECT_EQ(Adjacent_to(index, 3), (Numbers{0, 1, 3})) << "no clique is visited at a new level";
    index.Start_level(3, 3);
    EXPECT_EQ(Adjacent_to(index, 3), (Numbers{3})) << "and levels may go up again";
}

TEST(Adjacent_cliques, Partners_are_appended) {
    Set_list const cliques{{1, 2, 3}, {2, 3, 4}};
    Ranked_cliques const ranked(cliques, 4);
    Adjacent_cliques index(ranked);
    index.Start_level(2, 3);
    Flat_array<Adjacent_clique> adjacent;
    adjacent.push_back({9, 5});
    index.Visit_adjacent({1, all_new}, adjacent);
    EXPECT_EQ(Plain(adjacent),
              (std::vector<std::pair<Clique_number, std::uint64_t>>{{9, 5}, {0, 1}, {1, 0}}));
    EXPECT_TRUE(index.Is_visited(0));
    EXPECT_TRUE(index.Is_visited(1));
}

TEST(Adjacent_cliques, Small_cliques_are_inactive) {
    Set_list const cliques{{1, 2, 3}, {1, 2, 3, 4}, {2, 3, 4, 5}};
    Ranked_cliques const ranked(cliques, 5);
    Adjacent_cliques index(ranked);
    index.Start_level(3, 4);
    EXPECT_EQ(Adjacent_to(index, 1), (Numbers{1, 2}));
    EXPECT_TRUE(index.Is_visited(0));
    EXPECT_EQ(index.Next_unvisited(0), 3U) << "the other two are visited";
    index.Start_level(3, 3);
    EXPECT_EQ(index.Next_unvisited(1), 1U);
    EXPECT_EQ(Adjacent_to(index, 1), (Numbers{0, 1, 2}));
    index.Start_level(2, 4);
    EXPECT_EQ(Adjacent_to(index, 1), (Numbers{1, 2})) << "inactive again";
}

// From the largest clique to a smaller one and back: neither may rule the other out unseen.
TEST(Adjacent_cliques, Cliques_of_any_size_find_each_other) {
    for (Node const large : {63U, 64U, 65U, 254U, 255U, 256U, 400U}) {
        std::vector<Node> first;
        for (Node node = 1; node <= large; ++node) {
            first.push_back(node);
        }
        std::vector<Node> second(first.begin(), first.begin() + 60);
        second.push_back(large + 1);
        Set_list cliques;
        cliques.Add(first);
        cliques.Add(second);
        Ranked_cliques const ranked(cliques, large + 1);
        Adjacent_cliques index(ranked);
        index.Start_level(60, 61);
        EXPECT_EQ(Adjacent_to(index, 0), (Numbers{0, 1})) << large;
        index.Start_level(60, 61);
        EXPECT_EQ(Adjacent_to(index, 1), (Numbers{0, 1})) << large;
        index.Start_level(61, 61);
        EXPECT_EQ(Adjacent_to(index, 0), (Numbers{0})) << large;
    }
}

// Sets of very different sizes, with few rare and many common nodes.
Set_list Random_sets(std::size_t count, Node n, Node largest, Random_numbers& random) {
    Set_list sets;
    for (std::size_t i = 0; i < count; ++i) {
        Nodes set;
        Node const size = 1 + random.Below(random.Percent(15) ? largest : std::min(largest, 9U));
        Node const hubs = 1 + random.Below(n);
        if (i > 0 && random.Percent(50)) { // much of another set
            for (Node const node : sets[random.Below(static_cast<std::uint32_t>(i))]) {
                if (random.Percent(85)) {
                    set.insert(node);
                }
            }
        }
        while (set.size() < size) {
            set.insert(1 + random.Below(set.size() < hubs ? hubs : n));
        }
        sets.Add(std::vector<Node>(set.begin(), set.end()));
    }
    return sets;
}

void Compare_level(Adjacent_cliques& index, By_pairs& by_pairs, Set_list const& cliques,
                   Random_numbers& random) {
    // Some in any order, with nothing known of them.
    for (std::uint32_t left = random.Below(6); left > 0; --left) {
        Clique_number const from = random.Below(static_cast<std::uint32_t>(cliques.size()));
        Flat_array<Adjacent_clique> adjacent;
        index.Visit_adjacent({from, all_new}, adjacent);
        ASSERT_EQ(Plain(adjacent), Plain(by_pairs.Visit_adjacent(from))) << "from " << from;
    }
    // And the way percolation goes, with what is known.
    for (Clique_number c = 0; c < cliques.size(); ++c) {
        ASSERT_EQ(index.Next_unvisited(c), by_pairs.Next_unvisited(c));
        Flat_array<Adjacent_clique> open;
        if (!index.Is_visited(c)) {
            open.push_back({c, all_new});
        }
        while (!open.empty()) {
            Adjacent_clique const from = open.back();
            open.pop_back();
            Flat_array<Adjacent_clique> adjacent;
            index.Visit_adjacent(from, adjacent);
            ASSERT_EQ(Plain(adjacent), Plain(by_pairs.Visit_adjacent(from.clique)));
            open.Append(adjacent);
        }
        ASSERT_EQ(index.Is_visited(c), by_pairs.Is_visited(c));
    }
    ASSERT_EQ(index.Next_unvisited(cliques.size()), cliques.size());
}

void Compare_levels(Set_list const& cliques, Node n, std::uint32_t largest,
                    Random_numbers& random) {
    Ranked_cliques const ranked(cliques, n);
    // Half of the time some lists have no signatures, or none has.
    Adjacent_cliques index(ranked,
                           random.Percent(50) ? Posting_lists::very_long : 1 + random.Below(12));
    By_pairs by_pairs(cliques, ranked);
    for (std::uint32_t min_size = largest + 2; min_size > 1; --min_size) {
        std::uint32_t const min_shared = min_size - 1;
        std::uint32_t const size = random.Percent(50) ? min_size : min_shared;
        if (min_size < 12 || random.Percent(10)) {
            index.Start_level(min_shared, size);
            by_pairs.Start_level(min_shared, size);
            ASSERT_NO_FATAL_FAILURE(Compare_level(index, by_pairs, cliques, random))
                << "least size " << size << ", least shared " << min_shared;
        }
    }
    for (int again = 0; again < 6; ++again) {
        std::uint32_t const min_shared = 1 + random.Below(largest);
        std::uint32_t const min_size = min_shared + random.Below(3);
        index.Start_level(min_shared, min_size);
        by_pairs.Start_level(min_shared, min_size);
        ASSERT_NO_FATAL_FAILURE(Compare_level(index, by_pairs, cliques, random))
            << "out of turn: " << min_size << ", " << min_shared;
    }
}

TEST(Adjacent_cliques, Random_lists_agree_with_all_pairs) {
    Random_numbers random(71);
    for (int round = 0; round < 150; ++round) {
        Node const n = 3 + random.Below(30);
        std::uint32_t const largest = std::min(n, 8U);
        Set_list const cliques = Random_sets(1 + random.Below(50), n, largest, random);
        ASSERT_NO_FATAL_FAILURE(Compare_levels(cliques, n, largest, random)) << "round " << round;
    }
}

TEST(Adjacent_cliques, Large_cliques_agree_with_all_pairs) {
    Random_numbers random(73);
    for (std::uint32_t const largest : {63U, 66U, 90U, 253U, 256U, 300U}) {
        Node const n = largest + 20;
        Set_list cliques = Random_sets(40, n, largest, random);
        for (std::uint32_t const size : {largest - 1, largest, largest}) {
            // Sizes around the limits, nearly the same nodes.
            std::vector<Node> nodes;
            Node const leave_out = random.Below(size);
            for (Node node = 1; nodes.size() < size; ++node) {
                if (node != leave_out) {
                    nodes.push_back(node);
                }
            }
            cliques.Add(nodes);
        }
        ASSERT_NO_FATAL_FAILURE(Compare_levels(cliques, n, largest, random)) << largest;
    }
}

TEST(Adjacent_cliques, A_list_scanned_many_times_forgets_visited_cliques_only) {
    // Node 1 is in all cliques, so that its list is walked over and over.
    Set_list cliques;
    for (Node i = 0; i < 600; ++i) {
        cliques.Add(std::vector<Node>{1, 2 + i, 3 + i});
    }
    Ranked_cliques const ranked(cliques, 602);
    Adjacent_cliques index(ranked);
    By_pairs by_pairs(cliques, ranked);
    Random_numbers random(79);
    for (std::uint32_t const min_shared : {3U, 2U, 1U, 2U}) {
        index.Start_level(min_shared, 3);
        by_pairs.Start_level(min_shared, 3);
        ASSERT_NO_FATAL_FAILURE(Compare_level(index, by_pairs, cliques, random));
    }
}

TEST(Adjacent_cliques, A_level_upwards_forgets_the_one_before) {
    Set_list const cliques{{1, 2, 3}, {3, 4, 5, 6}};
    Ranked_cliques const ranked(cliques, 6);
    Adjacent_cliques index(ranked);
    index.Start_level(2, 3);
    index.Start_level(3, 4);
    EXPECT_TRUE(Adjacent_to(index, 0).empty()) << "inactive, and nobody shares three nodes";
}

// Long lists that are asked again and again, with so few adjacent that they stay long.
TEST(Adjacent_cliques, Finds_adjacent_cliques_in_long_lists) {
    std::mt19937 random(3);
    constexpr std::size_t n_cliques = 6000;
    constexpr Node n_nodes = 24;
    Set_list cliques;
    std::vector<std::uint32_t> masks;
    for (std::size_t c = 0; c < n_cliques; ++c) {
        std::uint32_t mask = 0;
        auto const size = static_cast<int>(7 + random() % 3);
        while (std::popcount(mask) < size) {
            mask |= std::uint32_t{2} << random() % n_nodes;
        }
        for (Node node = 1; node <= n_nodes; ++node) {
            if ((mask >> node & 1) != 0) {
                cliques.Append(node);
            }
        }
        cliques.Close_list();
        masks.push_back(mask);
    }
    Ranked_cliques const ranked(cliques, n_nodes);
    Adjacent_cliques index(ranked);
    std::size_t n_adjacent = 0;
    for (std::uint32_t const min_shared : {7U, 6U}) {
        index.Start_level(min_shared, min_shared + 1);
        std::vector<std::uint32_t> unvisited = masks; // 0 once visited, or too small
        for (std::uint32_t& mask : unvisited) {
            mask = std::popcount(mask) > static_cast<int>(min_shared) ? mask : 0;
        }
        for (Clique_number from = 0; from < n_cliques; ++from) {
            std::vector<Clique_number> expected;
            // Tests are not optimised, and this loop is passed many million times: a plain pointer.
            std::uint32_t* const left = unvisited.data();
            for (Clique_number c = 0; c < n_cliques; ++c) {
                if (__builtin_popcount(left[c] & masks[from]) >= static_cast<int>(min_shared)) {
                    left[c] = 0;
                    expected.push_back(c);
                }
            }
            Flat_array<Adjacent_clique> adjacent;
            index.Visit_adjacent({from, all_new}, adjacent);
            std::vector<Clique_number> found;
            for (Adjacent_clique const& one : adjacent) {
                found.push_back(one.clique);
            }
            ASSERT_EQ(found, expected) << "asked by " << from << " at " << min_shared;
            n_adjacent += found.size();
        }
    }
    EXPECT_GT(n_adjacent, n_cliques);
}

} // namespace
} // namespace cpm::test
