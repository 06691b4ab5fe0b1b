// SPDX-License-Identifier: MIT
// The file system: what is at a path, listing, making and removing directories.
// Every failure is an Xerror_msg that names the function, the path and the sentence of Dir_error().
// Nothing is retried and nothing already done is undone. Somebody else may change the same paths at
// the same time: then a step may fail or find something else, but nothing is ever replaced by what
// is moved aside.
#ifndef PLEXOR_DIREKTORIZ_H
#define PLEXOR_DIREKTORIZ_H

#include <string>
#include <utility>
#include <vector>

namespace cpm {

/// Full path and kind: "file", "dir", "symlink" or "other".
using Dir_entry = std::pair<std::string, std::string>;
using Dir_listing = std::vector<Dir_entry>;

/// True when there is something at the path; symbolic links are followed. `kind` tells what, and
/// `empty` becomes false unless it is known to hold nothing: a directory's size rarely tells that,
/// and List_dir() has to be asked. `message` is set only when the result is false, and says why.
bool Is_there_such_path(std::string const& path, std::string& kind, bool& empty,
                        std::string& message);
bool Is_there_such_path(std::string const& path, std::string& kind);
bool Is_there_such_path(std::string const& path);

/// True only when there is a directory at the path; otherwise `message` says why it is not.
bool Is_there_such_dir(std::string const& path, bool& empty, std::string& message);

/// The entries of a directory in the order of their names, without "." and "..". Throws when the
/// path is no directory, and at an entry that cannot be looked at (a symbolic link to nowhere).
Dir_listing List_dir(std::string const& path);

/// The entries of a directory tree, those of a sub-directory before the sub-directory itself, else
/// in the order of their names. A symbolic link to a directory is an entry of kind "symlink": what
/// it points to is not part of the tree. Throws as List_dir() does.
Dir_listing List_dir_rec(std::string const& path);

/// Makes the directory and every missing parent, with permissions 0755. What another program makes
/// in the meantime is taken as if it had been there before.
void Make_dir(std::string const& path);

/// Removes an empty directory.
void Remove_dir(std::string const& path);
void Unlink_file(std::string const& path);
/// Removes a directory with all it holds.
void Delete_dir(std::string const& path);

void Rename_the_path(std::string const& old_path, std::string const& new_path);
/// Moves the path aside, to the first free one among the path followed by 1, 2, 3, ... One is free
/// when nothing at all is there, not even a link to nowhere.
void Rename_auto(std::string const& path);
/// Renames to a path that may be taken. What is there is moved aside ("keep"), removed ("clear"),
/// or the user is asked whether to remove it ("interactive").
void Rename_path(std::string const& old_path, std::string const& new_path, std::string const& flag);

/// Makes sure that there is a directory at the path. The flag tells what becomes of something there
/// already: "keep" uses a directory with all it holds and moves anything else aside, "clear"
/// removes either, "interactive" asks. Throws on any other flag.
void Dir_prepare(std::string const& path, std::string const& flag);
/// The asking: on standard output, with an answer from standard input. Throws when the user says
/// stop.
void Dir_prepare_interact(std::string const& path, std::string const& kind, bool empty);

} // namespace cpm

#endif
