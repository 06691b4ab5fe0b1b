// SPDX-License-Identifier: MIT
// Paths made absolute, and their components.
#ifndef PLEXOR_TOTAL_PATH_H
#define PLEXOR_TOTAL_PATH_H

#include <string>
#include <vector>

namespace cpm {

/// The path made absolute against the working directory, without "." components and without ".."
/// components and what they undo. The last component is taken as it stands. No link is resolved.
std::string Get_total_path(std::string const& path);
/// The components of a path. Each "/" ends one, an empty one too; an empty last one is left out.
std::vector<std::string> Get_path_list(std::string const& path);

} // namespace cpm

#endif
