// SPDX-License-Identifier: MIT
// A whole run: from the links to the last result file. `main` starts it, and so may any other
// program that wants the same files.
#ifndef PLEXOR_RUN_H
#define PLEXOR_RUN_H

#include "Clique_find/Clock.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Process_input.h"
#include "Plexor_io/Result_files.h"
#include "Plexor_io/Run_settings.h"
#include "support/Progress.h"

#include <functional>
#include <string>
#include <vector>

namespace cpm {

/// How a run ended. What it has printed tells the same to a person.
struct Run_outcome {
    enum class Kind {
        completed,     ///< to the last file, but for those in `not_written`
        help,          ///< it was asked for help, which it has printed
        refused,       ///< it cannot use the command line
        failed,        ///< an error has ended it
        out_of_memory, ///< memory ran out
        cancelled,     ///< the progress has ended it
    };
    Kind kind = Kind::completed;
    std::string text;                     ///< of the error
    std::vector<std::string> not_written; ///< paths of result files, as the warnings have them
};

/// What is done with the cliques of a run once they are written. The files are the run's.
using Community_stage = std::function<void(Coms_input input, Run_files& files, Progress& progress)>;

/// The communities of the k that the settings ask for, and their files, here and now.
void Find_communities(Coms_input input, Run_files& files, Progress& progress);

/// Does what the settings and the request ask for, with the links from `source`. Prints the
/// banner, all that `plexor` prints besides what it tells `progress`, and the text of the error
/// that ends it. A time limit counts the processor time of the process.
Run_outcome Run(Run_settings const& settings, Input_request const& request,
                Link_source const& source, Progress& progress, Console& console,
                Community_stage const& communities = Find_communities);

/// The same for a command line, with the links from its input file, on `n_threads` threads (0: one
/// a processor). A time limit counts by `clock`.
Run_outcome Run_command_line(int argc, char const* const* argv, Clock& clock, Progress& progress,
                             Console& console, unsigned n_threads = 1);

} // namespace cpm

#endif
