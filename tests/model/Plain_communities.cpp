// SPDX-License-Identifier: MIT
#include "Plain_communities.h"

#include "Plain_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <string>

namespace cpm::model {

namespace {

// --- Cliques that overlap. ---

struct Community {
    Nodes nodes;
    std::set<Pair> links;
    std::vector<unsigned> cliques;
    bool approximated = false;
};

struct Percolation {
    Found_cliques const& found;
    unsigned k;
    Reached& reached;
    std::vector<int> owner; // the community of each clique, -1: taken by none yet
    int counter = -1;

    void Claim(unsigned clique, Community& community) {
        if (owner[clique] >= 0) {
            reached.insert("a clique is claimed twice");
        }
        owner[clique] = counter;
        community.cliques.push_back(clique);
        community.approximated = community.approximated || clique >= found.n_exact;
        Nodes const& nodes = found.cliques[clique];
        for (auto a = nodes.begin(); a != nodes.end(); ++a) {
            community.nodes.insert(*a);
            for (auto b = std::next(a); b != nodes.end(); ++b) {
                community.links.insert({*a, *b});
            }
        }
    }

    /// Deliberate: neighbours are not asked whether another community has them already.
    Community Start(unsigned clique) {
        Community community;
        std::vector<unsigned> joined;
        bool exists = false;
        for (auto const& [other, overlap] : found.rows[clique]) {
            if (other >= found.cliques.size()) {
                reached.insert("an overlap names no clique");
            } else if (overlap >= k - 1) {
                joined.push_back(other);
                exists = exists || overlap >= k;
            }
        }
        if (!exists) {
            return community;
        }
        ++counter;
        for (unsigned other : joined) {
            Claim(other, community);
        }
        for (unsigned other : joined) {
            Extend(other, community);
        }
        return community;
    }

    void Extend(unsigned clique, Community& community) {
        std::vector<unsigned> joined;
        for (auto const& [other, overlap] : found.rows[clique]) {
            if (other < found.cliques.size() && overlap >= k - 1 && owner[other] < 0) {
                joined.push_back(other);
            }
        }
        for (unsigned other : joined) {
            Claim(other, community);
        }
        for (unsigned other : joined) {
            Extend(other, community);
        }
    }
};

// --- k-cliques and their intensity, all in sums of natural logarithms. ---

struct Log_weights {
    std::map<Pair, double> of;
    double smallest = 0;
};

Log_weights Get_log_weights(Nodes const& nodes, Index_links const& links) {
    std::logic_error const missing("ERROR: Get_sub_links_and_thresh_abs: missing link.\n");
    if (nodes.size() < 2) { // there is no first pair to look up
        throw missing;
    }
    Log_weights result;
    for (auto a = nodes.begin(); a != nodes.end(); ++a) {
        for (auto b = std::next(a); b != nodes.end(); ++b) {
            auto const link = links.find({*a, *b});
            if (link == links.end()) {
                throw missing;
            }
            double const w = std::log(link->second);
            if (result.of.empty() || w < result.smallest) {
                result.smallest = w;
            }
            result.of[{*a, *b}] = w;
        }
    }
    return result;
}

struct K_clique_search {
    Nodes const& clique;
    Log_weights const& weights;
    unsigned k;
    double threshold; // logarithm of the intensity threshold to the power of the number of links
    K_cliques& result;

    /// `certain`: even if all links to come had the smallest weight, it would be enough.
    void Grow(Nodes const& partial, double partial_sum, bool certain) {
        auto x = clique.upper_bound(*partial.rbegin());
        for (auto left = std::distance(x, clique.end()); left > 0; --left, ++x) {
            if (partial.size() + static_cast<std::size_t>(left) < k) {
                return; // too few to make k nodes
            }
            double added = 0;
            for (unsigned s : partial) {
                added += weights.of.at({s, *x});
            }
            double const sum = partial_sum + added;
            Nodes extended = partial;
            extended.insert(*x);
            auto const m = extended.size();
            double const links_in = (static_cast<double>(m) * 0.5) * (static_cast<double>(m) - 1);
            double const bound = ((k * (k - 1)) * 0.5 - links_in) * weights.smallest + sum;
            bool const enough = certain || bound > threshold;
            if (m < k) {
                Grow(extended, sum, enough);
            } else if (m == k && (enough || sum > threshold)) {
                result.insert(extended);
            }
        }
    }
};

bool Is_intense(Nodes const& shared, Index_links const& links, double threshold) {
    double const m = static_cast<double>(shared.size());
    double const all_links = (m * 0.5) * (m - 1);
    double const log_threshold = std::log(std::pow(threshold, all_links));
    Log_weights const weights = Get_log_weights(shared, links);
    double sum = 0;
    double counted = 1;
    auto current = std::next(shared.begin());
    while (current != shared.end() &&
           log_threshold >= (all_links - counted * (counted - 1) / 2) * weights.smallest + sum) {
        for (auto earlier = shared.begin(); earlier != current; ++earlier) {
            sum += weights.of.at({*earlier, *current});
        }
        ++current;
        ++counted;
    }
    // Deliberate: a walk that a comparison with NaN has ended counts as one that ended early.
    return current != shared.end() || sum > log_threshold;
}

using Labels = std::set<unsigned>;

/// Every set of k - 1 nodes that k-cliques hold -> the positions of those k-cliques, ascending.
std::map<Nodes, std::vector<unsigned>> Holders(std::vector<Nodes> const& k_cliques) {
    std::map<Nodes, std::vector<unsigned>> holders;
    for (unsigned i = 0; i < k_cliques.size(); ++i) {
        for (unsigned node : k_cliques[i]) {
            holders[Without(k_cliques[i], {node})].push_back(i);
        }
    }
    return holders;
}

/// The labels that each k-clique gets from itself and from earlier k-cliques adjacent to it.
std::vector<Labels> Label(std::vector<Nodes> const& k_cliques, Index_links const& links, unsigned k,
                          double threshold, std::ostream& out) {
    std::string const title_1 =
        " Extracting communities from the k-cliques at k=" + std::to_string(k) + ",";
    std::string const title_2 =
        " and a link weight intensity threshlod I=" + Fixed(threshold, 6) + ":";
    auto const total = static_cast<unsigned>(k_cliques.size());
    auto const holders = Holders(k_cliques);
    std::vector<Labels> labels(total);
    unsigned next_label = 0;
    for (unsigned i = 0; i < total; ++i) {
        out << Progress({title_1, title_2}, "k-cliques", total - i, total);
        if (labels[i].empty()) {
            labels[i].insert(next_label++);
        }
        unsigned const label = *labels[i].begin();
        for (unsigned node : k_cliques[i]) {
            Nodes const shared = Without(k_cliques[i], {node});
            auto const& adjacent = holders.at(shared);
            auto const later = std::upper_bound(adjacent.begin(), adjacent.end(), i);
            if (later != adjacent.end() && Is_intense(shared, links, threshold)) {
                std::for_each(later, adjacent.end(), [&](unsigned j) { labels[j].insert(label); });
            }
        }
    }
    return labels;
}

/// Label -> the smallest label that it is connected to through label sets that share labels.
std::map<unsigned, unsigned> Translation_rules(std::vector<Labels> const& labels) {
    std::vector<Labels> groups;
    for (auto const& set : labels) {
        if (set.size() < 2) {
            continue;
        }
        Labels joined = set;
        std::erase_if(groups, [&](Labels const& group) {
            bool const meets = !Common(group, set).empty();
            if (meets) {
                joined.insert(group.begin(), group.end());
            }
            return meets;
        });
        groups.push_back(joined);
    }
    std::map<unsigned, unsigned> rules;
    for (auto const& group : groups) {
        for (unsigned label : group) {
            rules[label] = *group.begin();
        }
    }
    return rules;
}

} // namespace

Communities Percolate(Found_cliques const& found, unsigned k, Reached& reached) {
    Percolation percolation{found, k, reached, std::vector<int>(found.cliques.size(), -1), -1};
    std::vector<Community> kept;
    for (unsigned i = 0; i < found.cliques.size(); ++i) {
        if (percolation.owner[i] < 0 && found.cliques[i].size() >= k) {
            if (Community community = percolation.Start(i); !community.nodes.empty()) {
                kept.push_back(community);
            }
        }
    }
    Communities result;
    for (bool approximated : {false, true}) {
        for (auto const& community : kept) {
            if (community.approximated == approximated) {
                result.nodes.push_back(community.nodes);
                result.links.emplace_back(community.links.begin(), community.links.end());
                result.cliques.push_back(community.cliques);
            }
        }
        if (!approximated) {
            result.n_exact = static_cast<unsigned>(result.nodes.size());
        }
    }
    return result;
}

K_cliques Find_k_cliques(Cliques const& cliques, Index_links const& links, unsigned k,
                         double threshold, std::ostream& out) {
    std::string const title_1 = " Generating k-cliques at k=" + std::to_string(k) + ",";
    std::string const title_2 =
        " and a link weight intensity threshold I=" + Fixed(threshold, 6) + ":";
    double const log_threshold = std::log(std::pow(threshold, (k * 0.5) * (k - 1)));
    auto const total = static_cast<unsigned>(cliques.size());
    K_cliques result;
    for (unsigned i = 0; i < total; ++i) {
        if (cliques[i].size() < k) {
            continue;
        }
        out << Progress({title_1, title_2}, "cliques", total - i, total);
        Log_weights const weights = Get_log_weights(cliques[i], links);
        K_clique_search search{cliques[i], weights, k, log_threshold, result};
        for (unsigned node : cliques[i]) {
            search.Grow({node}, 0, false);
        }
    }
    out << Altogether(" k-cliques", result.size());
    return result;
}

Communities Percolate_k_cliques(K_cliques const& k_cliques, Index_links const& links, unsigned k,
                                double threshold, std::ostream& out) {
    std::vector<Nodes> const numbered(k_cliques.begin(), k_cliques.end());
    std::vector<Labels> const labels = Label(numbered, links, k, threshold, out);
    std::map<unsigned, unsigned> const rules = Translation_rules(labels);
    std::map<unsigned, Nodes> nodes;
    std::map<unsigned, std::vector<Pair>> link_lists;
    // Deliberate: the latest k-clique's links come first, and shared ones are repeated.
    for (std::size_t i = numbered.size(); i-- > 0;) {
        unsigned label = *labels[i].begin();
        if (auto const rule = rules.find(label); rule != rules.end()) {
            label = rule->second;
        }
        for (auto a = numbered[i].begin(); a != numbered[i].end(); ++a) {
            nodes[label].insert(*a);
            for (auto b = std::next(a); b != numbered[i].end(); ++b) {
                link_lists[label].push_back({*a, *b});
            }
        }
    }
    Communities result;
    for (auto const& [label, members] : nodes) {
        result.nodes.push_back(members);
        result.links.push_back(link_lists[label]);
    }
    result.n_exact = static_cast<unsigned>(result.nodes.size());
    return result;
}

std::map<Pair, unsigned> Community_graph(std::vector<Nodes> const& communities) {
    Rows const rows = Overlaps(communities);
    std::map<Pair, unsigned> graph;
    for (unsigned i = 0; i < rows.size(); ++i) {
        for (auto const& [j, shared] : rows[i]) {
            if (j > i) {
                graph[{i, j}] = shared;
            }
        }
    }
    return graph;
}

Statistics Count(std::vector<Nodes> const& communities, unsigned node_count) {
    Statistics result;
    std::vector<unsigned> degrees(communities.size());
    for (auto const& [pair, shared] : Community_graph(communities)) {
        ++result.overlap[shared];
        ++degrees[pair.first];
        ++degrees[pair.second];
    }
    for (unsigned degree : degrees) {
        ++result.degree[degree];
    }
    std::map<unsigned, unsigned> memberships;
    for (auto const& community : communities) {
        ++result.size[Size(community)];
        for (unsigned node : community) {
            ++memberships[node];
        }
    }
    for (auto const& [node, count] : memberships) {
        ++result.membership[count];
    }
    if (node_count < memberships.size()) {
        throw std::logic_error(
            "ERROR: Community_statistics() : More vertex in the communities than in the graph.");
    }
    result.membership[0] = node_count - static_cast<unsigned>(memberships.size());
    return result;
}

} // namespace cpm::model
