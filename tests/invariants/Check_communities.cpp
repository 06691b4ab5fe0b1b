// SPDX-License-Identifier: MIT
// The rules of the communities at one k.
//
// Two cliques are adjacent when they share k-1 nodes or more (one at least). A community is what is
// connected so, with a clique of k nodes or more in it; its nodes are those of its cliques, and its
// links are all pairs of nodes of one of its cliques. One with an approximated clique counts as
// approximated; those stand after the others. The communities of either kind come in the order of
// their first clique of k nodes or more. A clique of k-1 nodes belongs to a community only where it
// lies inside another clique.
//
// Where exact cliques have been dropped (directed runs only) the overlaps of exact cliques with one
// another are still those of the list before: an exact clique may then stand in the wrong
// community, or in none. The overlaps with approximated cliques are as they should be wherever
// there are any. What still holds: the records agree with one another, no clique is listed twice,
// and an approximated clique of k nodes or more is in a community, with all that is adjacent to it.
#include "Check_communities.h"

#include "Clique_holders.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace cpm::invariants {

namespace {

constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);

class Level_check {
public:
    Level_check(Level const& level, Results const& results, Network const& network,
                Search_report const& report, Findings& findings)
        : level_(level), cliques_(results.cliques), network_(network), n_exact_(report.n_exact),
          findings_(findings), old_overlaps_(report.n_exact < report.n_found),
          community_(cliques_.size(), none) {}

    /// False when the records do not fit together: the other checks then cannot be made.
    bool Records();
    void Members();
    void Nodes_and_links();
    void Graph();
    void Order() const;

    std::size_t K() const { return level_.k; }
    /// After Members(): clique -> its community, or `none`.
    std::vector<std::uint32_t> const& Community_of() const { return community_; }
    std::vector<Clique_record> const& Communities() const { return level_.cliques; }

private:
    using Links = std::vector<std::pair<Node, Node>>;

    template <class Record> void Numbers(std::vector<Record> const& records, char const* file);
    bool Is_large(std::size_t clique) const { return cliques_[clique].nodes.size() >= level_.k; }
    Nodes Expected_nodes(Clique_record const& community) const;
    Links Expected_links(Clique_record const& community, Nodes const& nodes) const;

    Level const& level_;
    std::vector<Node_record> const& cliques_;
    Network const& network_;
    std::size_t n_exact_;
    Findings& findings_;
    bool old_overlaps_; ///< exact cliques have been dropped
    std::vector<std::uint32_t> community_;
};

template <class Record>
void Level_check::Numbers(std::vector<Record> const& records, char const* file) {
    findings_.Require(records.size() == level_.communities.size(), "the ", file,
                      " have another number of communities");
    for (std::size_t i = 0; i < records.size(); ++i) {
        Marked_number const number = records[i].number;
        findings_.Require(number.number == i, "the ", file, " have another number than ", i);
        findings_.Require(i >= level_.communities.size() ||
                              number.minus == level_.communities[i].number.minus,
                          "the ", file, " have another sign at community ", i);
    }
}

bool Level_check::Records() {
    std::size_t const before = findings_.Count();
    Numbers(level_.communities, "communities");
    Numbers(level_.cliques, "cliques of communities");
    Numbers(level_.links, "links of communities");
    bool const after = std::ranges::is_partitioned(
        level_.communities, [](Node_record const& community) { return !community.number.minus; });
    findings_.Require(after, "an exact community stands after approximated ones");
    bool const any_minus = std::ranges::any_of(
        level_.communities, [](Node_record const& community) { return community.number.minus; });
    findings_.Require(level_.says_negative == any_minus,
                      "the header is wrong about negative indices");
    for (std::string const& name : level_.unknown_files) {
        findings_.Add("nobody knows the file ", name);
    }
    return findings_.Count() == before;
}

void Level_check::Members() {
    for (Clique_record const& community : level_.cliques) {
        std::size_t const c = community.number.number;
        bool approximated = false;
        for (Marked_number const& member : community.cliques) {
            if (member.number >= cliques_.size()) {
                findings_.Add("community ", c, " has a clique that does not exist");
                continue;
            }
            findings_.Require(community_[member.number] == none, "clique ", member.number,
                              " is listed twice");
            findings_.Require(member.minus == (member.number >= n_exact_), "clique ", member.number,
                              " has the wrong sign");
            community_[member.number] = static_cast<std::uint32_t>(c);
            approximated = approximated || member.number >= n_exact_;
        }
        findings_.Require(!community.cliques.empty(), "community ", c, " has no cliques");
        findings_.Require(approximated == community.number.minus, "community ", c,
                          " has the wrong sign");
    }
    for (std::size_t i = 0; i < cliques_.size(); ++i) {
        bool const must_be_there = Is_large(i) && (!old_overlaps_ || i >= n_exact_);
        findings_.Require(!must_be_there || community_[i] != none, "clique ", i,
                          " is in no community");
    }
}

Nodes Level_check::Expected_nodes(Clique_record const& community) const {
    std::set<Node> nodes;
    for (Marked_number const& member : community.cliques) {
        if (member.number < cliques_.size()) {
            nodes.insert(cliques_[member.number].nodes.begin(),
                         cliques_[member.number].nodes.end());
        }
    }
    return {nodes.begin(), nodes.end()};
}

// All pairs inside a clique, the smaller node first, ascending.
Level_check::Links Level_check::Expected_links(Clique_record const& community,
                                               Nodes const& nodes) const {
    std::vector<std::size_t> place(network_.Count() + std::size_t{1});
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        place[nodes[i]] = i;
    }
    std::vector<std::vector<bool>> together(nodes.size(), std::vector<bool>(nodes.size()));
    for (Marked_number const& member : community.cliques) {
        if (member.number < cliques_.size()) {
            Nodes const& clique = cliques_[member.number].nodes;
            for (auto a = clique.begin(); a != clique.end(); ++a) {
                std::for_each(a + 1, clique.end(),
                              [&](Node b) { together[place[*a]][place[b]] = true; });
            }
        }
    }
    Links links;
    for (std::size_t a = 0; a < nodes.size(); ++a) {
        for (std::size_t b = a + 1; b < nodes.size(); ++b) {
            if (together[a][b]) {
                links.push_back({nodes[a], nodes[b]});
            }
        }
    }
    return links;
}

// A link is written as the network has it, in the direction from the smaller node where it has
// both; a pair that is not linked, which an approximated clique may have, from the larger one.
// Undirected links have the direction from the smaller node.
void Level_check::Nodes_and_links() {
    for (std::size_t c = 0; c < level_.cliques.size(); ++c) {
        Nodes const nodes = Expected_nodes(level_.cliques[c]);
        findings_.Require(level_.communities[c].nodes == nodes, "community ", c,
                          " is not the union of its cliques");
        Links links;
        for (auto const& [a, b] : Expected_links(level_.cliques[c], nodes)) {
            findings_.Require(network_.Linked(a, b) || level_.cliques[c].number.minus,
                              "the exact community ", c, " has a pair that is not linked");
            links.push_back(network_.Arc(a, b) ? std::pair{a, b} : std::pair{b, a});
        }
        findings_.Require(level_.links[c].links == links, "the links of community ", c,
                          " are not the pairs inside its cliques");
    }
}

void Level_check::Order() const {
    if (old_overlaps_) {
        return;
    }
    std::vector<std::pair<bool, std::size_t>> firsts;
    for (Clique_record const& community : level_.cliques) {
        std::size_t first = cliques_.size();
        for (Marked_number const& member : community.cliques) {
            bool const exists = member.number < cliques_.size();
            findings_.Require(!exists || cliques_[member.number].nodes.size() + 1 >= level_.k,
                              "clique ", member.number, " is too small");
            if (exists && Is_large(member.number)) {
                first = std::min(first, member.number);
            }
        }
        findings_.Require(first < cliques_.size(), "community ", community.number.number,
                          " has no clique that is large enough");
        firsts.push_back({community.number.minus, first});
    }
    findings_.Require(std::ranges::is_sorted(firsts), "the communities are not in order");
}

void Level_check::Graph() {
    std::vector<Graph_line> expected;
    auto const& communities = level_.communities;
    for (std::size_t a = 0; a < communities.size(); ++a) {
        for (std::size_t b = a + 1; b < communities.size(); ++b) {
            Nodes shared;
            std::ranges::set_intersection(communities[a].nodes, communities[b].nodes,
                                          std::back_inserter(shared));
            if (!shared.empty()) {
                expected.push_back({communities[a].number, communities[b].number, shared.size()});
            }
        }
    }
    bool const same = std::ranges::equal(level_.graph, expected, [](auto const& x, auto const& y) {
        return x.first == y.first && x.second == y.second && x.shared == y.shared;
    });
    findings_.Require(same, "the graph of communities is not that of their common nodes");
}

// Looks at each two cliques that share nodes once, for all levels. Of two different sets that share
// k-1 nodes at least one has k nodes or more: they always belong together, unless nothing is known
// of their overlap.
class Adjacency_check {
public:
    /// The levels' k goes down.
    Adjacency_check(std::vector<Level_check> const& levels, std::vector<Node_record> const& cliques,
                    Node n_nodes, std::size_t n_exact, bool old_overlaps, Findings& findings);

    void Run();

private:
    // A level, with a forest of the cliques: clique -> one it is connected with, or itself.
    struct Joined_level {
        std::size_t k = 0;
        std::vector<std::size_t> joined;
        std::size_t n_lacking = 0; ///< how many joinings it takes to connect all communities
    };

    // At so many levels, the first ones, this many shared nodes are enough.
    std::size_t N_levels(std::size_t shared) const {
        return n_levels_[std::min(shared, n_levels_.size() - 1)];
    }
    void Adjacent(std::size_t a, std::size_t b, std::size_t shared);
    void Adjacent_at(Joined_level& level, std::size_t a, std::size_t b, bool in_one_community);
    static std::size_t First_joined(std::vector<std::size_t>& joined, std::size_t clique);

    Findings& findings_;
    std::size_t n_cliques_;
    std::size_t n_with_old_overlaps_; ///< so many cliques from the first on
    Clique_holders holders_;
    std::vector<Joined_level> levels_;     ///< k ascending
    std::vector<std::size_t> n_levels_;    ///< by shared nodes, up to what is enough everywhere
    std::size_t n_connected_ = 0;          ///< so many levels from the first on are connected
    std::vector<std::uint32_t> community_; ///< clique by clique, that of each level
};

Adjacency_check::Adjacency_check(std::vector<Level_check> const& levels,
                                 std::vector<Node_record> const& cliques, Node n_nodes,
                                 std::size_t n_exact, bool old_overlaps, Findings& findings)
    : findings_(findings), n_cliques_(cliques.size()),
      n_with_old_overlaps_(old_overlaps ? n_exact : 0), holders_(cliques, n_nodes),
      community_(cliques.size() * levels.size()) {
    for (std::size_t l = 0; l < levels.size(); ++l) {
        Level_check const& level = levels[levels.size() - 1 - l];
        levels_.push_back({level.K(), std::vector<std::size_t>(n_cliques_), 0});
        std::iota(levels_.back().joined.begin(), levels_.back().joined.end(), std::size_t{0});
        for (Clique_record const& community : level.Communities()) {
            levels_.back().n_lacking += std::max<std::size_t>(community.cliques.size(), 1) - 1;
        }
        for (std::size_t clique = 0; clique < n_cliques_; ++clique) {
            community_[clique * levels.size() + l] = level.Community_of()[clique];
        }
    }
    n_levels_.push_back(0);
    for (std::size_t l = 0; l < levels_.size(); ++l) {
        n_levels_.resize(std::max<std::size_t>(levels_[l].k - 1, 1), l);
        n_levels_.push_back(l + 1);
    }
}

void Adjacency_check::Run() {
    std::vector<std::uint32_t> shared(n_cliques_, 0);
    for (std::size_t a = 0; a < n_cliques_; ++a) {
        if (N_levels(holders_.Nodes_of(a).size()) == 0) {
            continue; // too small for any neighbour
        }
        std::ranges::fill(shared, 0);
        for (Node const node : holders_.Nodes_of(a)) {
            for (std::uint32_t const b : holders_.Of(node)) {
                ++shared[b];
            }
        }
        for (std::size_t b = std::max(a + 1, a < n_with_old_overlaps_ ? n_with_old_overlaps_ : 0);
             b < n_cliques_; ++b) {
            if (N_levels(shared[b]) > 0) {
                Adjacent(a, b, shared[b]);
            }
        }
    }
    for (Joined_level const& level : levels_) {
        findings_.Require(level.n_lacking == 0 || n_with_old_overlaps_ > 0,
                          "a community is not connected at k=", level.k);
    }
}

void Adjacency_check::Adjacent(std::size_t a, std::size_t b, std::size_t shared) {
    while (n_connected_ < levels_.size() && levels_[n_connected_].n_lacking == 0) {
        ++n_connected_;
    }
    auto const of_a = community_.begin() + static_cast<std::ptrdiff_t>(a * levels_.size());
    auto const of_b = community_.begin() + static_cast<std::ptrdiff_t>(b * levels_.size());
    auto const n = static_cast<std::ptrdiff_t>(N_levels(shared));
    if (n > static_cast<std::ptrdiff_t>(n_connected_) || !std::equal(of_a, of_a + n, of_b)) {
        for (std::ptrdiff_t l = 0; l < n; ++l) {
            Adjacent_at(levels_[static_cast<std::size_t>(l)], a, b, of_a[l] == of_b[l]);
        }
    }
}

void Adjacency_check::Adjacent_at(Joined_level& level, std::size_t a, std::size_t b,
                                  bool in_one_community) {
    if (!in_one_community) {
        findings_.Add("cliques ", a, " and ", b,
                      " are adjacent and not in one community at k=", level.k);
    } else if (level.n_lacking > 0) {
        std::size_t const first = First_joined(level.joined, a);
        std::size_t const second = First_joined(level.joined, b);
        level.n_lacking -= first == second ? 0 : 1;
        level.joined[second] = first;
    }
}

std::size_t Adjacency_check::First_joined(std::vector<std::size_t>& joined, std::size_t clique) {
    while (joined[clique] != clique) {
        joined[clique] = joined[joined[clique]];
        clique = joined[clique];
    }
    return clique;
}

void Check_list_of_levels(Results const& results, Findings& findings) {
    findings.Set_place("folders");
    std::size_t largest = 0;
    for (Node_record const& clique : results.cliques) {
        largest = std::max(largest, clique.nodes.size());
    }
    std::size_t const expected = largest < 3 ? 0 : largest - 2;
    findings.Require(results.levels.size() == (results.single_k ? 1 : expected),
                     "there is not one for each k");
    for (std::size_t i = 0; i < results.levels.size() && !results.single_k; ++i) {
        findings.Require(results.levels[i].k == largest - i, "there is none for ", largest - i);
    }
}

} // namespace

void Check_levels(Results const& results, Network const& network, Search_report const& report,
                  Findings& findings) {
    Check_list_of_levels(results, findings);
    std::vector<Level_check> checks;
    for (Level const& level : results.levels) {
        findings.Set_place("k=" + std::to_string(level.k));
        Level_check check(level, results, network, report, findings);
        if (!check.Records()) {
            continue;
        }
        check.Members();
        check.Nodes_and_links();
        check.Order();
        check.Graph();
        Check_distributions(level, network, findings);
        checks.push_back(std::move(check));
    }
    findings.Set_place("adjacent cliques");
    Adjacency_check(checks, results.cliques, network.Count(), report.n_exact,
                    report.n_exact < report.n_found, findings)
        .Run();
}

} // namespace cpm::invariants
