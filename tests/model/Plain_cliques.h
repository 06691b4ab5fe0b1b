// SPDX-License-Identifier: MIT
// The clique searches of the plain model: undirected or directed, exact or with a limit on the
// processor time spent on one node, and the approximation of what such a limit leaves undone.
#ifndef PLEXOR_PLAIN_CLIQUES_H
#define PLEXOR_PLAIN_CLIQUES_H

#include "Coin.h"

#include <algorithm>
#include <iterator>
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
using Cliques = std::vector<Nodes>;

/// The links between nodes -> the weight. In an undirected network the smaller node stands first.
using Index_links = std::map<Pair, double>;

/// Names of the rare situations a run has met, so that a batch of random runs can say what it has
/// covered.
using Reached = std::set<std::string>;

inline Nodes operator|(Nodes a, Nodes const& b) {
    a.insert(b.begin(), b.end());
    return a;
}

inline Nodes operator&(Nodes const& a, Nodes const& b) {
    Nodes both;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::inserter(both, both.end()));
    return both;
}

inline Nodes operator-(Nodes a, Nodes const& b) {
    std::erase_if(a, [&](unsigned node) { return b.contains(node); });
    return a;
}

inline bool Inside(Nodes const& small, Nodes const& large) {
    return std::includes(large.begin(), large.end(), small.begin(), small.end());
}

template <typename T> unsigned Size(T const& items) {
    return static_cast<unsigned>(items.size());
}

/// Who links to each node and who each node links to. In an undirected graph both are the same.
struct Graph {
    bool directed = false;
    std::map<unsigned, Nodes> in;
    std::map<unsigned, Nodes> out;

    Nodes Neighbours(unsigned node) const { return in.at(node) | out.at(node); }
    void Remove(unsigned node);
};

Graph Make_graph(Index_links const& links, bool directed);

/// Processor time that advances by the same step, in microseconds, at every reading; or that a coin
/// lets be up, or not, for a whole attempt at a node.
struct Clock {
    long long step = 0;
    Coin coin = {};
    long long now = 0;
    unsigned attempts = 0;

    /// An attempt begins: the time that it is measured from.
    double Start() {
        ++attempts;
        return coin.percent > 0 ? 0 : Seconds();
    }
    double Seconds() {
        if (coin.percent > 0) {
            return coin.Overruns(attempts) ? coin_time_is_up : 0;
        }
        return static_cast<double>(now += step) / 1e6;
    }
};

/// One row per set of nodes: the position of every set that shares nodes with it, its own included
/// -> the number of shared nodes.
using Rows = std::vector<std::map<unsigned, unsigned>>;

/// Adds to the rows what the sets from position `n_old` on share with all others.
void Extend_rows(Rows& rows, std::vector<Nodes> const& sets, unsigned n_old);

struct Found_cliques {
    Cliques cliques; // the exact ones first
    Rows rows;
    unsigned n_exact = 0;
};

/// Searches `graph`, with at most `limit` seconds for a node when there is a limit; the progress
/// goes to `out`.
Found_cliques Find_cliques(Graph const& graph, std::optional<double> limit, Clock& clock,
                           std::ostream& out, Reached& reached);

/// The cliques through `node` among the nodes of `work`, in the order in which they are to be
/// listed, when cliques of the nodes finished before are known; or what the attempt has found when
/// it has asked `n_checks` times whether its time is up.
Cliques Found_at(Graph const& work, Cliques const& known, unsigned node,
                 std::optional<unsigned> n_checks);

} // namespace cpm::model

#endif
