// SPDX-License-Identifier: MIT
#include "Coms_funcs/Premerge_overlaps.h"

#include "support/Graph_makers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

namespace cpm::test {
namespace {

using Matrix = std::vector<std::map<Clique_number, std::uint32_t>>;
using Row = std::vector<Clique_overlap>;

std::uint32_t Shared(Node_set a, Node_set b) {
    std::vector<Node> shared;
    std::ranges::set_intersection(a, b, std::back_inserter(shared));
    return static_cast<std::uint32_t>(shared.size());
}

// The rows that a search leaves.
Matrix Rows_of(Set_list const& cliques) {
    Matrix matrix(cliques.size());
    for (Clique_number i = 0; i < cliques.size(); ++i) {
        for (Clique_number j = 0; j < cliques.size(); ++j) {
            if (std::uint32_t const shared = Shared(cliques[i], cliques[j]); shared > 0) {
                matrix[i][j] = shared;
            }
        }
    }
    return matrix;
}

// What is written into them for the cliques from n_exact on.
void Extend(Matrix& matrix, Set_list const& cliques, Clique_number n_exact) {
    for (std::size_t i = n_exact; i < cliques.size(); ++i) {
        matrix.emplace_back();
    }
    for (Clique_number i = n_exact; i < cliques.size(); ++i) {
        matrix[i][i] = static_cast<std::uint32_t>(cliques[i].size());
        for (Clique_number j = 0; j < cliques.size(); ++j) {
            std::uint32_t const shared = Shared(cliques[i], cliques[j]);
            if ((j < n_exact || j > i) && shared > 0) {
                matrix[i][j] = shared;
                matrix[j][i] = shared;
            }
        }
    }
}

Row Row_of(Matrix const& matrix, Clique_number clique, std::uint32_t least, std::size_t n_cliques) {
    Row row;
    for (auto const& [other, shared] : matrix[clique]) {
        if (shared >= least && other < n_cliques) {
            row.push_back({other, shared});
        }
    }
    return row;
}

Row Row_of(Premerge_overlaps& premerge, Clique_number clique, std::uint32_t least) {
    Row row{{77, 77}}; // what was there before goes
    premerge.Row(clique, least, row);
    return row;
}

TEST(Premerge_overlaps, A_kept_clique_has_the_row_of_the_position_it_has_moved_to) {
    Set_list const before{{1, 2, 3}, {3, 4, 5, 6}, {5, 6, 7}};
    Set_list const after{{3, 4, 5, 6}, {5, 6, 7}, {1, 2, 3, 8}}; // the first was dropped
    Premerge_overlaps premerge(before, after, 2, 8);
    EXPECT_EQ(Row_of(premerge, 0, 1), (Row{{0, 3}, {1, 1}, {2, 1}})) << "that of {1, 2, 3}";
    EXPECT_EQ(Row_of(premerge, 1, 1), (Row{{0, 1}, {1, 4}, {2, 2}}))
        << "the last entry is that of {5, 6, 7}, as {1, 2, 3, 8} shares nothing with it";
    EXPECT_EQ(Row_of(premerge, 2, 1), (Row{{0, 1}, {1, 2}, {2, 4}})) << "its own size is new";
}

TEST(Premerge_overlaps, Entries_that_are_too_small_are_left_out) {
    Set_list const before{{1, 2, 3}, {2, 3, 4}, {4, 5, 6}};
    Set_list const after{{2, 3, 4}, {4, 5, 6}, {1, 2, 3, 7}};
    Premerge_overlaps premerge(before, after, 2, 7);
    EXPECT_EQ(Row_of(premerge, 0, 0), (Row{{0, 3}, {1, 2}, {2, 2}}));
    EXPECT_EQ(Row_of(premerge, 0, 3), (Row{{0, 3}}));
    EXPECT_EQ(Row_of(premerge, 0, 4), Row());
}

TEST(Premerge_overlaps, Positions_after_the_last_clique_are_ignored) {
    Set_list const before{{1, 2, 3}, {1, 2, 4}, {1, 2, 5}, {1, 2, 6}};
    Set_list const after{{1, 2, 6}, {1, 2, 3, 4, 5}}; // three were dropped, one was added
    Premerge_overlaps premerge(before, after, 1, 6);
    EXPECT_EQ(Row_of(premerge, 0, 1), (Row{{0, 3}, {1, 2}}));
    EXPECT_EQ(Row_of(premerge, 1, 1), (Row{{0, 2}, {1, 5}}));
}

Set_list Random_sets(std::size_t count, Node n, Random_numbers& random) {
    Set_list sets;
    for (std::size_t i = 0; i < count; ++i) {
        Nodes set;
        for (std::uint32_t left = 1 + random.Below(7); left > 0; --left) {
            set.insert(1 + random.Below(n));
        }
        sets.Add(std::vector<Node>(set.begin(), set.end()));
    }
    return sets;
}

TEST(Premerge_overlaps, Random_lists_agree_with_a_stored_matrix) {
    Random_numbers random(89);
    for (int round = 0; round < 600; ++round) {
        Node const n = 4 + random.Below(20);
        Set_list const before = Random_sets(1 + random.Below(12), n, random);
        Set_list after;
        for (std::size_t c = 0; c < before.size(); ++c) {
            if (random.Percent(70)) {
                after.Add(before[c]);
            }
        }
        auto const n_exact = static_cast<Clique_number>(after.size());
        Set_list const more = Random_sets(random.Below(9), n, random);
        for (std::size_t c = 0; c < more.size(); ++c) {
            after.Add(more[c]);
        }
        Matrix matrix = Rows_of(before);
        Extend(matrix, after, n_exact);
        Premerge_overlaps premerge(before, after, n_exact, n);
        for (std::uint32_t const least : {0U, 1U, 2U, 3U, 5U}) {
            for (Clique_number c = 0; c < after.size(); ++c) {
                ASSERT_EQ(Row_of(premerge, c, least), Row_of(matrix, c, least, after.size()))
                    << "round " << round << ", clique " << c << ", at least " << least;
            }
        }
    }
}

TEST(Premerge_overlaps, Fitting_overlaps_are_those_of_the_cliques) {
    Random_numbers random(97);
    Set_list const before = Random_sets(10, 12, random);
    Set_list after = before;
    Set_list const more = Random_sets(6, 12, random);
    for (std::size_t c = 0; c < more.size(); ++c) {
        after.Add(more[c]);
    }
    Matrix const matrix = Rows_of(after);
    Premerge_overlaps premerge(before, after, before.size(), 12);
    for (Clique_number c = 0; c < after.size(); ++c) {
        EXPECT_EQ(Row_of(premerge, c, 1), Row_of(matrix, c, 1, after.size()));
    }
}

} // namespace
} // namespace cpm::test
