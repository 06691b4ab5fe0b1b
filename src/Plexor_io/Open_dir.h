// SPDX-License-Identifier: MIT
// Open_dir: a directory held open. It stays the same directory whatever becomes of the path by
// which it was found, so that what was seen in it is true of the place into which files are made.
#ifndef PLEXOR_OPEN_DIR_H
#define PLEXOR_OPEN_DIR_H

#include <string>
#include <sys/types.h>
#include <utility>

namespace cpm {

class Open_dir {
public:
    /// None: nothing is in it and nothing can be made in it.
    Open_dir() = default;
    /// The directory at the path, links followed; none when it cannot be opened.
    explicit Open_dir(std::string const& path);
    /// The directory of this name in `parent`; none when it cannot be opened or is a link.
    Open_dir(Open_dir const& parent, std::string const& name);
    Open_dir(Open_dir&& other) noexcept { *this = std::move(other); }
    Open_dir& operator=(Open_dir&& other) noexcept;
    ~Open_dir();

    bool Is_open() const { return descriptor_ >= 0; }
    /// True when the path leads to this very directory, through links or not.
    bool Is_at(std::string const& path) const;
    /// True when it can be listed and has no entries but "." and "..".
    bool Holds_nothing() const;
    /// Makes a directory of this name, with permissions 0755; false when that cannot be done.
    bool Make_dir(std::string const& name) const;
    /// Makes a new file and opens it for writing. The result is its descriptor, or -1, with the
    /// reason in errno. Whatever has the name already, be it a link to nowhere, is left alone: that
    /// is EEXIST. Never waits, as opening a pipe would.
    int Make_file(std::string const& name) const;

private:
    void Identify();

    int descriptor_ = -1;
    dev_t device_ = 0; ///< with the next one: which directory it is
    ino_t inode_ = 0;
};

} // namespace cpm

#endif
