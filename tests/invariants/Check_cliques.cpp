// SPDX-License-Identifier: MIT
// The rules of the clique list.
//
// A clique is a set of three nodes or more that are linked two by two and, in a directed network,
// can be lined up. The list has exact cliques, then approximated ones, which are sets of nodes and
// no more. The core are the nodes at which the search gave up; all other nodes are done.
//
//  1. A clique that holds a done node is exact and maximal, as the search of that node came to its
//     end: nothing inside it is listed, and every such clique is listed.
//  2. A clique inside the core was met at a node that was given up. Undirected, what is met is
//     maximal at once: a larger clique would have been met before, or holds a done node and so is
//     known. Directed, a set is met line by line, and another line of it may leave room for one
//     node more. So there, and only inside the core, an exact clique may lie inside another.
//  3. Cliques inside the core stand after the others, ascending as sets.
//  4. The approximated cliques are what the neighbours within the core of each core node are, in
//     the nodes' order; of these sets only those that lie in no other and in no exact clique.
//  5. An exact clique inside an approximated one has been dropped. A maximal clique inside the
//     neighbours of one node could not be maximal, undirected: so this happens in directed runs
//     only. From then on a clique that should be there may lie in an approximated one instead.
#include "Check_cliques.h"

#include "Clique_holders.h"

#include <algorithm>
#include <set>

namespace cpm::invariants {

namespace {

class Clique_check {
public:
    Clique_check(Results const& results, Network const& network, Search_report const& report,
                 Findings& findings)
        : cliques_(results.cliques), network_(network), report_(report), findings_(findings),
          n_exact_(std::min(report.n_exact, cliques_.size())),
          holders_(results.cliques, network.Count()), in_core_(network.Count() + std::size_t{1}) {
        for (Node const node : report.core) {
            in_core_.at(node) = true;
        }
    }

    void Exact();
    void Nesting();
    void Order();
    void Approximated();
    void Every_triangle();
    void Every_clique();

private:
    bool Inside_core(Nodes const& nodes) const {
        return std::ranges::all_of(nodes, [this](Node node) { return in_core_[node]; });
    }
    bool Dropped_some() const { return report_.n_exact < report_.n_found; }
    // Where a clique of done nodes may be found.
    std::size_t End_of_holders() const { return Dropped_some() ? cliques_.size() : n_exact_; }
    std::vector<Nodes> Expected_approximated() const;
    void Neighbouring_cliques(Nodes const& clique);

    std::vector<Node_record> const& cliques_;
    Network const& network_;
    Search_report const& report_;
    Findings& findings_;
    std::size_t n_exact_;
    Clique_holders holders_;
    std::vector<bool> in_core_;
};

void Clique_check::Exact() {
    findings_.Set_place("exact cliques");
    for (std::size_t i = 0; i < n_exact_; ++i) {
        Nodes const& clique = cliques_[i].nodes;
        findings_.Require(clique.size() >= 3, i, " has fewer than three nodes");
        if (!network_.Is_clique(clique)) {
            findings_.Add(i, " is not a clique");
        } else if (!(network_.Is_directed() && Inside_core(clique))) {
            Node const more = network_.Extension(clique);
            findings_.Require(more == 0, i, " is not maximal: ", network_.Name(more),
                              " extends it");
        }
    }
}

void Clique_check::Nesting() {
    findings_.Set_place("cliques inside others");
    for (std::size_t i = 0; i < cliques_.size(); ++i) {
        Nodes const& clique = cliques_[i].nodes;
        bool const may_lie_in_exact = network_.Is_directed() && i < n_exact_ && Inside_core(clique);
        holders_.For_each_of_all(clique, [&](std::size_t other) {
            bool const larger = cliques_[other].nodes.size() > clique.size();
            findings_.Require(other == i || (may_lie_in_exact && larger && other < n_exact_), i,
                              " lies inside ", other);
            return true;
        });
    }
}

void Clique_check::Order() {
    findings_.Set_place("order of the exact cliques");
    for (std::size_t i = 0; i + 1 < n_exact_; ++i) {
        Nodes const& clique = cliques_[i].nodes;
        Nodes const& next = cliques_[i + 1].nodes;
        findings_.Require(!Inside_core(clique) || (Inside_core(next) && clique < next), i + 1,
                          " does not follow ", i);
    }
}

std::vector<Nodes> Clique_check::Expected_approximated() const {
    std::vector<Nodes> sets;
    for (Node const node : report_.core) {
        Nodes set;
        std::ranges::set_intersection(network_.Neighbours(node), report_.core,
                                      std::back_inserter(set));
        if (std::ranges::find(sets, set) == sets.end()) {
            sets.push_back(set);
        }
    }
    std::vector<Nodes> expected;
    for (Nodes const& set : sets) {
        bool const lies_in_other = std::ranges::any_of(sets, [&](Nodes const& other) {
            return other.size() > set.size() && std::ranges::includes(other, set);
        });
        if (!lies_in_other && !holders_.Any_of_first(n_exact_, set)) {
            expected.push_back(set);
        }
    }
    return expected;
}

void Clique_check::Approximated() {
    findings_.Set_place("approximated cliques");
    std::vector<Nodes> const expected = Expected_approximated();
    findings_.Require(expected.size() == cliques_.size() - n_exact_, "there are ",
                      cliques_.size() - n_exact_, " and should be ", expected.size());
    for (std::size_t i = 0; i < expected.size() && n_exact_ + i < cliques_.size(); ++i) {
        findings_.Require(cliques_[n_exact_ + i].nodes == expected[i], n_exact_ + i,
                          " is not the neighbours within the core of a node that should come here");
    }
}

void Clique_check::Every_triangle() {
    findings_.Set_place("triangles of done nodes");
    for (Node done = 1; done <= network_.Count(); ++done) {
        if (in_core_[done]) {
            continue;
        }
        Nodes const& others = network_.Neighbours(done);
        for (Node const a : others) {
            for (Node const b : others) {
                Nodes const three{done, a, b};
                if (a < b && network_.Linked(a, b) &&
                    !holders_.Any_of_first(End_of_holders(), three) && network_.Is_clique(three)) {
                    findings_.Add(network_.Name(done), ' ', network_.Name(a), ' ', network_.Name(b),
                                  " lie in no clique of the list");
                }
            }
        }
    }
}

// If C is a maximal clique with a done node d that is not listed, take the listed K through d that
// shares most nodes with C; it shares three, as every triangle of d is listed. C has a node v that
// is not in K. What v is linked with of K, and v, then is a larger part of C, so no listed clique
// holds it. It is therefore enough to look whether there are such K and v.
void Clique_check::Every_clique() {
    if (network_.Is_directed()) { // what a node adds to a directed clique is no single set
        return;
    }
    findings_.Set_place("cliques of done nodes");
    for (std::size_t i = 0; i < n_exact_; ++i) {
        Neighbouring_cliques(cliques_[i].nodes);
    }
}

void Clique_check::Neighbouring_cliques(Nodes const& clique) {
    std::set<Node> extra;
    for (Node const node : clique) {
        if (!in_core_[node]) {
            Nodes const& others = network_.Neighbours(node);
            extra.insert(others.begin(), others.end());
        }
    }
    for (Node const node : extra) {
        Nodes part;
        std::ranges::set_intersection(clique, network_.Neighbours(node), std::back_inserter(part));
        bool const is_new = std::ranges::find(clique, node) == clique.end();
        part.push_back(node);
        findings_.Require(!is_new || part.size() < 3 || holders_.Any_of_first(n_exact_, part),
                          "one of ", part.size(), " nodes or more is missing, with ",
                          network_.Name(node), " and ", network_.Name(part.front()));
    }
}

// False when the records are not those of a list.
bool Check_records(Results const& results, Search_report const& report, Findings& findings) {
    std::size_t const before = findings.Count();
    auto const& cliques = results.cliques;
    findings.Require(cliques.size() == report.n_exact + report.n_approximated,
                     "not as many cliques as reported");
    findings.Require(report.n_exact <= report.n_found, "more exact cliques than found");
    for (std::size_t i = 0; i < cliques.size(); ++i) {
        findings.Require(cliques[i].number == Marked_number{i >= report.n_exact, i},
                         "the number or sign of ", i, " is wrong");
        bool const ascending =
            std::ranges::adjacent_find(cliques[i].nodes, std::ranges::greater_equal()) ==
            cliques[i].nodes.end();
        findings.Require(ascending, i, " is not ascending");
    }
    return findings.Count() == before;
}

} // namespace

bool Check_clique_list(Results const& results, Network const& network, Search_report const& report,
                       Findings& findings) {
    findings.Set_place("clique file");
    if (!Check_records(results, report, findings)) {
        return false;
    }
    findings.Require(results.says_negative == (report.n_approximated > 0),
                     "the header is wrong about negative indices");
    findings.Require(results.graph_lines == network.Lines(), "the graph file has other links");
    findings.Require(report.n_exact == report.n_found || network.Is_directed(),
                     "exact cliques were dropped in an undirected run");
    Clique_check check(results, network, report, findings);
    check.Exact();
    check.Nesting();
    check.Order();
    check.Approximated();
    check.Every_triangle();
    check.Every_clique();
    return true;
}

} // namespace cpm::invariants
