// SPDX-License-Identifier: MIT
// Writes one of the benchmarks' own networks as a link file.
#include "Networks.h"

#include <charconv>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using namespace cpm::bench;

constexpr std::uint64_t seed = 7;

constexpr char const* usage = "usage: make_network KIND SIZE FILE\n"
                              "  papers SIZE links: overlapping teams, like coauthors\n"
                              "  hub SIZE links at one node\n"
                              "  clique of SIZE nodes\n"
                              "  chain of SIZE overlapping cliques\n"
                              "  separate SIZE communities\n"
                              "  dense SIZE links in overlapping groups among 9,000 nodes\n"
                              "  directed SIZE nodes, densely linked\n"
                              "  weighted SIZE overlapping cliques of 16 nodes with weights\n"
                              "  ring of SIZE nodes, densely linked with those near by\n";

Network Make(std::string_view kind, std::uint32_t size) {
    if (kind == "papers") {
        return Papers(size, seed);
    }
    if (kind == "hub") {
        return Hub(size);
    }
    if (kind == "clique") {
        return Clique(size);
    }
    if (kind == "chain") {
        return Chain(size);
    }
    if (kind == "separate") {
        return Separate(size);
    }
    if (kind == "dense") {
        return Dense_groups(9000, size, seed);
    }
    if (kind == "directed") {
        return Directed(size, 0.25, seed);
    }
    if (kind == "weighted") {
        return Weighted_cliques(size, seed);
    }
    if (kind == "ring") {
        return Ring(size, seed);
    }
    throw std::runtime_error("no such kind of network: " + std::string(kind));
}

} // namespace

int main(int argc, char** argv) {
    std::uint32_t size = 0;
    if (argc != 4 ||
        std::from_chars(argv[2], argv[2] + std::strlen(argv[2]), size).ec != std::errc()) {
        std::cerr << usage;
        return 2;
    }
    try {
        Write_network(Make(argv[1], size), argv[3]);
    } catch (std::exception const& error) {
        std::cerr << "make_network: " << error.what() << "\n" << usage;
        return 1;
    }
    return 0;
}
