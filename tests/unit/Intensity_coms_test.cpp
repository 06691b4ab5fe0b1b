// SPDX-License-Identifier: MIT
#include "Coms_funcs/Intensity_coms.h"

#include "Coms_funcs/Adjacent_k_cliques.h"
#include "Coms_funcs/K_cliques.h"
#include "support/Captured_console.h"
#include "support/Errors.h"
#include "support/Weighted_networks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

using Lists = std::vector<std::vector<Node>>;
using Pairs = std::vector<Node_pair>;

constexpr char const* missing_link = "ERROR: Get_sub_links_and_thresh_abs: missing link.\n";

K_clique_list To_k_cliques(std::uint32_t k, Lists const& lists) {
    K_clique_list k_cliques(k);
    for (auto const& list : lists) {
        k_cliques.Add(list);
    }
    k_cliques.Finish();
    return k_cliques;
}

struct Outcome {
    Lists nodes;
    std::vector<Pairs> links;
    std::string text;
    std::string error;
    friend bool operator==(Outcome const&, Outcome const&) = default;
};

Outcome Communities_of(K_clique_list const& k_cliques, Index_links const& links, double intensity) {
    Captured_console console;
    Outcome outcome;
    Communities coms;
    try {
        Intensity_coms_from_k_cliques(k_cliques, coms, links, intensity, console);
        EXPECT_EQ(coms.n_exact, coms.size());
        EXPECT_TRUE(coms.cliques.empty());
        outcome.nodes = To_vectors(coms.nodes);
        for (std::size_t i = 0; i < coms.size(); ++i) {
            outcome.links.push_back(Links_of(coms, i, links.pairs));
        }
    } catch (Xerror_msg const& error) {
        outcome.error = error.what();
    }
    outcome.text = console.Output();
    return outcome;
}

std::string Progress(std::uint32_t k, double intensity, std::size_t i, std::size_t total) {
    std::ostringstream title1;
    std::ostringstream title2;
    title1 << " Extracting communities from the k-cliques at k=" << k << ",";
    title2 << " and a link weight intensity threshlod I=" << std::fixed << std::setprecision(6)
           << intensity << ":";
    std::ostringstream text;
    text << std::string(std::max(title1.str().size(), title2.str().size()), '_') << '\n'
         << title1.str() << '\n'
         << title2.str() << '\n'
         << ' ' << total - i << " of " << total << " k-cliques to do (" << std::fixed
         << std::setprecision(2) << 100.0 * static_cast<double>(i) / static_cast<double>(total)
         << "% done)\n";
    return text.str();
}

// The method as it is defined: all pairs of k-cliques, sets of labels, groups of sets that share
// labels, links inserted at the front.
class By_labels {
public:
    By_labels(K_clique_list const& k_cliques, Index_links const& links, double intensity)
        : links_(links), k_(k_cliques.K()), intensity_(intensity) {
        for (std::size_t i = 0; i < k_cliques.size(); ++i) {
            k_cliques_.emplace_back(k_cliques[i].begin(), k_cliques[i].end());
        }
        labels_.resize(k_cliques_.size());
        try {
            Get_labels();
        } catch (Xerror_msg const& error) {
            outcome.error = error.what();
            return;
        }
        Get_rules();
        Gather();
    }

    Outcome outcome;
    std::size_t n_rules = 0;
    std::size_t n_not_adjacent = 0;

private:
    using Labels = std::set<unsigned>;

    void Get_labels() {
        unsigned next_label = 0;
        for (std::size_t i = 0; i < k_cliques_.size(); ++i) {
            outcome.text += Progress(k_, intensity_, i, k_cliques_.size());
            if (labels_[i].empty()) {
                labels_[i].insert(next_label++);
            }
            unsigned const label = *labels_[i].begin();
            Node const second = *std::next(k_cliques_[i].begin());
            for (std::size_t j = i + 1; j < k_cliques_.size(); ++j) {
                if (*k_cliques_[j].begin() > second) {
                    break;
                }
                Nodes shared;
                std::set_intersection(k_cliques_[i].begin(), k_cliques_[i].end(),
                                      k_cliques_[j].begin(), k_cliques_[j].end(),
                                      std::inserter(shared, shared.end()));
                if (shared.size() == k_ - 1) {
                    if (Check(shared)) {
                        labels_[j].insert(label);
                    } else {
                        ++n_not_adjacent;
                    }
                }
            }
        }
    }

    double Log_weight(Node a, Node b) { return std::log(links_.Weight(links_.Find({a, b}))); }

    bool Check(Nodes const& shared) {
        if (shared.size() < 2) {
            throw Xerror_msg(missing_link);
        }
        auto const m = static_cast<double>(shared.size());
        double const all_links = (m * 0.5) * (m - 1);
        double const log_threshold = std::log(std::pow(intensity_, all_links));
        double minimum = Log_weight(*shared.begin(), *std::next(shared.begin()));
        for (Node const a : shared) {
            for (Node const b : shared) {
                if (a < b && Log_weight(a, b) < minimum) {
                    minimum = Log_weight(a, b);
                }
            }
        }
        double sum = 0;
        double counted = 1;
        auto current = std::next(shared.begin());
        while (current != shared.end() &&
               log_threshold >= (all_links - counted * (counted - 1) / 2) * minimum + sum) {
            for (auto earlier = shared.begin(); earlier != current; ++earlier) {
                sum += Log_weight(*earlier, *current);
            }
            ++current;
            ++counted;
        }
        return current != shared.end() || sum > log_threshold;
    }

    void Get_rules() {
        for (Labels const& labels : labels_) {
            if (labels.size() > 1) {
                sets_.push_back(labels);
            }
        }
        group_of_.assign(sets_.size(), -1);
        for (std::size_t s = 0; s < sets_.size(); ++s) {
            if (group_of_[s] < 0) {
                groups_.push_back(sets_[s]);
                Collect(static_cast<int>(groups_.size()) - 1, sets_[s]);
            }
        }
        for (Labels const& group : groups_) {
            for (unsigned const label : group) {
                if (label != *group.begin()) {
                    rules_[label] = *group.begin();
                }
            }
        }
        n_rules = rules_.size();
    }

    void Collect(int group, Labels const& seed) {
        std::vector<std::size_t> joined;
        for (std::size_t t = 0; t < sets_.size(); ++t) {
            Labels shared;
            std::set_intersection(sets_[t].begin(), sets_[t].end(), seed.begin(), seed.end(),
                                  std::inserter(shared, shared.end()));
            if (group_of_[t] < 0 && !shared.empty()) {
                group_of_[t] = group;
                groups_.back().insert(sets_[t].begin(), sets_[t].end());
                joined.push_back(t);
            }
        }
        for (std::size_t const t : joined) {
            Collect(group, sets_[t]);
        }
    }

    void Gather() {
        std::map<unsigned, Nodes> nodes;
        std::map<unsigned, Pairs> links;
        for (std::size_t i = 0; i < k_cliques_.size(); ++i) {
            unsigned community = *labels_[i].begin();
            if (rules_.contains(community)) {
                community = rules_.at(community);
            }
            nodes[community].insert(k_cliques_[i].begin(), k_cliques_[i].end());
            Pairs block;
            for (Node const a : k_cliques_[i]) {
                for (Node const b : k_cliques_[i]) {
                    if (a < b) {
                        block.push_back({a, b});
                    }
                }
            }
            links[community].insert(links[community].begin(), block.begin(), block.end());
        }
        for (auto const& [label, set] : nodes) {
            outcome.nodes.emplace_back(set.begin(), set.end());
            outcome.links.push_back(links[label]);
        }
    }

    Index_links const& links_;
    std::uint32_t k_;
    double intensity_;
    std::vector<Nodes> k_cliques_;
    std::vector<Labels> labels_;
    std::vector<Labels> sets_;
    std::vector<int> group_of_;
    std::vector<Labels> groups_;
    std::map<unsigned, unsigned> rules_;
};

K_clique_list Generated(Set_list const& cliques, Index_links const& links, std::uint32_t k,
                        double intensity) {
    Captured_console console;
    K_clique_list k_cliques;
    Generate_k_cls_from_cls(cliques, links, k_cliques, k, intensity, console);
    return k_cliques;
}

TEST(Intensity_coms_from_k_cliques, Repeats_a_link_for_each_k_clique_the_last_one_first) {
    Links links = Complete(1, 3);
    links.merge(Complete(2, 4));
    Outcome const outcome = Communities_of(To_k_cliques(3, {{1, 2, 3}, {2, 3, 4}}),
                                           All_of_weight(2, To_index_links(links)), 1);
    EXPECT_EQ(outcome.nodes, (Lists{{1, 2, 3, 4}}));
    EXPECT_EQ(outcome.links,
              (std::vector<Pairs>{{{2, 3}, {2, 4}, {3, 4}, {1, 2}, {1, 3}, {2, 3}}}));
}

TEST(Intensity_coms_from_k_cliques, A_k_clique_adjacent_to_none_is_a_community) {
    Links links = Complete(1, 3);
    links.merge(Complete(3, 5));
    Outcome const outcome = Communities_of(To_k_cliques(3, {{1, 2, 3}, {3, 4, 5}}),
                                           All_of_weight(2, To_index_links(links)), 1);
    EXPECT_EQ(outcome.nodes, (Lists{{1, 2, 3}, {3, 4, 5}}));
    EXPECT_EQ(outcome.links,
              (std::vector<Pairs>{{{1, 2}, {1, 3}, {2, 3}}, {{3, 4}, {3, 5}, {4, 5}}}));
}

TEST(Intensity_coms_from_k_cliques, A_shared_part_of_the_threshold_itself_does_not_join) {
    auto const nodes_at = [](double shared_weight, double intensity) {
        Index_links const links =
            Weighted({{1, 2, 9}, {1, 3, 9}, {2, 3, shared_weight}, {2, 4, 9}, {3, 4, 9}});
        return Communities_of(To_k_cliques(3, {{1, 2, 3}, {2, 3, 4}}), links, intensity).nodes;
    };
    EXPECT_EQ(nodes_at(3, 3), (Lists{{1, 2, 3}, {2, 3, 4}}));
    EXPECT_EQ(nodes_at(2, 3), (Lists{{1, 2, 3}, {2, 3, 4}}));
    EXPECT_EQ(nodes_at(3.000000001, 3), (Lists{{1, 2, 3, 4}}));
    EXPECT_EQ(nodes_at(3, 2.9), (Lists{{1, 2, 3, 4}}));
}

TEST(Intensity_coms_from_k_cliques, Communities_that_meet_late_have_the_place_of_the_first) {
    // 1 2 3 and 1 4 5 meet through 3 6 7, 4 6 7 and others only; 2 8 9 stays alone between them.
    Lists const lists = {{1, 2, 3}, {1, 4, 5}, {2, 3, 6}, {2, 8, 9},
                         {3, 6, 7}, {4, 5, 6}, {4, 6, 7}};
    Links links;
    for (auto const& list : lists) {
        for (Node const a : list) {
            for (Node const b : list) {
                if (a < b) {
                    links.insert({a, b});
                }
            }
        }
    }
    Outcome const outcome =
        Communities_of(To_k_cliques(3, lists), All_of_weight(2, To_index_links(links)), 1);
    EXPECT_EQ(outcome.nodes, (Lists{{1, 2, 3, 4, 5, 6, 7}, {2, 8, 9}}));
    EXPECT_EQ(outcome.links[1], (Pairs{{2, 8}, {2, 9}, {8, 9}}));
}

TEST(Intensity_coms_from_k_cliques, No_k_cliques_give_no_communities_and_no_reports) {
    for (std::uint32_t const k : {0U, 1U, 2U, 3U, 7U, 4000000000U}) {
        EXPECT_EQ(Communities_of(K_clique_list(k), Index_links(), 0.5), Outcome());
    }
}

TEST(Intensity_coms_from_k_cliques, Reports_each_k_clique) {
    Outcome const outcome = Communities_of(To_k_cliques(3, {{1, 2, 3}, {1, 2, 4}}),
                                           All_of_weight(2, To_index_links(Complete(1, 4))), 1.5);
    EXPECT_EQ(outcome.text, "__________________________________________________\n"
                            " Extracting communities from the k-cliques at k=3,\n"
                            " and a link weight intensity threshlod I=1.500000:\n"
                            " 2 of 2 k-cliques to do (0.00% done)\n"
                            "__________________________________________________\n"
                            " Extracting communities from the k-cliques at k=3,\n"
                            " and a link weight intensity threshlod I=1.500000:\n"
                            " 1 of 2 k-cliques to do (50.00% done)\n");
}

TEST(Intensity_coms_from_k_cliques, A_single_shared_node_is_an_error_after_the_report) {
    Index_links const links = All_of_weight(2, To_index_links(Complete(1, 8)));
    K_clique_list const k_cliques = To_k_cliques(2, {{1, 2}, {3, 4}, {5, 8}, {6, 8}});
    Outcome const outcome = Communities_of(k_cliques, links, 1);
    EXPECT_EQ(outcome.error, missing_link);
    EXPECT_EQ(outcome.text, Progress(2, 1, 0, 4) + Progress(2, 1, 1, 4) + Progress(2, 1, 2, 4));
}

TEST(Intensity_coms_from_k_cliques, Pairs_without_common_nodes_are_communities) {
    Index_links const links = All_of_weight(2, To_index_links(Complete(1, 6)));
    Outcome const outcome = Communities_of(To_k_cliques(2, {{1, 6}, {2, 3}, {4, 5}}), links, 1);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.nodes, (Lists{{1, 6}, {2, 3}, {4, 5}}));
    EXPECT_EQ(outcome.links, (std::vector<Pairs>{{{1, 6}}, {{2, 3}}, {{4, 5}}}));
}

/// Tests the nodes 1, 2, ... `n_shared` as the shared part of k-cliques that have one node more,
/// at each place, with links that would turn the verdict if they counted.
bool Checked(Node n_shared, Index_links const& links, double intensity) {
    std::vector<bool> verdicts;
    for (double const weight : {1e-9, 1e9, -1.0}) {
        for (Node place = 0; place <= n_shared; ++place) {
            std::vector<Node> k_clique;
            std::map<std::pair<Node, Node>, double> weights;
            for (Node node = 0; node <= n_shared; ++node) {
                k_clique.push_back(1 + node);
            }
            for (Node const other : k_clique) {
                Node const added = 1 + place;
                if (other != added) {
                    weights[{std::min(other, added), std::max(other, added)}] = weight;
                }
            }
            auto const moved = [&](Node node) { return node <= place ? node : node + 1; };
            for (std::size_t i = 0; i < links.size(); ++i) {
                Node_pair const pair = links.pairs[i];
                weights[{moved(pair.first), moved(pair.second)}] = links.Weight(i);
            }
            Index_links all;
            for (auto const& [pair, link_weight] : weights) {
                all.pairs.push_back({pair.first, pair.second});
                all.weights.push_back(link_weight);
            }
            Link_rows const rows(all);
            Coms_from_k_cls_sub::Shared_test test(n_shared + 1, rows, intensity);
            verdicts.push_back(test.Check_intersection(k_clique, place));
        }
    }
    EXPECT_EQ(std::ranges::count(verdicts, verdicts.front()),
              static_cast<std::ptrdiff_t>(verdicts.size()));
    return verdicts.front();
}

TEST(Check_intersection, Ends_early_only_when_the_smallest_weight_makes_it_certain) {
    Index_links const links = Weighted({{1, 2, 16}, {1, 3, 2}, {2, 3, 2}});
    EXPECT_TRUE(Checked(3, links, 1.9));  // at once
    EXPECT_TRUE(Checked(3, links, 3.9));  // at the last node
    EXPECT_FALSE(Checked(3, links, 4.1)); // 64 = 4^3
}

TEST(Check_intersection, What_is_not_a_number_ends_the_walk_and_passes) {
    // A first pair without a logarithm makes the smallest logarithm none as well.
    EXPECT_TRUE(Checked(3, Weighted({{1, 2, -1}, {1, 3, 2}, {2, 3, 2}}), 100));
    // Here the smallest is a number, but the sum is none when the third node is looked at.
    Index_links const links =
        Weighted({{1, 2, 2}, {1, 3, -1}, {1, 4, 2}, {2, 3, 2}, {2, 4, 2}, {3, 4, 2}});
    EXPECT_TRUE(Checked(4, links, 100));
    // ... and with no node to come it is not above the threshold.
    EXPECT_FALSE(Checked(3, links, 100));
    // So it is with a threshold without a logarithm.
    EXPECT_TRUE(Checked(2, All_of_weight(1, To_index_links(Complete(1, 2))), -5));
}

TEST(Check_intersection, Adds_link_by_link_so_that_ties_fall_as_they_must) {
    // Three weights whose product is 1.7^3 on paper; the order of adding decides many of them.
    double const intensity = 1.7;
    double const log_threshold = std::log(std::pow(intensity, 3.0));
    std::size_t n_decided = 0;
    for (unsigned i = 1; i <= 400; ++i) {
        double const weight = 0.01 * i;
        double const a = std::log(weight);
        double const b = std::log(intensity);
        double const c = std::log(intensity * intensity / weight);
        Index_links const links =
            Weighted({{1, 2, weight}, {1, 3, intensity}, {2, 3, intensity * intensity / weight}});
        bool const at_once = 3 * std::min({a, b, c}) > log_threshold;
        bool const at_third = 2 * std::min({a, b, c}) + a > log_threshold;
        bool const link_by_link = (a + b) + c > log_threshold;
        n_decided += link_by_link != (a + (b + c) > log_threshold) ? 1U : 0U;
        EXPECT_EQ(Checked(3, links, intensity), at_once || at_third || link_by_link) << weight;
    }
    EXPECT_GT(n_decided, 10U);
}

TEST(Check_intersection, Zeros) {
    Index_links const links = Weighted({{1, 2, 0}, {1, 3, 5}, {2, 3, 5}});
    EXPECT_FALSE(Checked(3, links, 0));
    EXPECT_FALSE(Checked(3, links, 1));
    EXPECT_TRUE(Checked(2, Weighted({{1, 2, 5}}), 0));
    EXPECT_FALSE(Checked(3, To_index_links(Complete(1, 3)), 0)); // without any weights
}

TEST(Check_intersection, Does_not_mix_up_k_cliques_that_begin_alike) {
    Index_links const links =
        Weighted({{1, 2, 1}, {1, 3, 2}, {1, 4, 3}, {2, 3, 4}, {2, 4, 5}, {3, 4, 6}});
    Link_rows const rows(links);
    Coms_from_k_cls_sub::Shared_test test(3, rows, 3.5);
    EXPECT_TRUE(test.Check_intersection(std::vector<Node>{1, 2, 3}, 0));  // 2 3
    EXPECT_FALSE(test.Check_intersection(std::vector<Node>{1, 2, 3}, 2)); // 1 2
    EXPECT_FALSE(test.Check_intersection(std::vector<Node>{1, 2, 4}, 1)); // 1 4
    EXPECT_TRUE(test.Check_intersection(std::vector<Node>{1, 3, 4}, 0));  // 3 4
    EXPECT_FALSE(test.Check_intersection(std::vector<Node>{1, 3, 4}, 2)); // 1 3
    EXPECT_TRUE(test.Check_intersection(std::vector<Node>{2, 3, 4}, 2));  // 2 3
}

struct Numbers_taken : Link_visitor {
    void Numbers(std::span<Link_number const> piece) override {
        numbers.insert(numbers.end(), piece.begin(), piece.end());
        longest = std::max(longest, piece.size());
    }
    void All_pairs(Node_set) override { FAIL() << "intensity communities have numbers"; }

    std::vector<Link_number> numbers;
    std::size_t longest = 0;
};

TEST(Intensity_coms_from_k_cliques, Hands_out_many_links_in_pieces_as_often_as_asked) {
    Node const size = 30;
    Index_links const links = All_of_weight(2, To_index_links(Complete(1, size)));
    std::vector<Node> nodes;
    for (Node node = 1; node <= size; ++node) {
        nodes.push_back(node);
    }
    Set_list cliques;
    cliques.Add(nodes);
    K_clique_list const k_cliques = Generated(cliques, links, 4, 1);
    ASSERT_EQ(k_cliques.size(), 27405U);
    Captured_console console;
    Communities coms;
    Intensity_coms_from_k_cliques(k_cliques, coms, links, 1, console);
    ASSERT_EQ(coms.size(), 1U);
    std::vector<Link_number> expected;
    for (std::size_t i = k_cliques.size(); i-- > 0;) {
        for (std::size_t a = 0; a < 4; ++a) {
            for (std::size_t b = a + 1; b < 4; ++b) {
                expected.push_back(
                    static_cast<Link_number>(links.Find({k_cliques[i][a], k_cliques[i][b]})));
            }
        }
    }
    for (int time = 0; time < 2; ++time) {
        Numbers_taken taken;
        coms.Visit_links(0, taken);
        EXPECT_EQ(taken.numbers, expected);
        EXPECT_LT(taken.longest, 5000U);
    }
}

// Triangles that share node 0 and nothing else are not adjacent. Of so many pairs with node 0 some
// have equal hash values, which must not be taken for equal pairs.
TEST(Intensity_coms_from_k_cliques, Tells_sets_apart_whose_hash_values_are_equal) {
    constexpr Node n_triangles = 400000;
    K_clique_list k_cliques(3);
    Index_links links;
    for (Node i = 0; i < n_triangles; ++i) {
        k_cliques.Add(std::vector<Node>{0, 2 * i + 1, 2 * i + 2});
        links.pairs.push_back({0, 2 * i + 1});
        links.pairs.push_back({0, 2 * i + 2});
    }
    k_cliques.Finish();
    for (Node i = 0; i < n_triangles; ++i) {
        links.pairs.push_back({2 * i + 1, 2 * i + 2});
    }
    links.weights.Resize(links.pairs.size(), 1);
    Disjoint_sets communities(k_cliques.size());
    class : public cpm::Progress {
    } nobody;
    Coms_from_k_cls_sub::Get_node_com_inds(k_cliques, communities, Link_rows(links), 0.5, nobody);
    for (std::uint32_t i = 0; i < k_cliques.size(); ++i) {
        ASSERT_EQ(communities.Find(i), i) << "united with another triangle";
    }
}

TEST(Intensity_coms_from_k_cliques, Stays_exact_when_the_sets_of_one_node_take_many_rounds) {
    // Node 1 is in every k-clique. With the pairs of the other nodes above the threshold or not at
    // random, the shared triples 1 a b are, too.
    Node const size = 60;
    Random_numbers random(5);
    Index_links links = To_index_links(Complete(1, size));
    for (std::size_t i = 0; i < links.size(); ++i) {
        links.weights.push_back(random.Percent(3) ? 2 : 0.5);
    }
    K_clique_list k_cliques(4);
    for (Node a = 2; a <= size; ++a) {
        for (Node b = a + 1; b <= size; ++b) {
            for (Node c = b + 1; c <= size; ++c) {
                k_cliques.Add(std::vector<Node>{1, a, b, c});
            }
        }
    }
    k_cliques.Finish();
    ASSERT_GT(k_cliques.size() * 3, std::size_t{1} << 16); // sets that begin with node 1
    double const intensity = 0.7;
    Link_rows const rows(links);
    Coms_from_k_cls_sub::Shared_test test(4, rows, intensity);
    Disjoint_sets sets(k_cliques.size());
    std::map<std::vector<Node>, std::uint32_t> first_with;
    for (std::uint32_t i = 0; i < k_cliques.size(); ++i) {
        for (std::size_t left_out = 0; left_out < 4; ++left_out) {
            std::vector<Node> shared = To_vector(k_cliques[i]);
            shared.erase(shared.begin() + static_cast<std::ptrdiff_t>(left_out));
            auto const [entry, is_new] = first_with.emplace(shared, i);
            if (!is_new && test.Check_intersection(k_cliques[i], left_out)) {
                sets.Unite(entry->second, i);
            }
        }
    }
    auto const community_of = std::move(sets).Number_sets();
    std::map<std::uint32_t, Nodes> expected;
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        expected[community_of[i]].insert(k_cliques[i].begin(), k_cliques[i].end());
    }
    Outcome const outcome = Communities_of(k_cliques, links, intensity);
    ASSERT_EQ(outcome.nodes.size(), expected.size());
    EXPECT_GT(expected.size(), 100U);
    std::string reports; // one per k-clique, however many rounds
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        reports += Progress(4, intensity, i, k_cliques.size());
    }
    EXPECT_TRUE(outcome.text == reports);
    for (auto const& [community, nodes] : expected) {
        ASSERT_EQ(outcome.nodes[community], std::vector<Node>(nodes.begin(), nodes.end()));
    }
}

TEST(Intensity_coms_from_k_cliques, Does_as_the_definition_does_on_random_networks) {
    std::size_t n_communities = 0;
    std::size_t n_rules = 0;
    std::size_t n_not_adjacent = 0;
    std::size_t n_errors = 0;
    for (std::uint32_t seed = 0; seed < Rounds(400); ++seed) {
        Random_weighted_network const net(seed);
        std::uint32_t const most = Last_node(net.links) + 1;
        for (std::uint32_t k = 0; k <= most; ++k) {
            K_clique_list const k_cliques = Generated(net.cliques, net.links, k, net.intensity);
            By_labels const expected(k_cliques, net.links, net.intensity);
            Outcome const outcome = Communities_of(k_cliques, net.links, net.intensity);
            ASSERT_EQ(outcome.error, expected.outcome.error) << "seed " << seed << ", k = " << k;
            ASSERT_EQ(outcome.text, expected.outcome.text) << "seed " << seed << ", k = " << k;
            ASSERT_EQ(outcome.nodes, expected.outcome.nodes) << "seed " << seed << ", k = " << k;
            ASSERT_EQ(outcome.links, expected.outcome.links) << "seed " << seed << ", k = " << k;
            n_communities += outcome.nodes.size();
            n_rules += expected.n_rules;
            n_not_adjacent += expected.n_not_adjacent;
            n_errors += outcome.error.empty() ? 0U : 1U;
        }
    }
    // The cases that matter have come up.
    EXPECT_GT(n_communities, 500U);
    EXPECT_GT(n_rules, 10U);
    EXPECT_GT(n_not_adjacent, 100U);
    EXPECT_GT(n_errors, 50U);
}

} // namespace
} // namespace cpm::test
