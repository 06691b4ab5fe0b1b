// SPDX-License-Identifier: MIT
// What a run does on the disk besides reading files. The answers are the operating
// system's own; errors are thrown as std::logic_error.
#ifndef PLEXOR_PLAIN_DISK_H
#define PLEXOR_PLAIN_DISK_H

#include <string>

namespace cpm::model {

/// `path` made absolute against `cwd` in the way the headers of the result files show it.
std::string Total_path(std::string const& path, std::string const& cwd);

/// Throws when `path` is a directory that holds anything.
void Refuse_non_empty(std::string const& path);

/// Makes `path` an existing directory: one that is there is kept with its files, anything else in
/// the way is renamed to the path followed by the first free number. One that had to be made and
/// holds something all the same, as `missing/../full` does, is refused.
void Prepare_dir(std::string const& path);

/// Writes a file that is not there yet; false when it is, or cannot be written.
bool Write_new(std::string const& path, std::string const& text);

} // namespace cpm::model

#endif
