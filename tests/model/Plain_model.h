// SPDX-License-Identifier: MIT
// The plain model: a second, slow and obvious telling of a whole run, written from the definitions
// and sharing no code with the program. It does byte for byte what a run does: it returns what is
// printed and leaves the files.
#ifndef PLEXOR_PLAIN_MODEL_H
#define PLEXOR_PLAIN_MODEL_H

#include "Plain_cliques.h"

#include <string>
#include <vector>

namespace cpm::model {

/// Runs in the current directory with `args`, the program's own name first. The banner is the whole
/// of it, its line of underscores and all line ends included; by `clock` a time limit counts.
std::string Run_model(std::vector<std::string> const& args, std::string const& banner,
                      Clock const& clock, Reached& reached);

} // namespace cpm::model

#endif
