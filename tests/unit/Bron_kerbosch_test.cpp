// SPDX-License-Identifier: MIT
#include "Clique_find/Bron_kerbosch.h"

#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <set>

namespace cpm::test {
namespace {

using Candidate = std::uint32_t;
using Set = std::vector<Candidate>;
using Sets = std::vector<Set>;

// A problem, kept as plainly as can be.
struct Problem {
    Candidate n = 0;
    std::set<std::pair<Candidate, Candidate>> links; ///< smaller first
    std::vector<std::set<Candidate>> excluded;       ///< each by the candidates it is linked with

    bool Linked(Candidate a, Candidate b) const {
        return a != b && links.count({std::min(a, b), std::max(a, b)}) > 0;
    }
    bool Is_clique(Set const& set) const {
        for (std::size_t i = 0; i < set.size(); ++i) {
            for (std::size_t j = i + 1; j < set.size(); ++j) {
                if (!Linked(set[i], set[j])) {
                    return false;
                }
            }
        }
        return true;
    }
    bool Some_excluded_has(Set const& set) const {
        return std::ranges::any_of(excluded, [&](std::set<Candidate> const& has) {
            return std::ranges::includes(has, set);
        });
    }
    bool Some_candidate_has(Set const& set) const {
        for (Candidate c = 0; c < n; ++c) {
            if (std::ranges::all_of(set, [&](Candidate m) { return Linked(c, m); })) {
                return true;
            }
        }
        return false;
    }
};

void Set_up(Bron_kerbosch& local, Problem const& problem, std::size_t least) {
    local.Start(problem.n);
    for (auto const& [a, b] : problem.links) {
        local.Link(a, b);
    }
    for (auto const& links : problem.excluded) {
        local.Add_excluded();
        for (Candidate const c : links) {
            if (c % 2 == 0) {
                local.Link_last_excluded(c);
            }
        }
    }
    for (std::size_t e = 0; e < problem.excluded.size(); ++e) {
        for (Candidate const c : problem.excluded[e]) {
            local.Link_excluded(e, c);
        }
    }
    Progress nobody;
    Pace pace(nobody);
    EXPECT_TRUE(local.Drop_excluded(least, pace));
}

// Candidate i has the name 2 * i + 1; the node that is always there is found among them, at
// `always`, an even number.
Sets Cliques(Bron_kerbosch& local, Problem const& problem, Node always, std::size_t least = 2) {
    Set_up(local, problem, least);
    EXPECT_TRUE(local.Find());
    std::vector<Node> names;
    for (Candidate c = 0; c < problem.n; ++c) {
        names.push_back(2 * c + 1);
    }
    Set_list list{{99}}; // what is in the list stays
    local.Append_cliques(always, names, least, list);
    EXPECT_EQ(To_vector(list[0]), (Set{99}));
    Sets sets = To_vectors(list);
    sets.erase(sets.begin());
    return sets;
}

// What should come out, of the cliques as sets of candidates.
Sets Named(Sets const& cliques, Node always, std::size_t least = 2) {
    Sets named;
    for (Set const& clique : cliques) {
        if (clique.size() >= least) {
            named.push_back({always});
            for (Candidate const c : clique) {
                named.back().push_back(2 * c + 1);
            }
            std::ranges::sort(named.back());
        }
    }
    return named;
}

// All sets of candidates, in lexicographic order, held against the definition.
Sets By_subsets(Problem const& problem) {
    Sets result;
    for (std::uint32_t bits = 1; bits < 1U << problem.n; ++bits) {
        Set set;
        for (Candidate c = 0; c < problem.n; ++c) {
            if ((bits >> c & 1) != 0) {
                set.push_back(c);
            }
        }
        if (problem.Is_clique(set) && !problem.Some_candidate_has(set) &&
            !problem.Some_excluded_has(set)) {
            result.push_back(set);
        }
    }
    std::ranges::sort(result);
    return result;
}

// The same by growing cliques in ascending order: for problems of many candidates and few links.
Sets By_growing(Problem const& problem) {
    Sets result;
    Sets open{{}};
    while (!open.empty()) {
        Set const clique = open.back();
        open.pop_back();
        for (Candidate c = clique.empty() ? 0 : clique.back() + 1; c < problem.n; ++c) {
            if (std::ranges::all_of(clique, [&](Candidate m) { return problem.Linked(c, m); })) {
                open.push_back(clique);
                open.back().push_back(c);
            }
        }
        if (!clique.empty() && !problem.Some_candidate_has(clique) &&
            !problem.Some_excluded_has(clique)) {
            result.push_back(clique);
        }
    }
    std::ranges::sort(result);
    return result;
}

Problem Random_problem(Candidate n, std::uint32_t percent, std::size_t n_excluded,
                       std::uint32_t excluded_percent, Random_numbers& random) {
    Problem problem;
    problem.n = n;
    for (Candidate a = 0; a < n; ++a) {
        for (Candidate b = a + 1; b < n; ++b) {
            if (random.Percent(percent)) {
                problem.links.insert({a, b});
            }
        }
    }
    problem.excluded.resize(n_excluded);
    for (auto& links : problem.excluded) {
        for (Candidate c = 0; c < n; ++c) {
            if (random.Percent(excluded_percent)) {
                links.insert(c);
            }
        }
    }
    return problem;
}

// `groups` groups of `size` candidates each; two candidates are linked unless of the same group. A
// clique takes one candidate of each group.
Problem Groups(Candidate groups, Candidate size) {
    Problem problem;
    problem.n = groups * size;
    for (Candidate a = 0; a < problem.n; ++a) {
        for (Candidate b = a + 1; b < problem.n; ++b) {
            if (a / size != b / size) {
                problem.links.insert({a, b});
            }
        }
    }
    return problem;
}

TEST(Bron_kerbosch, No_candidates_have_no_cliques) {
    Bron_kerbosch local;
    EXPECT_EQ(Cliques(local, Problem(), 4), Sets());
}

TEST(Bron_kerbosch, Cliques_come_in_lexicographic_order_with_the_node_that_is_always_there) {
    Bron_kerbosch local;
    Problem const path{4, {{0, 1}, {1, 2}, {2, 3}}, {}};
    EXPECT_EQ(Cliques(local, path, 4), (Sets{{1, 3, 4}, {3, 4, 5}, {4, 5, 7}}));
    EXPECT_EQ(Cliques(local, path, 0), (Sets{{0, 1, 3}, {0, 3, 5}, {0, 5, 7}}));
    EXPECT_EQ(Cliques(local, path, 100), (Sets{{1, 3, 100}, {3, 5, 100}, {5, 7, 100}}));
}

TEST(Bron_kerbosch, Cliques_of_too_few_candidates_are_left_out) {
    Bron_kerbosch local;
    Problem const problem{4, {{0, 1}, {0, 2}, {1, 2}}, {}};
    EXPECT_EQ(Cliques(local, problem, 0, 1), (Sets{{0, 1, 3, 5}, {0, 7}}));
    EXPECT_EQ(Cliques(local, problem, 0, 2), (Sets{{0, 1, 3, 5}}));
    EXPECT_EQ(Cliques(local, problem, 0, 4), Sets());
}

TEST(Bron_kerbosch, What_an_excluded_node_extends_is_no_clique) {
    Bron_kerbosch local;
    Problem problem{4, {{0, 1}, {1, 2}, {2, 3}}, {{1, 2}}};
    EXPECT_EQ(Cliques(local, problem, 0), (Sets{{0, 1, 3}, {0, 5, 7}}));
    problem.excluded = {{0, 1, 2, 3}};
    EXPECT_EQ(Cliques(local, problem, 0), Sets());
    problem.excluded = {{0, 3}};
    EXPECT_EQ(Cliques(local, problem, 0).size(), 3U);
}

// A clique is whole with an excluded node linked to all of it but one.
TEST(Bron_kerbosch, An_excluded_node_must_be_linked_with_all_of_a_clique) {
    Bron_kerbosch local;
    for (Candidate const n : {3U, 63U, 64U, 65U, 130U}) {
        Problem problem = Groups(n, 1);
        Set all;
        problem.excluded.resize(1);
        for (Candidate c = 0; c < n; ++c) {
            all.push_back(c);
            if (c > 0) {
                problem.excluded[0].insert(c);
            }
        }
        EXPECT_EQ(Cliques(local, problem, 0), Named({all}, 0)) << n;
        problem.excluded.push_back(problem.excluded[0]);
        problem.excluded[0].insert(0);
        EXPECT_EQ(Cliques(local, problem, 0), Sets()) << n << ", another one after it";
        problem.excluded.pop_back();
        EXPECT_EQ(Cliques(local, problem, 0), Sets()) << n;
    }
}

TEST(Bron_kerbosch, Few_candidates_agree_with_all_subsets) {
    Random_numbers random(23);
    Bron_kerbosch local; // used again and again: nothing of an earlier problem may stay
    for (int round = 0; round < 600; ++round) {
        Problem const problem = Random_problem(1 + random.Below(10), 20 + random.Below(80),
                                               random.Below(6), random.Below(101), random);
        Node const always = 2 * random.Below(12);
        std::size_t const least = 1 + random.Below(3);
        // Below `least` links an excluded node is forgotten: it could only forbid small cliques.
        ASSERT_EQ(Cliques(local, problem, always, least), Named(By_subsets(problem), always, least))
            << "round " << round;
    }
}

TEST(Bron_kerbosch, About_a_word_of_candidates_agrees_with_growing) {
    Random_numbers random(29);
    Bron_kerbosch local;
    for (unsigned round = 0; round < Rounds(12); ++round) {
        Problem const problem = Random_problem(60 + random.Below(10), 10 + random.Below(30),
                                               random.Below(8), random.Below(101), random);
        ASSERT_EQ(Cliques(local, problem, 64), Named(By_growing(problem), 64))
            << "round " << round << ", " << problem.n << " candidates";
    }
}

TEST(Bron_kerbosch, Several_words_of_candidates_agree_with_growing) {
    Random_numbers random(31);
    Bron_kerbosch local;
    for (unsigned round = 0; round < Rounds(8); ++round) {
        Problem const problem =
            Random_problem(65 + random.Below(140), 1 + random.Below(round % 2 == 0 ? 3 : 20),
                           random.Below(8), random.Below(101), random);
        std::size_t const least = 1 + random.Below(2);
        ASSERT_EQ(Cliques(local, problem, 64, least), Named(By_growing(problem), 64, least))
            << "round " << round << ", " << problem.n << " candidates";
    }
}

// Dense, so that the search goes several levels deep before 64 candidates are left.
TEST(Bron_kerbosch, Many_candidates_with_most_links_agree_with_the_choices_there_are) {
    Bron_kerbosch local;
    Random_numbers random(37);
    // Groups of one, which all cliques share, and a few groups with a choice.
    for (int round = 0; round < 12; ++round) {
        Problem problem = Groups(75 + random.Below(120), 1);
        std::vector<std::pair<Candidate, Candidate>> choices;
        std::vector<bool> chosen(problem.n, false);
        while (choices.size() < 7) {
            Candidate const a = random.Below(problem.n);
            Candidate const b = random.Below(problem.n);
            if (a < b && !chosen[a] && !chosen[b]) {
                chosen[a] = chosen[b] = true;
                choices.push_back({a, b});
                problem.links.erase({a, b});
            }
        }
        // Excluded nodes that all cliques with some choices run into.
        for (std::size_t e = random.Below(4); e > 0; --e) {
            problem.excluded.emplace_back();
            for (Candidate c = 0; c < problem.n; ++c) {
                if (!chosen[c] || random.Percent(80)) {
                    problem.excluded.back().insert(c);
                }
            }
        }
        Sets expected;
        for (std::uint32_t bits = 0; bits < 1U << choices.size(); ++bits) {
            Set clique;
            for (Candidate c = 0; c < problem.n; ++c) {
                clique.push_back(c);
            }
            for (std::size_t i = 0; i < choices.size(); ++i) {
                std::erase(clique, (bits >> i & 1) != 0 ? choices[i].first : choices[i].second);
            }
            if (!problem.Some_excluded_has(clique)) {
                expected.push_back(clique);
            }
        }
        std::ranges::sort(expected);
        ASSERT_EQ(Cliques(local, problem, 0), Named(expected, 0)) << "round " << round;
    }
}

// All but eight groups of three without a choice, so that the cliques can be counted.
Problem Countable_groups(Candidate groups) {
    Problem problem = Groups(groups, 3);
    for (Candidate a = 24; a < problem.n; ++a) {
        for (Candidate b = a + 1; b < problem.n; ++b) {
            problem.links.insert({a, b});
        }
    }
    return problem;
}

// Whatever the size of the problem: the clock is read until the time is up, and never again.
TEST(Bron_kerbosch, A_search_ends_with_its_time) {
    Bron_kerbosch local;
    for (Candidate const groups : {8U, 24U}) {
        Problem const problem = Countable_groups(groups);
        ASSERT_EQ(Cliques(local, problem, 0).size(), 6561U);
        for (int const most : {1000000, 10, 1}) {
            Set_up(local, problem, 2);
            int readings = 0;
            Clock_of clock([&] { return static_cast<double>(readings++); });
            Time_budget budget(clock, most - 0.5, 1000);
            Progress nobody;
            Pace pace(nobody);
            budget.Bound(pace);
            EXPECT_EQ(local.Find(&pace), most == 1000000);
            EXPECT_EQ(budget.Too_slow(), most < 1000000);
            EXPECT_TRUE(most == 1000000 || readings == most + 1);
        }
    }
}

TEST(Bron_kerbosch, Cliques_that_need_too_much_memory_are_told_and_not_kept) {
    Bron_kerbosch local;
    for (Candidate const groups : {8U, 24U}) {
        Problem const problem = Countable_groups(groups);
        Set_up(local, problem, 2);
        EXPECT_FALSE(local.Find(nullptr, 10000));
        EXPECT_FALSE(local.All_kept());
        EXPECT_TRUE(local.Find());
        EXPECT_TRUE(local.All_kept());
    }
}

// However large the candidates are that a key stands for: it never contradicts their order.
TEST(Bron_kerbosch, Keys_of_large_candidates_leave_the_order_to_the_lists) {
    Random_numbers random(31);
    int told_apart = 0;
    for (int round = 0; round < 20000; ++round) {
        std::array<Set, 2> lists;
        for (Set& list : lists) {
            Candidate next = 65532 + random.Below(3);
            for (Candidate size = 1 + random.Below(6); size > 0; --size) {
                list.push_back(next);
                next += 1 + random.Below(2);
            }
        }
        auto const& [a, b] = lists;
        std::size_t const shorter = std::min(a.size(), b.size());
        if (std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(shorter), b.begin())) {
            continue; // no clique begins another one
        }
        std::uint64_t const key_a = Bron_kerbosch_sub::First_candidates(a);
        std::uint64_t const key_b = Bron_kerbosch_sub::First_candidates(b);
        ASSERT_TRUE(key_a == key_b || (key_a < key_b) == (a < b)) << "round " << round;
        told_apart += key_a != key_b ? 1 : 0;
    }
    EXPECT_GT(told_apart, 1000);
}

class Counting_progress : public Progress {
public:
    void Tick() override { ++n_ticks; }
    std::size_t n_ticks = 0;
};

// Recording the cliques found takes longer than finding them: it must not pass unnoticed.
TEST(Bron_kerbosch, Recording_cliques_counts_as_work) {
    Random_numbers random(77);
    Problem problem;
    problem.n = 70;
    for (Candidate a = 0; a < problem.n; ++a) {
        for (Candidate b = a + 1; b < problem.n; ++b) {
            if (random.Percent(75)) {
                problem.links.insert({a, b});
            }
        }
    }
    Bron_kerbosch local;
    Set_up(local, problem, 2);
    constexpr std::size_t steps = 10000;
    Counting_progress counting;
    Pace pace(&counting, steps);
    ASSERT_TRUE(local.Find(&pace));
    std::vector<Node> names;
    for (Candidate c = 0; c < problem.n; ++c) {
        names.push_back(c + 1);
    }
    Set_list cliques;
    local.Append_cliques(problem.n + 1, names, 2, cliques);
    ASSERT_GT(cliques.size(), 1000U);
    constexpr std::size_t steps_a_member = 16;
    EXPECT_GT(counting.n_ticks * steps, steps_a_member * cliques.Total());
}

} // namespace
} // namespace cpm::test
