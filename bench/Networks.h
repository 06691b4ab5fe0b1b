// SPDX-License-Identifier: MIT
// Networks that the benchmarks make for themselves: the same links every time for the same
// arguments, on every machine.
#ifndef PLEXOR_NETWORKS_H
#define PLEXOR_NETWORKS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace cpm::bench {

struct Link {
    std::uint32_t source = 0;
    std::uint32_t target = 0;
    std::uint32_t thousandths = 0; ///< the weight, in thousandths; 0: the network has no weights
};

using Network = std::vector<Link>;

/// Overlapping teams with a heavy tail of sizes, like the authors of papers: a member of a new team
/// is a newcomer, a past colleague of somebody on the team, or anybody, picked by recent teams.
Network Papers(std::size_t n_links, std::uint64_t seed);
/// One node linked with `n_links` others, which form a band of triangles among themselves: every
/// clique holds the hub.
Network Hub(std::uint32_t n_links);
Network Clique(std::uint32_t n_nodes);
/// Cliques of four nodes; each shares three with the next one.
Network Chain(std::uint32_t n_cliques);
/// Cliques of three and four nodes in turn, none of which touches another one.
Network Separate(std::uint32_t n_communities);
/// Dense random groups that overlap at random: far more cliques than links.
Network Dense_groups(std::uint32_t n_nodes, std::size_t n_links, std::uint64_t seed);
/// Every pair of nodes is linked with the same probability, half of these in both directions.
Network Directed(std::uint32_t n_nodes, double density, std::uint64_t seed);
/// Cliques of 16 nodes, each sharing eight with the next one, with random weights: every subset of
/// a clique is a k-clique.
Network Weighted_cliques(std::uint32_t n_cliques, std::uint64_t seed);
/// A ring of nodes, each linked with most of its next 24 on either side: no node's search is
/// trivial, so a tight time limit gives up all of them.
Network Ring(std::uint32_t n_nodes, std::uint64_t seed);

/// The links as a link file, one a line. Throws std::runtime_error when it cannot be written.
void Write_network(Network const& network, std::string const& path);

} // namespace cpm::bench

#endif
