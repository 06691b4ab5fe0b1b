// SPDX-License-Identifier: MIT
// A program of its own that uses libplexor: communities of a small network, and a search that its
// caller ends.
#include <plexor/plexor.h>

#include <cstdio>
#include <exception>
#include <vector>

namespace {

// Two groups of five who all know each other, three people in both; and somebody at the edge.
std::vector<plexor::Edge> const edges = {
    {10, 11}, {10, 12}, {10, 13}, {10, 14}, {11, 12}, {11, 13}, {11, 14}, {12, 13}, {12, 14},
    {13, 14}, {12, 15}, {12, 16}, {13, 15}, {13, 16}, {14, 15}, {14, 16}, {15, 16}, {16, 99},
};

void Print_level(plexor::Graph const& graph, plexor::Level const& level) {
    for (std::size_t i = 0; i < level.size(); ++i) {
        std::printf("k=%u community %zu:", level.K(), i);
        for (plexor::Node const node : level[i]) {
            std::printf(" %u", graph.Id(node));
        }
        std::printf(", %zu links\n", level.Links_of(i).size());
    }
}

// Ends a search as soon as it is asked whether to go on.
class Stop_at_once : public plexor::Progress {
public:
    bool Cancel() override { return true; }
};

// A graph whose maximal cliques nobody can list: 60 groups of three, linked but for each other.
plexor::Graph Hopeless_graph() {
    constexpr std::uint32_t n_nodes = 180;
    std::vector<plexor::Edge> links;
    for (std::uint32_t a = 0; a < n_nodes; ++a) {
        for (std::uint32_t b = a + 1; b < n_nodes; ++b) {
            if (a / 3 != b / 3) {
                links.push_back({a, b});
            }
        }
    }
    return plexor::Graph::From_edges(links);
}

} // namespace

int main() try {
    plexor::Graph const graph = plexor::Graph::From_edges(edges);
    plexor::Cliques const cliques = plexor::Find_cliques(graph);
    std::printf("%zu nodes, %zu links, %zu cliques, the largest of %u nodes\n",
                graph.Number_of_nodes(), graph.Number_of_links(), cliques.size(),
                cliques.Largest());

    plexor::Levels levels(graph, cliques);
    while (auto const level = levels.Next()) {
        std::printf("k=%u: %zu communities\n", level->K(), level->size());
    }
    Print_level(graph, levels.At(5));
    Print_level(graph, levels.At(4));

    Stop_at_once stop;
    try {
        plexor::Find_cliques(Hopeless_graph(), {.progress = &stop});
    } catch (plexor::Cancelled const&) {
        std::printf("the search without hope was ended\n");
    }
    return 0;
} catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
