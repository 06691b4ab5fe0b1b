// SPDX-License-Identifier: MIT
#include "Clique_find/Clique_find.h"
#include "Clique_find/Finder.h"

#include "Plexor_io/Reports.h"
#include "support/Captured_console.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

namespace report = Clique_find_report_sub_routines;

using Sets = std::vector<std::vector<Node>>;
using Arc_set = std::set<std::pair<Node, Node>>;

struct Digraph {
    std::map<Node, Nodes> in;
    std::map<Node, Nodes> out;
    explicit Digraph(Arc_set const& arcs) {
        for (auto const& [a, b] : arcs) {
            out[a].insert(b);
            in[b].insert(a);
            out[b];
            in[a];
        }
    }
    Nodes All(Node node) const {
        Nodes all = in.at(node);
        all.insert(out.at(node).begin(), out.at(node).end());
        return all;
    }
};

std::vector<Node> Ascending(Nodes const& nodes) {
    return {nodes.begin(), nodes.end()};
}

Nodes Common(Nodes const& a, Nodes const& b) {
    Nodes common;
    std::ranges::set_intersection(a, b, std::inserter(common, common.end()));
    return common;
}

// The search by gaps, as it is defined: a growing line, and for each of its gaps the nodes that may
// still go there. A time limit is a clock that is asked before each branch below the second level.
class Search_by_gaps {
public:
    explicit Search_by_gaps(Arc_set const& arcs) : work_(arcs) {
        std::vector<std::pair<std::size_t, Node>> sorted;
        for (auto const& [node, ignored] : work_.in) {
            sorted.push_back({work_.All(node).size(), node});
        }
        std::ranges::sort(sorted);
        for (auto const& [ignored, node] : sorted) {
            order_.push_back(node);
        }
    }

    Sets Exact(Console& console) {
        std::size_t to_do = order_.size();
        for (Node const node : order_) {
            report::Report_progress(" Locating dir. cliques:", "nodes", Count(to_do--),
                                    Count(order_.size()), console);
            Start(node);
            Register();
            Cut(node);
        }
        report::Report_clique_search_end("directed cliques", Count(cliques_.size()), console);
        return Listed();
    }

    // The cliques of these nodes, taken in this order.
    Sets At(std::vector<Node> const& order) {
        for (Node const node : order) {
            Start(node);
            Register();
            Cut(node);
        }
        return Listed();
    }

    Sets In_time(Clock& clock, double max_time, std::vector<Node>& core, Console& console) {
        clock_ = &clock;
        max_time_ = max_time;
        Text title;
        title.Put(" Locating dir. cliques, max. allowed time/node=");
        title.Put_fixed(max_time, 3);
        title.Put(':');
        std::list<Node> queue(order_.begin(), order_.end());
        std::set<Nodes> pending;
        std::uint32_t skipped = 0;
        bool go_on = true;
        while (!queue.empty() && go_on) {
            report::Report_progress(title.View(), "nodes", Count(work_.in.size()),
                                    Count(order_.size()), console);
            Node const node = queue.front();
            queue.pop_front();
            clock.Start();
            t_start_ = clock.Now();
            too_slow_ = false;
            Start(node);
            if (!too_slow_) {
                Register();
                Cut(node);
                skipped = 0;
                continue;
            }
            report::Report_hard_node(node, ++skipped, Count(work_.in.size()), console);
            queue.push_back(node);
            for (auto const& [ignored, members] : found_) {
                pending.insert(members);
            }
            if (skipped >= queue.size()) {
                report::Report_all_rem_nodes_to_hard("directed cliques", console);
                go_on = false;
            }
        }
        if (queue.empty()) {
            report::Report_clique_search_end("directed cliques", Count(cliques_.size()),
                                             "no approximation was needed.", console);
        } else {
            for (Nodes const& set : pending) {
                if (Is_new(cliques_, set)) {
                    cliques_.push_back(set);
                }
            }
            report::Report_clique_search_end("exact directed cliques", Count(cliques_.size()),
                                             console);
        }
        core.clear();
        for (auto const& [node, ignored] : work_.in) {
            core.push_back(node);
        }
        return Listed();
    }

private:
    struct Gap {
        Node label;
        Nodes candidates;
    };
    using Line = std::vector<Gap>;

    static std::uint32_t Count(std::size_t size) { return static_cast<std::uint32_t>(size); }
    static bool Is_new(std::vector<Nodes> const& known, Nodes const& set) {
        return std::ranges::none_of(
            known, [&](Nodes const& larger) { return std::ranges::includes(larger, set); });
    }

    Line Grown(Line const& line, std::size_t gap, Node node) const {
        Line grown;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (i == gap) {
                grown.push_back({node, Common(line[i].candidates, work_.in.at(node))});
            }
            grown.push_back(
                {line[i].label,
                 Common(line[i].candidates, i < gap ? work_.in.at(node) : work_.out.at(node))});
        }
        return grown;
    }
    static Nodes Merged(Line const& line) {
        Nodes all;
        for (Gap const& gap : line) {
            all.insert(gap.label);
            all.insert(gap.candidates.begin(), gap.candidates.end());
        }
        return all;
    }

    void Start(Node node) {
        known_.clear();
        for (Nodes const& clique : cliques_) {
            if (clique.contains(node)) {
                known_.push_back(clique);
            }
        }
        found_.clear();
        Line line{{node, work_.in.at(node)}, {node, work_.out.at(node)}};
        for (std::size_t e = 0; e < line.size() && !too_slow_; ++e) {
            while (!line[e].candidates.empty() && !too_slow_) {
                Node const u = *line[e].candidates.begin();
                Line next = Grown(line, e, u);
                line[e].candidates.erase(u);
                if (!Is_new(known_, Merged(next))) {
                    continue;
                }
                for (std::size_t f = 0; f < next.size() && !too_slow_; ++f) {
                    while (!next[f].candidates.empty() && !too_slow_) {
                        Node const w = *next[f].candidates.begin();
                        Line const third = Grown(next, f, w);
                        next[f].candidates.erase(w);
                        Go_on(third);
                    }
                }
            }
        }
    }

    void Go_on(Line line) {
        if (!Is_new(known_, Merged(line))) {
            return;
        }
        if (std::ranges::all_of(line, [](Gap const& gap) { return gap.candidates.empty(); })) {
            Record(line);
            return;
        }
        for (std::size_t e = 0; e < line.size() && !too_slow_; ++e) {
            while (!line[e].candidates.empty() && !too_slow_) {
                if (clock_ != nullptr && clock_->Now() - t_start_ > max_time_) {
                    too_slow_ = true;
                    return;
                }
                Node const u = *line[e].candidates.begin();
                Line const next = Grown(line, e, u);
                line[e].candidates.erase(u);
                Go_on(next);
            }
        }
    }

    void Record(Line const& line) {
        Nodes members;
        for (std::size_t i = 0; i + 1 < line.size(); ++i) {
            members.insert(line[i].label);
        }
        known_.push_back(members);
        unsigned const key = found_.empty() ? 1 : found_.rbegin()->first + 1;
        std::erase_if(found_, [&](auto const& entry) {
            return std::ranges::includes(members, entry.second);
        });
        found_[key] = members;
    }

    void Register() {
        for (auto const& [ignored, members] : found_) {
            cliques_.push_back(members);
        }
    }
    void Cut(Node node) {
        for (auto* const side : {&work_.in, &work_.out}) {
            side->erase(node);
            for (auto& [ignored, nodes] : *side) {
                nodes.erase(node);
            }
        }
    }
    Sets Listed() const {
        Sets sets;
        for (Nodes const& clique : cliques_) {
            sets.push_back(Ascending(clique));
        }
        return sets;
    }

    Digraph work_;
    std::vector<Node> order_;
    std::vector<Nodes> cliques_;
    std::vector<Nodes> known_;
    std::map<unsigned, Nodes> found_;
    Clock* clock_ = nullptr;
    double max_time_ = 0;
    double t_start_ = 0;
    bool too_slow_ = false;
};

// Whether the nodes can be put in a line, tried in every order.
bool Has_a_line(std::vector<Node> nodes, Arc_set const& arcs) {
    do {
        bool fits = true;
        for (std::size_t i = 0; i < nodes.size() && fits; ++i) {
            for (std::size_t j = i + 1; j < nodes.size() && fits; ++j) {
                fits = arcs.contains({nodes[i], nodes[j]});
            }
        }
        if (fits) {
            return true;
        }
    } while (std::ranges::next_permutation(nodes).found);
    return false;
}

// All maximal sets with a line, of three nodes or more, found among all subsets.
std::set<std::vector<Node>> All_maximal(Arc_set const& arcs, Node n) {
    std::vector<bool> has_line(std::size_t{1} << n);
    std::set<std::vector<Node>> maximal;
    for (std::size_t bits = 0; bits < has_line.size(); ++bits) {
        std::vector<Node> nodes;
        for (Node node = 1; node <= n; ++node) {
            if ((bits >> (node - 1) & 1) != 0) {
                nodes.push_back(node);
            }
        }
        has_line[bits] = Has_a_line(nodes, arcs);
    }
    for (std::size_t bits = 0; bits < has_line.size(); ++bits) {
        std::vector<Node> nodes;
        bool is_maximal = has_line[bits];
        for (Node node = 1; node <= n; ++node) {
            std::size_t const bit = std::size_t{1} << (node - 1);
            if ((bits & bit) != 0) {
                nodes.push_back(node);
            } else {
                is_maximal = is_maximal && !has_line[bits | bit];
            }
        }
        if (is_maximal && nodes.size() >= 3) {
            maximal.insert(nodes);
        }
    }
    return maximal;
}

// Leaves out the nodes without a link, and shuffles the rest, which the node order depends on.
Arc_set Renumbered(Arc_set const& arcs, Random_numbers& random) {
    std::vector<Node> used;
    for (auto const& [a, b] : arcs) {
        used.push_back(a);
        used.push_back(b);
    }
    std::ranges::sort(used);
    used.erase(std::unique(used.begin(), used.end()), used.end());
    for (std::size_t i = used.size(); i > 1; --i) {
        std::swap(used[i - 1], used[random.Below(static_cast<std::uint32_t>(i))]);
    }
    std::map<Node, Node> number;
    for (std::size_t i = 0; i < used.size(); ++i) {
        number[used[i]] = static_cast<Node>(i + 1);
    }
    Arc_set renumbered;
    for (auto const& [a, b] : arcs) {
        renumbered.insert({number[a], number[b]});
    }
    return renumbered;
}

// Links one way or both ways; every kind of mixture comes up.
Arc_set Random_arcs(Node largest, Random_numbers& random) {
    Node const n = 2 + random.Below(largest - 1);
    std::uint32_t const density = 30 + random.Below(71);
    std::uint32_t const both = random.Below(5) * 25;
    Arc_set arcs;
    for (auto const& [a, b] : Random_links(n, density, random)) {
        bool const two_way = random.Percent(both);
        bool const forward = random.Percent(50);
        if (two_way || forward) {
            arcs.insert({a, b});
        }
        if (two_way || !forward) {
            arcs.insert({b, a});
        }
    }
    return Renumbered(arcs, random);
}

Graph Graph_of(Arc_set const& arcs) {
    Index_links links;
    for (auto const& [a, b] : arcs) {
        links.pairs.push_back({a, b});
    }
    return Graph(links, true);
}

struct Outcome {
    Sets cliques;
    std::vector<Node> core;
    std::string text;
    friend bool operator==(Outcome const&, Outcome const&) = default;
};

Outcome Find(Arc_set const& arcs) {
    Captured_console console;
    Set_list cliques{{1, 2, 3}};
    Clique_find_dir(cliques, Graph_of(arcs), console);
    return {To_vectors(cliques), {}, console.Output()};
}

Outcome Find_literally(Arc_set const& arcs) {
    Captured_console console;
    Sets const cliques = Search_by_gaps(arcs).Exact(console);
    return {cliques, {}, console.Output()};
}

template <class Make_clock>
Outcome Find_in_time(Arc_set const& arcs, double max_time, Make_clock make_clock) {
    Captured_console console;
    auto const clock = make_clock();
    Set_list cliques{{1, 2, 3}};
    std::vector<Node> core{7};
    Clique_find_dir_time(cliques, Graph_of(arcs), core, max_time, *clock, console);
    return {To_vectors(cliques), core, console.Output()};
}

template <class Make_clock>
Outcome Find_in_time_literally(Arc_set const& arcs, double max_time, Make_clock make_clock) {
    Captured_console console;
    auto const clock = make_clock();
    std::vector<Node> core;
    Sets const cliques = Search_by_gaps(arcs).In_time(*clock, max_time, core, console);
    return {cliques, core, console.Output()};
}

template <class Now_function> std::unique_ptr<Clock> Made_clock(Now_function now) {
    return std::make_unique<Clock_of<Now_function>>(std::move(now));
}

std::unique_ptr<Clock> Stepping_clock(double step) {
    return Made_clock([step, now = 0.0]() mutable { return now += step; });
}

std::string Shown(Arc_set const& arcs) {
    std::string text;
    for (auto const& [a, b] : arcs) {
        text += std::to_string(a) + ">" + std::to_string(b) + " ";
    }
    return text;
}

Arc_set Both_ways(Links const& links) {
    Arc_set arcs;
    for (auto const& [a, b] : links) {
        arcs.insert({a, b});
        arcs.insert({b, a});
    }
    return arcs;
}

TEST(Clique_find_dir, No_nodes_give_the_summary_alone) {
    Outcome const outcome = Find({});
    EXPECT_TRUE(outcome.cliques.empty());
    EXPECT_EQ(outcome.text,
              std::string(1 + 16 + 20, '_') + "\n Altogether 0 directed cliques found.\n");
}

TEST(Clique_find_dir, A_link_is_no_clique_whether_it_has_a_reverse_or_not) {
    EXPECT_EQ(Find({{1, 2}}).cliques, Sets{});
    EXPECT_EQ(Find({{1, 2}, {2, 1}}).cliques, Sets{});
}

TEST(Clique_find_dir, Three_nodes_in_a_line_are_a_clique_and_in_a_circle_are_not) {
    EXPECT_EQ(Find({{1, 2}, {2, 3}, {1, 3}}).cliques, (Sets{{1, 2, 3}}));
    EXPECT_EQ(Find({{1, 2}, {2, 3}, {3, 1}}).cliques, Sets{});
}

TEST(Clique_find_dir, Links_both_ways_give_each_clique_once) {
    EXPECT_EQ(Find(Both_ways(Complete(1, 4))).cliques, (Sets{{1, 2, 3, 4}}));
}

TEST(Clique_find_dir, A_circle_of_four_in_which_opposite_nodes_have_links_both_ways_has_four) {
    Arc_set const arcs{{1, 2}, {2, 3}, {3, 4}, {4, 1}, {1, 3}, {3, 1}, {2, 4}, {4, 2}};
    EXPECT_EQ(Find(arcs).cliques, (Sets{{1, 3, 4}, {1, 2, 4}, {1, 2, 3}, {2, 3, 4}}));
    EXPECT_EQ(Find(arcs).cliques, Find_literally(arcs).cliques);
}

TEST(Clique_find_dir, A_report_stands_before_each_node_and_nothing_about_sorting) {
    EXPECT_EQ(Find({{1, 2}}).text, "_______________________\n Locating dir. cliques:\n"
                                   " 2 of 2 nodes to do (0.00% done)\n"
                                   "_______________________\n Locating dir. cliques:\n"
                                   " 1 of 2 nodes to do (50.00% done)\n" +
                                       std::string(37, '_') +
                                       "\n Altogether 0 directed cliques found.\n");
}

TEST(Clique_find_dir, Finds_every_maximal_set_that_can_be_lined_up_and_nothing_else) {
    Random_numbers random(1);
    for (unsigned run = 0; run < Rounds(400); ++run) {
        Arc_set const arcs = Random_arcs(6, random);
        Sets const found = Find(arcs).cliques;
        std::set<std::vector<Node>> const unique(found.begin(), found.end());
        ASSERT_EQ(unique.size(), found.size()) << Shown(arcs);
        ASSERT_EQ(unique, All_maximal(arcs, 6)) << Shown(arcs);
    }
}

TEST(Clique_find_dir, Lists_in_the_order_of_the_search_by_gaps) {
    Random_numbers random(2);
    std::size_t with_many = 0;
    for (unsigned run = 0; run < Rounds(600); ++run) {
        Arc_set const arcs = Random_arcs(run % 10 == 0 ? 11 : 8, random);
        Outcome const outcome = Find(arcs);
        ASSERT_EQ(outcome, Find_literally(arcs)) << Shown(arcs);
        with_many += outcome.cliques.size() > 10 ? 1U : 0U;
    }
    EXPECT_GT(with_many, 10U);
}

// A centre with many candidates, in small groups of mixed links. It is searched first, while none
// of them is done, or after some of them.
TEST(Clique_find_dir, Lists_in_the_same_order_when_candidates_fill_more_than_a_word) {
    Random_numbers random(3);
    for (unsigned run = 0; run < Rounds(30); ++run) {
        Arc_set groups;
        Node const n_groups = 8 + random.Below(30);
        for (Node group = 0; group < n_groups; ++group) {
            for (auto const& [a, b] : Random_arcs(6, random)) {
                groups.insert({1 + 6 * group + a, 1 + 6 * group + b});
            }
        }
        Arc_set arcs = groups;
        std::uint32_t const both = random.Below(5) * 25;
        for (auto const& [a, b] : groups) {
            for (Node const node : {a, b}) {
                if (arcs.contains({1, node}) || arcs.contains({node, 1})) {
                    continue;
                }
                bool const two_way = random.Percent(both);
                bool const forward = random.Percent(50);
                if (two_way || forward) {
                    arcs.insert({1, node});
                }
                if (two_way || !forward) {
                    arcs.insert({node, 1});
                }
            }
        }
        arcs = Renumbered(arcs, random);
        Digraph const network(arcs);
        Node const centre = std::ranges::max_element(network.in, {}, [&](auto const& entry) {
                                return network.All(entry.first).size();
                            })->first;
        std::vector<Node> order;
        for (auto const& [node, ignored] : network.in) {
            if (node != centre && random.Percent(run % 3 == 0 ? 0 : 20)) {
                order.push_back(node);
            }
        }
        order.push_back(centre);
        Graph const graph = Graph_of(arcs);
        Progress nobody;
        Sets cliques;
        std::unique_ptr<Finder> const finder = Make_finder(graph, nobody);
        for (Node const node : order) {
            Clock_of still([] { return 0.0; });
            Time_budget budget(still, 1);
            Set_list found;
            finder->Find_within(node, budget, found);
            std::ranges::copy(To_vectors(found), std::back_inserter(cliques));
        }
        ASSERT_EQ(cliques, Search_by_gaps(arcs).At(order)) << Shown(arcs);
    }
}

TEST(Clique_find_dir_time, Time_that_stands_still_gives_the_exact_search) {
    Random_numbers random(4);
    for (unsigned run = 0; run < Rounds(500); ++run) {
        Arc_set const arcs = Random_arcs(8, random);
        auto const clock = [] { return Stepping_clock(0); };
        Outcome const outcome = Find_in_time(arcs, 0, clock);
        ASSERT_EQ(outcome.cliques, Find(arcs).cliques) << Shown(arcs);
        ASSERT_EQ(outcome, Find_in_time_literally(arcs, 0, clock)) << Shown(arcs);
        ASSERT_TRUE(outcome.core.empty());
        ASSERT_TRUE(
            outcome.text.ends_with("directed cliques found.\nno approximation was needed.\n"));
    }
}

TEST(Clique_find_dir_time, A_clock_that_strikes_at_the_first_check_leaves_what_was_met_by_then) {
    Random_numbers random(5);
    std::size_t pending = 0;
    for (unsigned run = 0; run < Rounds(1000); ++run) {
        Arc_set const arcs = Random_arcs(run % 10 == 0 ? 11 : 8, random);
        auto const clock = [] { return Stepping_clock(2); };
        Outcome const outcome = Find_in_time(arcs, 1, clock);
        ASSERT_EQ(outcome, Find_in_time_literally(arcs, 1, clock)) << Shown(arcs);
        pending += !outcome.core.empty() && outcome.cliques.size() > 3 ? 1U : 0U;
    }
    EXPECT_GT(pending, 15U);
}

// Time runs out at the first check of some attempts and not at all in the others; both searches see
// the same attempts. So nodes are done in any order, and what is known grows in any way.
TEST(Clique_find_dir_time, Nodes_given_up_for_a_while_come_again) {
    Random_numbers random(6);
    std::size_t cores = 0;
    for (unsigned run = 0; run < Rounds(500); ++run) {
        Arc_set const arcs = Random_arcs(run % 10 == 0 ? 11 : 8, random);
        std::uint32_t const chance = 20 + random.Below(75);
        std::vector<bool> strikes(500);
        for (std::size_t i = 0; i < strikes.size(); ++i) {
            strikes[i] = random.Percent(chance);
        }
        auto const clock = [&strikes] { return std::make_unique<Fitful_clock>(strikes); };
        Outcome const outcome = Find_in_time(arcs, 0.5, clock);
        ASSERT_EQ(outcome, Find_in_time_literally(arcs, 0.5, clock)) << Shown(arcs);
        cores += outcome.core.empty() ? 0U : 1U;
    }
    EXPECT_GT(cores, 10U);
}

TEST(Clique_find_dir_time, A_node_whose_lines_are_finished_after_two_steps_never_reads_the_clock) {
    // Three nodes: each line of three is complete. The clock would strike at once.
    Arc_set const arcs{{1, 2}, {2, 3}, {1, 3}};
    std::size_t readings = 0;
    auto const clock = [&readings] {
        return Made_clock([&readings] { return static_cast<double>(++readings); });
    };
    Outcome const outcome = Find_in_time(arcs, 0.5, clock);
    EXPECT_EQ(outcome.cliques, (Sets{{1, 2, 3}}));
    EXPECT_TRUE(outcome.core.empty());
    EXPECT_EQ(readings, 3U) << "only where each node's time begins";
}

TEST(Clique_find_dir_time, A_node_that_overruns_stays_a_neighbour_of_the_others) {
    auto const clock = [] { return Stepping_clock(2); };
    Outcome const outcome = Find_in_time(Both_ways(Complete(1, 4)), 1, clock);
    EXPECT_EQ(outcome.core, (std::vector<Node>{1, 2, 3, 4}));
    EXPECT_NE(outcome.text.find(" Exceeded allowed time at node no.4,\n"
                                " skipping, 4 out of 4 skipped in a row, (100.00%)\n"),
              std::string::npos);
    EXPECT_TRUE(outcome.text.ends_with(" Altogether 0 exact directed cliques found.\n"));
}

TEST(Clique_find_dir_time, The_title_shows_the_time_with_three_decimals) {
    auto const clock = [] { return Stepping_clock(0); };
    EXPECT_TRUE(Find_in_time({{1, 2}}, 0.5, clock)
                    .text.starts_with(std::string(53, '_') +
                                      "\n Locating dir. cliques, max. allowed time/node=0.500:\n"
                                      " 2 of 2 nodes to do (0.00% done)\n"));
}

} // namespace
} // namespace cpm::test
