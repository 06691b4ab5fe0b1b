// SPDX-License-Identifier: MIT
#include "graph/Link_order.h"

#include "support/Random_numbers.h"

#include <bit>
#include <gtest/gtest.h>
#include <map>
#include <vector>

namespace cpm::test {
namespace {

struct Result {
    std::vector<Node_pair> pairs;
    std::vector<double> weights;
    friend bool operator==(Result const&, Result const&) = default;
};

Result Sorted(std::vector<Node_pair> const& pairs, std::vector<double> const& weights,
              Node n_values) {
    Flat_array<Node_pair> sorted;
    sorted.Append(pairs);
    Flat_array<double> with;
    with.Append(weights);
    Sort_and_merge(sorted, with, n_values);
    return {{sorted.begin(), sorted.end()}, {with.begin(), with.end()}};
}

TEST(Sort_and_merge, Nothing_stays_nothing) {
    EXPECT_EQ(Sorted({}, {}, 0), Result());
    EXPECT_EQ(Sorted({}, {}, 10), Result());
}

TEST(Sort_and_merge, Sorts_by_first_then_second) {
    EXPECT_EQ(Sorted({{2, 1}, {0, 3}, {2, 0}, {0, 1}, {1, 2}}, {}, 4).pairs,
              (std::vector<Node_pair>{{0, 1}, {0, 3}, {1, 2}, {2, 0}, {2, 1}}));
}

TEST(Sort_and_merge, Weights_go_with_their_pairs) {
    EXPECT_EQ(Sorted({{2, 1}, {0, 3}, {1, 2}}, {21, 3, 12}, 4),
              (Result{{{0, 3}, {1, 2}, {2, 1}}, {3, 12, 21}}));
}

TEST(Sort_and_merge, Equal_pairs_become_one) {
    EXPECT_EQ(Sorted({{1, 2}, {2, 1}, {1, 2}, {1, 2}}, {}, 3), (Result{{{1, 2}, {2, 1}}, {}}));
    EXPECT_EQ(Sorted({{1, 2}, {2, 1}, {1, 2}, {1, 2}}, {1, 10, 2, 4}, 3),
              (Result{{{1, 2}, {2, 1}}, {7, 10}}));
}

TEST(Sort_and_merge, Weights_add_up_in_the_order_given) {
    // 1e16 + 1 is 1e16, while 1 + 1 + 1e16 is not.
    EXPECT_EQ(Sorted({{1, 2}, {0, 1}, {1, 2}, {1, 2}}, {1e16, 5, 1, 1}, 3).weights,
              (std::vector<double>{5, 1e16}));
    EXPECT_EQ(Sorted({{1, 2}, {0, 1}, {1, 2}, {1, 2}}, {1, 5, 1, 1e16}, 3).weights,
              (std::vector<double>{5, 1e16 + 2}));
}

TEST(Sort_and_merge, A_sum_starts_at_0) {
    Result const result = Sorted({{1, 2}, {1, 3}, {1, 3}}, {-0.0, -0.0, -0.0}, 4);
    ASSERT_EQ(result.weights.size(), 2U);
    for (double const weight : result.weights) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(weight), 0U) << "0 + -0 is 0";
    }
}

TEST(Sort_and_merge, The_largest_value_has_its_place) {
    EXPECT_EQ(Sorted({{6, 6}, {6, 0}, {0, 6}}, {}, 7).pairs,
              (std::vector<Node_pair>{{0, 6}, {6, 0}, {6, 6}}));
}

TEST(Sort_and_merge, Random_pairs_agree_with_a_map) {
    Random_numbers random(13);
    for (int round = 0; round < 300; ++round) {
        Node const n = 1 + random.Below(30);
        bool const weighted = round % 3 != 0;
        std::vector<Node_pair> pairs;
        std::vector<double> weights;
        std::map<Node_pair, double> map;
        for (std::uint32_t left = random.Below(200); left > 0; --left) {
            pairs.push_back({random.Below(n), random.Below(n)});
            double const weight = 0.1 * random.Below(1000);
            map[pairs.back()] += weight;
            if (weighted) {
                weights.push_back(weight);
            }
        }
        Result expected;
        for (auto const& [pair, weight] : map) {
            expected.pairs.push_back(pair);
            if (weighted) {
                expected.weights.push_back(weight);
            }
        }
        ASSERT_EQ(Sorted(pairs, weights, n), expected) << "round " << round;
    }
}

} // namespace
} // namespace cpm::test
