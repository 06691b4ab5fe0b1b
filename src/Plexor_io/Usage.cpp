// SPDX-License-Identifier: MIT
#include "Plexor_io/Usage.h"

#include "support/Version.h"

#include <span>
#include <string_view>

namespace cpm {

namespace {

constexpr std::size_t banner_width = 52;

// In both texts a "$" stands for the program's name. Deliberate: what they say about the default
// number of digits and about -U, the unbalanced quotes and the blanks at line ends stay as they
// are.
constexpr std::string_view usage[] = {
    " Usage : $ -i input_file ",
    "         by default the results will be written to an output",
    "         directory named after the input file with a '_files' suffix.",
    " Options: ",
    "  -i  specify input file.                       (Mandatory)",
    "  -o  specify output directory.                 (Optional)",
    "  -w  specify lower link weight threshold.      (Optional)",
    "  -W  specify upper link weight threshold.      (Optional)",
    "  -d  specify number of digits when creating",
    "      the name of the default output directory",
    "      of the link weight thresholded input.     (Optional)",
    "  -t  specify maximal time allowed for ",
    "      clique search per node.                   (Optional)",
    "  -D  search with directed method.              (Optional)",
    "  -U  search with un-directed method.           (Default)",
    "      (Declare explicitly the input and the ",
    "      modules to be un-directed.)",
    "  -I  search with intensity method and specify",
    "      the lower link weight intensity threshold",
    "      for the k-cliques.                        (Optional)",
    "  -k  specify the k-clique size.                (Optional)",
    "      (Advised to use it only when a ",
    "      link weight intensity threshold is set.)",
    "  -h  help. More details about these options.",
};

constexpr std::string_view detailed_usage[] = {
    " When using $ you must specify at least the ",
    " input file using the switch -i. ",
    " Example:",
    "",
    "   $ -i my_links.dat ",
    "",
    "   In this example Plexor will try to read the links of the ",
    "   graph from 'my_links.dat' and will create a directory named",
    "   'my_links.dat_files' to store the results of the community",
    "   finding.",
    "",
    " Optionally you can specify an output directory for $",
    " using the switch -o.",
    " Example:",
    "",
    "   $ -i my_links.dat -o my_dir",
    "",
    "   In this example Plexor will write the results to 'my_dir'.",
    "",
    " Optionally you can set upper or/and lower weight thresholds",
    " for the links using the -w and -W switches.",
    " Examples:",
    "",
    "   $ -i my_links.dat -w 0.15",
    "   $ -i my_links.dat -W 1.35",
    "   $ -i my_links.dat -w 0.15 -W 1.35",
    "",
    "   -In the 1st example $ will ignore the links",
    "    weaker than 0.15, and the results will be written into a",
    "    directory named 'my_links.dat_files_0.150_w by default.",
    "   -In the 2nd example $ will ignore the links",
    "    stronger than 1.35, and the results will be written into a",
    "    directory named 'my_links.dat_files_w_1.350 by default.",
    "   -In the 3rd example $ will ignore links",
    "    weaker than 0.15 or stronger than 1.35, and the results ",
    "    will be written into a directory named",
    "    'my_links.dat_files_0.150_w_1.350 by default.",
    "",
    " Optionally you can set the number of digits to be taken into",
    " account when creating the output directory name using the switch -d.",
    " The default value is 3 digits.",
    " Examples:",
    "",
    "   $ -i my_links.dat -w 0.15327 -d 2",
    "   $ -i my_links.dat -w 0.15327 -d 4",
    "",
    "   -In the 1st example the output directory will be ",
    "    'my_links.dat_files_0.15_w'.",
    "   -In the 2nd example the output directory will be ",
    "    'my_links.dat_files_0.1533_w'.",
    "",
    " Optionally you can set the maximal allowed time in seconds for ",
    " searching for the cliques of a node using the switch -t.",
    " Example:",
    "",
    "   $ -i my_links.dat -t 2.75",
    "",
    "    In this example the maximal allowed time per node is ",
    "    2.75 secs.",
    "",
    " Optionally you can set the cliques (and the communities) ",
    " to be directed using the switch -D.",
    "",
    " Optionally you can explicitly declare the usage of the undirected",
    " search algorithm using the switch -U.",
    " (Has no effect except that it cannot be set together with -D).",
    "",
    " Optionally you can set a lower link weight intensity",
    " threshold for the k-cliques using the switch -I.",
    " Example:",
    "",
    "   $ -i my_links.dat -I 0.35",
    "",
    "    In this example the lower link weight intensity for the ",
    "    k-cliques is 0.35.",
    " Note that when -I is active, the -D and the -t switches ",
    " cannot be active as well.",
    "",
    " Optionally you can specify the k-clique size using the ",
    " switch -k. (Otherwise the communities are extracted at every",
    " possible k-clique size). This switch can be useful when using",
    " a link weight intensity threshold, since in such case the",
    " intensities have to be calculated in every single k-cliques,",
    " and the extraction of the communities becomes very slow.",
    "",
    " Example:",
    "",
    "   $ -i my_links.dat -I 0.35 -k 4",
    "",
    "    In this example the lower link weight intensity for the ",
    "    k-cliques is 0.35, and the communities are extracted at a",
    "    k-clique size k=4",
    "",
    "",
    "",
};

void Put_lines(std::span<std::string_view const> lines, std::string const& program,
               Console& console) {
    for (std::string_view line : lines) {
        std::size_t place = 0;
        while ((place = line.find('$')) != std::string_view::npos) {
            console.Put(line.substr(0, place));
            console.Put(program);
            line.remove_prefix(place + 1);
        }
        console.Put(line);
        console.Put('\n');
    }
    console.Message_done();
}

} // namespace

void Print_banner(Console& console) {
    console.Put_repeated('_', banner_width);
    console.Put("\n Plexor\n Finds overlapping communities by clique percolation\n Version ");
    console.Put_line(version);
}

void Print_usage(std::string const& program, std::string const& error_text, Console& console) {
    Print_banner(console);
    console.Put("\n Error:\n");
    console.Put(error_text);
    console.Put('\n');
    Put_lines(usage, program, console);
}

void Print_detailed_usage(std::string const& program, Console& console) {
    Put_lines(detailed_usage, program, console);
    Print_banner(console);
}

} // namespace cpm
