// SPDX-License-Identifier: MIT
#include "parallel/Level_pipeline.h"

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Percolation.h"
#include "graph/Graph.h"
#include "support/Graph_makers.h"

#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace cpm::test {
namespace {

// A level with all that there is to it, links by their numbers.
struct Level {
    Set_list nodes;
    List_of_lists<Clique_number> cliques;
    std::vector<std::vector<Node_pair>> links;
    std::uint32_t n_exact = 0;
    friend bool operator==(Level const&, Level const&) = default;
};

class Pairs_taken : public Link_visitor {
public:
    explicit Pairs_taken(Edge_numbering const& edges) : edges_(edges) {}
    void Numbers(std::span<Link_number const> numbers) override {
        for (Link_number const number : numbers) {
            pairs.push_back({edges_.Smaller_end(number), edges_.Larger_end(number)});
        }
    }
    void All_pairs(Node_set nodes) override {
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            for (Node const larger : nodes.subspan(i + 1)) {
                pairs.push_back({nodes[i], larger});
            }
        }
    }
    std::vector<Node_pair> pairs;

private:
    Edge_numbering const& edges_;
};

Level Listed(Communities const& coms, Edge_numbering const& edges) {
    Level level{coms.nodes, coms.cliques, {}, coms.n_exact};
    for (std::size_t i = 0; i < coms.size(); ++i) {
        Pairs_taken taken(edges);
        coms.Visit_links(i, taken);
        level.links.push_back(std::move(taken.pairs));
    }
    return level;
}

// Lists every level with all of its links while others are made.
class Listing_taker : public Level_taker {
public:
    Listing_taker(Edge_numbering const& edges, std::size_t n_levels)
        : levels(n_levels), edges_(edges) {}

    void Make_by_intensity(std::size_t, unsigned, Progress&) override { FAIL(); }
    void Take(Communities coms, std::size_t place, unsigned, Progress&) override {
        levels[place] = Listed(coms, edges_);
    }

    std::vector<Level> levels;

private:
    Edge_numbering const& edges_;
};

std::vector<Node> Some_nodes(Node n, Random_numbers& random) {
    std::vector<Node> nodes;
    for (Node node = 1; node <= n; ++node) {
        if (random.Below(n) < 5) {
            nodes.push_back(node);
        }
    }
    return nodes;
}

// What a search can leave: exact cliques; approximated ones after them, some inside others; lists
// whose overlaps are those from before a merge.
struct Network {
    Network(std::uint32_t seed, int kind) {
        Random_numbers random(seed);
        n = 8 + random.Below(40);
        Links const links = Random_teams(n, 4 + random.Below(30), std::min(n, 10U), random);
        Index_links index_links;
        for (auto const& [a, b] : links) {
            index_links.pairs.push_back({a, b});
        }
        Processor_clock clock;
        Progress nobody;
        Find_cliques(found, Graph(index_links, false), std::nullopt, clock, nobody);
        if (kind > 0) {
            found.nested = true;
            Set_list const before = found.cliques;
            if (kind > 1) {
                found.cliques.Keep_if([&](std::size_t) { return random.Below(4) > 0; });
                found.n_exact = found.cliques.size();
                found.before_merge = before;
            }
            for (int i = 0; i < 4; ++i) {
                if (auto const nodes = Some_nodes(n, random); nodes.size() >= 3) {
                    found.cliques.Add(nodes);
                }
            }
        }
        edges = Edge_numbering(index_links, n, found.cliques, found.n_exact);
        for (std::size_t i = 0; i < found.cliques.size(); ++i) {
            largest = std::max(largest, static_cast<std::uint32_t>(found.cliques[i].size()));
        }
    }
    Node n = 0;
    Found_cliques found;
    Edge_numbering edges;
    std::uint32_t largest = 0;
};

TEST(Level_pipeline, Gives_what_one_level_after_the_other_gives) {
    for (std::uint32_t round = 0; round < 300; ++round) {
        Network const network(round, static_cast<int>(round % 3));
        Ranked_cliques const ranked(network.found.cliques, network.n);
        std::vector<std::uint32_t> ks;
        for (std::uint32_t k = network.largest + 1; k > 1; --k) {
            if (round % 2 == 0 || k % 3 != 1) { // also with gaps between the levels
                ks.push_back(k);
            }
        }
        unsigned const n_threads = 1 + round % 5;
        Listing_taker taker(network.edges, ks.size());
        Level_pipeline pipeline(taker, {network.found, &ranked, network.edges}, ks, n_threads);
        Percolation percolation(network.found,
                                std::make_shared<Ranked_cliques>(network.found.cliques, network.n),
                                network.edges);
        Progress nobody;
        for (std::size_t place = 0; place < ks.size(); ++place) {
            pipeline.Next(nobody);
            Communities coms;
            percolation.Coms_from_appr_ovlp_matr(coms, ks[place]);
            ASSERT_EQ(taker.levels[place], Listed(coms, network.edges))
                << "round " << round << ", k " << ks[place];
        }
    }
}

// Notes who was asked for which level.
class Noting_taker : public Level_taker {
public:
    explicit Noting_taker(std::size_t n_levels) : n_made(n_levels, 0) {}

    void Make_by_intensity(std::size_t place, unsigned thread, Progress&) override {
        EXPECT_LT(thread, 3);
        ++n_made[place];
    }
    void Take(Communities, std::size_t, unsigned, Progress&) override { FAIL(); }

    std::vector<int> n_made;
};

TEST(Level_pipeline, Knows_the_levels_of_a_run) {
    EXPECT_EQ(Levels_down_from(5), (std::vector<std::uint32_t>{5, 4, 3}));
    EXPECT_EQ(Levels_down_from(3), std::vector<std::uint32_t>{3});
    EXPECT_TRUE(Levels_down_from(2).empty());
    EXPECT_TRUE(Levels_down_from(0).empty());
}

TEST(Level_pipeline, Leaves_levels_by_intensity_to_the_taker) {
    Network const network(1, 0);
    std::vector<std::uint32_t> const ks{9, 8, 7, 6, 5, 4, 3};
    Noting_taker taker(ks.size());
    Level_pipeline pipeline(taker, {network.found, nullptr, network.edges}, ks, 3);
    Progress nobody;
    for (std::size_t place = 0; place < ks.size(); ++place) {
        pipeline.Next(nobody);
        EXPECT_EQ(taker.n_made[place], 1);
    }
    EXPECT_EQ(taker.n_made, std::vector<int>(ks.size(), 1));
}

} // namespace
} // namespace cpm::test
