// SPDX-License-Identifier: MIT
// What the writers of result files share: where the files go, how a run describes itself in them,
// and whom to tell when one cannot be written.
#ifndef PLEXOR_RESULT_FILES_H
#define PLEXOR_RESULT_FILES_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Result_place.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cpm {

/// The files of one run. What it refers to must outlive it.
struct Run_files {
    Result_place& place;
    std::string com_flag;    ///< the word for the kind of run: "", "directed" or "intensity"
    std::string alap_szoveg; ///< the comment lines that describe the run
    Console& console;
    std::vector<std::string> not_written{}; ///< paths of the files that could not be written

    /// The word for the kind of run and the character, or nothing when there is no word.
    std::string Flag_before(char separator) const {
        return com_flag.empty() ? com_flag : com_flag + separator;
    }
};

/// Those of one k.
struct Level_files {
    Run_files& run;
    std::uint32_t k;

    /// A file in the directory of this k, which is made unless it is there.
    New_file File(std::string const& name) const { return run.place.Prepare(k).File(name); }
};

} // namespace cpm

#endif
