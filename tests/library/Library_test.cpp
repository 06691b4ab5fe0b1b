// SPDX-License-Identifier: MIT
// The library as a program sees it: its public headers and nothing else.
#include <plexor/plexor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using plexor::Cliques;
using plexor::Edge;
using plexor::Error;
using plexor::Graph;
using plexor::Level;
using plexor::Levels;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Edge> const triangle_and_tail = {{1, 2}, {1, 3}, {2, 3}, {3, 4}};

// `n_groups` groups of three, every two nodes linked that are of different groups.
Graph Moon_moser(std::uint32_t n_groups) {
    std::vector<Edge> edges;
    for (std::uint32_t a = 0; a < 3 * n_groups; ++a) {
        for (std::uint32_t b = a + 1; b < 3 * n_groups; ++b) {
            if (a / 3 != b / 3) {
                edges.push_back({a, b});
            }
        }
    }
    return Graph::From_edges(edges);
}

std::vector<std::vector<std::uint32_t>> Ids(Graph const& graph, auto const& sets) {
    std::vector<std::vector<std::uint32_t>> all;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        std::vector<std::uint32_t>& ids = all.emplace_back();
        for (plexor::Node const node : sets[i]) {
            ids.push_back(graph.Id(node));
        }
    }
    return all;
}

Error::Kind Kind_thrown(auto const& action) {
    try {
        action();
    } catch (Error const& error) {
        EXPECT_STRNE(error.what(), "");
        return error.What_kind();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

TEST(Graph, numbers_nodes_as_the_links_name_them) {
    std::vector<Edge> const edges = {{70, 5}, {5, 900000000}, {70, 900000000}};
    Graph const graph = Graph::From_edges(edges);
    EXPECT_EQ(graph.Number_of_nodes(), 3U);
    EXPECT_EQ(graph.Number_of_links(), 3U);
    EXPECT_FALSE(graph.Weighted());
    EXPECT_EQ(graph.Id(1), 70U);
    EXPECT_EQ(graph.Id(2), 5U);
    EXPECT_EQ(graph.Id(3), 900000000U);
    EXPECT_EQ(graph.Link(0), (Edge{1, 2}));
    EXPECT_EQ(graph.Link(2), (Edge{2, 3}));
}

TEST(Graph, numbers_names_in_the_order_of_sorted_links) {
    std::vector<plexor::Named_edge> const edges = {{"b", "c"}, {"a", "z"}};
    Graph const graph = Graph::From_names(edges);
    EXPECT_EQ(graph.Name(1), "a");
    EXPECT_EQ(graph.Name(2), "z");
    EXPECT_EQ(graph.Name(3), "b");
    EXPECT_EQ(graph.Name(4), "c");
}

TEST(Graph, merges_a_link_and_its_reverse_unless_directed) {
    std::vector<Edge> const edges = {{1, 2}, {2, 1}, {1, 2}};
    std::vector<double> const weights = {1, 10, 100};
    Graph const undirected = Graph::From_edges(edges, weights);
    ASSERT_EQ(undirected.Number_of_links(), 1U);
    EXPECT_TRUE(undirected.Weighted());
    EXPECT_EQ(undirected.Weight(0), 111);
    Graph const directed = Graph::From_edges(edges, weights, {.directed = true});
    ASSERT_EQ(directed.Number_of_links(), 2U);
    EXPECT_EQ(directed.Weight(0), 101);
    EXPECT_EQ(directed.Weight(1), 10);
}

TEST(Graph, leaves_out_loops_and_weights_at_the_bounds) {
    std::vector<Edge> const edges = {{1, 1}, {1, 2}, {2, 3}, {3, 4}};
    std::vector<double> const weights = {5, 1, 2, 3};
    Graph const graph = Graph::From_edges(edges, weights, {.above = 1, .below = 3});
    ASSERT_EQ(graph.Number_of_links(), 1U);
    EXPECT_EQ(graph.Id(graph.Link(0).source), 2U);
    EXPECT_EQ(graph.Number_of_nodes(), 2U);
}

TEST(Graph, of_nothing_is_empty) {
    Graph const graph = Graph::From_edges({});
    EXPECT_EQ(graph.Number_of_nodes(), 0U);
    Cliques const cliques = plexor::Find_cliques(graph);
    EXPECT_EQ(cliques.size(), 0U);
    EXPECT_EQ(cliques.Largest(), 0U);
    EXPECT_FALSE(Levels(graph, cliques).Next());
}

TEST(Graph, takes_ids_up_to_the_largest) {
    std::uint32_t const largest = std::numeric_limits<std::uint32_t>::max();
    std::vector<Edge> const edges = {{largest, 0}, {largest - 1, largest}, {0, largest - 1}};
    Graph const graph = Graph::From_edges(edges);
    EXPECT_THAT(Ids(graph, plexor::Find_cliques(graph)),
                ElementsAre(ElementsAre(largest, 0U, largest - 1)));
}

TEST(Graph, refuses_weights_that_do_not_fit) {
    std::vector<double> const two = {1, 2};
    EXPECT_EQ(Kind_thrown([&] { Graph::From_edges(triangle_and_tail, two); }),
              Error::Kind::bad_argument);
    EXPECT_EQ(Kind_thrown([&] { Graph::From_edges(triangle_and_tail, {}, {.above = 1}); }),
              Error::Kind::bad_argument);
}

TEST(Cliques, are_maximal_and_of_three_nodes_or_more) {
    Graph const graph = Graph::From_edges(triangle_and_tail);
    Cliques const cliques = plexor::Find_cliques(graph);
    EXPECT_THAT(Ids(graph, cliques), ElementsAre(ElementsAre(1, 2, 3)));
    EXPECT_EQ(cliques.Number_of_exact(), 1U);
    EXPECT_EQ(cliques.Largest(), 3U);
    EXPECT_THAT(cliques.Members(), ElementsAre(1, 2, 3));
    EXPECT_THAT(cliques.Offsets(), ElementsAre(0, 3));
}

TEST(Cliques, of_a_directed_graph_follow_the_links) {
    std::vector<Edge> const line = {{1, 2}, {1, 3}, {2, 3}};
    std::vector<Edge> const cycle = {{1, 2}, {2, 3}, {3, 1}};
    plexor::Graph_options const directed{.directed = true};
    EXPECT_EQ(plexor::Find_cliques(Graph::From_edges(line, {}, directed)).size(), 1U);
    EXPECT_EQ(plexor::Find_cliques(Graph::From_edges(cycle, {}, directed)).size(), 0U);
}

TEST(Cliques, outlive_their_graph) {
    Cliques const cliques = plexor::Find_cliques(Moon_moser(4));
    EXPECT_EQ(cliques.size(), 81U);
    EXPECT_EQ(cliques[80].size(), 4U);
}

// A clock on which every reading is an hour after the one before.
class Hour_clock : public plexor::Clock {
public:
    double Now() override { return 3600 * ++readings_; }

private:
    double readings_ = 0;
};

std::uint64_t Number_counted(Level const& level, plexor::Part part) {
    std::uint64_t n = 0;
    for (plexor::Value_count const& sizes : level.Count(part).size) {
        n += sizes.count;
    }
    return n;
}

TEST(Cliques, of_nodes_given_up_are_approximated) {
    Hour_clock clock;
    Graph const graph = Moon_moser(5);
    Cliques const cliques = plexor::Find_cliques(graph, {.time_limit = 1, .clock = &clock});
    EXPECT_LT(cliques.Number_of_exact(), cliques.size());
    Level const level = Levels(graph, cliques).At(5);
    EXPECT_LT(level.Number_of_exact(), level.size());
    EXPECT_EQ(Number_counted(level, plexor::Part::all), level.size());
    EXPECT_EQ(Number_counted(level, plexor::Part::exact), level.Number_of_exact());
    EXPECT_EQ(Number_counted(level, plexor::Part::approximated),
              level.size() - level.Number_of_exact());
    EXPECT_EQ(Kind_thrown([&] { Levels(graph, cliques, {.intensity = 1}); }),
              Error::Kind::bad_argument);
    EXPECT_EQ(Kind_thrown([&] { plexor::Find_cliques(graph, {.time_limit = 0}); }),
              Error::Kind::bad_argument);
}

// Ends what it watches at the n-th question.
class Stop_after : public plexor::Progress {
public:
    explicit Stop_after(int questions) : left_(questions) {}
    bool Cancel() override { return left_-- <= 0; }
    void Searching(std::uint32_t to_do, std::uint32_t total) override {
        EXPECT_LE(to_do, total);
        ++n_nodes;
    }
    int n_nodes = 0;

private:
    int left_;
};

TEST(Progress, ends_a_search_without_end) {
    Graph const graph = Moon_moser(60); // 3 ** 60 cliques
    for (int const questions : {0, 1, 20}) {
        Stop_after stop(questions);
        EXPECT_THROW(plexor::Find_cliques(graph, {.progress = &stop}), plexor::Cancelled);
        EXPECT_GT(stop.n_nodes, 0);
    }
}

TEST(Levels, go_down_from_the_largest_clique) {
    Graph const graph = Moon_moser(4);
    Levels levels(graph, plexor::Find_cliques(graph));
    std::optional<Level> const four = levels.Next();
    std::optional<Level> const three = levels.Next();
    ASSERT_TRUE(four && three);
    EXPECT_EQ(four->K(), 4U);
    EXPECT_EQ(four->size(), 1U); // each clique shares three nodes with eight others
    EXPECT_EQ(three->size(), 1U);
    EXPECT_FALSE(levels.Next());
    EXPECT_FALSE(levels.Next());
}

TEST(Levels, can_be_asked_in_any_order) {
    // Two cliques of four that share two nodes.
    std::vector<Edge> const edges = {{1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {3, 4},
                                     {3, 5}, {3, 6}, {4, 5}, {4, 6}, {5, 6}};
    Graph const graph = Graph::From_edges(edges);
    Cliques const cliques = plexor::Find_cliques(graph);
    Levels levels(graph, cliques);
    EXPECT_EQ(levels.At(3).size(), 1U);
    Level const level = levels.At(4);
    EXPECT_EQ(levels.Next()->K(), 4U); // At() does not count
    EXPECT_EQ(levels.At(5).size(), 0U);
    EXPECT_THAT(Ids(graph, level), ElementsAre(ElementsAre(1, 2, 3, 4), ElementsAre(3, 4, 5, 6)));
    EXPECT_THAT(level.Offsets(), ElementsAre(0U, 4U, 8U));
    ASSERT_EQ(level.Members().size(), 8U);
    EXPECT_EQ(level.Members()[4], level[1][0]);
    Levels moved = std::move(levels);
    EXPECT_EQ(moved.Next()->K(), 3U);
}

TEST(Levels, leave_values_that_need_nothing_else) {
    std::optional<Level> kept;
    {
        Graph const graph = Moon_moser(4);
        Levels levels(graph, plexor::Find_cliques(graph));
        kept = levels.Next();
        levels.Next();
    }
    EXPECT_EQ(kept->Links_of(0).size(), 54U);
    EXPECT_EQ(kept->Cliques_of(0).size(), 81U);
    EXPECT_THAT(kept->Count().size, ElementsAre(plexor::Value_count{12, 1}));
}

TEST(Levels, tell_which_communities_share_nodes) {
    std::vector<Edge> const edges = {{1, 2}, {1, 3}, {2, 3}, {3, 4}, {3, 5}, {4, 5}};
    Graph const graph = Graph::From_edges(edges);
    Level const level = Levels(graph, plexor::Find_cliques(graph)).At(3);
    std::vector<plexor::Overlap> overlaps;
    level.For_each_overlap([&](plexor::Overlap const& one) { overlaps.push_back(one); });
    EXPECT_THAT(overlaps, ElementsAre(plexor::Overlap{0, 1, 1}));
    plexor::Distributions const counts = level.Count();
    EXPECT_THAT(counts.membership, ElementsAre(plexor::Value_count{0, 0}, plexor::Value_count{1, 4},
                                               plexor::Value_count{2, 1}));
    EXPECT_THAT(counts.degree, ElementsAre(plexor::Value_count{1, 2}));
    EXPECT_THAT(counts.overlap, ElementsAre(plexor::Value_count{1, 1}));
    EXPECT_THAT(level.Count(plexor::Part::approximated).size, IsEmpty());
}

TEST(Levels, by_intensity_go_by_k_cliques) {
    std::vector<Edge> const edges = {{1, 2}, {1, 3}, {2, 3}, {2, 4}, {3, 4}};
    std::vector<double> const weights = {3, 2, 4, 1, 1};
    Graph const graph = Graph::From_edges(edges, weights);
    Cliques const cliques = plexor::Find_cliques(graph);
    Levels levels(graph, cliques, {.intensity = 2});
    Level const level = levels.At(3);
    EXPECT_THAT(Ids(graph, level), ElementsAre(ElementsAre(1, 2, 3)));
    EXPECT_THAT(level.Links_of(0), ElementsAre(Edge{1, 2}, Edge{1, 3}, Edge{2, 3}));
    EXPECT_THAT(level.Cliques_of(0), IsEmpty());
    EXPECT_EQ(Kind_thrown([&] { Levels(graph, cliques, {.intensity = 0.1}).At(2); }),
              Error::Kind::missing_link);
    Graph const directed = Graph::From_edges(edges, weights, {.directed = true});
    EXPECT_EQ(
        Kind_thrown([&] { Levels(directed, plexor::Find_cliques(directed), {.intensity = 1}); }),
        Error::Kind::bad_argument);
}

// Overlapping teams: several levels with many communities.
Graph Teams() {
    std::vector<Edge> edges;
    std::vector<double> weights;
    std::uint32_t state = 12345;
    auto const random = [&state](std::uint32_t range) {
        state = state * 1664525 + 1013904223;
        return (state >> 8) % range;
    };
    for (int team = 0; team < 150; ++team) {
        std::uint32_t const begin = random(300);
        std::vector<std::uint32_t> members;
        for (std::uint32_t i = 0; i < 3 + random(8); ++i) {
            members.push_back(begin + random(25));
        }
        for (std::uint32_t const a : members) {
            for (std::uint32_t const b : members) {
                edges.push_back({a, b});
                weights.push_back(1 + random(100));
            }
        }
    }
    return Graph::From_edges(edges, weights);
}

// All that a level tells.
std::string Told(Level const& level) {
    std::ostringstream text;
    text << level.K() << ' ' << level.size() << ' ' << level.Number_of_exact() << '\n';
    for (std::size_t i = 0; i < level.size(); ++i) {
        for (plexor::Node const node : level[i]) {
            text << node << ' ';
        }
        for (std::uint32_t const clique : level.Cliques_of(i)) {
            text << clique << ' ';
        }
        for (Edge const edge : level.Links_of(i)) {
            text << edge.source << '-' << edge.target << ' ';
        }
    }
    level.For_each_overlap([&](plexor::Overlap const& one) {
        text << one.first << ' ' << one.second << ' ' << one.shared << '\n';
    });
    return text.str();
}

// Each pair of the teams one way, the other, or both ways.
Graph Directed_teams() {
    Graph const teams = Teams();
    std::vector<Edge> edges;
    for (std::size_t i = 0; i < teams.Number_of_links(); ++i) {
        Edge const link = teams.Link(i);
        if (i % 4 != 0) {
            edges.push_back(link);
        }
        if (i % 4 == 0 || i % 4 == 3) {
            edges.push_back({link.target, link.source});
        }
    }
    return Graph::From_edges(edges, {}, {.directed = true});
}

TEST(Threads, find_the_same_cliques_whatever_their_number) {
    for (Graph const& graph : {Teams(), Directed_teams()}) {
        Cliques const expected = plexor::Find_cliques(graph);
        ASSERT_GT(expected.size(), 20U);
        for (unsigned const threads : {0U, 2U, 3U, 8U}) {
            Cliques const cliques = plexor::Find_cliques(graph, {.threads = threads});
            EXPECT_TRUE(std::ranges::equal(cliques.Members(), expected.Members()));
            EXPECT_TRUE(std::ranges::equal(cliques.Offsets(), expected.Offsets()));
            EXPECT_EQ(cliques.Number_of_exact(), expected.Number_of_exact());
        }
    }
}

TEST(Threads, of_a_search_end_when_it_is_cancelled) {
    Graph const graph = Moon_moser(60); // 3 ** 60 cliques
    for (int const questions : {0, 1, 3}) {
        Stop_after stop(questions);
        EXPECT_THROW(plexor::Find_cliques(graph, {.progress = &stop, .threads = 3}),
                     plexor::Cancelled);
        EXPECT_GT(stop.n_nodes, 0);
    }
}

std::vector<std::vector<plexor::Node>>
Visited(Graph const& graph, plexor::Search_options const& options, std::size_t most = 1000000) {
    std::vector<std::vector<plexor::Node>> cliques;
    std::thread::id const here = std::this_thread::get_id();
    bool const all = plexor::For_each_clique(
        graph,
        [&](plexor::Nodes clique) {
            EXPECT_EQ(std::this_thread::get_id(), here);
            cliques.emplace_back(clique.begin(), clique.end());
            return cliques.size() < most;
        },
        options);
    EXPECT_EQ(all, cliques.size() < most);
    return cliques;
}

TEST(Visitor, is_handed_the_cliques_in_the_order_of_the_list) {
    for (Graph const& graph : {Teams(), Directed_teams(), Moon_moser(5), Graph::From_edges({})}) {
        Cliques const cliques = plexor::Find_cliques(graph);
        std::vector<std::vector<plexor::Node>> expected;
        for (std::size_t i = 0; i < cliques.size(); ++i) {
            expected.emplace_back(cliques[i].begin(), cliques[i].end());
        }
        for (unsigned const threads : {0U, 1U, 2U, 8U}) {
            EXPECT_EQ(Visited(graph, {.threads = threads}), expected) << threads << " threads";
        }
    }
}

TEST(Visitor, ends_a_search_when_it_has_seen_enough) {
    Graph const graph = Teams();
    auto const all = Visited(graph, {});
    for (unsigned const threads : {1U, 3U}) {
        for (std::size_t const most : {std::size_t{1}, std::size_t{7}, all.size()}) {
            auto const some = Visited(graph, {.threads = threads}, most);
            ASSERT_EQ(some.size(), most);
            EXPECT_TRUE(std::ranges::equal(some, std::span(all).first(most)));
        }
    }
}

TEST(Visitor, throws_to_the_caller) {
    struct Enough {};
    auto const throw_enough = [](plexor::Nodes) -> bool { throw Enough(); };
    for (unsigned const threads : {1U, 3U}) {
        EXPECT_THROW(plexor::For_each_clique(Teams(), throw_enough, {.threads = threads}), Enough);
    }
}

TEST(Visitor, is_watched_and_can_be_cancelled) {
    Graph const graph = Moon_moser(60);
    for (unsigned const threads : {1U, 3U}) {
        Stop_after stop(1);
        EXPECT_THROW(plexor::For_each_clique(graph, [](plexor::Nodes) { return true; },
                                             {.progress = &stop, .threads = threads}),
                     plexor::Cancelled);
        EXPECT_GT(stop.n_nodes, 0);
    }
}

TEST(Visitor, does_not_go_with_a_time_limit) {
    EXPECT_EQ(Kind_thrown([] {
                  plexor::For_each_clique(Teams(), [](plexor::Nodes) { return true; },
                                          {.time_limit = 1});
              }),
              Error::Kind::bad_argument);
}

TEST(Threads, give_the_same_levels_whatever_their_number) {
    Graph const graph = Teams();
    Cliques const cliques = plexor::Find_cliques(graph);
    for (std::optional<double> const intensity : {std::optional<double>(), std::optional(80.0)}) {
        Levels alone(graph, cliques, {.intensity = intensity});
        std::vector<std::string> expected;
        while (auto const level = alone.Next()) {
            expected.push_back(Told(*level));
        }
        ASSERT_GT(expected.size(), 5U);
        for (unsigned const threads : {0U, 2U, 3U, 8U}) {
            Levels levels(graph, cliques, {.intensity = intensity, .threads = threads});
            std::vector<std::string> told;
            while (auto const level = levels.Next()) {
                told.push_back(Told(*level));
                // Beside those made ahead, on this thread.
                EXPECT_EQ(Told(levels.At(level->K())), told.back());
            }
            EXPECT_EQ(told, expected) << threads << " threads";
        }
    }
}

TEST(Threads, leave_levels_that_need_nothing_else) {
    std::vector<Level> kept;
    {
        Graph const graph = Teams();
        Levels levels(graph, plexor::Find_cliques(graph), {.threads = 3});
        while (auto level = levels.Next()) {
            kept.push_back(*level);
        }
    }
    Graph const graph = Teams();
    Levels alone(graph, plexor::Find_cliques(graph));
    for (Level const& level : kept) {
        EXPECT_EQ(Told(level), Told(*alone.Next()));
    }
}

TEST(Threads, end_with_their_levels) {
    Graph const graph = Teams();
    Cliques const cliques = plexor::Find_cliques(graph);
    for (int n_taken = 0; n_taken < 4; ++n_taken) {
        Levels levels(graph, cliques, {.threads = 4});
        for (int i = 0; i < n_taken; ++i) {
            levels.Next();
        }
    }
}

// Cancels when told to, and holds that it is asked on the thread it was made on.
class On_this_thread : public plexor::Progress {
public:
    bool Cancel() override {
        EXPECT_EQ(std::this_thread::get_id(), thread_);
        return cancel;
    }
    void Level_started(std::uint32_t k) override {
        EXPECT_EQ(std::this_thread::get_id(), thread_);
        ks.push_back(k);
    }
    bool cancel = false;
    std::vector<std::uint32_t> ks;

private:
    std::thread::id thread_ = std::this_thread::get_id();
};

TEST(Threads, are_watched_from_the_calling_one_and_can_be_cancelled) {
    Graph const graph = Teams();
    Cliques const cliques = plexor::Find_cliques(graph);
    On_this_thread progress;
    Levels levels(graph, cliques, {.progress = &progress, .threads = 3});
    Level const first = *levels.Next();
    progress.cancel = true;
    EXPECT_THROW(levels.Next(), plexor::Cancelled);
    EXPECT_THROW(levels.Next(), plexor::Cancelled);
    progress.cancel = false;
    Level const second = *levels.Next();
    EXPECT_EQ(second.K(), first.K() - 1);
    std::uint32_t const k = second.K();
    EXPECT_THAT(progress.ks, ElementsAre(k + 1, k, k, k));
    EXPECT_EQ(Told(second), Told(Levels(graph, cliques).At(k)));
}

TEST(Library, serves_two_threads_at_once) {
    Graph const shared = Moon_moser(5);
    std::vector<std::size_t> sizes(4);
    std::vector<std::thread> threads;
    for (std::size_t& size : sizes) {
        threads.emplace_back([&size, &shared] {
            Graph const own = Moon_moser(5);
            Levels levels(own, plexor::Find_cliques(shared));
            while (auto const level = levels.Next()) {
                size += (*level)[0].size();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(sizes, testing::Each(45U)); // 15 nodes at k = 5, 4 and 3
}

} // namespace
