// SPDX-License-Identifier: MIT
// A directory on the disk in which one case is run: filled from a tree, looked at, emptied again.
// All goes by directory descriptors, since a run may leave paths too long for a single call.
#ifndef PLEXOR_BOX_H
#define PLEXOR_BOX_H

#include <map>
#include <string>

namespace cpm::model {

struct Entry {
    enum class Kind { directory, file, symlink, pipe };
    Kind kind = Kind::directory;
    std::string content; // a file's bytes, a symbolic link's target, else empty

    bool operator==(Entry const&) const = default;
};

/// By paths relative to a directory.
using Tree = std::map<std::string, Entry>;

/// Makes the directory `root` and below it every entry of `tree` with their parents. Throws
/// std::runtime_error.
void Fill(std::string const& root, Tree const& tree);

/// Everything below `root`. Throws std::runtime_error.
Tree Look_into(std::string const& root);

/// Deletes `root` with everything below it; nothing happens when it is missing.
void Delete(std::string const& root);

} // namespace cpm::model

#endif
