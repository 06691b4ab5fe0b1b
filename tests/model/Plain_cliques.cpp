// SPDX-License-Identifier: MIT
#include "Plain_cliques.h"

#include "Plain_text.h"

#include <deque>
#include <functional>

namespace cpm::model {

namespace {

bool Inside_any(Nodes const& nodes, Cliques const& sets) {
    return std::any_of(sets.begin(), sets.end(),
                       [&](auto const& set) { return Inside(nodes, set); });
}

/// Adds every maximal clique made of `clique` and some of `candidates`. These and `others` are all
/// nodes linked to the whole clique; with one of the others it has been added already.
void Add_maximal(Nodes const& clique, Nodes candidates, Nodes others, Graph const& graph,
                 std::set<Nodes>& found) {
    Nodes const both = candidates | others;
    if (both.empty()) {
        found.insert(clique);
        return;
    }
    // Nodes linked to the pivot alone make no maximal clique, since the pivot could join: so every
    // maximal clique holds the pivot or one of the candidates that are not linked to it.
    unsigned const pivot = *std::max_element(both.begin(), both.end(), [&](unsigned a, unsigned b) {
        return Size(candidates & graph.out.at(a)) < Size(candidates & graph.out.at(b));
    });
    for (unsigned node : candidates - graph.out.at(pivot)) {
        Nodes const& neighbours = graph.out.at(node);
        Add_maximal(clique | Nodes{node}, candidates & neighbours, others & neighbours, graph,
                    found);
        candidates.erase(node);
        others.insert(node);
    }
}

/// A clique that grows. In a directed graph its members stand in a line, each linked to all after
/// it, with a gap before, between and after them; in an undirected graph there is one gap only.
struct Growing {
    Nodes members;
    std::vector<Nodes> gaps; // in each the nodes that can still be put there
};

/// The search for the cliques through one node.
struct Attempt {
    Graph const& work;                // the nodes that are not finished
    Cliques known;                    // all cliques through the node so far, also of earlier nodes
    std::function<bool()> time_is_up; // reads the clock
    Cliques found = {};               // in the order in which they are to be registered
    bool too_slow = false;

    void Search(unsigned node, bool exact) {
        if (work.directed) {
            Grow({{node}, {work.in.at(node), work.out.at(node)}});
        } else if (!exact) {
            Grow({{node}, {work.out.at(node)}});
        } else { // by the definition, which finds the same and is fast enough for real networks
            std::set<Nodes> others;
            Add_maximal({}, work.out.at(node), {}, work, others);
            for (auto const& members : others) {
                if (members.size() > 1 && !Inside_any(members | Nodes{node}, known)) {
                    found.push_back(members | Nodes{node});
                }
            }
        }
    }

    /// Puts a node into a gap, of which two are left: the nodes before it must link to it, those
    /// after it must be linked from it.
    Growing Put(unsigned node, std::size_t gap, Growing const& clique) const {
        Growing next{clique.members | Nodes{node}, {}};
        for (std::size_t i = 0; i < clique.gaps.size(); ++i) {
            if (i <= gap) {
                next.gaps.push_back(clique.gaps[i] & work.in.at(node));
            }
            if (i >= gap && work.directed) {
                next.gaps.push_back(clique.gaps[i] & work.out.at(node));
            }
        }
        return next;
    }

    /// Tries the gaps in their order and the nodes of each in theirs. The clock is read from three
    /// members on.
    void Grow(Growing clique) {
        Nodes reach = clique.members;
        for (auto const& gap : clique.gaps) {
            reach.insert(gap.begin(), gap.end());
        }
        if (Inside_any(reach, known)) {
            return; // nothing new can come of it
        }
        bool const three = clique.members.size() > 2;
        if (three && reach == clique.members) {
            std::erase_if(found, [&](Nodes const& old) { return Inside(old, reach); });
            found.push_back(reach);
            known.push_back(reach);
        }
        for (std::size_t i = 0; i < clique.gaps.size(); ++i) {
            while (!clique.gaps[i].empty() && !too_slow) {
                if (three && time_is_up()) {
                    too_slow = true;
                    return;
                }
                unsigned const node = *clique.gaps[i].begin();
                clique.gaps[i].erase(node);
                Grow(Put(node, i, clique));
            }
        }
    }
};

/// Fewest neighbours first, equal ones by their index.
std::deque<unsigned> Node_order(Graph const& graph) {
    std::deque<unsigned> order;
    for (auto const& [node, nodes] : graph.in) {
        order.push_back(node);
    }
    std::stable_sort(order.begin(), order.end(), [&](unsigned a, unsigned b) {
        return Size(graph.Neighbours(a)) < Size(graph.Neighbours(b));
    });
    return order;
}

/// Takes out of `work` every node that is finished. With a time limit a node that takes too long
/// waits until all others have been tried; when all that are left have done so in a row, they stay.
Cliques Search(Graph& work, std::optional<double> limit, Clock& clock, std::ostream& out,
               Reached& reached) {
    std::string const what = work.directed ? "directed cliques" : "cliques";
    std::string title = work.directed ? " Locating dir. cliques" : " Locating cliques";
    if (limit) {
        title += ", max. allowed time/node=" + Fixed(*limit, 3);
    } else if (!work.directed) {
        out << " Sorting the nodes...\n done.\n";
    }
    std::deque<unsigned> queue = Node_order(work);
    unsigned const total = Size(queue);
    unsigned skipped = 0; // in a row
    std::set<Nodes> pending;
    Cliques cliques;
    while (skipped < queue.size()) {
        out << Progress({title + ":"}, "nodes", Size(queue), total);
        unsigned const node = queue.front();
        queue.pop_front();
        double const start = clock.Start();
        Attempt attempt{work, {}, [&] { return limit && clock.Seconds() - start > *limit; }};
        std::copy_if(cliques.begin(), cliques.end(), std::back_inserter(attempt.known),
                     [&](Nodes const& clique) { return clique.contains(node); });
        attempt.Search(node, !limit);
        if (!attempt.too_slow) {
            cliques.insert(cliques.end(), attempt.found.begin(), attempt.found.end());
            work.Remove(node);
            if (skipped > 0) {
                reached.insert("a node finishes after others overran");
            }
            skipped = 0;
            continue;
        }
        queue.push_back(node);
        pending.insert(attempt.found.begin(), attempt.found.end());
        ++skipped;
        out << " Exceeded allowed time at node no." << node << ",\n"
            << " skipping, " << skipped << " out of " << queue.size() << " skipped in a row, ("
            << Fixed(100.0 * skipped / Size(queue), 2) << "%)\n";
    }
    if (!queue.empty()) {
        out << std::string(what.size() + 43, '_') << "\n The extraction of " << what
            << " has been found too slow \n at all of the remaining nodes.\n";
        for (auto const& clique : pending) {
            if (!Inside_any(clique, cliques)) {
                reached.insert("a clique of an overrun is kept");
                cliques.push_back(clique);
            }
        }
    }
    out << Altogether((queue.empty() ? "" : "exact ") + what, cliques.size());
    if (queue.empty() && limit) {
        out << (work.directed ? "no approximation was needed.\n"
                              : " no approximation was needed\n");
    }
    return cliques;
}

/// Of the core that a time limit leaves, one candidate per node: its neighbours in the core,
/// without the node itself.
Cliques Approximate(Graph const& core, Cliques const& exact) {
    Cliques candidates;
    for (auto const& [node, nodes] : core.in) {
        Nodes const neighbours = core.Neighbours(node);
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

} // namespace

void Graph::Remove(unsigned node) {
    for (auto* links : {&in, &out}) {
        links->erase(node);
        for (auto& [other, nodes] : *links) {
            nodes.erase(node);
        }
    }
}

Graph Make_graph(Index_links const& links, bool directed) {
    Graph graph{directed, {}, {}};
    auto const link = [&](unsigned source, unsigned target) {
        graph.out[source].insert(target);
        graph.in[target].insert(source);
        graph.out[target]; // an entry, perhaps an empty one
        graph.in[source];
    };
    for (auto const& [ends, weight] : links) {
        link(ends.first, ends.second);
        if (!directed) {
            link(ends.second, ends.first);
        }
    }
    return graph;
}

void Extend_rows(Rows& rows, std::vector<Nodes> const& sets, unsigned n_old) {
    // Deliberate: one row per new set goes after the rows there are, whatever their number. When
    // exact cliques were dropped before, the old rows no longer stand at their cliques' positions.
    rows.resize(rows.size() + (sets.size() - n_old));
    for (unsigned i = n_old; i < sets.size(); ++i) {
        for (unsigned j = 0; j <= i; ++j) {
            auto const shared = std::count_if(sets[i].begin(), sets[i].end(), [&](unsigned node) {
                return sets[j].contains(node);
            });
            if (i == j || shared > 0) {
                rows[j][i] = static_cast<unsigned>(shared);
                rows[i][j] = static_cast<unsigned>(shared);
            }
        }
    }
}

Cliques Found_at(Graph const& work, Cliques const& known, unsigned node,
                 std::optional<unsigned> n_checks) {
    unsigned checks = 0;
    Attempt attempt{work, {}, [&] { return n_checks && ++checks >= *n_checks; }};
    std::copy_if(known.begin(), known.end(), std::back_inserter(attempt.known),
                 [&](Nodes const& clique) { return clique.contains(node); });
    attempt.Search(node, false);
    return attempt.found;
}

Found_cliques Find_cliques(Graph const& graph, std::optional<double> limit, Clock& clock,
                           std::ostream& out, Reached& reached) {
    Graph core = graph;
    Found_cliques result;
    result.cliques = Search(core, limit, clock, out, reached);
    result.n_exact = Size(result.cliques);
    Extend_rows(result.rows, result.cliques, 0);
    if (core.in.empty()) {
        return result;
    }
    reached.insert(graph.directed ? "a directed core is approximated" : "a core is approximated");
    out << Underlined(" Approximating cliques in the remaing core...");
    Cliques approximated = Approximate(core, result.cliques);
    std::erase_if(approximated, [&](auto const& set) { return Inside_any(set, result.cliques); });
    std::erase_if(result.cliques, [&](auto const& set) { return Inside_any(set, approximated); });
    if (result.cliques.size() < result.n_exact) {
        reached.insert("an exact clique is dropped");
    }
    result.n_exact = Size(result.cliques);
    result.cliques.insert(result.cliques.end(), approximated.begin(), approximated.end());
    Extend_rows(result.rows, result.cliques, result.n_exact);
    out << " Clique approximation finished,\n"
        << " number of   exact cliques=" << result.n_exact << ",\n"
        << " number of approx. cliques=" << approximated.size() << "\n";
    return result;
}

} // namespace cpm::model
