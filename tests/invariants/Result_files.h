// SPDX-License-Identifier: MIT
// A finished run as its files and its standard output have it, taken apart but not judged. What
// cannot be taken apart is thrown as std::runtime_error.
#ifndef PLEXOR_INVARIANTS_RESULT_FILES_H
#define PLEXOR_INVARIANTS_RESULT_FILES_H

#include "Network.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace cpm::invariants {

/// A number and whether a minus sign, the mark of what is approximated, stands before it.
struct Marked_number {
    bool minus = false;
    std::size_t number = 0;
    friend auto operator<=>(Marked_number const&, Marked_number const&) = default;
};

/// A record that lists nodes, in the order of the file.
struct Node_record {
    Marked_number number;
    Nodes nodes;
};

struct Clique_record {
    Marked_number number;
    std::vector<Marked_number> cliques;
};

struct Link_record {
    Marked_number number;
    std::vector<std::pair<Node, Node>> links; ///< as written
};

struct Graph_line {
    Marked_number first;
    Marked_number second;
    std::size_t shared = 0;
};

using Distribution = std::map<std::size_t, std::size_t>;

/// What a folder k=... holds.
struct Level {
    std::size_t k = 0;
    bool says_negative = false; ///< the header of the communities explains minus signs
    std::vector<Node_record> communities;
    std::vector<Clique_record> cliques;
    std::vector<Link_record> links;
    std::vector<Graph_line> graph;
    /// By the name without what stands before "membership", "size", ...: "size_distribution_exact".
    std::map<std::string, Distribution> distributions;
    std::set<std::string> unknown_files;
};

struct Results {
    std::vector<std::string> graph_lines;
    bool says_negative = false; ///< the header of the cliques explains minus signs
    std::vector<Node_record> cliques;
    std::vector<Level> levels; ///< k descending
    bool single_k = false;     ///< the run was asked for one k
};

/// Whether the run was a directed one, judging by the names of its files.
bool Is_directed_run(std::string const& directory);
Results Read_results(std::string const& directory, Network const& network);

/// What standard output says of the clique search.
struct Search_report {
    std::size_t n_found = 0;        ///< exact cliques before approximated ones were merged in
    std::size_t n_exact = 0;        ///< after that
    std::size_t n_approximated = 0; ///< likewise
    Nodes core;                     ///< the nodes given up; empty when there are none
};

Search_report Read_report(std::string const& file);

} // namespace cpm::invariants

#endif
