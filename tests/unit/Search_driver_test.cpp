// SPDX-License-Identifier: MIT
#include "Clique_find/Search_driver.h"

#include "support/Captured_console.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

using Sets = std::vector<std::vector<Node>>;

// What a node's attempts give, one after the other; the last one stays.
struct Attempt {
    bool overruns = false;
    Sets found;
};

class Scripted_finder : public Finder {
public:
    explicit Scripted_finder(std::map<Node, std::vector<Attempt>> script)
        : script_(std::move(script)) {}

    double Read_clock() {
        ++readings;
        return now_;
    }
    void Find(Node, Set_list&) override { ADD_FAILURE() << "there is a limit"; }
    void Find_within(Node node, Time_budget& budget, Set_list& found) override {
        tried.push_back(node);
        std::vector<Attempt>& attempts = script_[node];
        if (attempts.empty()) {
            done.push_back(node);
            return;
        }
        Attempt const attempt = attempts.front();
        if (attempts.size() > 1) {
            attempts.erase(attempts.begin());
        }
        for (auto const& set : attempt.found) {
            found.Add(set);
        }
        now_ += attempt.overruns ? 1.5 : 1.0;
        EXPECT_EQ(budget.Overrun(), attempt.overruns);
        if (!attempt.overruns) {
            done.push_back(node);
        }
        now_ += 100; // what comes between two attempts does not count
    }

    std::vector<Node> tried;
    std::vector<Node> done;
    int readings = 0;

private:
    std::map<Node, std::vector<Attempt>> script_;
    double now_ = 17;
};

struct Result {
    Sets cliques;
    std::vector<Node> core;
    std::string reports;
};

Result Search(std::vector<Node> const& order, Scripted_finder& finder) {
    Captured_console console;
    Set_list cliques{{7, 8, 9}};
    std::vector<Node> core{3};
    Clock_of clock([&finder] { return finder.Read_clock(); });
    Progress& progress = console;
    progress.Search_began({.directed = false, .max_time = 1});
    Search_nodes(cliques, order, finder, Time_limit{1, clock}, core, progress);
    return {To_vectors(cliques), core, console.Output()};
}

std::string Progress(std::string const& to_do, std::string const& done) {
    return "________________________________________________\n Locating cliques, max. allowed time/node=1.000:\n " +
           to_do + " nodes to do (" + done + "% done)\n";
}

TEST(Search_within_a_limit, A_node_that_always_overruns_ends_the_search_at_once_when_it_is_alone) {
    Scripted_finder finder({{1, {{true, {}}}}});
    Result const result = Search({1}, finder);
    EXPECT_EQ(result.core, (std::vector<Node>{1}));
    EXPECT_EQ(result.reports, Progress("1 of 1", "0.00") +
                                  " Exceeded allowed time at node no.1,\n"
                                  " skipping, 1 out of 1 skipped in a row, (100.00%)\n" +
                                  std::string(7 + 43, '_') +
                                  "\n The extraction of cliques has been found too slow \n"
                                  " at all of the remaining nodes.\n" +
                                  std::string(1 + 13 + 20, '_') +
                                  "\n Altogether 0 exact cliques found.\n");
}

TEST(Search_within_a_limit, Nodes_done_list_their_cliques_in_the_order_found) {
    Scripted_finder finder({{2, {{false, {{2, 3, 4}, {1, 2, 4}}}}}, {1, {{false, {{1, 3, 4}}}}}});
    Result const result = Search({2, 1, 3, 4}, finder);
    EXPECT_EQ(result.cliques, (Sets{{2, 3, 4}, {1, 2, 4}, {1, 3, 4}}));
    EXPECT_TRUE(result.core.empty());
    EXPECT_EQ(finder.done, (std::vector<Node>{2, 1, 3, 4}));
    EXPECT_TRUE(
        result.reports.ends_with(std::string(1 + 7 + 20, '_') +
                                 "\n Altogether 3 cliques found.\n no approximation was needed\n"));
}

TEST(Search_within_a_limit, A_node_that_overran_comes_again_after_all_others) {
    Scripted_finder finder({{1, {{true, {}}, {false, {}}}}});
    Result const result = Search({1, 2, 3}, finder);
    EXPECT_EQ(finder.tried, (std::vector<Node>{1, 2, 3, 1}));
    EXPECT_EQ(finder.done, (std::vector<Node>{2, 3, 1}));
    EXPECT_TRUE(result.core.empty());
    EXPECT_EQ(finder.readings, 6) << "at each beginning, and where the finder looks";
}

TEST(Search_within_a_limit, A_success_starts_the_count_of_skipped_nodes_anew) {
    // Nodes 1 and 2 overrun, node 3 does not: both are tried once more before the search ends.
    Scripted_finder finder({{1, {{true, {}}}}, {2, {{true, {}}}}});
    Result const result = Search({1, 2, 3}, finder);
    EXPECT_EQ(finder.tried, (std::vector<Node>{1, 2, 3, 1, 2}));
    EXPECT_EQ(result.core, (std::vector<Node>{1, 2}));
    EXPECT_NE(result.reports.find(" skipping, 2 out of 3 skipped in a row, (66.67%)\n" +
                                  Progress("3 of 3", "0.00")),
              std::string::npos);
    EXPECT_NE(result.reports.find(Progress("2 of 3", "33.33")), std::string::npos);
    EXPECT_NE(result.reports.find(" skipping, 2 out of 2 skipped in a row, (100.00%)\n"),
              std::string::npos);
}

TEST(Search_within_a_limit, What_was_found_at_nodes_given_up_is_listed_ascending_and_once) {
    Scripted_finder finder({{1, {{true, {{1, 4, 5, 6}, {1, 2, 5, 6}}}}},
                            {2, {{true, {{2, 4, 5, 6}, {1, 2, 5, 6}}}}},
                            {3, {{false, {{3, 4, 5}}}}}});
    EXPECT_EQ(Search({1, 2, 3, 4, 5, 6}, finder).cliques,
              (Sets{{3, 4, 5}})); // nodes 4 to 6 are done
    Scripted_finder given_up({{1, {{true, {{1, 4, 5, 6}, {1, 2, 5, 6}}}}},
                              {2, {{true, {{2, 4, 5, 6}, {1, 2, 5, 6}}}}},
                              {4, {{true, {}}}},
                              {5, {{true, {}}}},
                              {6, {{true, {{1, 4, 5, 6}}}}}});
    Result const result = Search({6, 5, 4, 3, 2, 1}, given_up);
    EXPECT_EQ(result.cliques, (Sets{{1, 2, 5, 6}, {1, 4, 5, 6}, {2, 4, 5, 6}}));
    EXPECT_EQ(result.core, (std::vector<Node>{1, 2, 4, 5, 6}));
}

TEST(Search_within_a_limit, What_was_found_at_nodes_given_up_is_dropped_when_all_are_done_at_last) {
    Scripted_finder finder({{1, {{true, {{1, 2, 3}}}, {false, {{1, 2, 3, 4}}}}}});
    EXPECT_EQ(Search({1, 2, 3, 4}, finder).cliques, (Sets{{1, 2, 3, 4}}));
}

TEST(Search_within_a_limit, Three_nodes_inside_a_clique_or_an_earlier_set_are_not_listed) {
    Attempt const given_up{true, {}};
    Scripted_finder finder({{1, {{true, {{1, 2, 3}, {1, 5, 6}, {4, 5, 6}, {1, 2, 3, 4}}}}},
                            {2, {given_up}},
                            {3, {given_up}},
                            {4, {given_up}},
                            {5, {{true, {{1, 2, 4, 5}, {2, 4, 5}}}}},
                            {6, {given_up}},
                            {7, {{false, {{4, 5, 6, 7}}}}}});
    // {1, 2, 3} comes before {1, 2, 3, 4}, which does not take it back; {2, 4, 5} comes after
    // {1, 2, 4, 5}; {4, 5, 6} lies in the clique of node 7.
    EXPECT_EQ(Search({1, 2, 3, 4, 5, 6, 7}, finder).cliques,
              (Sets{{4, 5, 6, 7}, {1, 2, 3}, {1, 2, 3, 4}, {1, 2, 4, 5}, {1, 5, 6}}));
}

TEST(Search_within_a_limit, No_nodes_need_no_time) {
    Scripted_finder finder({});
    Result const result = Search({}, finder);
    EXPECT_TRUE(result.cliques.empty());
    EXPECT_EQ(finder.readings, 0);
    EXPECT_TRUE(
        result.reports.ends_with("\n Altogether 0 cliques found.\n no approximation was needed\n"));
}

} // namespace
} // namespace cpm::test
