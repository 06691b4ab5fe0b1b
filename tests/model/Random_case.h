// SPDX-License-Identifier: MIT
// Seeded random runs: a network, the way its file is written, a command line and what stands on the
// disk beforehand. The same seed gives the same case with every compiler and library.
#ifndef PLEXOR_RANDOM_CASE_H
#define PLEXOR_RANDOM_CASE_H

#include "Box.h"
#include "Plain_cliques.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cpm::model {

struct Case {
    std::vector<std::string>
        args;              // the program's own name first; "@BOX@" stands for the box's path
    Tree tree;             // what stands in the box before the run, by paths inside the box
    std::string link_file; // the entry of `tree` with the links, empty when there is none
    Clock clock;           // as it is when the run begins
    bool timed = false;    // `-t` is among the switches
};

/// The working directory of every case, inside its box.
constexpr char const* work_directory = "work";

Case Random_case(std::uint32_t seed);
/// A network of 5 to 16 nodes, or 70 to 200 when ten divides the seed, and a time limit that a coin
/// lets strike.
Case Coin_case(std::uint32_t seed);
/// Thousands of nodes: cliques of up to 80 nodes, or of up to 10 in directed and limited searches
/// and with an intensity; any of the switches. Takes the model seconds.
Case Large_case(std::uint32_t seed);

} // namespace cpm::model

#endif
