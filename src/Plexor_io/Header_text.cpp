// SPDX-License-Identifier: MIT
#include "Plexor_io/Header_text.h"

#include "Plexor_io/My_double2string.h"
#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Text_file.h"
#include "Plexor_io/Total_path.h"

namespace cpm {

namespace {

// Whatever the digits of the directory name are.
constexpr unsigned digits = 6;

} // namespace

void Generate_alap_szoveg(std::string& text, std::string const& input_file,
                          Weight_interval const& weights) {
    std::string const lower = double2string(weights.lower, digits);
    text = " from " + Get_total_path(input_file) + "\n";
    text += weights.lower_set ? "# at a lower link weight threshold of " + lower + ",\n"
                              : "# at no lower link weight threshold,\n";
    // Deliberate: the lower threshold stands where the upper one is announced. The directory name
    // has the upper one.
    text += weights.upper_set ? "# and at an upper link weight threshold of " + lower + ".\n"
                              : "# and at no upper link weight threshold.\n";
}

void Extend_alap_szoveg(std::string& text, Run_settings const& settings) {
    if (settings.intensity) {
        text += "# A lower link weight intensity threshold of " +
                double2string(settings.intensity_threshold, digits) + " was set.\n";
    }
    text += settings.directed ? "# Links were treated as directed.\n"
                              : "# Links were treated as undirected.\n";
    text += settings.time_limit_set
                ? "# The maximal allowed time per node during clique search was " +
                      double2string(settings.time_limit, digits) + " secs.\n"
                : "# No time limit was set for the clique search.\n";
    if (settings.k_given) {
        text += "# The communities were extracted solely at k=" + int2string(settings.k) + ".\n";
    }
}

void Kiir_params(Run_files& files) {
    Text_file file(files.place.Prepare().File("input_params.txt"), files);
    file.Put("# Plexor was run on links taken");
    file.Put(files.alap_szoveg);
}

} // namespace cpm
