// SPDX-License-Identifier: MIT
#include "Plexor_io/Out_dir.h"

#include "Plexor_io/My_double2string.h"

namespace cpm {

std::string Output_dir_name(std::string const& input_file, Weight_interval const& weights,
                            unsigned digits, std::optional<std::string> const& given_name,
                            Run_settings const& settings) {
    std::string name = input_file + "_files";
    if (weights.lower_set) {
        name += "_" + double2string(weights.lower, digits);
    }
    if (weights.lower_set || weights.upper_set) {
        name += "_w";
    }
    if (weights.upper_set) {
        name += "_" + double2string(weights.upper, digits);
    }
    if (settings.directed) {
        name += "-d";
    }
    if (given_name) {
        name = *given_name;
    }
    // Deliberate: this one goes to a name given by the user, too.
    if (settings.intensity) {
        name += "-w-th" + double2string(settings.intensity_threshold, digits);
    }
    return name;
}

void Generate_com_flag(std::string& flag, bool directed, bool intensity) {
    flag = intensity ? "intensity" : directed ? "directed" : "";
}

Result_place Check_out_dir(std::string const& out_dir) {
    return Result_place(out_dir);
}

} // namespace cpm
