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

// --- Undirected, by the definition. ---

/// Lists every maximal clique made of `clique` and some of `candidates`. These and `others` are all
/// nodes linked to the whole clique; with one of the others it is listed elsewhere.
void List_maximal(Nodes const& clique, Nodes candidates, Nodes others, Graph const& graph,
                  std::set<Nodes>& found) {
    if (candidates.empty() && others.empty()) {
        found.insert(clique);
    }
    if (candidates.empty()) {
        return;
    }
    // Nodes linked to the pivot alone make no maximal clique, since the pivot could join: so every
    // maximal clique holds the pivot or one of the candidates that are not linked to it.
    auto const linked = [&](unsigned node) {
        return Common(candidates, graph.all.at(node)).size();
    };
    Nodes const both = Joined(candidates, others);
    unsigned const pivot = *std::max_element(
        both.begin(), both.end(), [&](unsigned a, unsigned b) { return linked(a) < linked(b); });
    for (unsigned node : Without(candidates, graph.all.at(pivot))) {
        Nodes const& neighbours = graph.all.at(node);
        List_maximal(Joined(clique, {node}), Common(candidates, neighbours),
                     Common(others, neighbours), graph, found);
        candidates.erase(node);
        others.insert(node);
    }
}

/// The maximal cliques of three or more nodes that hold `node` and otherwise nodes of `work`, in
/// the order of their other members.
Cliques Maximal_cliques(unsigned node, Graph const& work, Graph const& graph) {
    Nodes const& neighbours = work.all.at(node);
    std::set<Nodes> found;
    List_maximal({}, neighbours, Without(graph.all.at(node), neighbours), graph, found);
    Cliques result;
    for (auto const& others : found) {
        if (others.size() > 1) {
            result.push_back(Joined(others, {node}));
        }
    }
    return result;
}

// --- Undirected, as far as time allows: a clique grows by candidates in ascending order. ---

/// Adds `x` to the clique. The clock is read from three nodes on.
void Grow(unsigned x, Nodes clique, Nodes const& candidates, Graph const& work, Cliques& known,
          Attempt& attempt, Time_check const& time_is_up) {
    Nodes rest = Common(work.all.at(x), candidates);
    clique.insert(x);
    if (Inside_any(Joined(clique, rest), known)) {
        return;
    }
    if (rest.empty() && clique.size() > 2) {
        attempt.found.push_back(clique);
        known.push_back(clique);
    }
    while (!rest.empty() && !attempt.too_slow) {
        if (clique.size() > 2 && time_is_up()) {
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
    Grow(node, {}, work.all.at(node), work, known, attempt, time_is_up);
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

/// The clock is read from three nodes on.
void Grow_chain(Chain chain, Graph const& work, Cliques& known, Found_map& found, bool& too_slow,
                Time_check const& time_is_up) {
    if (Inside_any(Reach_of(chain), known)) {
        return;
    }
    bool const three = chain.size() > 3;
    if (three && Finished(chain)) {
        Record(chain, found, known);
        return;
    }
    for (std::size_t gap = 0; gap < chain.size(); ++gap) {
        while (!chain[gap].open.empty() && !too_slow) {
            if (three && time_is_up()) {
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
    Grow_chain({{node, work.in.at(node)}, {node, work.out.at(node)}}, work, known, found,
               attempt.too_slow, time_is_up);
    for (auto const& [key, members] : found) {
        attempt.found.push_back(members);
    }
    return attempt;
}

// --- The searches over all nodes. ---

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

void Search_exactly(Graph const& graph, Cliques& cliques, std::ostream& out) {
    Graph work = graph;
    if (!work.directed) {
        out << " Sorting the nodes...\n done.\n";
    }
    std::string const title = work.directed ? " Locating dir. cliques:" : " Locating cliques:";
    unsigned const total = Node_count(work);
    for (unsigned node : Node_order(work)) {
        out << Progress({title}, "nodes", Node_count(work), total);
        Cliques const found = work.directed
                                  ? Search_node(node, work, cliques, [] { return false; }).found
                                  : Maximal_cliques(node, work, graph);
        cliques.insert(cliques.end(), found.begin(), found.end());
        work.Remove(node);
    }
    out << Altogether(work.directed ? "directed cliques" : "cliques", cliques.size());
}

/// Searches until every node left has overrun in a row and leaves those nodes in `work`.
void Search_limited(Graph& work, Cliques& cliques, double limit, Clock& clock, std::ostream& out,
                    Reached& reached) {
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
        out << Progress({title}, "nodes", Node_count(work), total);
        unsigned const node = queue.front();
        queue.pop_front();
        double const start = clock.Seconds();
        Attempt const attempt =
            Search_node(node, work, cliques, [&] { return clock.Seconds() - start > limit; });
        if (!attempt.too_slow) {
            cliques.insert(cliques.end(), attempt.found.begin(), attempt.found.end());
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
        out << Altogether(what, cliques.size())
            << (work.directed ? "no approximation was needed.\n"
                              : " no approximation was needed\n");
        return;
    }
    for (auto const& clique : pending) {
        if (!Inside_any(clique, cliques)) {
            reached.insert("a clique of an overrun is kept");
            cliques.push_back(clique);
        }
    }
    out << Altogether("exact " + what, cliques.size());
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
    Cliques kept = candidates;
    std::erase_if(kept, [&](Nodes const& nodes) { // each lies inside itself
        return std::count_if(candidates.begin(), candidates.end(),
                             [&](Nodes const& other) { return Inside(nodes, other); }) > 1;
    });
    return kept;
}

void Merge(Found_cliques& result, Cliques approximated, Reached& reached) {
    Cliques& cliques = result.cliques;
    std::erase_if(approximated, [&](Nodes const& nodes) { return Inside_any(nodes, cliques); });
    auto const dropped =
        std::erase_if(cliques, [&](Nodes const& nodes) { return Inside_any(nodes, approximated); });
    if (dropped > 0) {
        reached.insert("an exact clique is dropped");
    }
    result.n_exact = static_cast<unsigned>(cliques.size());
    cliques.insert(cliques.end(), approximated.begin(), approximated.end());
}

} // namespace

Nodes Common(Nodes const& a, Nodes const& b) {
    Nodes result;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(),
                          std::inserter(result, result.end()));
    return result;
}

Nodes Without(Nodes const& a, Nodes const& b) {
    Nodes result;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(),
                        std::inserter(result, result.end()));
    return result;
}

bool Inside(Nodes const& small, Nodes const& large) {
    return small.size() <= large.size() &&
           std::includes(large.begin(), large.end(), small.begin(), small.end());
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

Rows Overlaps(std::vector<Nodes> const& sets) {
    std::map<unsigned, std::vector<unsigned>> holders;
    for (unsigned i = 0; i < sets.size(); ++i) {
        for (unsigned node : sets[i]) {
            holders[node].push_back(i);
        }
    }
    Rows rows(sets.size());
    for (unsigned i = 0; i < sets.size(); ++i) {
        for (unsigned node : sets[i]) {
            for (unsigned other : holders[node]) {
                ++rows[i][other];
            }
        }
    }
    return rows;
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
            if (i == j || shared > 0) {
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
        Search_limited(core, result.cliques, *limit, clock, out, reached);
    } else {
        Search_exactly(graph, result.cliques, out);
    }
    result.n_exact = static_cast<unsigned>(result.cliques.size());
    result.rows = Overlaps(result.cliques);
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
