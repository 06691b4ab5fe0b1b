// SPDX-License-Identifier: MIT
// The texts that explain the program and its command line.
#ifndef PLEXOR_USAGE_H
#define PLEXOR_USAGE_H

#include "Plexor_io/Console.h"

#include <string>

namespace cpm {

/// A line of underscores, the program's name, what it does, its version.
void Print_banner(Console& console);

/// The answer to a command line that cannot be used: what is wrong with it, line by line, and the
/// switches in short. `program` is the program's name as it was typed.
void Print_usage(std::string const& program, std::string const& error_text, Console& console);

/// The switches with examples.
void Print_detailed_usage(std::string const& program, Console& console);

} // namespace cpm

#endif
