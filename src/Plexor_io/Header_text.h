// SPDX-License-Identifier: MIT
// The header text: comment lines by which a run describes itself in its result files. The first
// line has no "#", since each file puts an opening phrase of its own before it.
#ifndef PLEXOR_HEADER_TEXT_H
#define PLEXOR_HEADER_TEXT_H

#include "Plexor_io/Read_links.h"
#include "Plexor_io/Result_files.h"
#include "Plexor_io/Run_settings.h"

#include <string>

namespace cpm {

/// Replaces the text by its first three lines: the input file and the weight thresholds.
void Generate_alap_szoveg(std::string& text, std::string const& input_file,
                          Weight_interval const& weights);

/// Appends the lines on intensity, direction, time limit and k.
void Extend_alap_szoveg(std::string& text, Run_settings const& settings);

/// Writes input_params.txt into the output directory, which is made if need be.
void Kiir_params(Run_files& files);

} // namespace cpm

#endif
