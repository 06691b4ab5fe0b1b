// SPDX-License-Identifier: MIT
// The time-limited searches on cores whose cliques nobody can list, with a clock that counts.
#include "Clique_find/Clique_find.h"
#include "Clique_find/Finder.h"
#include "support/Captured_console.h"
#include "support/Graph_makers.h"
#include "support/Random_numbers.h"
#include "support/Test_clocks.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

constexpr Node part_size = 3;
constexpr Node n_parts = 20;
constexpr Node n_of_parts = n_parts * part_size; // nodes

// Arcs; an undirected search takes them as links.
struct Network {
    std::set<std::pair<Node, Node>> arcs;
    Node n_nodes = 0;
};

enum class Ways { forward, any };

void Link(Network& network, Node a, Node b, Ways ways, Random_numbers& random) {
    std::uint32_t const way = ways == Ways::forward ? 0 : random.Below(3);
    if (way != 1) {
        network.arcs.insert({a, b});
    }
    if (way != 0) {
        network.arcs.insert({b, a});
    }
}

// All pairs of nodes of different parts: 3^20 cliques of a node of each part, in either direction
// if all arcs lead forward.
Network Parts(Ways ways, Node n_nodes = n_of_parts) {
    Random_numbers random(5);
    Network network;
    network.n_nodes = n_nodes;
    for (Node a = 1; a <= n_nodes; ++a) {
        for (Node b = (a - 1) / part_size * part_size + part_size + 1; b <= n_nodes; ++b) {
            Link(network, a, b, ways, random);
        }
    }
    return network;
}

// Half of all pairs of the nodes 1 to n_core are linked. The others stand in a row, each linked
// with the next two and one of the core: no four of them are linked.
Network Dense_core(Node n_core, Node n_others) {
    Random_numbers random(6);
    Network network;
    network.n_nodes = n_core + n_others;
    for (Node a = 1; a <= n_core; ++a) {
        for (Node b = a + 1; b <= n_core; ++b) {
            if (random.Percent(50)) {
                Link(network, a, b, Ways::any, random);
            }
        }
    }
    for (Node a = n_core + 1; a <= network.n_nodes; ++a) {
        for (Node b = a + 1; b <= std::min(a + 2, network.n_nodes); ++b) {
            Link(network, a, b, Ways::any, random);
        }
        Link(network, 1 + a % n_core, a, Ways::any, random);
    }
    return network;
}

struct Result {
    Set_list cliques;
    std::vector<Node> core;
    std::string reports;
    std::size_t readings = 0;
    std::vector<Node> overruns; ///< the nodes, in their order
};

std::vector<Node> Overruns(std::string const& reports) {
    constexpr std::string_view words = " Exceeded allowed time at node no.";
    std::vector<Node> nodes;
    std::istringstream lines(reports);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(words)) {
            nodes.push_back(static_cast<Node>(std::stoul(line.substr(words.size()))));
        }
    }
    return nodes;
}

// Goes on by a second each time it is read, and puts an end to a search that reads it too often.
class Counting_clock {
public:
    Counting_clock(std::size_t& readings, std::size_t most) : readings_(readings), most_(most) {}
    double operator()() {
        if (++readings_ > most_) {
            throw std::runtime_error("the clock is read too often");
        }
        return static_cast<double>(readings_);
    }

private:
    std::size_t& readings_;
    std::size_t most_;
};

// With one of the searches, over its kind of vertex map.
template <class Find, class Vertices>
Result Search_in_time(Find const& find, Vertices const& vertices, double max_time,
                      std::size_t most_readings) {
    Captured_console console;
    Result result;
    Clock_of clock(Counting_clock(result.readings, most_readings));
    find(result.cliques, vertices, result.core, max_time, clock, console, max_n_cliques);
    result.reports = console.Output();
    result.overruns = Overruns(result.reports);
    return result;
}

Result Search(Network const& network, double max_time, std::size_t most_readings) {
    Links links;
    for (auto const& [a, b] : network.arcs) {
        links.insert({std::min(a, b), std::max(a, b)});
    }
    Graph const order(To_index_links(links));
    return Search_in_time(Clique_find_part_time, order, max_time, most_readings);
}

Result Search_directed(Network const& network, double max_time, std::size_t most_readings) {
    Graph const graph(To_index_links(network.arcs), true);
    return Search_in_time(Clique_find_dir_time, graph, max_time, most_readings);
}

std::vector<Node> Nodes_up_to(Node last) {
    std::vector<Node> nodes(last);
    std::iota(nodes.begin(), nodes.end(), Node{1});
    return nodes;
}

// What must be so when nodes are left: each of them has overrun since the last one that was done,
// in the order in which they were tried, and nothing has been tried after that.
void Expect_stopped(Result const& result) {
    ASSERT_GE(result.overruns.size(), result.core.size());
    std::vector<Node> last(result.overruns.end() - static_cast<std::ptrdiff_t>(result.core.size()),
                           result.overruns.end());
    std::ranges::sort(last);
    EXPECT_EQ(last, result.core);
    std::string const n = std::to_string(result.core.size());
    std::string const stop = " skipping, " + n + " out of " + n + " skipped in a row, (100.00%)\n";
    std::size_t const at = result.reports.find(stop);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(result.reports.find(" to do (", at), std::string::npos) << "tried after the stop";
    EXPECT_NE(result.reports.find(" has been found too slow", at), std::string::npos);
    EXPECT_TRUE(result.reports.ends_with(" found.\n"));
}

// The first of the limits, and all of them when there is time for more than the quick tests: the
// work of a search grows with its limit, and under the sanitizers a second of it takes tens.
template <class Limit> std::vector<Limit> Limits_for(std::vector<Limit> limits, std::size_t quick) {
    limits.resize(Rounds(1) > 1 ? limits.size() : quick);
    return limits;
}

// Every set has a node of each part, and none comes twice.
void Expect_cliques_of_parts(Set_list const& cliques) {
    for (std::size_t c = 0; c < cliques.size(); ++c) {
        ASSERT_EQ(cliques[c].size(), n_parts) << "clique " << c;
        for (std::size_t p = 0; p < n_parts; ++p) {
            ASSERT_EQ((cliques[c][p] - 1) / part_size, p) << "clique " << c;
        }
        ASSERT_TRUE(c == 0 || std::ranges::lexicographical_compare(cliques[c - 1], cliques[c]))
            << "clique " << c;
    }
}

TEST(Hard_cores, Parts_are_given_up_at_the_first_look) {
    for (Result const& result :
         {Search(Parts(Ways::forward), 0.5, 200), Search_directed(Parts(Ways::forward), 0.5, 200),
          Search_directed(Parts(Ways::any), 0.5, 200)}) {
        EXPECT_EQ(result.readings, 2 * n_of_parts) << "at the start of each attempt, and once more";
        EXPECT_TRUE(result.cliques.empty());
        EXPECT_EQ(result.core, Nodes_up_to(n_of_parts));
        EXPECT_EQ(result.overruns, Nodes_up_to(n_of_parts)) << "all have as many neighbours";
        Expect_stopped(result);
    }
}

// At a second per reading, the time of an attempt with a limit of t seconds is up at its reading
// t + 2, and that of the listing at the first reading after 1.75 * t seconds.
std::size_t Readings_of_an_attempt(unsigned max_time) {
    std::size_t readings = max_time + 3;
    while (static_cast<double>(readings - 1) <= 1.75 * max_time) {
        ++readings;
    }
    return readings;
}

TEST(Hard_cores, Parts_are_given_up_as_soon_as_the_time_is_up) {
    for (unsigned const max_time : Limits_for<unsigned>({1, 2, 5}, 2)) {
        for (bool const directed : {false, true}) {
            std::size_t const readings = n_of_parts * Readings_of_an_attempt(max_time);
            Result const result = directed
                                      ? Search_directed(Parts(Ways::forward), max_time, readings)
                                      : Search(Parts(Ways::forward), max_time, readings);
            EXPECT_EQ(result.readings, readings);
            EXPECT_EQ(result.core, Nodes_up_to(n_of_parts));
            EXPECT_EQ(result.overruns, Nodes_up_to(n_of_parts));
            EXPECT_GE(result.cliques.size(), 10 * n_of_parts) << "listed by then";
            ASSERT_NO_FATAL_FAILURE(Expect_cliques_of_parts(result.cliques));
            Expect_stopped(result);
        }
    }
}

TEST(Hard_cores, Parts_with_may_have_cycles_are_given_up_as_soon_as_the_time_is_up) {
    for (unsigned const max_time : {1U, 4U}) {
        std::size_t const readings = n_of_parts * Readings_of_an_attempt(max_time);
        Result const result = Search_directed(Parts(Ways::any), max_time, readings);
        EXPECT_EQ(result.readings, readings);
        EXPECT_EQ(result.core, Nodes_up_to(n_of_parts));
        EXPECT_GE(result.cliques.size(), n_of_parts) << "listed by then";
        Expect_stopped(result);
    }
}

// Goes on by its step at each reading: so the time decides, and not how much is listed.
std::size_t Listed_of_parts(Node n_parts_here, Node size, bool directed, double seconds_a_look) {
    Network network;
    network.n_nodes = n_parts_here * size;
    for (Node a = 1; a <= network.n_nodes; ++a) {
        for (Node b = (a - 1) / size * size + size + 1; b <= network.n_nodes; ++b) {
            network.arcs.insert({a, b});
        }
    }
    double const max_time = 1 / seconds_a_look;
    Result const result =
        directed ? Search_directed(network, max_time, 1000000) : Search(network, max_time, 1000000);
    EXPECT_EQ(result.core.size(), network.n_nodes);
    for (std::size_t c = 0; c < result.cliques.size(); ++c) {
        EXPECT_EQ(result.cliques[c].size(), n_parts_here);
    }
    return result.cliques.size();
}

TEST(Hard_cores, More_time_lists_more_cliques) {
    for (bool const directed : {false, true}) {
        for (auto const& [parts, size] : {std::pair<Node, Node>{13, 4}, {18, 3}}) {
            std::size_t before = 0;
            for (double const a_look : Limits_for<double>({0.5, 0.25, 0.1}, 2)) {
                std::size_t const listed = Listed_of_parts(parts, size, directed, a_look);
                EXPECT_GT(listed, before + before / 4) << parts << " parts, directed: " << directed;
                before = listed;
            }
        }
    }
}

// Nodes 1 to 4 are linked with each other. Each of them is linked with a block of its own and half
// of another one, which nobody finishes: their common clique comes after all of these.
TEST(Hard_cores, A_clique_that_comes_late_in_the_order_is_kept) {
    constexpr Node n_parts_of_block = 5;
    constexpr Node size = 4;
    Links links;
    Node next = 1;
    std::array<Node, 4> nodes{};
    std::vector<Node> starts;
    for (int block = 0; block < 4; ++block) { // 4^5 cliques each; they come first in the order
        Node const start = next;
        starts.push_back(start);
        next += n_parts_of_block * size;
        for (Node a = start; a < next; ++a) {
            for (Node b = a + 1; b < next; ++b) {
                if ((a - start) / size != (b - start) / size) {
                    links.insert({a, b});
                }
            }
        }
    }
    for (Node& node : nodes) {
        node = next++;
    }
    links.merge(Complete(nodes.front(), nodes.back()));
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        Node const own = starts[i / 2 * 2];
        Node const shared = starts[i / 2 * 2 + 1];
        for (Node k = 0; k < n_parts_of_block * size; ++k) {
            links.insert({own + k, nodes[i]});
            if (k < n_parts_of_block * size / 2) {
                links.insert({shared + k, nodes[i]});
            }
        }
    }
    // At a look for each step all time is gone at the second look, but enough is left to list all.
    Graph const order(To_index_links(links));
    for (Node const node : nodes) {
        Progress nobody;
        std::unique_ptr<Finder> const finder = Make_finder(order, nobody);
        int readings = 0;
        Clock_of clock([&] { return ++readings <= 2 ? 0.0 : 1.5; });
        Time_budget budget(clock, 1, 1);
        Set_list found;
        finder->Find_within(node, budget, found);
        EXPECT_TRUE(budget.Too_slow());
        EXPECT_GT(found.size(), 1000U);
        auto const listed = To_vectors(found);
        EXPECT_NE(std::ranges::find(listed, std::vector<Node>(nodes.begin(), nodes.end())),
                  listed.end());
    }
}

TEST(Hard_cores, A_dense_core_is_given_up_and_everything_around_it_is_done) {
    constexpr Node n_core = 500;
    constexpr Node n_others = 1000;
    Network const network = Dense_core(n_core, n_others);
    // Two attempts at each node of the core at most: before and after what is around is done.
    std::size_t const most_readings = 4 * (2 * n_core + n_others);
    for (bool const directed : {false, true}) {
        Result const result = directed ? Search_directed(network, 1, most_readings)
                                       : Search(network, 1, most_readings);
        EXPECT_EQ(result.core, Nodes_up_to(n_core));
        Expect_stopped(result);
        std::size_t n_around = 0;
        bool around_is_over = false;
        for (std::size_t c = 0; c < result.cliques.size(); ++c) {
            bool const around = result.cliques[c].back() > n_core;
            ASSERT_FALSE(around && around_is_over) << "what is pending comes last";
            around_is_over = !around;
            n_around += around ? 1 : 0;
        }
        EXPECT_GT(n_around, 0U);
        EXPECT_GT(result.cliques.size(), n_around);
    }
}

} // namespace
} // namespace cpm::test
