// SPDX-License-Identifier: MIT
// The network of a run, read from its link file: node numbers as the program gives them, links as
// they stand. Shares no code with the program.
#ifndef PLEXOR_INVARIANTS_NETWORK_H
#define PLEXOR_INVARIANTS_NETWORK_H

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace cpm::invariants {

/// Numbered from 1 on.
using Node = std::uint32_t;
/// Ascending, without repeats, where nothing else is said.
using Nodes = std::vector<Node>;

class Network {
public:
    /// Reads two names from each line and skips comments and the rest of a line; throws when
    /// there is a line with fewer. Undirected, a link counts both ways.
    Network(std::string const& link_file, bool directed);

    Node Count() const { return static_cast<Node>(neighbours_.size() - 1); }
    bool Is_directed() const { return directed_; }
    std::string const& Name(Node node) const { return names_[node]; }
    /// 0 when no node has the name.
    Node Number(std::string const& name) const;
    /// The lines that the graph file lists, without their ends.
    std::vector<std::string> const& Lines() const { return lines_; }

    bool Arc(Node from, Node to) const { return arcs_[from * neighbours_.size() + to]; }
    bool Linked(Node a, Node b) const { return Arc(a, b) || Arc(b, a); }
    Nodes const& Neighbours(Node node) const { return neighbours_[node]; }

    /// Every two nodes are linked and, in a directed network, the nodes can be lined up such that
    /// each has a link to every later one: their one-way links close no circle.
    bool Is_clique(Nodes const& nodes) const;
    /// A node that makes a larger clique of this one; 0 when there is none.
    Node Extension(Nodes const& clique) const;

private:
    Node Number_of_new(std::string const& name);
    bool Can_be_lined_up(Nodes const& nodes) const;

    bool directed_;
    std::vector<std::string> lines_;
    std::vector<std::string> names_{""};
    std::unordered_map<std::string, Node> numbers_;
    std::vector<bool> arcs_;
    std::vector<Nodes> neighbours_;
};

} // namespace cpm::invariants

#endif
