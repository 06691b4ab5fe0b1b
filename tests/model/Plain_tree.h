// SPDX-License-Identifier: MIT
// A file tree held in memory: what the plain model reads its link file from and writes its results
// to. It answers like the POSIX calls a run makes, so a whole run can be predicted off the disk.
#ifndef PLEXOR_PLAIN_TREE_H
#define PLEXOR_PLAIN_TREE_H

#include <map>
#include <string>

namespace cpm::model {

struct Entry {
    enum class Kind { directory, file, symlink };
    Kind kind = Kind::directory;
    std::string content; // a file's bytes, a symbolic link's target, empty for a directory

    bool operator==(Entry const&) const = default;
};

/// Every entry under its absolute path without ".", ".." or doubled "/". Every parent is present,
/// the root "/" included.
using Tree = std::map<std::string, Entry>;

/// The path of `name` in the directory `directory`, whose path may be the root.
std::string Join(std::string const& directory, std::string const& name);

/// `path` made absolute against `cwd` in the way the headers of the result files show it.
std::string Total_path(std::string const& path, std::string const& cwd);

class Disk {
public:
    /// The errno of a look at a path (0: it is there) and the canonical path of what was found.
    /// When only the last component is missing, `where` is the canonical path it would get, or that
    /// of the dangling link that stands there.
    struct Place {
        int error = 0;
        std::string where;
    };

    Disk(Tree tree, std::string cwd);

    Place Look_up(std::string const& path, bool follow_last = true) const;
    Entry const& At(Place const& place) const { return tree_.at(place.where); }
    Tree const& Everything() const { return tree_; }

    /// Throws std::logic_error when `path` is a directory that holds anything.
    void Refuse_non_empty(std::string const& path) const;

    /// Makes `path` an existing directory: one that is there is kept with its files, anything else
    /// in the way is renamed to the path followed by the first free number. Throws
    /// std::logic_error.
    void Prepare_dir(std::string const& path);

    /// Replaces or creates a file; false when it cannot be opened.
    bool Write(std::string const& path, std::string text);

private:
    Place Walk(std::string at, std::string const& path, bool follow_last, int links) const;
    void Make_dir(std::string const& path);
    void Move_aside(std::string const& path);

    Tree tree_;
    std::string cwd_;
};

} // namespace cpm::model

#endif
