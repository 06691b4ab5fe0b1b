// SPDX-License-Identifier: MIT
// The sentences for what the file system refuses.
#ifndef PLEXOR_DIR_ERROR_H
#define PLEXOR_DIR_ERROR_H

#include <string>

namespace cpm {

/// The sentence for an error number.
std::string Dir_error(int error_number);

} // namespace cpm

#endif
