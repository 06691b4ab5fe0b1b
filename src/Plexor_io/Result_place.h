// SPDX-License-Identifier: MIT
// Where the result files of one k stand, and how the word for the kind of run enters their names.
#ifndef PLEXOR_RESULT_PLACE_H
#define PLEXOR_RESULT_PLACE_H

#include <cstdint>
#include <string>

namespace cpm {

/// Makes the directory of this k in the output directory, unless it is there; gives its path.
std::string Prepare_k_dir(std::string const& dir, std::uint32_t k);

/// The word and the character behind it, or nothing when there is no word.
std::string Word_before(std::string const& word, char separator);

} // namespace cpm

#endif
