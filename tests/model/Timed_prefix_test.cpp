// SPDX-License-Identifier: MIT
// What is kept of an attempt that has overrun, wherever its time runs out: a beginning of the
// node's cliques in their order, and all that the plain search by single steps has found by then.
#include "Clique_find/Finder.h"
#include "Plain_cliques.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace cpm::test {
namespace {

// The plain search's steps are whole sets, of a microsecond and more each; a look at the clock
// comes here after each row of bits. So many looks take less time than one such step, and so many
// more are for the rows of the first problems: the plain search works before its first check, too.
constexpr unsigned looks_a_check = 20;
constexpr unsigned looks_before = 60;

/// The attempt's time is up at the first look after the first one, that of the listing after so
/// many more.
class Late_clock : public Clock {
public:
    explicit Late_clock(unsigned looks) : looks_(looks) {}
    double Now() override {
        ++readings_;
        return readings_ <= 2 ? 0 : readings_ <= 3 + looks_ ? 1.5 : 2;
    }

private:
    unsigned looks_;
    unsigned readings_ = 0;
};

/// A network, some of whose nodes are done, and a node that is tried.
struct Situation {
    bool directed = false;
    Index_links links;
    std::vector<Node> done;
    Node node = 0;
};

Situation Random_situation(bool directed, Node n, Random_numbers& random) {
    Situation around;
    around.directed = directed;
    Links const links = random.Percent(70) ? Random_links(n, 50 + random.Below(50), random)
                                           : Random_teams(n, 3 + random.Below(9), n, random);
    Index_links const undirected = To_index_links(links);
    if (directed) {
        std::uint32_t const both = random.Below(5) * 25;
        std::set<std::pair<Node, Node>> arcs;
        for (Node_pair const& pair : undirected.pairs) {
            bool const two_way = random.Percent(both);
            bool const forward = random.Percent(50);
            if (two_way || forward) {
                arcs.insert({pair.first, pair.second});
            }
            if (two_way || !forward) {
                arcs.insert({pair.second, pair.first});
            }
        }
        for (auto const& [a, b] : arcs) {
            around.links.pairs.push_back({a, b});
        }
    } else {
        around.links = undirected;
    }
    Node const last = Last_node(around.links);
    around.node = 1 + random.Below(last);
    std::uint32_t const chance = random.Below(3) * 15;
    for (Node node = 1; node <= last; ++node) {
        if (node != around.node && random.Percent(chance)) {
            around.done.push_back(node);
        }
    }
    return around;
}

using Sets = std::vector<model::Nodes>;

/// By the plain search.
class Plain {
public:
    explicit Plain(Situation const& around) : node_(around.node) {
        model::Index_links links;
        for (Node_pair const& pair : around.links.pairs) {
            links[{pair.first, pair.second}] = 0;
        }
        work_ = model::Make_graph(links, around.directed);
        for (Node const node : around.done) {
            Sets const found = model::Found_at(work_, known_, node, std::nullopt);
            known_.insert(known_.end(), found.begin(), found.end());
            work_.Remove(node);
        }
    }
    Sets Found(std::optional<unsigned> n_checks) const {
        return model::Found_at(work_, known_, node_, n_checks);
    }

private:
    Node node_;
    model::Graph work_;
    Sets known_;
};

struct Kept {
    bool too_slow = false;
    Sets sets;
};

Kept Attempt(Situation const& around, unsigned looks) {
    Progress nobody;
    Graph const graph(around.links, around.directed);
    std::unique_ptr<Finder> const finder = Make_finder(graph, nobody);
    Set_list found;
    for (Node const node : around.done) {
        Clock_of still([] { return 0.0; });
        Time_budget budget(still, 1);
        found.clear();
        finder->Find_within(node, budget, found);
    }
    Late_clock clock(looks);
    Time_budget budget(clock, 1, 1);
    found.clear();
    finder->Find_within(around.node, budget, found);
    Kept kept{budget.Too_slow(), {}};
    for (std::size_t i = 0; i < found.size(); ++i) {
        kept.sets.push_back({found[i].begin(), found[i].end()});
    }
    return kept;
}

struct Counts {
    unsigned overran = 0;
    unsigned cut_short = 0;
    unsigned plain_cut_short = 0;
};

void Try(bool directed, Node n, Random_numbers& random, Counts& counts) {
    Situation const around = Random_situation(directed, n, random);
    Plain const plain(around);
    Sets const all = plain.Found(std::nullopt);
    unsigned const n_checks = 2 + random.Below(60);
    Kept const kept = Attempt(around, looks_before + looks_a_check * n_checks);
    ASSERT_LE(kept.sets.size(), all.size());
    ASSERT_TRUE(std::equal(kept.sets.begin(), kept.sets.end(), all.begin())) << "a beginning";
    ASSERT_TRUE(kept.too_slow || kept.sets.size() == all.size());
    Sets const by_steps = plain.Found(n_checks);
    for (auto const& set : by_steps) {
        // A directed search may hold sets for a while that it finds within larger ones later.
        if (std::ranges::find(all, set) != all.end()) {
            ASSERT_NE(std::ranges::find(kept.sets, set), kept.sets.end());
        }
    }
    counts.overran += kept.too_slow ? 1U : 0U;
    counts.cut_short += kept.sets.size() < all.size() ? 1U : 0U;
    counts.plain_cut_short += by_steps.size() < all.size() ? 1U : 0U;
    // And with hardly any time at all, wherever it ends.
    Kept const hasty = Attempt(around, random.Below(40));
    bool const nothing_listed = // then it is what was found before the first look
        std::ranges::all_of(hasty.sets, [](model::Nodes const& set) { return set.size() == 3; });
    ASSERT_TRUE(nothing_listed || (hasty.sets.size() <= all.size() &&
                                   std::equal(hasty.sets.begin(), hasty.sets.end(), all.begin())));
    counts.cut_short += hasty.sets.size() < all.size() ? 1U : 0U;
}

// Of so many cases or events, those that this build has time for.
constexpr unsigned Part_of(unsigned number) {
    return number * PLEXOR_TIMED_PREFIX_PERCENT / 100;
}

TEST(Timed_prefix, Undirected) {
    Random_numbers random(7);
    Counts counts;
    for (unsigned round = 0; round < Part_of(4000); ++round) {
        ASSERT_NO_FATAL_FAILURE(Try(false, 5 + random.Below(12), random, counts)) << round;
    }
    EXPECT_GT(counts.overran, Part_of(1000));
    EXPECT_GT(counts.cut_short, Part_of(200));
    EXPECT_GT(counts.plain_cut_short, Part_of(200));
}

TEST(Timed_prefix, Directed) {
    Random_numbers random(8);
    Counts counts;
    for (unsigned round = 0; round < Part_of(1000); ++round) {
        ASSERT_NO_FATAL_FAILURE(
            Try(true, 5 + random.Below(round % 20 == 0 ? 7 : 5), random, counts))
            << round;
    }
    EXPECT_GT(counts.overran, Part_of(300));
    EXPECT_GT(counts.cut_short, Part_of(50));
    EXPECT_GT(counts.plain_cut_short, Part_of(3));
}

} // namespace
} // namespace cpm::test
