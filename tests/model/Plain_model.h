// SPDX-License-Identifier: MIT
// The plain model: a second, slow and obvious telling of a whole run, written from the definitions
// and sharing no code with the program. It says byte for byte what a run prints and leaves behind.
#ifndef PLEXOR_PLAIN_MODEL_H
#define PLEXOR_PLAIN_MODEL_H

#include "Plain_cliques.h"
#include "Plain_tree.h"

#include <string>
#include <vector>

namespace cpm::model {

/// What a run finds when it starts.
struct World {
    std::string cwd;    // the working directory, as getcwd gives it
    Tree tree;          // all that the run can see
    std::string banner; // the whole banner, its line of underscores and all line ends included
    long long clock_step = 0; // microseconds of processor time between two readings of the clock
};

struct Outcome {
    std::string out; // standard output; standard error stays empty and the exit status is 0
    Tree tree;       // all that is there afterwards
    Reached reached; // rare situations met on the way
};

/// Runs the program with `args`, its own name first.
Outcome Run_model(std::vector<std::string> const& args, World const& world);

} // namespace cpm::model

#endif
