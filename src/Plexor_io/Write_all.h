// SPDX-License-Identifier: MIT
// The one place that hands bytes to the operating system.
#ifndef PLEXOR_WRITE_ALL_H
#define PLEXOR_WRITE_ALL_H

#include <string_view>

namespace cpm {

/// Writes all of the text to the descriptor, however many calls that takes; false when the system
/// refuses (a full disk, a closed pipe), in which case a part may have been written.
bool Write_all(int descriptor, std::string_view text);

} // namespace cpm

#endif
