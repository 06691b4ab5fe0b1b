// SPDX-License-Identifier: MIT
// The name of the output directory, and whether it may be written into. And the community flag, the
// short word that tells the writers which kind of search produced the results.
#ifndef PLEXOR_OUT_DIR_H
#define PLEXOR_OUT_DIR_H

#include "Plexor_io/Read_links.h"
#include "Plexor_io/Result_place.h"
#include "Plexor_io/Run_settings.h"

#include <optional>
#include <string>

namespace cpm {

/// The input file's name as it was typed with "_files", the weight thresholds and the direction, or
/// the name that the user gave; in both cases followed by the intensity threshold. All thresholds
/// have `digits` decimals.
std::string Output_dir_name(std::string const& input_file, Weight_interval const& weights,
                            unsigned digits, std::optional<std::string> const& given_name,
                            Run_settings const& settings);

/// "" for an undirected search, "directed" or "intensity".
void Generate_com_flag(std::string& flag, bool directed, bool intensity);

/// The place for the results. Refuses a directory that holds something: throws Xerror_msg.
Result_place Check_out_dir(std::string const& out_dir);

} // namespace cpm

#endif
