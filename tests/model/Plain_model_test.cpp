// SPDX-License-Identifier: MIT
// Anchors of the plain model: small cases worked out by hand from the definitions, so that the
// model is not merely compared with the program it is meant to judge.
#include "Box.h"
#include "Plain_communities.h"
#include "Plain_disk.h"
#include "Plain_model.h"
#include "Plain_text.h"
#include "support/Temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <sstream>

namespace cpm::model {
namespace {

constexpr char const* banner = "<banner>\n";

struct Outcome {
    std::string out;
    Tree tree; // what is there afterwards
};

/// Runs in a directory of its own that holds `tree`.
Outcome Run_in(Tree const& tree, std::vector<std::string> const& args, long long clock_step = 0) {
    Temp_dir const directory;
    Fill(directory.Path(), tree);
    Reached reached;
    std::string const out = Run_model(args, banner, {clock_step}, reached);
    return {out, Look_into(directory.Path())};
}

Tree Tree_with(std::string links) {
    return {{"net", {Entry::Kind::file, std::move(links)}}};
}

Outcome Run_on(std::string links, std::vector<std::string> const& switches,
               long long clock_step = 0) {
    std::vector<std::string> args{"plexor", "-i", "net"};
    args.insert(args.end(), switches.begin(), switches.end());
    return Run_in(Tree_with(std::move(links)), args, clock_step);
}

std::string File(Outcome const& outcome, std::string const& path) {
    auto const found = outcome.tree.find(path);
    return found == outcome.tree.end() ? "(no such file)" : found->second.content;
}

/// What a file holds after its header, which ends at the first empty line.
std::string Body(Outcome const& outcome, std::string const& path) {
    std::string const text = File(outcome, path);
    auto const end = text.find("\n\n");
    return end == std::string::npos ? text : text.substr(end + 2);
}

/// What is printed between " Reading input ..." and the end.
std::string After_reading(Outcome const& outcome) {
    std::string const start = std::string(banner) + " Reading input ...\n";
    EXPECT_TRUE(outcome.out.starts_with(start));
    return outcome.out.substr(start.size());
}

std::string Errors_of(std::vector<std::string> const& args) {
    std::string const text = After_reading(Run_in(Tree_with("a b\n"), args));
    std::string const start = std::string(banner) + "\n Error:\n";
    auto const end = text.find("\n Usage : ");
    if (!text.starts_with(start) || end == std::string::npos) {
        return "(not refused) " + text;
    }
    return text.substr(start.size(), end - start.size());
}

// a and d hang on the link b-c: degrees a 2, b 3, c 3, d 2, so the order is a, d, b, c.
constexpr char const* two_triangles = "a b\na c\nb c\nb d\nc d\n";

TEST(Plain_model, Prints_a_whole_undirected_run) {
    Outcome const outcome = Run_on(two_triangles, {});
    EXPECT_EQ(After_reading(outcome), "_______________\n"
                                      " Links read OK.\n"
                                      "____________________\n"
                                      " Converting links...\n"
                                      " Links converted OK, total number of 5 will be\n"
                                      " taken into account in the community finding.\n"
                                      "__________________________________\n"
                                      " Preparing graph from the links...\n"
                                      " Graph created from the links OK.\n"
                                      " Sorting the nodes...\n"
                                      " done.\n"
                                      "__________________\n"
                                      " Locating cliques:\n"
                                      " 4 of 4 nodes to do (0.00% done)\n"
                                      "__________________\n"
                                      " Locating cliques:\n"
                                      " 3 of 4 nodes to do (25.00% done)\n"
                                      "__________________\n"
                                      " Locating cliques:\n"
                                      " 2 of 4 nodes to do (50.00% done)\n"
                                      "__________________\n"
                                      " Locating cliques:\n"
                                      " 1 of 4 nodes to do (75.00% done)\n"
                                      "____________________________\n"
                                      " Altogether 2 cliques found.\n"
                                      "___________________________\n"
                                      " Writing cliques to disk...\n"
                                      " done.\n"
                                      "_________________________________________________\n"
                                      " Extracting communities at k=3 (completed 50.00%)\n"
                                      " done.\n"
                                      " Writing commmunities to disk...\n"
                                      " done.\n"
                                      " Calculating statistics...\n"
                                      " done.\n"
                                      "<banner>\n");
}

TEST(Plain_model, Writes_a_whole_undirected_run) {
    Outcome const outcome = Run_on(two_triangles, {});
    // The first line names the link file by its whole path, which ends here.
    std::string const params = File(outcome, "net_files/input_params.txt");
    std::string const start = "# Plexor was run on links taken";
    std::string const path = params.substr(start.size(), params.find('\n') - start.size());
    EXPECT_TRUE(path.starts_with(" from /") && path.ends_with("/net")) << path;
    std::string const header = path + "\n"
                                      "# at no lower link weight threshold,\n"
                                      "# and at no upper link weight threshold.\n"
                                      "# Links were treated as undirected.\n"
                                      "# No time limit was set for the clique search.\n";
    std::string const out = "net_files";
    Tree expected = Tree_with(two_triangles);
    auto const add = [&](std::string const& name, std::string const& text) {
        expected[out + "/" + name] = {Entry::Kind::file, text};
    };
    expected[out] = {};
    expected[out + "/k=3"] = {};
    add("input_params.txt", start + header);
    add("graph", "# The links" + header +
                     "# (mutual links and self-links were removed)\n\n"
                     "a b\na c\nb c\nb d\nc d\n");
    add("cliques", "# The cliques" + header + "\n0: a b c \n1: b c d \n");
    add("k=3/communities", "# The communities at k=3\n#" + header + "\n0: a b c d \n");
    add("k=3/communities_cliques",
        "# The contained cliques in the communities at k=3\n#" + header + "\n0: 0 1 \n");
    add("k=3/communities_links", "# The links inside the communities at k=3\n#" + header +
                                     "\n0:\na b\na c\nb c\nb d\nc d\n");
    add("k=3/graph_of_communities", "# The graph of at k=3\n#" + header + "\n");
    add("k=3/membership_distribution",
        "# The node membership distr. in the  communities at k=3\n#" + header + "\n0 0\n1 4\n\n");
    add("k=3/size_distribution",
        "# The size distr. of the  communities at k=3\n#" + header + "\n4 1\n\n");
    add("k=3/overlap_distribution",
        "# The overlap size distr. of the  communities at k=3\n#" + header + "\n\n");
    add("k=3/degree_distribution",
        "# The com. degree distr. of the  communities at k=3\n#" + header + "\n0 1\n\n");
    EXPECT_EQ(outcome.tree, expected);
}

TEST(Plain_model, Refuses_command_lines_in_order) {
    EXPECT_EQ(Errors_of({"p"}), "You must specify an input file.\n");
    EXPECT_EQ(Errors_of({"p", "stray", "-i", "net"}),
              "unknown parameter in parameter list! (Check_keys()).\n");
    EXPECT_EQ(Errors_of({"p", "-i", "net", "-x", "-h"}),
              "unknown parameter in parameter list! (Check_keys()).\n");
    EXPECT_EQ(Errors_of({"p", "-i", "net", "-k", "-w", "abc", "-t", "0"}),
              " Unable to interpret the value 'abc' for switch -w.\n"
              " No value is given for switch -k.\n"
              " The maximal allowed time per node must be positive.\n");
    EXPECT_EQ(Errors_of({"p", "-i", "net", "-w", "0.5", "-W", "0.5"}),
              " The sepcified lower threshold is higher (or equal to) the upper threshold.\n");
    EXPECT_EQ(Errors_of({"p", "-U", "-i", "net", "-D", "-I", "0.3", "-t", "5"}),
              " The search algorithm cannot apply the link weight \n"
              " intensity condition when looking for directed communities.\n"
              " The search algorithm cannot apply the maximal time \n"
              " per node condition when a link weight intensity condition is set as well.\n"
              " The program cannot apply the dirrected and undirected\n"
              " search algorithm at the same time.\n");
    EXPECT_EQ(Errors_of({"p", "-i", "net", "-k", "1e20"}),
              " Unable to interpret the value '1e20' for switch -k.\n");
}

TEST(Plain_model, Reads_numbers_as_switch_values) {
    unsigned k = 7;
    EXPECT_TRUE(Read("3.5", k));
    EXPECT_EQ(k, 4U);
    EXPECT_TRUE(Read(" 2.2 ", k));
    EXPECT_EQ(k, 2U);
    EXPECT_TRUE(Read("2e1", k));
    EXPECT_EQ(k, 20U);
    EXPECT_FALSE(Read(" -0.1", k));
    EXPECT_FALSE(Read("7x", k));
    EXPECT_FALSE(Read("7 8", k));
    EXPECT_EQ(k, 20U);
    double number = 0;
    EXPECT_FALSE(Read("", number));
    EXPECT_FALSE(Read("1e", number));
    EXPECT_TRUE(Read("-2.5", number));
    EXPECT_EQ(number, -2.5);
    EXPECT_EQ(Fixed(0.15327, 4), "0.1533");
    EXPECT_EQ(Fixed(0.15, 0), "0");
}

TEST(Plain_model, Names_the_output_directory) {
    auto const made = [](std::vector<std::string> const& switches) {
        for (auto const& [path, entry] : Run_on("a b 1\n", switches).tree) {
            if (path.ends_with("/input_params.txt")) {
                return path.substr(0, path.rfind('/'));
            }
        }
        return std::string("(none)");
    };
    EXPECT_EQ(made({"-w", "0.5", "-W", "2", "-d", "1"}), "net_files_0.5_w_2.0");
    EXPECT_EQ(made({"-W", "1.35", "-d", "3"}), "net_files_w_1.350");
    EXPECT_EQ(made({"-w", "0.15", "-d", "0"}), "net_files_0_w");
    EXPECT_EQ(made({"-D"}), "net_files-d");
    EXPECT_EQ(made({"-o", "x/../y/z", "-I", "0.3", "-d", "2"}), "y/z-w-th0.30");
}

TEST(Plain_model, Makes_room_for_the_output_directory) {
    Tree tree = Tree_with("a b\n");
    tree["out"] = {Entry::Kind::file, "old"};
    tree["out1"] = {Entry::Kind::file, "older"};
    Outcome const outcome = Run_in(tree, {"p", "-i", "net", "-o", "out"});
    EXPECT_EQ(File(outcome, "out2"), "old");
    EXPECT_EQ(File(outcome, "out1"), "older");
    EXPECT_TRUE(outcome.tree.contains("out/cliques"));

    Tree full = Tree_with("a b\n");
    full["out"] = {};
    full["out/x"] = {Entry::Kind::file, ""};
    Outcome const refused = Run_in(full, {"p", "-i", "net", "-o", "out"});
    EXPECT_EQ(After_reading(refused),
              "ERROR: the output directory already exists and it is non-empty.\n\n");
    EXPECT_EQ(refused.tree, full);

    full["out/x"] = {Entry::Kind::symlink, "nowhere"};
    EXPECT_EQ(After_reading(Run_in(full, {"p", "-i", "net", "-o", "out"})),
              "ERROR: problem with out/x in List_dir():\n"
              "A component of the path file_name does not exist.\n");

    EXPECT_EQ(After_reading(Run_in(full, {"p", "-i", "net", "-o", "net/x"})),
              "ERROR: Make_dir() called with net/x and \n"
              "A component of the path is not a directory.\n");
}

TEST(Plain_model, Normalises_the_path_of_the_input) {
    EXPECT_EQ(Total_path("../x/./y", "/home/u"), "/home/x/y");
    EXPECT_EQ(Total_path("net", "/"), "/net");
    EXPECT_EQ(Total_path("/a/../b/..", "/home"), "/b/..");
    EXPECT_EQ(Total_path("a//b", "/w"), "/w/a//b");
}

TEST(Plain_model, Ends_on_bad_links_with_the_readers_text) {
    auto const text = [](std::string links, std::vector<std::string> switches) {
        Outcome const outcome = Run_on(links, switches);
        EXPECT_EQ(outcome.tree, Tree_with(links));
        return After_reading(outcome);
    };
    EXPECT_EQ(text("a b\n \t\nb c\n", {}),
              "basic_string::substr: __pos (which is 4294967295) > this->size() (which is 2)\n");
    EXPECT_EQ(text("a b\n\n", {}),
              "basic_string::substr: __pos (which is 4294967295) > this->size() (which is 0)\n");
    EXPECT_EQ(text(" ab \n", {}), "ERROR: Wrong line found in ' the file I was reading' :\nab\n");
    EXPECT_EQ(text("a b 1e\n", {"-w", "0"}),
              "ERROR: Wrong line found in ' the file I was reading' :\na b 1e\n");
    EXPECT_EQ(After_reading(Run_in({}, {"p", "-i", "none"})), "ERROR : File not found: 'none' \n");
    EXPECT_EQ(After_reading(Run_in({}, {"p", "-i", "/"})),
              "ERROR: Something went wrong when trying to read from /\n");
}

TEST(Plain_model, Sums_repeated_lines_inside_the_interval) {
    Outcome const outcome = Run_on("z y 0.5\r\nz y 0.25x 9\ny z 1\nz y 3\nz z 1\n#c\nx\n\r\nq r 4",
                                   {"-w", "0.1", "-W", "3"});
    EXPECT_EQ(Body(outcome, "net_files_0.100000_w_3.000000/graph"), "y z 1\nz y 0.75\n");
    // Deliberate: the upper threshold is announced with the lower one's value.
    EXPECT_NE(File(outcome, "net_files_0.100000_w_3.000000/input_params.txt")
                  .find("upper link weight threshold of 0.100000."),
              std::string::npos);
}

TEST(Plain_model, Finds_lines_of_nodes_when_directed) {
    EXPECT_EQ(Body(Run_on("a b\nb c\na c\n", {"-D"}), "net_files-d/directed_cliques"),
              "0: a b c \n");
    EXPECT_EQ(Body(Run_on("a b\nb c\nc a\n", {"-D"}), "net_files-d/directed_cliques"), "");
    EXPECT_EQ(Body(Run_on("a b\nb a\n", {"-D"}), "net_files-d/directed_cliques"), "");
    Outcome const mutual =
        Run_on("a b\nb a\na c\nc a\na d\nd a\nb c\nc b\nb d\nd b\nc d\nd c\n", {"-D"});
    EXPECT_EQ(Body(mutual, "net_files-d/directed_cliques"), "0: a b c d \n");
    // (b, a) only: the community holds the pair smaller index first, the link map the other way.
    Outcome const turned = Run_on("b a\nb c\na c\n", {"-D"});
    EXPECT_EQ(Body(turned, "net_files-d/k=3/directed_communities_links"), "0:\na c\nb a\nb c\n");
}

TEST(Plain_model, Wraps_the_percentage_of_a_k_above_the_largest_clique) {
    // (3 - 5) mod 2^32 = 4294967294; 100 * 4294967294.5 / 1
    Outcome const above = Run_on("a b\nb c\na c\n", {"-k", "5"});
    EXPECT_NE(above.out.find(" Extracting communities at k=5 (completed 429496729450.00%)\n"),
              std::string::npos);
    EXPECT_EQ(Body(above, "net_files/k=5/membership_distribution"), "0 3\n\n");
    // No clique: 100 * (2^32 - 3 + 0.5) / (2^32 - 2) = 99.99999994...
    Outcome const none = Run_on("a b\n", {"-k", "3"});
    EXPECT_NE(none.out.find("k=3 (completed 100.00%)\n"), std::string::npos);
}

// With a clock that strikes at once every node of a complete graph on four overruns: its first
// extension {1, 2, 3} has the candidate 4 left. The neighbourhoods become four cliques of three.
TEST(Plain_model, Approximates_a_complete_graph_nobody_finishes) {
    std::string const links = "a b\na c\na d\nb c\nb d\nc d\n";
    Outcome const outcome = Run_on(links, {"-t", "1"}, 2'000'000);
    EXPECT_EQ(Body(outcome, "net_files/cliques"),
              "-0: b c d \n-1: a c d \n-2: a b d \n-3: a b c \n");
    EXPECT_EQ(Body(outcome, "net_files/k=3/communities"), "-0: a b c d \n");
    EXPECT_EQ(Body(outcome, "net_files/k=3/communities_cliques"), "-0: -0 -1 -2 -3 \n");
    EXPECT_EQ(Body(outcome, "net_files/k=3/size_distribution_merged"), "4 1\n\n");
    EXPECT_EQ(Body(outcome, "net_files/k=3/size_distribution_exact"), "\n");
    EXPECT_EQ(Body(outcome, "net_files/k=3/membership_distribution_appr"), "0 0\n1 4\n\n");
    EXPECT_FALSE(outcome.tree.contains("net_files/k=3/size_distribution"));
    EXPECT_NE(outcome.out.find(" Exceeded allowed time at node no.4,\n"
                               " skipping, 4 out of 4 skipped in a row, (100.00%)\n"
                               "__________________________________________________\n"
                               " The extraction of cliques has been found too slow \n"
                               " at all of the remaining nodes.\n"
                               "__________________________________\n"
                               " Altogether 0 exact cliques found.\n"
                               "_____________________________________________\n"
                               " Approximating cliques in the remaing core...\n"
                               " Clique approximation finished,\n"
                               " number of   exact cliques=0,\n"
                               " number of approx. cliques=4\n"),
              std::string::npos);
    EXPECT_NE(Run_on(links, {"-t", "1"})
                  .out.find(" Altogether 1 cliques found.\n no approximation was needed\n"),
              std::string::npos);
    EXPECT_NE(
        Run_on(links, {"-t", "1", "-D"})
            .out.find(" Altogether 1 directed cliques found.\nno approximation was needed.\n"),
        std::string::npos);
}

std::vector<Nodes> Node_sets(std::vector<Community> const& communities) {
    std::vector<Nodes> sets;
    for (auto const& community : communities) {
        sets.push_back(community.nodes);
    }
    return sets;
}

// Two exact cliques and an approximated one; the first exact clique has been dropped since its rows
// were made. The new row goes after the two old ones and belongs to no clique; the new clique at
// position 1 writes into the row of the old clique 1.
TEST(Plain_model, Keeps_old_overlap_rows_after_cliques_were_dropped) {
    Rows rows{{{0, 3}, {1, 1}}, {{0, 1}, {1, 4}}}; // of {1,2,3} and {3,4,5,6}
    Cliques const merged{{3, 4, 5, 6}, {1, 2, 3, 7, 8}};
    Extend_rows(rows, merged, 1);
    EXPECT_EQ(rows, (Rows{{{0, 3}, {1, 1}}, {{0, 1}, {1, 5}}, {}}));
    // Row 0 now says that the clique of four shares three nodes with itself: no community at k=4
    // starts from it. It is not reached from the other one either.
    Reached reached;
    auto const found = Percolate({merged, rows, 1}, 4, reached);
    EXPECT_EQ(Node_sets(found), (std::vector<Nodes>{{1, 2, 3, 7, 8}}));
    EXPECT_FALSE(found[0].exact);
}

TEST(Plain_model, Starts_a_community_without_asking_who_has_the_neighbours) {
    // Rows that are not symmetric, as dropped cliques leave them: 0 does not know 1, 1 knows 0.
    Cliques const cliques{{1, 2, 3}, {2, 3, 4}};
    Rows const rows{{{0, 3}, {7, 3}}, {{0, 2}, {1, 3}}};
    Reached reached;
    auto const found = Percolate({cliques, rows, 2}, 3, reached);
    EXPECT_EQ(Node_sets(found), (std::vector<Nodes>{{1, 2, 3}, {1, 2, 3, 4}}));
    EXPECT_EQ(found[0].cliques, (std::vector<unsigned>{0}));
    EXPECT_EQ(found[1].cliques, (std::vector<unsigned>{0, 1}));
}

TEST(Plain_model, Lists_links_of_k_cliques_in_blocks_latest_first) {
    Outcome const outcome =
        Run_on("a b 2\na c 2\na d 2\nb c 2\nb d 2\nc d 2\n", {"-I", "1", "-k", "3", "-o", "o"});
    EXPECT_EQ(Body(outcome, "o-w-th1.000000/k=3/k-cliques"),
              "0: a b c \n1: a b d \n2: a c d \n3: b c d \n");
    EXPECT_EQ(Body(outcome, "o-w-th1.000000/k=3/intensity_communities"), "0: a b c d \n");
    EXPECT_EQ(Body(outcome, "o-w-th1.000000/k=3/intensity_communities_links"),
              "0:\nb c\nb d\nc d\na c\na d\nc d\na b\na d\nb d\na b\na c\nb c\n");
    // An intensity equal to the threshold is refused.
    Outcome const equal = Run_on("a b 2\na c 2\nb c 2\n", {"-I", "2", "-o", "o"});
    EXPECT_EQ(Body(equal, "o-w-th2.000000/k=3/k-cliques"), "");
}

TEST(Plain_model, Joins_k_cliques_only_through_an_intense_shared_part) {
    // Both triangles pass (4*4*b > 1), their shared link b-c has the weight b.
    auto const communities = [](std::string const& b) {
        return Body(Run_on("a b 4\na c 4\nb c " + b + "\nb d 4\nc d 4\n", {"-I", "1", "-o", "o"}),
                    "o-w-th1.000000/k=3/intensity_communities");
    };
    EXPECT_EQ(communities("2"), "0: a b c d \n");
    EXPECT_EQ(communities("1"), "0: a b c \n1: b c d \n");
    EXPECT_EQ(communities("0.5"), "0: a b c \n1: b c d \n");
}

// The logarithm of a negative weight is NaN. The smallest logarithm is that of a-b (ln 9), never
// that of b-c, so the bound passes {a, b, c} at {a, b} already; the shared part {b, c} of the two
// triangles ends its walk at once on a comparison with NaN, which counts as success.
TEST(Plain_model, Follows_comparisons_with_NaN) {
    Outcome const outcome =
        Run_on("a b 9\na c 9\nb c -1\nb d 9\nc d 9\na d 9\n", {"-I", "2", "-k", "3", "-o", "o"});
    EXPECT_EQ(Body(outcome, "o-w-th2.000000/k=3/k-cliques"), "0: a b c \n1: a b d \n2: a c d \n");
    EXPECT_EQ(Body(outcome, "o-w-th2.000000/k=3/intensity_communities"), "0: a b c d \n");
}

TEST(Plain_model, Misses_a_link_for_the_shared_node_of_two_pairs) {
    Outcome const outcome = Run_on("a b 2\na c 2\nb c 2\n", {"-I", "1", "-k", "2", "-o", "o"});
    EXPECT_TRUE(outcome.out.ends_with(" 3 of 3 k-cliques to do (0.00% done)\n"
                                      "ERROR: Get_sub_links_and_thresh_abs: missing link.\n\n"));
    EXPECT_EQ(Body(outcome, "o-w-th1.000000/k=2/k-cliques"), "0: a b \n1: a c \n2: b c \n");
    EXPECT_FALSE(outcome.tree.contains("o-w-th1.000000/k=2/intensity_communities"));
}

TEST(Plain_model, Counts_pairs_degrees_and_memberships) {
    std::vector<Nodes> const communities{{1, 2, 3, 4}, {2, 3, 4, 5}, {9, 10, 11}};
    EXPECT_EQ(Count(communities, 12), (Statistics{{"overlap", {{3, 1}}},
                                                  {"degree", {{0, 1}, {1, 2}}},
                                                  {"size", {{3, 1}, {4, 2}}},
                                                  {"membership", {{0, 4}, {1, 5}, {2, 3}}}}));
    EXPECT_THROW(Count(communities, 7), std::logic_error);
}

// --- Small graphs, all of them, against what the words "maximal clique" and "community" mean. ---

std::vector<Nodes> All_subsets(unsigned n) {
    std::vector<Nodes> subsets;
    for (unsigned bits = 0; bits < 1U << n; ++bits) {
        Nodes nodes;
        for (unsigned i = 0; i < n; ++i) {
            if ((bits >> i & 1U) != 0) {
                nodes.insert(i + 1);
            }
        }
        subsets.push_back(nodes);
    }
    return subsets;
}

/// Whether all can be linked in pairs, or lined up so that each is linked to all after it: then
/// one of them can be the first, and the rest can be lined up after it.
bool Is_clique(Nodes const& nodes, Index_links const& links, bool directed) {
    if (nodes.size() < 2) {
        return true;
    }
    for (unsigned first : nodes) {
        Nodes rest = nodes;
        rest.erase(first);
        bool links_all = true;
        for (unsigned other : rest) {
            links_all = links_all && (links.contains({first, other}) ||
                                      (!directed && links.contains({other, first})));
        }
        if (links_all && Is_clique(rest, links, directed)) {
            return true;
        }
    }
    return false;
}

/// The sets of `n` nodes or fewer that a search must find, in no order of its own.
std::set<Nodes> Maximal_cliques(unsigned n, Index_links const& links, bool directed) {
    std::vector<Nodes> cliques;
    for (auto const& nodes : All_subsets(n)) {
        if (nodes.size() > 2 && Is_clique(nodes, links, directed)) {
            cliques.push_back(nodes);
        }
    }
    std::set<Nodes> maximal;
    for (auto const& clique : cliques) {
        if (std::none_of(cliques.begin(), cliques.end(), [&](Nodes const& other) {
                return other != clique && Inside(clique, other);
            })) {
            maximal.insert(clique);
        }
    }
    return maximal;
}

Index_links Links_of(unsigned n, unsigned bits, bool directed) {
    Index_links links;
    for (unsigned a = 1; a <= n; ++a) {
        for (unsigned b = directed ? 1 : a + 1; b <= n; ++b) {
            if (a != b) {
                if ((bits & 1U) != 0) {
                    links[{a, b}] = 0;
                }
                bits >>= 1;
            }
        }
    }
    return links;
}

Found_cliques Search(Index_links const& links, bool directed) {
    std::ostringstream out;
    Clock clock;
    Reached reached;
    return Find_cliques(Make_graph(links, directed), std::nullopt, clock, out, reached);
}

/// Communities told through explicit k-cliques: those that share k - 1 nodes belong together.
std::multiset<Nodes> Communities_of(unsigned n, unsigned k, Index_links const& links) {
    std::vector<Nodes> groups;
    for (auto const& nodes : All_subsets(n)) {
        if (nodes.size() == k && Is_clique(nodes, links, false)) {
            groups.push_back(nodes);
        }
    }
    std::vector<Nodes> const k_cliques = groups;
    std::vector<std::size_t> group_of(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        group_of[i] = i;
    }
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        for (std::size_t j = 0; j < k_cliques.size(); ++j) {
            if (Size(k_cliques[i] & k_cliques[j]) == k - 1) {
                std::replace(group_of.begin(), group_of.end(), group_of[i], group_of[j]);
            }
        }
    }
    std::map<std::size_t, Nodes> communities;
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        communities[group_of[i]].insert(k_cliques[i].begin(), k_cliques[i].end());
    }
    std::multiset<Nodes> result;
    for (auto const& [group, nodes] : communities) {
        result.insert(nodes);
    }
    return result;
}

TEST(Plain_model, Finds_the_maximal_cliques_of_all_graphs_on_five_nodes) {
    for (unsigned bits = 0; bits < 1U << 10; ++bits) {
        Index_links const links = Links_of(5, bits, false);
        Found_cliques const found = Search(links, false);
        std::multiset<Nodes> const cliques(found.cliques.begin(), found.cliques.end());
        auto const maximal = Maximal_cliques(5, links, false);
        ASSERT_EQ(cliques, std::multiset<Nodes>(maximal.begin(), maximal.end())) << bits;
        for (unsigned k = 3; k <= 5; ++k) {
            Reached reached;
            auto const percolated = Node_sets(Percolate(found, k, reached));
            ASSERT_EQ(std::multiset<Nodes>(percolated.begin(), percolated.end()),
                      Communities_of(5, k, links))
                << bits << " at k=" << k;
        }
    }
}

TEST(Plain_model, Finds_the_maximal_lines_of_all_directed_graphs_on_four_nodes) {
    for (unsigned bits = 0; bits < 1U << 12; ++bits) {
        Index_links const links = Links_of(4, bits, true);
        Cliques const found = Search(links, true).cliques;
        auto const maximal = Maximal_cliques(4, links, true);
        ASSERT_EQ(std::multiset<Nodes>(found.begin(), found.end()),
                  std::multiset<Nodes>(maximal.begin(), maximal.end()))
            << bits;
    }
}

} // namespace
} // namespace cpm::model
