// SPDX-License-Identifier: MIT
// The clique searches of the plain model: undirected or directed, exact or with a limit on the
// processor time spent on one node, and the approximation of what such a limit leaves undone.
#ifndef PLEXOR_PLAIN_CLIQUES_H
#define PLEXOR_PLAIN_CLIQUES_H

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace cpm::model {

using Nodes = std::set<unsigned>;
using Pair = std::pair<unsigned, unsigned>;
using Index_links = std::map<Pair, double>;
using Cliques = std::vector<Nodes>;

/// One row per set of nodes, itself included: another set's position -> the number of shared nodes.
using Rows = std::vector<std::map<unsigned, unsigned>>;

/// Names of the rare situations a run has met, so that a batch of random runs can say what it has
/// covered.
using Reached = std::set<std::string>;

/// Neighbour sets by node; `in` and `out` hold entries in a directed graph only.
struct Graph {
    bool directed = false;
    std::map<unsigned, Nodes> all;
    std::map<unsigned, Nodes> in;
    std::map<unsigned, Nodes> out;

    void Remove(unsigned node);
};

Graph Make_graph(Index_links const& links, bool directed);

/// Processor time that advances by the same step, in microseconds, at every reading.
class Clock {
public:
    explicit Clock(long long step) : step_(step) {}
    double Seconds() { return static_cast<double>(++readings_ * step_) / 1e6; }

private:
    long long step_;
    long long readings_ = 0;
};

struct Found_cliques {
    Cliques cliques; // the exact ones first
    Rows rows;
    unsigned n_exact = 0;
};

/// Searches `graph`, with at most `limit` seconds for a node when there is a limit; the progress
/// goes to `out`.
Found_cliques Find_cliques(Graph const& graph, std::optional<double> limit, Clock& clock,
                           std::ostream& out, Reached& reached);

/// The rows of all sets; those that share nothing are not in them.
Rows Overlaps(std::vector<Nodes> const& sets);

/// Adds to the rows what the cliques from position `n_old` on share with all others.
void Extend_rows(Rows& rows, Cliques const& cliques, unsigned n_old);

Nodes Common(Nodes const& a, Nodes const& b);
Nodes Without(Nodes const& a, Nodes const& b);
bool Inside(Nodes const& small, Nodes const& large);
unsigned Size(Nodes const& nodes);
unsigned Largest(Cliques const& cliques);

} // namespace cpm::model

#endif
