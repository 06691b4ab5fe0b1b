// SPDX-License-Identifier: MIT
#include "Plain_cliques.h"

#include "Plain_text.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <iterator>

namespace cpm::model {

namespace {

/// Reads the clock and tells whether the node's time is up.
using Time_check = std::function<bool()>;

/// What the search through one node has found, in the order in which it is to be registered.
struct Attempt {
    Cliques found;
    bool too_slow = false;
};

bool Inside_any(Nodes const& nodes, Cliques const& known) {
    return std::any_of(known.begin(), known.end(),
                       [&](Nodes const& set) { return Inside(nodes, set); });
}

Nodes Joined(Nodes a, Nodes const& b) {
    a.insert(b.begin(), b.end());
    return a;
}

unsigned Take_first(Nodes& nodes) {
    unsigned const first = *nodes.begin();
    nodes.erase(nodes.begin());
    return first;
}

/// The members of a and b that are not in c.
Nodes Tighten(Nodes const& a, Nodes const& b, Nodes const& c) {
    Nodes result;
    for (unsigned node : Common(a, b)) {
        if (!c.contains(node)) {
            result.insert(node);
        }
    }
    return result;
}

// --- Undirected: a clique grows by candidates in ascending order. ---

void Grow(unsigned x, Nodes clique, Nodes const& candidates, Graph const& work, Cliques& known,
          Attempt& attempt, Time_check const& time_is_up) {
    Nodes rest = Tighten(work.all.at(x), candidates, clique);
    clique.insert(x);
    if (rest.empty()) {
        if (!Inside_any(clique, known)) {
            attempt.found.push_back(clique);
            known.push_back(clique);
        }
        return;
    }
    if (Inside_any(Joined(clique, rest), known)) {
        return;
    }
    while (!rest.empty() && !attempt.too_slow) {
        if (time_is_up()) {
            attempt.too_slow = true;
            return;
        }
        unsigned const y = Take_first(rest);
        Grow(y, clique, rest, work, known, attempt, time_is_up);
    }
}

Attempt Search_undirected(unsigned node, Graph const& work, Cliques known,
                          Time_check const& time_is_up) {
    Attempt attempt;
    Nodes candidates = work.all.at(node);
    while (candidates.size() > 1 && !attempt.too_slow) {
        unsigned const first = *candidates.begin();
        Nodes const clique{node, first};
        Nodes rest = Tighten(work.all.at(first), candidates, clique);
        candidates.erase(first);
        if (Inside_any(Joined(clique, rest), known)) {
            continue;
        }
        while (!rest.empty() && !attempt.too_slow) {
            unsigned const y = Take_first(rest);
            Grow(y, clique, rest, work, known, attempt, time_is_up);
        }
    }
    return attempt;
}

// --- Directed: a line of nodes, each linked to all that follow, grows in its gaps. ---

/// A place where the line can still grow. The label is the member right behind the gap; the gap
/// behind the last member is labelled with the node the search started from.
struct Gap {
    unsigned label;
    Nodes open; // nodes linked from all members before the gap and to all members behind it
};
using Chain = std::vector<Gap>;

Chain Insert(Chain const& chain, std::size_t gap, unsigned node, Graph const& work) {
    Chain next;
    for (std::size_t i = 0; i < chain.size(); ++i) {
        if (i < gap) {
            next.push_back({chain[i].label, Common(chain[i].open, work.in.at(node))});
            continue;
        }
        if (i == gap) {
            next.push_back({node, Common(chain[i].open, work.in.at(node))});
        }
        next.push_back({chain[i].label, Common(chain[i].open, work.out.at(node))});
    }
    return next;
}

/// The members and all that may still join them.
Nodes Reach_of(Chain const& chain) {
    Nodes result;
    for (auto const& gap : chain) {
        result.insert(gap.label);
        result.insert(gap.open.begin(), gap.open.end());
    }
    return result;
}

bool Finished(Chain const& chain) {
    return std::all_of(chain.begin(), chain.end(), [](Gap const& gap) { return gap.open.empty(); });
}

using Found_map = std::map<unsigned, Nodes>;

void Record(Chain const& chain, Found_map& found, Cliques& known) {
    Nodes members;
    for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
        members.insert(chain[i].label);
    }
    known.push_back(members);
    unsigned const key = found.empty() ? 1 : found.rbegin()->first + 1;
    std::erase_if(found, [&](auto const& entry) { return Inside(entry.second, members); });
    found[key] = members;
}

void Grow_chain(Chain chain, Graph const& work, Cliques& known, Found_map& found, bool& too_slow,
                Time_check const& time_is_up) {
    if (Inside_any(Reach_of(chain), known)) {
        return;
    }
    if (Finished(chain)) {
        Record(chain, found, known);
        return;
    }
    for (std::size_t gap = 0; gap < chain.size(); ++gap) {
        while (!chain[gap].open.empty() && !too_slow) {
            if (time_is_up()) {
                too_slow = true;
                return;
            }
            unsigned const u = Take_first(chain[gap].open);
            Grow_chain(Insert(chain, gap, u, work), work, known, found, too_slow, time_is_up);
        }
    }
}

Attempt Search_directed(unsigned node, Graph const& work, Cliques known,
                        Time_check const& time_is_up) {
    Attempt attempt;
    Found_map found;
    Chain chain{{node, work.in.at(node)}, {node, work.out.at(node)}};
    for (std::size_t e = 0; e < chain.size(); ++e) {
        while (!chain[e].open.empty() && !attempt.too_slow) {
            unsigned const u = Take_first(chain[e].open);
            Chain next = Insert(chain, e, u, work);
            if (Inside_any(Reach_of(next), known)) {
                continue;
            }
            for (std::size_t f = 0; f < next.size(); ++f) {
                while (!next[f].open.empty() && !attempt.too_slow) {
                    unsigned const w = Take_first(next[f].open);
                    Grow_chain(Insert(next, f, w, work), work, known, found, attempt.too_slow,
                               time_is_up);
                }
            }
        }
    }
    for (auto const& [key, members] : found) {
        attempt.found.push_back(members);
    }
    return attempt;
}

// --- The searches over all nodes. ---

void Register(Nodes const& clique, Found_cliques& result) {
    auto& [cliques, rows, n_exact] = result;
    auto const position = static_cast<unsigned>(cliques.size());
    cliques.push_back(clique);
    rows.emplace_back();
    for (unsigned other = 0; other <= position; ++other) {
        if (unsigned const shared = Size(Common(cliques[other], clique)); shared > 0) {
            rows[other][position] = shared;
            rows[position][other] = shared;
        }
    }
}

Attempt Search_node(unsigned node, Graph const& work, Cliques const& so_far,
                    Time_check const& time_is_up) {
    Cliques known;
    std::copy_if(so_far.begin(), so_far.end(), std::back_inserter(known),
                 [&](Nodes const& clique) { return clique.contains(node); });
    return work.directed ? Search_directed(node, work, known, time_is_up)
                         : Search_undirected(node, work, known, time_is_up);
}

/// Fewest neighbours first, equal ones by their index.
std::deque<unsigned> Node_order(Graph const& graph) {
    std::set<std::pair<std::size_t, unsigned>> by_degree;
    for (auto const& [node, neighbours] : graph.all) {
        by_degree.insert({neighbours.size(), node});
    }
    std::deque<unsigned> order;
    for (auto const& [degree, node] : by_degree) {
        order.push_back(node);
    }
    return order;
}

unsigned Node_count(Graph const& graph) {
    return static_cast<unsigned>(graph.all.size());
}

void Search_exactly(Graph work, Found_cliques& result, std::ostream& out) {
    if (!work.directed) {
        out << " Sorting the nodes...\n done.\n";
    }
    std::string const title = work.directed ? " Locating dir. cliques:" : " Locating cliques:";
    unsigned const total = Node_count(work);
    for (unsigned node : Node_order(work)) {
        out << Progress(title, "nodes", Node_count(work), total);
        Attempt const attempt = Search_node(node, work, result.cliques, [] { return false; });
        for (auto const& clique : attempt.found) {
            Register(clique, result);
        }
        work.Remove(node);
    }
    out << Altogether(work.directed ? "directed cliques" : "cliques", result.cliques.size());
}

/// Searches until every node left has overrun in a row and leaves those nodes in `work`.
void Search_limited(Graph& work, Found_cliques& result, double limit, Clock& clock,
                    std::ostream& out, Reached& reached) {
    std::string const what = work.directed ? "directed cliques" : "cliques";
    std::string const title = (work.directed ? " Locating dir. cliques, max. allowed time/node="
                                             : " Locating cliques, max. allowed time/node=") +
                              Fixed(limit, 3) + ":";
    unsigned const total = Node_count(work);
    std::deque<unsigned> queue = Node_order(work);
    std::set<Nodes> pending;
    unsigned skipped = 0;
    bool go_on = true;
    while (!queue.empty() && go_on) {
        out << Progress(title, "nodes", Node_count(work), total);
        unsigned const node = queue.front();
        queue.pop_front();
        double const start = clock.Seconds();
        Attempt const attempt = Search_node(node, work, result.cliques,
                                            [&] { return clock.Seconds() - start > limit; });
        if (!attempt.too_slow) {
            for (auto const& clique : attempt.found) {
                Register(clique, result);
            }
            if (skipped > 0) {
                reached.insert("a node finishes after others overran");
            }
            skipped = 0;
            work.Remove(node);
            continue;
        }
        ++skipped;
        out << " Exceeded allowed time at node no." << node << ",\n"
            << " skipping, " << skipped << " out of " << work.all.size() << " skipped in a row, ("
            << Fixed(100.0 * skipped / Node_count(work), 2) << "%)\n";
        queue.push_back(node);
        pending.insert(attempt.found.begin(), attempt.found.end());
        if (skipped >= queue.size()) {
            out << Underline(what.size() + 43) << " The extraction of " << what
                << " has been found too slow \n at all of the remaining nodes.\n";
            go_on = false;
        }
    }
    if (work.all.empty()) {
        out << Altogether(what, result.cliques.size())
            << (work.directed ? "no approximation was needed.\n"
                              : " no approximation was needed\n");
        return;
    }
    for (auto const& clique : pending) {
        if (!Inside_any(clique, result.cliques)) {
            reached.insert("a clique of an overrun is kept");
            Register(clique, result);
        }
    }
    out << Altogether("exact " + what, result.cliques.size());
}

// --- The core that a limited search leaves. ---

/// One candidate per core node: its neighbours in the core, without the node itself.
Cliques Approximate(Graph const& core, Cliques const& exact) {
    Cliques candidates;
    for (auto const& [node, neighbours] : core.all) {
        if (!Inside_any(neighbours, candidates) && !Inside_any(neighbours, exact)) {
            candidates.push_back(neighbours);
        }
    }
    Cliques kept;
    for (std::size_t a = 0; a < candidates.size(); ++a) {
        bool covered = false;
        for (std::size_t b = 0; b < candidates.size(); ++b) {
            covered = covered || (a != b && Inside(candidates[a], candidates[b]));
        }
        if (!covered) {
            kept.push_back(candidates[a]);
        }
    }
    return kept;
}

void Merge(Found_cliques& result, Cliques const& approximated, Reached& reached) {
    Cliques new_ones;
    for (auto const& clique : approximated) {
        if (!Inside_any(clique, result.cliques)) {
            new_ones.push_back(clique);
        }
    }
    Cliques merged;
    for (auto const& clique : result.cliques) {
        if (!Inside_any(clique, new_ones)) {
            merged.push_back(clique);
        }
    }
    if (merged.size() < result.cliques.size()) {
        reached.insert("an exact clique is dropped");
    }
    result.n_exact = static_cast<unsigned>(merged.size());
    merged.insert(merged.end(), new_ones.begin(), new_ones.end());
    result.cliques = merged;
}

} // namespace

Nodes Common(Nodes const& a, Nodes const& b) {
    Nodes result;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(),
                          std::inserter(result, result.end()));
    return result;
}

bool Inside(Nodes const& small, Nodes const& large) {
    return std::includes(large.begin(), large.end(), small.begin(), small.end());
}

unsigned Size(Nodes const& nodes) {
    return static_cast<unsigned>(nodes.size());
}

unsigned Largest(Cliques const& cliques) {
    unsigned largest = 0;
    for (auto const& clique : cliques) {
        largest = std::max(largest, Size(clique));
    }
    return largest;
}

void Graph::Remove(unsigned node) {
    Nodes const neighbours = all.at(node);
    for (auto* sets : {&all, &in, &out}) {
        sets->erase(node);
        for (unsigned neighbour : neighbours) {
            if (auto const entry = sets->find(neighbour); entry != sets->end()) {
                entry->second.erase(node);
            }
        }
    }
}

Graph Make_graph(Index_links const& links, bool directed) {
    Graph graph;
    graph.directed = directed;
    for (auto const& [link, weight] : links) {
        auto const [a, b] = link;
        graph.all[a].insert(b);
        graph.all[b].insert(a);
        if (directed) {
            graph.out[a].insert(b);
            graph.in[b].insert(a);
            graph.in[a];
            graph.out[b];
        }
    }
    return graph;
}

void Extend_rows(Rows& rows, Cliques const& cliques, unsigned n_old) {
    // Deliberate: one row per new clique goes behind the rows there are, whatever their number.
    // When exact cliques were dropped before, the old rows no longer stand at their cliques'
    // positions.
    auto const end = static_cast<unsigned>(cliques.size());
    rows.resize(rows.size() + (end - n_old));
    for (unsigned i = n_old; i < end; ++i) {
        for (unsigned j = 0; j < end; ++j) {
            unsigned const shared = Size(Common(cliques[i], cliques[j]));
            if (i == j) {
                rows[i][i] = shared;
            } else if ((j < n_old || j > i) && shared > 0) {
                rows[j][i] = shared;
                rows[i][j] = shared;
            }
        }
    }
}

Found_cliques Find_cliques(Graph const& graph, std::optional<double> limit, Clock& clock,
                           std::ostream& out, Reached& reached) {
    Found_cliques result;
    Graph core;
    if (limit) {
        core = graph;
        Search_limited(core, result, *limit, clock, out, reached);
    } else {
        Search_exactly(graph, result, out);
    }
    result.n_exact = static_cast<unsigned>(result.cliques.size());
    if (core.all.empty()) {
        return result;
    }
    reached.insert(graph.directed ? "a directed core is approximated" : "a core is approximated");
    out << Underline(45) << " Approximating cliques in the remaing core...\n";
    Cliques const approximated = Approximate(core, result.cliques);
    Merge(result, approximated, reached);
    Extend_rows(result.rows, result.cliques, result.n_exact);
    out << " Clique approximation finished,\n"
        << " number of   exact cliques=" << result.n_exact << ",\n"
        << " number of approx. cliques=" << result.cliques.size() - result.n_exact << "\n";
    return result;
}

} // namespace cpm::model
