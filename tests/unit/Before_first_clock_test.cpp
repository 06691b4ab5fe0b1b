// SPDX-License-Identifier: MIT
#include "Clique_find/Before_first_clock.h"

#include "support/Graph_makers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

namespace cpm::test {
namespace {

using Set = std::vector<Node>;
using Sets = std::vector<Set>;

// A network, one of its nodes, and which other nodes are done.
struct Surroundings {
    Links links;
    Node centre = 0;
    Nodes done;

    bool Linked(Node a, Node b) const { return links.contains({std::min(a, b), std::max(a, b)}); }
    Set Neighbours(bool done_ones) const {
        Set neighbours;
        for (auto const& [a, b] : links) {
            Node const other = a == centre ? b : a;
            if ((a == centre || b == centre) && done.contains(other) == done_ones) {
                neighbours.push_back(other);
            }
        }
        std::ranges::sort(neighbours);
        return neighbours;
    }
};

struct Walk {
    bool reached = false;
    Sets found;
    friend bool operator==(Walk const&, Walk const&) = default;
};

// One check used again and again: nothing of earlier surroundings may stay.
Walk Check(Before_first_clock& check, Surroundings const& around) {
    Graph const network(To_index_links(around.links));
    Placed_nodes candidates(network);
    for (Node const node : around.Neighbours(false)) {
        candidates.Add(node);
    }
    Placed_nodes done(network);
    for (Node const node : around.Neighbours(true)) {
        done.Add(node);
    }
    Set_list found{{99}}; // what is in the list stays
    Walk walk;
    Progress nobody;
    Pace pace(nobody);
    walk.reached = check.Reads_clock(around.centre, candidates, done, pace, found);
    EXPECT_EQ(To_vector(found[0]), (Set{99}));
    walk.found = To_vectors(found);
    walk.found.erase(walk.found.begin());
    return walk;
}

// All cliques with the centre and a done node, by growing.
Sets Known_cliques(Surroundings const& around) {
    Set neighbours = around.Neighbours(false);
    Set const done = around.Neighbours(true);
    neighbours.insert(neighbours.end(), done.begin(), done.end());
    Sets known;
    std::vector<std::pair<Set, std::size_t>> open{{{around.centre}, 0}};
    while (!open.empty()) {
        auto const [clique, next] = open.back();
        open.pop_back();
        for (std::size_t i = next; i < neighbours.size(); ++i) {
            if (std::ranges::all_of(
                    clique, [&](Node node) { return around.Linked(node, neighbours[i]); })) {
                Set more = clique;
                more.push_back(neighbours[i]);
                open.push_back({more, i + 1});
                if (around.done.contains(neighbours[i])) {
                    std::ranges::sort(more);
                    known.push_back(more);
                }
            }
        }
    }
    return known;
}

// The walk told step by step: sets held against a list of known ones.
Walk Walk_two_steps(Surroundings const& around) {
    Sets known = Known_cliques(around);
    auto const go_on = [&](Set set) {
        set.push_back(around.centre);
        std::ranges::sort(set);
        return std::ranges::none_of(
            known, [&](Set const& one) { return std::ranges::includes(one, set); });
    };
    Walk walk;
    Set candidates = around.Neighbours(false);
    while (candidates.size() > 1) {
        Node const first = candidates.front();
        candidates.erase(candidates.begin());
        Set extension;
        std::ranges::copy_if(candidates, std::back_inserter(extension),
                             [&](Node node) { return around.Linked(first, node); });
        Set whole = extension;
        whole.push_back(first);
        if (!go_on(whole)) {
            continue;
        }
        while (!extension.empty()) {
            Node const second = extension.front();
            extension.erase(extension.begin());
            Set further{first, second};
            std::ranges::copy_if(extension, std::back_inserter(further),
                                 [&](Node node) { return around.Linked(second, node); });
            if (!go_on(further)) {
                continue;
            }
            if (further.size() > 2) {
                walk.reached = true;
                return walk;
            }
            further.push_back(around.centre);
            std::ranges::sort(further);
            known.push_back(further);
            walk.found.push_back(further);
        }
    }
    return walk;
}

// Links among the nodes 1 to n, of which some are done and one is the centre; the centre is linked
// with all others, so that none is without a link.
Surroundings Around(Links links, Node n, std::uint32_t percent_done, Random_numbers& random) {
    Surroundings around{std::move(links), 1 + random.Below(n), {}};
    for (Node node = 1; node <= n; ++node) {
        if (node == around.centre) {
            continue;
        }
        around.links.insert({std::min(node, around.centre), std::max(node, around.centre)});
        if (random.Percent(percent_done)) {
            around.done.insert(node);
        }
    }
    return around;
}

// Links each of `from` with each of `to`.
void Link_all(Links& links, Set const& from, Set const& to) {
    for (Node const a : from) {
        for (Node const b : to) {
            links.insert({std::min(a, b), std::max(a, b)});
        }
    }
}

Set Range(Node from, Node to) {
    Set nodes;
    for (Node node = from; node <= to; ++node) {
        nodes.push_back(node);
    }
    return nodes;
}

TEST(Placed_nodes, Neighbours_are_told_by_their_places_whichever_side_is_shorter) {
    Links links{{2, 3}, {3, 4}, {3, 5}, {5, 6}};
    Link_all(links, {1}, Range(2, 200)); // node 1 has many neighbours, the others have few
    links.erase({1, 5});
    Graph const network(To_index_links(links));
    Placed_nodes nodes(network);
    auto const neighbours = [&](Node node, std::size_t first) {
        std::vector<std::size_t> places;
        nodes.For_each_neighbour_of(node, first,
                                    [&](std::size_t place) { places.push_back(place); });
        return places;
    };
    for (int round = 0; round < 2; ++round) {
        for (Node const node : {2U, 4U, 5U, 9U}) {
            nodes.Add(node);
        }
        EXPECT_EQ(To_vector(nodes.Nodes()), (Set{2, 4, 5, 9}));
        EXPECT_EQ(neighbours(1, 0), (std::vector<std::size_t>{0, 1, 3}));
        EXPECT_EQ(neighbours(1, 2), (std::vector<std::size_t>{3}));
        EXPECT_EQ(neighbours(3, 0), (std::vector<std::size_t>{0, 1, 2}));
        EXPECT_EQ(neighbours(3, 1), (std::vector<std::size_t>{1, 2}));
        EXPECT_EQ(neighbours(3, 4), std::vector<std::size_t>());
        EXPECT_EQ(neighbours(6, 0), (std::vector<std::size_t>{2}));
        nodes.clear();
        EXPECT_EQ(nodes.size(), 0U);
        EXPECT_EQ(neighbours(1, 0), std::vector<std::size_t>());
        EXPECT_EQ(neighbours(3, 0), std::vector<std::size_t>());
    }
}

TEST(Before_first_clock, Sets_are_handed_out_up_to_the_first_pair_that_leads_on) {
    Before_first_clock check;
    Links const to_all{{1, 3}, {2, 3}, {3, 4}, {3, 5}};
    Surroundings path{to_all, 3, {}};
    path.links.insert({{1, 2}, {2, 4}, {4, 5}});
    EXPECT_EQ(Check(check, path), (Walk{false, {{1, 2, 3}, {2, 3, 4}, {3, 4, 5}}}));
    Surroundings triangle{to_all, 3, {}};
    triangle.links.insert({{1, 2}, {2, 4}, {2, 5}, {4, 5}});
    EXPECT_EQ(Check(check, triangle), (Walk{true, {{1, 2, 3}}}));
    Surroundings known = triangle;
    Link_all(known.links, {6}, {2, 3, 4, 5});
    known.done = {6};
    EXPECT_EQ(Check(check, known), (Walk{false, {{1, 2, 3}}}));
}

TEST(Before_first_clock, Without_candidates_or_links_between_them_there_is_nothing) {
    Before_first_clock check;
    EXPECT_EQ(Check(check, {{{1, 2}, {1, 3}, {2, 3}}, 1, {2, 3}}), Walk());
    EXPECT_EQ(Check(check, {{{1, 2}, {1, 3}, {1, 4}}, 1, {}}), Walk());
}

TEST(Before_first_clock,
     A_set_is_known_only_when_its_nodes_are_linked_and_one_done_node_has_them_all) {
    Before_first_clock check;
    // 1 is the centre, 2 to 5 are candidates, 6 and 7 are done.
    Surroundings around{Complete(1, 5), 1, {6, 7}};
    Link_all(around.links, {6}, {1, 2, 3, 4});
    Link_all(around.links, {7}, {1, 3, 4, 5});
    EXPECT_EQ(Check(check, around), (Walk{true, {}})) << "each done node lacks one";
    around.links.erase({2, 5});
    EXPECT_EQ(Check(check, around), (Walk{false, {}})) << "two known sets";
    around.links.erase({6, 7});
    Link_all(around.links, {6}, {5});
    EXPECT_EQ(Check(check, around), (Walk{false, {}}));
    around.links.erase({4, 5});
    EXPECT_EQ(Check(check, around), (Walk{false, {}})) << "2 and 3 with 4, 3 with 5";
    around.links.erase({4, 6});
    EXPECT_EQ(Check(check, around), (Walk{true, {}})) << "no done node has 2, 3 and 4";
}

TEST(Before_first_clock, A_done_node_that_is_no_neighbour_of_the_centre_forbids_nothing) {
    Before_first_clock check;
    Surroundings around{Complete(1, 3), 1, {4}};
    Link_all(around.links, {4}, {2, 3});
    EXPECT_EQ(Check(check, around), (Walk{false, {{1, 2, 3}}}));
    around.links.insert({1, 4});
    EXPECT_EQ(Check(check, around), (Walk{false, {}}));
}

// How many rounds reach the clock, and in how many something is found by then.
struct Met {
    unsigned reached = 0;
    unsigned found = 0;
};

// One check used for what `make` makes of each round.
template <class Make> void Agree_with_two_steps(unsigned rounds, Make const& make, Met& met) {
    Before_first_clock check;
    for (unsigned round = 0; round < rounds; ++round) {
        Surroundings const around = make(round);
        Walk const expected = Walk_two_steps(around);
        ASSERT_EQ(Check(check, around), expected) << "round " << round;
        met.reached += expected.reached ? 1U : 0U;
        met.found += expected.found.empty() ? 0U : 1U;
    }
}

TEST(Before_first_clock, Random_networks_agree_with_a_walk_of_two_steps) {
    Random_numbers random(41);
    Met met;
    auto const make = [&](unsigned) {
        Node const n = 2 + random.Below(14);
        return Around(Random_links(n, 10 + random.Below(75), random), n, random.Below(90), random);
    };
    unsigned const rounds = Rounds(600);
    Agree_with_two_steps(rounds, make, met);
    EXPECT_GT(met.reached, 80U);
    EXPECT_LT(met.reached, rounds - 80);
    EXPECT_GT(met.found, 80U);
}

// Every candidate is in several teams, and many a team has a done node: known sets that overlap.
TEST(Before_first_clock, Teams_with_done_nodes_agree_with_a_walk_of_two_steps) {
    Random_numbers random(43);
    Met met;
    auto const make = [&](unsigned) {
        Node const n = 8 + random.Below(14);
        return Around(Random_teams(n, 2 + random.Below(8), 3 + random.Below(5), random), n,
                      10 + random.Below(40), random);
    };
    unsigned const rounds = Rounds(600);
    Agree_with_two_steps(rounds, make, met);
    EXPECT_GT(met.reached, 80U);
    EXPECT_LT(met.reached, rounds - 80);
}

// Every other time the last node is done and linked with all, so that all cliques are known: the
// walk then mostly goes through to the end.
TEST(Before_first_clock, Many_candidates_agree_with_a_walk_of_two_steps) {
    Random_numbers random(47);
    Met met;
    auto const make = [&](unsigned round) {
        Node const n = 66 + random.Below(70);
        Surroundings around =
            Around(Random_links(n, 1 + random.Below(6), random), n, random.Below(20), random);
        if (round % 2 == 0) {
            Link_all(around.links, Range(1, n), {n + 1});
            around.done.insert(n + 1);
        }
        return around;
    };
    unsigned const rounds = Rounds(20);
    Agree_with_two_steps(rounds, make, met);
    EXPECT_GT(met.reached, 2U);
    EXPECT_LT(met.reached, rounds);
}

// Candidates of which some have long lists and most have short ones, and the same of done nodes.
TEST(Before_first_clock, Long_lists_beside_short_ones_agree_with_a_walk_of_two_steps) {
    Random_numbers random(53);
    Met met;
    auto const make = [&](unsigned) {
        Node const n = 150;
        Links links = Random_links(n, 1, random);
        for (int hub = 0; hub < 2; ++hub) {
            Node const node = 1 + random.Below(n);
            for (Node other = 1; other <= n; ++other) {
                if (other != node && random.Percent(50)) {
                    links.insert({std::min(node, other), std::max(node, other)});
                }
            }
        }
        Surroundings around = Around(links, n, 10 + random.Below(80), random);
        Link_all(around.links, {around.centre % n + 1}, Range(n + 1, n + 2000));
        return around;
    };
    unsigned const rounds = Rounds(20);
    Agree_with_two_steps(rounds, make, met);
    EXPECT_GT(met.reached, 2U);
    EXPECT_LT(met.reached, rounds);
}

} // namespace
} // namespace cpm::test
