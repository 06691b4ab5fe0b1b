// SPDX-License-Identifier: MIT
// The time-limited searches on cores whose cliques nobody can list, with a clock that counts.
#include "Clique_find/Clique_find_dir.h"
#include "Clique_find/Clique_find_time.h"

#include "support/Captured_console.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <algorithm>
#include <gtest/gtest.h>
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
constexpr std::size_t most_of_an_attempt = 1000; // sets of four nodes or more that are kept

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
    find(result.cliques, vertices, result.core, max_time, clock, console);
    result.reports = console.Output();
    result.overruns = Overruns(result.reports);
    return result;
}

Result Search(Network const& network, double max_time, std::size_t most_readings) {
    Links links;
    for (auto const& [a, b] : network.arcs) {
        links.insert({std::min(a, b), std::max(a, b)});
    }
    Vtx_map vertices;
    Vtx_map_from_link_map(vertices, To_index_links(links));
    return Search_in_time(Clique_find_part_time, vertices, max_time, most_readings);
}

Result Search_directed(Network const& network, double max_time, std::size_t most_readings) {
    Vtxd_map vertices;
    Dir_vtx_map_from_link_map(vertices, To_index_links(network.arcs));
    return Search_in_time(Clique_find_dir_time, vertices, max_time, most_readings);
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

// At a second a reading, an attempt with a limit of t seconds ends at its reading t + 2.
TEST(Hard_cores, Parts_are_given_up_as_soon_as_the_time_is_up) {
    for (unsigned const max_time : {1U, 2U, 5U}) {
        for (bool const directed : {false, true}) {
            std::size_t const readings = n_of_parts * (max_time + 2);
            Result const result = directed
                                      ? Search_directed(Parts(Ways::forward), max_time, readings)
                                      : Search(Parts(Ways::forward), max_time, readings);
            EXPECT_EQ(result.readings, readings);
            EXPECT_EQ(result.core, Nodes_up_to(n_of_parts));
            EXPECT_EQ(result.overruns, Nodes_up_to(n_of_parts));
            EXPECT_GE(result.cliques.size(), n_of_parts) << "found by then";
            ASSERT_NO_FATAL_FAILURE(Expect_cliques_of_parts(result.cliques));
            Expect_stopped(result);
        }
    }
}

TEST(Hard_cores, Parts_with_circles_are_given_up_as_soon_as_the_time_is_up) {
    for (unsigned const max_time : {1U, 4U}) {
        std::size_t const readings = n_of_parts * (max_time + 2);
        Result const result = Search_directed(Parts(Ways::any), max_time, readings);
        EXPECT_EQ(result.readings, readings);
        EXPECT_EQ(result.core, Nodes_up_to(n_of_parts));
        EXPECT_GE(result.cliques.size(), n_of_parts) << "found by then";
        Expect_stopped(result);
    }
}

// More time finds more cliques, but no more of them are kept.
TEST(Hard_cores, Of_each_attempt_at_parts_no_more_than_a_thousand_are_kept) {
    constexpr Node n_nodes = 36; // a node has 3^11 cliques
    Network const network = Parts(Ways::forward, n_nodes);
    for (bool const directed : {false, true}) {
        std::vector<std::size_t> n_listed;
        for (unsigned const max_time : {50U, 70U}) {
            std::size_t const readings = n_nodes * (max_time + 2);
            Result const result = directed ? Search_directed(network, max_time, readings)
                                           : Search(network, max_time, readings);
            EXPECT_EQ(result.readings, readings);
            EXPECT_EQ(result.core, Nodes_up_to(n_nodes));
            EXPECT_LE(result.cliques.size(), n_nodes * most_of_an_attempt);
            EXPECT_GT(result.cliques.size(), most_of_an_attempt);
            n_listed.push_back(result.cliques.size());
        }
        EXPECT_EQ(n_listed[0], n_listed[1]) << (directed ? "directed" : "undirected");
    }
}

TEST(Hard_cores, A_dense_core_is_given_up_and_everything_around_it_is_done) {
    constexpr Node n_core = 500;
    constexpr Node n_others = 1000;
    Network const network = Dense_core(n_core, n_others);
    // Two attempts at each node of the core at most: before and after what is around is done.
    std::size_t const most_readings = 3 * (2 * n_core + n_others);
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
