// SPDX-License-Identifier: MIT
#include "Plexor_io/Usage.h"

#include "support/Captured_console.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace cpm {
namespace {

constexpr char usage_of_plexor[] =
    " Usage : ./plexor -i input_file \n"
    "         by default the results will be written to an output\n"
    "         directory named after the input file with a '_files' suffix.\n"
    " Options: \n"
    "  -i  specify input file.                       (Mandatory)\n"
    "  -o  specify output directory.                 (Optional)\n"
    "  -w  specify lower link weight threshold.      (Optional)\n"
    "  -W  specify upper link weight threshold.      (Optional)\n"
    "  -d  specify number of digits when creating\n"
    "      the name of the default output directory\n"
    "      of the link weight thresholded input.     (Optional)\n"
    "  -t  specify maximal time allowed for \n"
    "      clique search per node.                   (Optional)\n"
    "  -D  search with directed method.              (Optional)\n"
    "  -U  search with un-directed method.           (Default)\n"
    "      (Declare explicitly the input and the \n"
    "      modules to be un-directed.)\n"
    "  -I  search with intensity method and specify\n"
    "      the lower link weight intensity threshold\n"
    "      for the k-cliques.                        (Optional)\n"
    "  -k  specify the k-clique size.                (Optional)\n"
    "      (Advised to use it only when a \n"
    "      link weight intensity threshold is set.)\n"
    "  -h  help. More details about these options.\n";

constexpr char help_of_plexor[] =
    " When using ./plexor you must specify at least the \n"
    " input file using the switch -i. \n"
    " Example:\n"
    "\n"
    "   ./plexor -i my_links.dat \n"
    "\n"
    "   In this example Plexor will try to read the links of the \n"
    "   graph from 'my_links.dat' and will create a directory named\n"
    "   'my_links.dat_files' to store the results of the community\n"
    "   finding.\n"
    "\n"
    " Optionally you can specify an output directory for ./plexor\n"
    " using the switch -o.\n"
    " Example:\n"
    "\n"
    "   ./plexor -i my_links.dat -o my_dir\n"
    "\n"
    "   In this example Plexor will write the results to 'my_dir'.\n"
    "\n"
    " Optionally you can set upper or/and lower weight thresholds\n"
    " for the links using the -w and -W switches.\n"
    " Examples:\n"
    "\n"
    "   ./plexor -i my_links.dat -w 0.15\n"
    "   ./plexor -i my_links.dat -W 1.35\n"
    "   ./plexor -i my_links.dat -w 0.15 -W 1.35\n"
    "\n"
    "   -In the 1st example ./plexor will ignore the links\n"
    "    weaker than 0.15, and the results will be written into a\n"
    "    directory named 'my_links.dat_files_0.150_w by default.\n"
    "   -In the 2nd example ./plexor will ignore the links\n"
    "    stronger than 1.35, and the results will be written into a\n"
    "    directory named 'my_links.dat_files_w_1.350 by default.\n"
    "   -In the 3rd example ./plexor will ignore links\n"
    "    weaker than 0.15 or stronger than 1.35, and the results \n"
    "    will be written into a directory named\n"
    "    'my_links.dat_files_0.150_w_1.350 by default.\n"
    "\n"
    " Optionally you can set the number of digits to be taken into\n"
    " account when creating the output directory name using the switch -d.\n"
    " The default value is 3 digits.\n"
    " Examples:\n"
    "\n"
    "   ./plexor -i my_links.dat -w 0.15327 -d 2\n"
    "   ./plexor -i my_links.dat -w 0.15327 -d 4\n"
    "\n"
    "   -In the 1st example the output directory will be \n"
    "    'my_links.dat_files_0.15_w'.\n"
    "   -In the 2nd example the output directory will be \n"
    "    'my_links.dat_files_0.1533_w'.\n"
    "\n"
    " Optionally you can set the maximal allowed time in seconds for \n"
    " searching for the cliques of a node using the switch -t.\n"
    " Example:\n"
    "\n"
    "   ./plexor -i my_links.dat -t 2.75\n"
    "\n"
    "    In this example the maximal allowed time per node is \n"
    "    2.75 secs.\n"
    "\n"
    " Optionally you can set the cliques (and the communities) \n"
    " to be directed using the switch -D.\n"
    "\n"
    " Optionally you can explicitly declare the usage of the undirected\n"
    " search algorithm using the switch -U.\n"
    " (Has no effect except that it cannot be set together with -D).\n"
    "\n"
    " Optionally you can set a lower link weight intensity\n"
    " threshold for the k-cliques using the switch -I.\n"
    " Example:\n"
    "\n"
    "   ./plexor -i my_links.dat -I 0.35\n"
    "\n"
    "    In this example the lower link weight intensity for the \n"
    "    k-cliques is 0.35.\n"
    " Note that when -I is active, the -D and the -t switches \n"
    " cannot be active as well.\n"
    "\n"
    " Optionally you can specify the k-clique size using the \n"
    " switch -k. (Otherwise the communities are extracted at every\n"
    " possible k-clique size). This switch can be useful when using\n"
    " a link weight intensity threshold, since in such case the\n"
    " intensities have to be calculated in every single k-cliques,\n"
    " and the extraction of the communities becomes very slow.\n"
    "\n"
    " Example:\n"
    "\n"
    "   ./plexor -i my_links.dat -I 0.35 -k 4\n"
    "\n"
    "    In this example the lower link weight intensity for the \n"
    "    k-cliques is 0.35, and the communities are extracted at a\n"
    "    k-clique size k=4\n"
    "\n"
    "\n"
    "\n";

std::string Banner() {
    Captured_console console;
    Print_banner(console);
    return console.Output();
}

TEST(Banner_text, Is_52_underscores_and_three_lines_with_the_name) {
    std::string const banner = Banner();
    std::string const underscores = "____________________________________________________\n";
    EXPECT_EQ(banner.substr(0, underscores.size()), underscores);
    EXPECT_EQ(std::ranges::count(banner, '\n'), 4);
    EXPECT_EQ(banner.back(), '\n');
    EXPECT_NE(banner.find("Plexor"), std::string::npos);
}

TEST(Usage_text, Shows_the_errors_and_then_the_switches) {
    Captured_console console;
    Print_usage("./plexor", " First error.\n Second error.\n", console);
    EXPECT_EQ(console.Output(),
              Banner() + "\n Error:\n First error.\n Second error.\n\n" + usage_of_plexor);
}

TEST(Usage_text, Names_the_program_as_it_was_typed) {
    Captured_console console;
    Print_usage("a$b c", "", console);
    EXPECT_NE(console.Output().find("\n Usage : a$b c -i input_file \n"), std::string::npos);
}

TEST(Detailed_usage_text, Explains_the_switches_and_ends_with_the_banner) {
    Captured_console console;
    Print_detailed_usage("./plexor", console);
    EXPECT_EQ(console.Output(), help_of_plexor + Banner());
}

TEST(Detailed_usage_text, Has_three_empty_lines_before_the_banner) {
    Captured_console console;
    Print_detailed_usage("./plexor", console);
    std::string const output = console.Output();
    std::string const end = "    k-clique size k=4\n\n\n\n" + Banner();
    ASSERT_GT(output.size(), end.size());
    EXPECT_EQ(output.substr(output.size() - end.size()), end);
}

} // namespace
} // namespace cpm
