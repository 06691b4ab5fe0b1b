// SPDX-License-Identifier: MIT
#include "Plain_communities.h"

#include "Plain_text.h"

#include <cmath>
#include <numeric>
#include <stdexcept>

namespace cpm::model {

namespace {

/// Every two of the nodes, the smaller one first, in ascending order.
std::vector<Pair> Pairs(Nodes const& nodes) {
    std::vector<Pair> pairs;
    for (auto a = nodes.begin(); a != nodes.end(); ++a) {
        for (auto b = std::next(a); b != nodes.end(); ++b) {
            pairs.push_back({*a, *b});
        }
    }
    return pairs;
}

// --- Cliques that overlap. ---

struct Percolation {
    Found_cliques const& found;
    unsigned k;
    Reached& reached;
    std::set<unsigned> taken = {}; // the cliques that communities have

    std::vector<unsigned> Adjacent(unsigned clique) const {
        std::vector<unsigned> adjacent;
        for (auto const& [other, overlap] : found.rows[clique]) {
            if (other >= found.cliques.size()) {
                reached.insert("an overlap names no clique");
            } else if (overlap >= k - 1) {
                adjacent.push_back(other);
            }
        }
        return adjacent;
    }

    /// All are taken before any of them is extended.
    void Take(std::vector<unsigned> const& cliques, Community& community) {
        for (unsigned clique : cliques) {
            if (!taken.insert(clique).second) {
                reached.insert("a clique is claimed twice");
            }
            community.cliques.push_back(clique);
        }
        for (unsigned clique : cliques) {
            std::vector<unsigned> free = Adjacent(clique);
            std::erase_if(free, [&](unsigned other) { return taken.contains(other); });
            Take(free, community);
        }
    }
};

// --- Intensity, all in sums of natural logarithms. ---

struct Log_weights {
    std::map<Pair, double> of;
    double smallest = 0;
};

Log_weights Get_log_weights(Nodes const& nodes, Index_links const& links) {
    std::vector<Pair> const pairs = Pairs(nodes);
    // Of a single node there is no first pair to look up.
    if (pairs.empty() || !std::all_of(pairs.begin(), pairs.end(),
                                      [&](Pair const& pair) { return links.contains(pair); })) {
        throw std::logic_error("ERROR: Get_sub_links_and_thresh_abs: missing link.\n");
    }
    Log_weights result;
    for (Pair const& pair : pairs) {
        double const w = std::log(links.at(pair));
        result.smallest = result.of.empty() || w < result.smallest ? w : result.smallest;
        result.of[pair] = w;
    }
    return result;
}

double Links_among(double n) {
    return (n * 0.5) * (n - 1);
}

/// Whether the links among `nodes`, which are part of the clique with these weights, have an
/// intensity above the threshold, whose logarithm is that of the product of all weights.
bool Is_k_clique(Nodes const& nodes, Log_weights const& weights, double log_threshold) {
    double const all_links = Links_among(Size(nodes));
    double sum = 0;
    double counted = 1;
    for (auto x = std::next(nodes.begin()); x != nodes.end(); ++x) {
        double added = 0;
        for (auto earlier = nodes.begin(); earlier != x; ++earlier) {
            added += weights.of.at({*earlier, *x});
        }
        sum += added;
        ++counted;
        // Even if all links to come had the smallest weight, it would be enough.
        if ((all_links - Links_among(counted)) * weights.smallest + sum > log_threshold) {
            return true;
        }
    }
    return sum > log_threshold;
}

/// The same for what two k-cliques share. The sums are rounded differently.
bool Is_intense(Nodes const& shared, Index_links const& links, double threshold) {
    double const all_links = Links_among(Size(shared));
    double const log_threshold = std::log(std::pow(threshold, all_links));
    Log_weights const weights = Get_log_weights(shared, links);
    double sum = 0;
    double counted = 1;
    for (auto x = std::next(shared.begin()); x != shared.end(); ++x) {
        // Deliberate: a walk that a comparison with NaN ends counts as one that ended early.
        if (!(log_threshold >= (all_links - Links_among(counted)) * weights.smallest + sum)) {
            return true;
        }
        for (auto earlier = shared.begin(); earlier != x; ++earlier) {
            sum += weights.of.at({*earlier, *x});
        }
        ++counted;
    }
    return sum > log_threshold;
}

} // namespace

std::vector<Community> Percolate(Found_cliques const& found, unsigned k, Reached& reached) {
    Percolation percolation{found, k, reached};
    std::vector<Community> result;
    for (unsigned i = 0; i < found.cliques.size(); ++i) {
        if (percolation.taken.contains(i) || found.cliques[i].size() < k) {
            continue;
        }
        // Deliberate: whether another community has the adjacent cliques already is not asked here.
        std::vector<unsigned> const adjacent = percolation.Adjacent(i);
        // Rows that are out of date may deny that the clique shares k nodes with itself.
        if (std::any_of(adjacent.begin(), adjacent.end(),
                        [&](unsigned other) { return found.rows[i].at(other) >= k; })) {
            percolation.Take(adjacent, result.emplace_back());
        }
    }
    for (auto& community : result) {
        std::set<Pair> links;
        for (unsigned clique : community.cliques) {
            std::vector<Pair> const pairs = Pairs(found.cliques[clique]);
            links.insert(pairs.begin(), pairs.end());
            community.nodes = community.nodes | found.cliques[clique];
            community.exact = community.exact && clique < found.n_exact;
        }
        community.links.assign(links.begin(), links.end());
    }
    std::stable_partition(result.begin(), result.end(), [](Community const& c) { return c.exact; });
    return result;
}

std::set<Nodes> Find_k_cliques(Cliques const& cliques, Index_links const& links, unsigned k,
                               double threshold, std::ostream& out) {
    double const log_threshold = std::log(std::pow(threshold, Links_among(k)));
    std::set<Nodes> result;
    for (unsigned i = 0; i < cliques.size(); ++i) {
        if (cliques[i].size() < k) {
            continue;
        }
        out << Progress({" Generating k-cliques at k=" + std::to_string(k) + ",",
                         " and a link weight intensity threshold I=" + Fixed(threshold, 6) + ":"},
                        "cliques", Size(cliques) - i, Size(cliques));
        Log_weights const weights = Get_log_weights(cliques[i], links);
        std::vector<bool> chosen(cliques[i].size()); // in turn all choices of k members
        std::fill_n(chosen.begin(), k, true);
        do {
            Nodes nodes;
            auto choice = chosen.begin();
            for (unsigned node : cliques[i]) {
                if (*choice++) {
                    nodes.insert(node);
                }
            }
            if (k > 1 && Is_k_clique(nodes, weights, log_threshold)) {
                result.insert(nodes);
            }
        } while (std::prev_permutation(chosen.begin(), chosen.end()));
    }
    out << Altogether(" k-cliques", result.size());
    return result;
}

std::vector<Community> Percolate_k_cliques(std::set<Nodes> const& k_cliques,
                                           Index_links const& links, unsigned k, double threshold,
                                           std::ostream& out) {
    std::vector<Nodes> const numbered(k_cliques.begin(), k_cliques.end());
    // Any k - 1 nodes -> the positions of the k-cliques that hold them, ascending.
    std::map<Nodes, std::vector<unsigned>> holders;
    for (unsigned i = 0; i < numbered.size(); ++i) {
        for (unsigned node : numbered[i]) {
            holders[numbered[i] - Nodes{node}].push_back(i);
        }
    }
    // By k-clique the first one that it is connected with.
    std::vector<unsigned> first(numbered.size());
    std::iota(first.begin(), first.end(), 0U);
    for (unsigned i = 0; i < numbered.size(); ++i) {
        out << Progress(
            {" Extracting communities from the k-cliques at k=" + std::to_string(k) + ",",
             " and a link weight intensity threshlod I=" + Fixed(threshold, 6) + ":"},
            "k-cliques", Size(numbered) - i, Size(numbered));
        for (unsigned node : numbered[i]) {
            Nodes const shared = numbered[i] - Nodes{node};
            auto const& adjacent = holders.at(shared);
            if (adjacent.back() > i && Is_intense(shared, links, threshold)) {
                for (unsigned j : adjacent) {
                    auto const [low, high] = std::minmax({first[i], first[j]});
                    if (low < high) {
                        std::replace(first.begin(), first.end(), high, low);
                    }
                }
            }
        }
    }
    std::map<unsigned, Community> communities;
    // Deliberate: the latest k-clique's links come first, and shared ones are repeated.
    for (std::size_t i = numbered.size(); i-- > 0;) {
        Community& community = communities[first[i]];
        std::vector<Pair> const pairs = Pairs(numbered[i]);
        community.links.insert(community.links.end(), pairs.begin(), pairs.end());
        community.nodes = community.nodes | numbered[i];
    }
    std::vector<Community> result;
    for (auto const& [position, community] : communities) {
        result.push_back(community);
    }
    return result;
}

Statistics Count(std::vector<Nodes> const& communities, unsigned node_count) {
    Statistics result;
    std::map<unsigned, unsigned> memberships;
    Rows rows;
    Extend_rows(rows, communities, 0);
    for (unsigned i = 0; i < communities.size(); ++i) {
        ++result["size"][Size(communities[i])];
        ++result["degree"][Size(rows[i]) - 1]; // the row holds the community itself
        for (auto const& [j, shared] : rows[i]) {
            if (j > i) {
                ++result["overlap"][shared];
            }
        }
        for (unsigned node : communities[i]) {
            ++memberships[node];
        }
    }
    for (auto const& [node, count] : memberships) {
        ++result["membership"][count];
    }
    if (node_count < memberships.size()) {
        throw std::logic_error(
            "ERROR: Community_statistics() : More vertex in the communities than in the graph.");
    }
    result["membership"][0] = node_count - Size(memberships);
    return result;
}

} // namespace cpm::model
