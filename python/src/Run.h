// SPDX-License-Identifier: MIT
// A whole run of the program.
#ifndef PLEXOR_PYTHON_RUN_H
#define PLEXOR_PYTHON_RUN_H

#include "Access.h"
#include "Level_files.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace plexor_access {

/// A whole run of the program, with its files.
struct Run_request {
    Question question;
    std::string input;                 ///< the link file; with `links` only its name
    std::optional<std::string> output; ///< as after -o
    std::optional<Number> k;
    unsigned digits = 6;
    unsigned n_threads = 1; ///< 0: one a processor
    int log = -1;           ///< the descriptor that gets what the program prints; -1: nobody does
};
/// Links in place of a link file, with the names of their nodes, ascending byte by byte.
struct Named_links {
    Links_in links;
    std::span<std::string const> names;
};
struct Run_report {
    std::string directory;                ///< of the results
    std::vector<std::string> not_written; ///< files that could not be written whole
};
/// Throws Engine_error with the program's text for what ends the run.
Run_report Run(Run_request const& request, std::optional<Named_links> const& links,
               Watcher& watcher);

/// A run up to its clique file. Throws as Run() does.
Run_report Run_to_cliques(Run_request const& request, std::optional<Named_links> const& links,
                          Watcher& watcher, Level_source& source);

} // namespace plexor_access

#endif
