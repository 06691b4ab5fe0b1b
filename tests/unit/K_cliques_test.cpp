// SPDX-License-Identifier: MIT
#include "Coms_funcs/K_cliques.h"

#include "support/Captured_console.h"
#include "support/Errors.h"
#include "support/Weighted_networks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

using Lists = std::vector<std::vector<Node>>;

constexpr char const* missing_link = "ERROR: Get_sub_links_and_thresh_abs: missing link.\n";

Lists To_lists(K_clique_list const& list) {
    Lists lists;
    for (std::size_t i = 0; i < list.size(); ++i) {
        lists.push_back(To_vector(list[i]));
    }
    return lists;
}

struct Outcome {
    Lists k_cliques;
    std::string text;
};

Outcome Generate(Set_list const& cliques, Index_links const& links, std::uint32_t k,
                 double intensity) {
    Captured_console console;
    K_clique_list k_cliques;
    Generate_k_cls_from_cls(cliques, links, k_cliques, k, intensity, console);
    EXPECT_EQ(k_cliques.K(), k);
    return {To_lists(k_cliques), console.Output()};
}

std::string Progress(std::uint32_t k, double intensity, std::size_t to_do, std::size_t total) {
    std::ostringstream title1;
    std::ostringstream title2;
    title1 << " Generating k-cliques at k=" << k << ",";
    title2 << " and a link weight intensity threshold I=" << std::fixed << std::setprecision(6)
           << intensity << ":";
    std::ostringstream text;
    text << std::string(std::max(title1.str().size(), title2.str().size()), '_') << '\n'
         << title1.str() << '\n'
         << title2.str() << '\n'
         << ' ' << to_do << " of " << total << " cliques to do (" << std::fixed
         << std::setprecision(2)
         << 100.0 * static_cast<double>(total - to_do) / static_cast<double>(total) << "% done)\n";
    return text.str();
}

std::string End_report(std::size_t count) {
    std::string const number = std::to_string(count);
    return std::string(number.size() + 30, '_') + "\n Altogether " + number +
           "  k-cliques found.\n";
}

// k-cliques as they are defined: sets of sets, recursion, a map of pairs.
class By_sets {
public:
    By_sets(Set_list const& cliques, Index_links const& links, std::uint32_t k, double intensity)
        : links_(links), k_(k),
          log_threshold_(std::log(std::pow(intensity, (k * 0.5) * static_cast<double>(k - 1)))) {
        for (std::size_t i = 0; i < cliques.size(); ++i) {
            if (cliques[i].size() >= k) {
                text += Progress(k, intensity, cliques.size() - i, cliques.size());
                Walk(cliques[i]);
            }
        }
        text += End_report(found.size());
    }

    std::set<std::set<Node>> found;
    std::string text;

private:
    void Walk(Node_set clique) {
        clique_ = Nodes(clique.begin(), clique.end());
        logs_.clear();
        for (Node const a : clique_) {
            for (Node const b : clique_) {
                if (a < b) {
                    double const log_w = std::log(links_.Weight(links_.Find({a, b})));
                    if (logs_.empty() || log_w < min_log_w_) {
                        min_log_w_ = log_w;
                    }
                    logs_[{a, b}] = log_w;
                }
            }
        }
        for (Node const node : clique_) {
            Grow({node}, 0);
        }
    }

    void Grow(Nodes const& partial, double partial_sum) {
        for (auto x = clique_.upper_bound(*partial.rbegin()); x != clique_.end(); ++x) {
            double to_x = 0;
            for (Node const s : partial) {
                to_x += logs_.at({s, *x});
            }
            double const sum = partial_sum + to_x;
            Nodes extended = partial;
            extended.insert(*x);
            std::size_t const m = extended.size();
            double const links_in = (static_cast<double>(m) * 0.5) * static_cast<double>(m - 1);
            double const bound = ((k_ * (k_ - 1)) * 0.5 - links_in) * min_log_w_ + sum;
            if (bound > log_threshold_) {
                if (m == k_) {
                    found.insert(extended);
                } else {
                    Grow_freely(extended);
                }
            } else if (m < k_) {
                Grow(extended, sum);
            } else if (m == k_ && sum > log_threshold_) {
                found.insert(extended);
            }
        }
    }

    void Grow_freely(Nodes const& partial) {
        for (auto x = clique_.upper_bound(*partial.rbegin()); x != clique_.end(); ++x) {
            Nodes extended = partial;
            extended.insert(*x);
            if (extended.size() == k_) {
                found.insert(extended);
            } else {
                Grow_freely(extended);
            }
        }
    }

    Index_links const& links_;
    std::uint32_t k_;
    double log_threshold_;
    Nodes clique_;
    std::map<std::pair<Node, Node>, double> logs_;
    double min_log_w_ = 0;
};

TEST(K_clique_list, Is_lexicographic_without_repeats_whatever_the_order_of_adding) {
    for (auto const& [k, n_added] : {std::pair{2U, 140000U}, {5U, 140000U}, {20U, 5000U}}) {
        Random_numbers random(k);
        std::set<std::vector<Node>> expected;
        K_clique_list list(k);
        // Enough for repeats to be dropped on the way, more than once; few different nodes, so that
        // many sets begin alike.
        for (unsigned i = 0; i < n_added; ++i) {
            Nodes nodes;
            while (nodes.size() < k) {
                nodes.insert(1 + random.Below(k < 4 ? 900 : k + 4));
            }
            std::vector<Node> const set(nodes.begin(), nodes.end());
            list.Add(set);
            expected.insert(set);
            ASSERT_LE(list.size(), std::max<std::size_t>(65536, 2 * expected.size()));
        }
        list.Finish();
        EXPECT_EQ(To_lists(list), Lists(expected.begin(), expected.end())) << "k = " << k;
    }
}

TEST(K_clique_list, Sorts_descending_and_equal_sets) {
    K_clique_list list(2);
    for (Node first = 500; first > 0; --first) {
        for (Node second = first + 40; second > first; --second) {
            list.Add(std::vector<Node>{first, second});
            list.Add(std::vector<Node>{1, 2});
        }
    }
    list.Finish();
    ASSERT_EQ(list.size(), 500U * 40U);
    for (std::size_t i = 0; i < list.size(); ++i) {
        Node const first = static_cast<Node>(i / 40 + 1);
        ASSERT_EQ(To_vector(list[i]),
                  (std::vector<Node>{first, first + static_cast<Node>(i % 40) + 1}));
    }
}

TEST(K_clique_list, Of_nothing_or_one_set) {
    K_clique_list list(3);
    list.Finish();
    EXPECT_TRUE(list.empty());
    list.Add(std::vector<Node>{4, 5, 6});
    list.Finish();
    EXPECT_EQ(To_lists(list), (Lists{{4, 5, 6}}));
}

TEST(Link_rows, Find_every_link_and_nothing_else) {
    Index_links const links = Weighted({{2, 4, 1}, {2, 7, 3}, {5, 6, 0}, {5, 9, -1}});
    Link_rows const rows(links);
    for (Node a = 0; a < 12; ++a) {
        for (Node b = 0; b < 12; ++b) {
            std::size_t const place = links.Find({a, b});
            if (place < links.size()) {
                EXPECT_EQ(rows.Find(a, b, rows.Begin(a)), place);
            } else {
                EXPECT_THROW(rows.Find(a, b, rows.Begin(a)), Xerror_msg) << a << ' ' << b;
            }
        }
    }
    EXPECT_EQ(rows.Log_weight(1), std::log(3.0));
    EXPECT_EQ(rows.Log_weight(2), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(rows.Log_weight(3)));
}

struct Logs {
    Sub_links sub_links;
    double min_log_w = 0;
};

Logs Logs_of(std::vector<Node> const& nodes, Index_links const& links) {
    Logs logs;
    Get_sub_links_and_min_link_w(nodes, Link_rows(links), logs.sub_links, logs.min_log_w);
    return logs;
}

TEST(Get_sub_links_and_min_link_w, Has_all_logarithms_and_the_smallest) {
    Logs const logs = Logs_of({1, 3, 4}, Weighted({{1, 2, 9}, {1, 3, 5}, {1, 4, 7}, {3, 4, 2}}));
    EXPECT_EQ(logs.sub_links.To_earlier(1)[0], std::log(5.0));
    EXPECT_EQ(logs.sub_links.To_earlier(2)[0], std::log(7.0));
    EXPECT_EQ(logs.sub_links.To_earlier(2)[1], std::log(2.0));
    EXPECT_EQ(logs.min_log_w, std::log(2.0));
}

TEST(Get_sub_links_and_min_link_w, Not_a_number_counts_for_the_first_pair_only) {
    EXPECT_TRUE(
        std::isnan(Logs_of({1, 2, 3}, Weighted({{1, 2, -5}, {1, 3, 7}, {2, 3, 2}})).min_log_w));
    EXPECT_EQ(Logs_of({1, 2, 3}, Weighted({{1, 2, 5}, {1, 3, -7}, {2, 3, 2}})).min_log_w,
              std::log(2.0));
}

TEST(Get_sub_links_and_min_link_w, A_missing_link_or_no_pair_at_all_is_an_error) {
    Index_links const links = Weighted({{1, 2, 1}, {1, 3, 1}});
    for (std::vector<Node> const& nodes :
         {std::vector<Node>{1, 2, 3}, {2, 3}, {1, 2, 9}, {1}, {}}) {
        try {
            Logs_of(nodes, links);
            ADD_FAILURE() << "no error for " << nodes.size() << " nodes";
        } catch (Xerror_msg const& error) {
            EXPECT_STREQ(error.what(), missing_link);
        }
    }
}

class Counting_progress : public cpm::Progress {
public:
    void Tick() override { ++n_ticks; }
    std::size_t n_ticks = 0;
};

// All sets of six nodes pass and are not summed up, or few do and most sets are summed up.
TEST(Generate_k_cls_from_cls, Lets_the_progress_tick_within_one_clique) {
    Index_links links;
    std::vector<Node> clique;
    for (Node a = 1; a <= 30; ++a) {
        clique.push_back(a);
        for (Node b = a + 1; b <= 30; ++b) {
            links.pairs.push_back({a, b});
            links.weights.push_back(b % 2 == 0 ? 2 : 0.5);
        }
    }
    Set_list cliques;
    cliques.Add(clique);
    for (double const intensity : {0.1, 1.4}) {
        Counting_progress counting;
        K_clique_list k_cliques;
        Generate_k_cls_from_cls(cliques, links, k_cliques, 6, intensity, counting);
        EXPECT_EQ(k_cliques.size() == 593775, intensity == 0.1);
        EXPECT_GE(counting.n_ticks, 2U) << intensity;
    }
}

TEST(Generate_k_cls_from_cls, An_intensity_equal_to_the_threshold_is_rejected) {
    Index_links const links = All_of_weight(0.5, To_index_links(Complete(1, 3)));
    Set_list const cliques{{1, 2, 3}};
    // 3 ln 0.5 and ln 0.5^3 are the same number, not only on paper.
    ASSERT_EQ(std::log(0.5) + (std::log(0.5) + std::log(0.5)), std::log(std::pow(0.5, 3)));
    EXPECT_EQ(Generate(cliques, links, 3, 0.5).k_cliques, Lists{});
    EXPECT_EQ(Generate(cliques, links, 3, 0.49).k_cliques, (Lists{{1, 2, 3}}));
    EXPECT_EQ(Generate(cliques, links, 3, 0.51).k_cliques, Lists{});
}

TEST(Generate_k_cls_from_cls, A_tie_of_products_falls_as_the_sums_of_logarithms_do) {
    // 2 * 4 * 8 = 4^3. Whether the sum of the logarithms is above that of 4^3 is a matter of the
    // last bit, and of the order of adding.
    Set_list const cliques{{1, 2, 3}};
    std::vector<double> weights = {2, 4, 8};
    do {
        Index_links const links =
            Weighted({{1, 2, weights[0]}, {1, 3, weights[1]}, {2, 3, weights[2]}});
        double const to_second = 0.0 + std::log(weights[0]);
        double const to_third = (0.0 + std::log(weights[1])) + std::log(weights[2]);
        bool const above = (0.0 + to_second) + to_third > std::log(std::pow(4.0, 3.0));
        double const bound = 2 * std::log(2.0) + std::log(weights[0]);
        ASSERT_LT(bound, std::log(64.0));
        EXPECT_EQ(Generate(cliques, links, 3, 4).k_cliques.size(), above ? 1U : 0U);
    } while (std::next_permutation(weights.begin(), weights.end()));
}

TEST(Generate_k_cls_from_cls, A_clique_of_k_nodes_yields_itself_at_most) {
    Index_links const links = All_of_weight(2, To_index_links(Complete(1, 4)));
    EXPECT_EQ(Generate({{1, 2, 3, 4}}, links, 4, 1.9).k_cliques, (Lists{{1, 2, 3, 4}}));
    EXPECT_EQ(Generate({{1, 2, 3, 4}}, links, 4, 2.1).k_cliques, Lists{});
}

TEST(Generate_k_cls_from_cls, A_k_clique_of_two_cliques_comes_once) {
    Links links = Complete(1, 4);
    links.merge(Complete(2, 5));
    links.erase({1, 5});
    EXPECT_EQ(
        Generate({{2, 3, 4, 5}, {1, 2, 3, 4}}, All_of_weight(1, To_index_links(links)), 3, 0.5)
            .k_cliques,
        (Lists{{1, 2, 3}, {1, 2, 4}, {1, 3, 4}, {2, 3, 4}, {2, 3, 5}, {2, 4, 5}, {3, 4, 5}}));
}

TEST(Generate_k_cls_from_cls, Small_cliques_count_as_processed_but_yield_nothing) {
    Links links = Complete(1, 3);
    links.merge(Complete(4, 7));
    links.merge(Complete(8, 10));
    Outcome const outcome = Generate({{1, 2, 3}, {4, 5, 6, 7}, {8, 9, 10}},
                                     All_of_weight(1, To_index_links(links)), 4, 0.5);
    EXPECT_EQ(outcome.k_cliques, (Lists{{4, 5, 6, 7}}));
    EXPECT_EQ(outcome.text, "__________________________________________________\n"
                            " Generating k-cliques at k=4,\n"
                            " and a link weight intensity threshold I=0.500000:\n"
                            " 2 of 3 cliques to do (33.33% done)\n"
                            "_______________________________\n"
                            " Altogether 1  k-cliques found.\n");
}

TEST(Generate_k_cls_from_cls, No_clique_of_k_nodes_gives_the_last_report_only) {
    Outcome const outcome =
        Generate({{1, 2, 3}}, All_of_weight(1, To_index_links(Complete(1, 3))), 4000000000U, 0.5);
    EXPECT_EQ(outcome.k_cliques, Lists{});
    EXPECT_EQ(outcome.text, End_report(0));
    EXPECT_EQ(Generate({}, Index_links(), 3, 0.5).text, End_report(0));
}

TEST(Generate_k_cls_from_cls, Nothing_passes_at_0_and_1_however_large_the_cliques) {
    Index_links const links = All_of_weight(2, To_index_links(Complete(1, 64)));
    Set_list cliques;
    std::vector<Node> nodes;
    for (Node node = 1; node <= 64; ++node) {
        nodes.push_back(node);
    }
    cliques.Add(nodes);
    for (std::uint32_t const k : {0U, 1U}) {
        Outcome const outcome = Generate(cliques, links, k, 0.5);
        EXPECT_EQ(outcome.k_cliques, Lists{});
        EXPECT_EQ(outcome.text, Progress(k, 0.5, 1, 1) + End_report(0));
    }
}

TEST(Generate_k_cls_from_cls, Links_are_k_cliques_at_2) {
    EXPECT_EQ(Generate({{1, 2, 3}}, Weighted({{1, 2, 5}, {1, 3, 0.5}, {2, 3, 2}}), 2, 1).k_cliques,
              (Lists{{1, 2}, {2, 3}}));
}

TEST(Generate_k_cls_from_cls, Weights_of_zero_pass_no_threshold) {
    Index_links links = To_index_links(Complete(1, 5));
    Set_list const cliques{{1, 2, 3, 4, 5}};
    EXPECT_EQ(Generate(cliques, links, 3, 0).k_cliques, Lists{}); // without any weights
    EXPECT_EQ(Generate(cliques, All_of_weight(0, links), 3, 0).k_cliques, Lists{});
    links = All_of_weight(1e-200, links);
    links.weights[0] = 0; // 1 2
    Lists const without_1_2 = {{1, 3, 4}, {1, 3, 5}, {1, 4, 5}, {2, 3, 4},
                               {2, 3, 5}, {2, 4, 5}, {3, 4, 5}};
    EXPECT_EQ(Generate(cliques, links, 3, 0).k_cliques, without_1_2);
}

TEST(Generate_k_cls_from_cls, A_negative_weight_passes_unless_the_rest_is_certain_before_it) {
    // The logarithm is not a number: no sum with it is above anything. But 1 2 is above the
    // threshold with the smallest logarithm for the links to come, whatever 1 3 turns out to be.
    Index_links const links = Weighted({{1, 2, 100}, {1, 3, -1}, {2, 3, 2}});
    EXPECT_EQ(Generate({{1, 2, 3}}, links, 3, 1).k_cliques, (Lists{{1, 2, 3}}));
    EXPECT_EQ(Generate({{1, 2, 3}}, links, 3, 10).k_cliques, Lists{});
    EXPECT_EQ(Generate({{1, 2, 3}}, Weighted({{1, 2, -1}, {1, 3, 100}, {2, 3, 2}}), 3, 1).k_cliques,
              Lists{});
}

TEST(Generate_k_cls_from_cls, A_negative_threshold_passes_as_its_power_has_a_logarithm) {
    Index_links const links = All_of_weight(3, To_index_links(Complete(1, 5)));
    Set_list const cliques{{1, 2, 3, 4, 5}};
    EXPECT_EQ(Generate(cliques, links, 3, -2).k_cliques, Lists{});   // ln of -8
    EXPECT_EQ(Generate(cliques, links, 4, -2).k_cliques.size(), 5U); // ln of 64
    EXPECT_EQ(Generate(cliques, links, 4, -4).k_cliques, Lists{});
}

TEST(Generate_k_cls_from_cls, A_missing_link_ends_it_after_the_report_of_that_clique) {
    Index_links const links = All_of_weight(1, To_index_links(Complete(1, 3)));
    Captured_console console;
    K_clique_list k_cliques;
    try {
        Generate_k_cls_from_cls({{1, 2, 3}, {1, 2, 4}, {1, 2, 3}}, links, k_cliques, 3, 0.5,
                                console);
        ADD_FAILURE() << "no error";
    } catch (Xerror_msg const& error) {
        EXPECT_STREQ(error.what(), missing_link);
    }
    EXPECT_EQ(console.Output(), Progress(3, 0.5, 3, 3) + Progress(3, 0.5, 2, 3));
}

TEST(Generate_k_cls_from_cls, Finds_nearly_whole_cliques_of_many_nodes) {
    // Depth and width that a search without regard to the nodes that are left would not survive.
    Node const size = 300;
    Index_links const links = All_of_weight(1.01, To_index_links(Complete(1, size)));
    std::vector<Node> nodes;
    for (Node node = 1; node <= size; ++node) {
        nodes.push_back(node);
    }
    Set_list cliques;
    cliques.Add(nodes);
    for (double const intensity : {1.001, 1.00999}) {
        Lists const found = Generate(cliques, links, size - 1, intensity).k_cliques;
        ASSERT_EQ(found.size(), size);
        for (Node left_out = 1; left_out <= size; ++left_out) {
            std::vector<Node> expected = nodes;
            expected.erase(expected.begin() + left_out - 1);
            ASSERT_EQ(found[size - left_out], expected);
        }
    }
    EXPECT_EQ(Generate(cliques, links, size - 1, 1.011).k_cliques, Lists{});
}

TEST(Generate_k_cls_from_cls, Gives_up_what_cannot_pass_in_large_cliques) {
    // 2^60 sets of nodes are out of the query.
    Node const size = 60;
    std::vector<Node> nodes;
    for (Node node = 1; node <= size; ++node) {
        nodes.push_back(node);
    }
    Set_list cliques;
    cliques.Add(nodes);
    Index_links links = All_of_weight(0.5, To_index_links(Complete(1, size)));
    EXPECT_EQ(Generate(cliques, links, 30, 0.6).k_cliques, Lists{});
    EXPECT_EQ(Generate(cliques, All_of_weight(1, links), 30, 1).k_cliques, Lists{});
    EXPECT_EQ(Generate(cliques, All_of_weight(0, links), 30, 0).k_cliques, Lists{});
    EXPECT_EQ(Generate(cliques, All_of_weight(-1, links), 30, 0.1).k_cliques, Lists{});
    EXPECT_EQ(Generate(cliques, links, 30, -1).k_cliques, Lists{}); // -1 to the power of 435
    std::vector<Node> const strong = {3, 8, 9, 21, 22, 40, 59};
    for (Node const a : strong) {
        for (Node const b : strong) {
            if (a < b) {
                links.weights[links.Find({a, b})] = 4;
            }
        }
    }
    EXPECT_EQ(Generate(cliques, links, 7, 3.9).k_cliques, Lists{strong});
    EXPECT_EQ(Generate(cliques, links, 7, 4).k_cliques, Lists{});
}

TEST(Generate_k_cls_from_cls, Keeps_sets_that_only_rounding_puts_above_the_threshold) {
    // Weights whose product is the power of the threshold on paper. Some sums come out above its
    // logarithm by the last bits, and no limit may take these sets for lost.
    std::size_t n_passed = 0;
    std::size_t n_not = 0;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        Random_numbers random(seed);
        Node const size = 6;
        double const intensity = (1 + random.Below(30)) / 10.0;
        Index_links links = To_index_links(Complete(1, size));
        for (std::size_t i = 0; i < links.size(); ++i) {
            links.weights.push_back(intensity);
        }
        // Pairs of a weight and what the threshold squared is over it, in random places.
        for (std::size_t i = 0; i + 1 < links.size(); i += 2) {
            links.weights[i] = (1 + random.Below(1000)) / 100.0;
            links.weights[i + 1] = intensity * intensity / links.weights[i];
        }
        for (std::size_t i = links.size() - 1; i > 0; --i) {
            std::swap(links.weights[i], links.weights[random.Below(static_cast<Node>(i + 1))]);
        }
        Set_list const cliques{{1, 2, 3, 4, 5, 6}};
        By_sets const expected(cliques, links, size, intensity);
        ASSERT_EQ(Generate(cliques, links, size, intensity).k_cliques.size(), expected.found.size())
            << "seed " << seed;
        ++(expected.found.empty() ? n_not : n_passed);
    }
    EXPECT_GT(n_passed, 20U);
    EXPECT_GT(n_not, 20U);
}

TEST(Generate_k_cls_from_cls, Does_as_the_definition_does_on_random_networks) {
    std::size_t n_found = 0;
    std::size_t n_left_out = 0;
    for (std::uint32_t seed = 0; seed < Rounds(400); ++seed) {
        Random_weighted_network const net(seed);
        std::uint32_t const most = Last_node(net.links) + 1;
        for (std::uint32_t k = 0; k <= most; ++k) {
            By_sets const expected(net.cliques, net.links, k, net.intensity);
            Outcome const outcome = Generate(net.cliques, net.links, k, net.intensity);
            Lists lists;
            for (auto const& set : expected.found) {
                lists.emplace_back(set.begin(), set.end());
            }
            ASSERT_EQ(outcome.k_cliques, lists) << "seed " << seed << ", k = " << k;
            ASSERT_EQ(outcome.text, expected.text) << "seed " << seed << ", k = " << k;
            n_found += lists.size();
            n_left_out += k >= 3 && lists.empty() ? 1U : 0U;
        }
    }
    EXPECT_GT(n_found, 5000U);
    EXPECT_GT(n_left_out, 100U);
}

} // namespace
} // namespace cpm::test
