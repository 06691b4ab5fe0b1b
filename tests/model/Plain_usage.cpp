// SPDX-License-Identifier: MIT
#include "Plain_text.h"

namespace cpm::model {

namespace {

// In both texts "@" stands for the program's name as it was typed, and "$" marks the end of a line
// whose last character is a blank.
constexpr char const* usage_text = R"( Usage : @ -i input_file $
         by default the results will be written to an output
         directory named after the input file with a '_files' suffix.
 Options: $
  -i  specify input file.                       (Mandatory)
  -o  specify output directory.                 (Optional)
  -w  specify lower link weight threshold.      (Optional)
  -W  specify upper link weight threshold.      (Optional)
  -d  specify number of digits when creating
      the name of the default output directory
      of the link weight thresholded input.     (Optional)
  -t  specify maximal time allowed for $
      clique search per node.                   (Optional)
  -D  search with directed method.              (Optional)
  -U  search with un-directed method.           (Default)
      (Declare explicitly the input and the $
      modules to be un-directed.)
  -I  search with intensity method and specify
      the lower link weight intensity threshold
      for the k-cliques.                        (Optional)
  -k  specify the k-clique size.                (Optional)
      (Advised to use it only when a $
      link weight intensity threshold is set.)
  -h  help. More details about these options.
)";

constexpr char const* help_text = R"( When using @ you must specify at least the $
 input file using the switch -i. $
 Example:

   @ -i my_links.dat $

   In this example Plexor will try to read the links of the $
   graph from 'my_links.dat' and will create a directory named
   'my_links.dat_files' to store the results of the community
   finding.

 Optionally you can specify an output directory for @
 using the switch -o.
 Example:

   @ -i my_links.dat -o my_dir

   In this example Plexor will write the results to 'my_dir'.

 Optionally you can set upper or/and lower weight thresholds
 for the links using the -w and -W switches.
 Examples:

   @ -i my_links.dat -w 0.15
   @ -i my_links.dat -W 1.35
   @ -i my_links.dat -w 0.15 -W 1.35

   -In the 1st example @ will ignore the links
    weaker than 0.15, and the results will be written into a
    directory named 'my_links.dat_files_0.150_w by default.
   -In the 2nd example @ will ignore the links
    stronger than 1.35, and the results will be written into a
    directory named 'my_links.dat_files_w_1.350 by default.
   -In the 3rd example @ will ignore links
    weaker than 0.15 or stronger than 1.35, and the results $
    will be written into a directory named
    'my_links.dat_files_0.150_w_1.350 by default.

 Optionally you can set the number of digits to be taken into
 account when creating the output directory name using the switch -d.
 The default value is 3 digits.
 Examples:

   @ -i my_links.dat -w 0.15327 -d 2
   @ -i my_links.dat -w 0.15327 -d 4

   -In the 1st example the output directory will be $
    'my_links.dat_files_0.15_w'.
   -In the 2nd example the output directory will be $
    'my_links.dat_files_0.1533_w'.

 Optionally you can set the maximal allowed time in seconds for $
 searching for the cliques of a node using the switch -t.
 Example:

   @ -i my_links.dat -t 2.75

    In this example the maximal allowed time per node is $
    2.75 secs.

 Optionally you can set the cliques (and the communities) $
 to be directed using the switch -D.

 Optionally you can explicitly declare the usage of the undirected
 search algorithm using the switch -U.
 (Has no effect except that it cannot be set together with -D).

 Optionally you can set a lower link weight intensity
 threshold for the k-cliques using the switch -I.
 Example:

   @ -i my_links.dat -I 0.35

    In this example the lower link weight intensity for the $
    k-cliques is 0.35.
 Note that when -I is active, the -D and the -t switches $
 cannot be active as well.

 Optionally you can specify the k-clique size using the $
 switch -k. (Otherwise the communities are extracted at every
 possible k-clique size). This switch can be useful when using
 a link weight intensity threshold, since in such case the
 intensities have to be calculated in every single k-cliques,
 and the extraction of the communities becomes very slow.

 Example:

   @ -i my_links.dat -I 0.35 -k 4

    In this example the lower link weight intensity for the $
    k-cliques is 0.35, and the communities are extracted at a
    k-clique size k=4



)";

std::string Replaced(std::string text, std::string const& what, std::string const& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

} // namespace

std::string Usage(std::string const& program_name) {
    return Replaced(Replaced(usage_text, "$\n", "\n"), "@", program_name);
}

std::string Help(std::string const& program_name) {
    return Replaced(Replaced(help_text, "$\n", "\n"), "@", program_name);
}

} // namespace cpm::model
