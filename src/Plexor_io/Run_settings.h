// SPDX-License-Identifier: MIT
// What the command line settles for the whole run.
#ifndef PLEXOR_RUN_SETTINGS_H
#define PLEXOR_RUN_SETTINGS_H

#include <string>

namespace cpm {

struct Run_settings {
    std::string out_dir;   ///< where every file of the run goes
    double time_limit = 0; ///< seconds a node, for the clique search; means something only when set
    bool time_limit_set = false;
    bool directed = false;
    bool intensity = false;
    double intensity_threshold = 0; ///< means something only in an intensity run
    bool k_given = false;
    unsigned k = 0;          ///< the only k to extract communities at, when given
    unsigned n_threads = 1;  ///< 0: one a processor. No switch: the program has one thread
    bool weighted = false;   ///< the links were read with their weights
    std::string com_flag;    ///< "", "directed" or "intensity"
    std::string header_text; ///< the comment lines that describe the run in its result files
};

} // namespace cpm

#endif
