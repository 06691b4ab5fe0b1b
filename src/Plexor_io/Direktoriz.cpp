// SPDX-License-Identifier: MIT
#include "Plexor_io/Direktoriz.h"

#include "Plexor_io/Dir_error.h"
#include "Plexor_io/My_int2string.h"
#include "support/Errors.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <iostream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace cpm {

namespace {

constexpr char kind_file[] = "file";
constexpr char kind_dir[] = "dir";
constexpr char kind_symlink[] = "symlink";
constexpr char kind_other[] = "other";

constexpr mode_t dir_mode = 0755;

// The size that some file systems give an empty directory. Deliberate: where they give another,
// the question stays open.
constexpr off_t empty_dir_size = 48;

bool Is_symlink(std::string const& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// The names of a directory's entries, ordered. False when it cannot be read; errno tells why.
bool Read_names(std::string const& path, std::vector<std::string>& names) {
    dirent** entries = nullptr;
    int const count = ::scandir(path.c_str(), &entries, nullptr, ::alphasort);
    if (count < 0) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        names.emplace_back(entries[i]->d_name);
        std::free(entries[i]);
    }
    std::free(entries);
    return true;
}

// Renames unless something has the new name, be it a link to nowhere; then errno is EEXIST.
bool Rename_to_free(std::string const& old_path, std::string const& new_path) {
    if (::renameat2(AT_FDCWD, old_path.c_str(), AT_FDCWD, new_path.c_str(), RENAME_NOREPLACE) ==
        0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // Some file systems cannot do this in one step. (Or the path would be moved into itself, which
    // fails once more.)
    struct stat status {};
    if (::lstat(new_path.c_str(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(old_path.c_str(), new_path.c_str()) == 0;
}

void Check_flag(std::string const& function, std::string const& flag) {
    if (flag != "keep" && flag != "clear" && flag != "interactive") {
        throw Xerror_msg("ERROR: " + function + "() called with unknown flag '" + flag + "'");
    }
}

void Remove_whatever(std::string const& path, std::string const& kind) {
    if (kind == kind_dir) {
        Delete_dir(path);
    } else {
        Unlink_file(path);
    }
}

// The first character of the answer that is not white space, or 0 when there is none.
char Ask(std::string const& question) {
    std::cout << question << std::endl;
    char answer = 0;
    std::cin >> answer;
    return answer;
}

[[noreturn]] void Cannot_rename(std::string const& old_path, std::string const& new_path) {
    std::string const reason = Dir_error(errno);
    throw Xerror_msg("ERROR: Rename_the_path() called with " + old_path + " and " + new_path +
                     " and \n" + reason);
}

[[noreturn]] void Stop() {
    throw Xerror_msg("stopped interactively by user.");
}

} // namespace

bool Is_there_such_path(std::string const& path, std::string& kind, bool& empty,
                        std::string& message) {
    empty = true;
    kind = kind_other;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        message = Dir_error(errno);
        return false;
    }
    if (S_ISREG(status.st_mode)) {
        kind = kind_file;
        empty = status.st_size == 0;
    } else if (S_ISDIR(status.st_mode)) {
        kind = kind_dir;
        empty = status.st_size == empty_dir_size;
    } else if (S_ISLNK(status.st_mode)) {
        kind = kind_symlink;
        empty = status.st_size == 0;
    }
    return true;
}

bool Is_there_such_path(std::string const& path, std::string& kind) {
    bool empty = false;
    std::string message;
    return Is_there_such_path(path, kind, empty, message);
}

bool Is_there_such_path(std::string const& path) {
    std::string kind;
    return Is_there_such_path(path, kind);
}

bool Is_there_such_dir(std::string const& path, bool& empty, std::string& message) {
    std::string kind;
    if (!Is_there_such_path(path, kind, empty, message)) {
        return false;
    }
    if (kind != kind_dir) {
        message = "The path " + path + " is a " + kind + ".";
        return false;
    }
    return true;
}

Dir_listing List_dir(std::string const& path) {
    bool empty = false;
    std::string message;
    if (!Is_there_such_dir(path, empty, message)) {
        throw Xerror_msg("ERROR: List_dir() called on " + path + " and\n" + message);
    }
    std::vector<std::string> names;
    if (!Read_names(path, names)) {
        std::string const reason = Dir_error(errno);
        throw Xerror_msg("ERROR: List_dir() -> scandir() called on " + path + " and\n" + reason);
    }
    Dir_listing listing;
    for (std::string const& name : names) {
        if (name == "." || name == "..") {
            continue;
        }
        std::string const full_path = path + "/" + name;
        std::string kind;
        if (!Is_there_such_path(full_path, kind, empty, message)) {
            throw Xerror_msg("ERROR: problem with " + full_path + " in List_dir():\n" + message);
        }
        listing.emplace_back(full_path, kind);
    }
    return listing;
}

Dir_listing List_dir_rec(std::string const& path) {
    // Taking the last entry first and putting each directory before its entries gives exactly the
    // reverse of what is asked for.
    Dir_listing listing;
    Dir_listing pending = List_dir(path);
    while (!pending.empty()) {
        Dir_entry entry = std::move(pending.back());
        pending.pop_back();
        if (entry.second == kind_dir) {
            if (Is_symlink(entry.first)) {
                entry.second = kind_symlink;
            } else {
                std::ranges::move(List_dir(entry.first), std::back_inserter(pending));
            }
        }
        listing.push_back(std::move(entry));
    }
    std::ranges::reverse(listing);
    return listing;
}

void Make_dir(std::string const& path) {
    for (std::size_t begin = 0; begin < path.size();) {
        std::size_t const end = std::min(path.find('/', begin), path.size());
        begin = end + 1;
        std::string const prefix = path.substr(0, end);
        // The empty prefix stands for the root.
        bool const missing = !prefix.empty() && !Is_there_such_path(prefix);
        if (missing && ::mkdir(prefix.c_str(), dir_mode) != 0) {
            std::string const reason = Dir_error(errno);
            if (Is_there_such_path(prefix)) {
                continue; // another program was quicker
            }
            throw Xerror_msg("ERROR: Make_dir() called with " + prefix + " and \n" + reason);
        }
    }
}

void Remove_dir(std::string const& path) {
    if (::rmdir(path.c_str()) != 0) {
        std::string const reason = Dir_error(errno);
        throw Xerror_msg("ERROR: Remove_dir() called on '" + path + "' and\n" + reason);
    }
}

void Unlink_file(std::string const& path) {
    if (::unlink(path.c_str()) != 0) {
        std::string const reason = Dir_error(errno);
        throw Xerror_msg("ERROR: Unlink_file() called on '" + path + "'and \n" + reason);
    }
}

void Delete_dir(std::string const& path) {
    Dir_listing const listing = List_dir_rec(path);
    for (auto const& [entry, kind] : listing) {
        if (kind != kind_dir) {
            Unlink_file(entry);
        }
    }
    for (auto const& [entry, kind] : listing) {
        if (kind == kind_dir) {
            Remove_dir(entry);
        }
    }
    Remove_dir(path);
}

void Rename_the_path(std::string const& old_path, std::string const& new_path) {
    if (::rename(old_path.c_str(), new_path.c_str()) != 0) {
        Cannot_rename(old_path, new_path);
    }
}

void Rename_auto(std::string const& path) {
    unsigned number = 1;
    while (!Rename_to_free(path, path + number)) {
        if (errno != EEXIST) {
            Cannot_rename(path, path + number);
        }
        ++number;
    }
}

void Rename_path(std::string const& old_path, std::string const& new_path,
                 std::string const& flag) {
    Check_flag("Rename_path", flag);
    std::string kind;
    if (Is_there_such_path(new_path, kind)) {
        if (flag == "keep") {
            Rename_auto(new_path);
        } else if (flag == "clear" ||
                   Ask("Rename_path():\nThe " + new_path + " is already a " + kind +
                       ".\nDo you wish to \n overwrite it (o),\n or stop (any other key)?") ==
                       'o') {
            Remove_whatever(new_path, kind);
        } else {
            Stop();
        }
    }
    Rename_the_path(old_path, new_path);
}

void Dir_prepare(std::string const& path, std::string const& flag) {
    Check_flag("Dir_prepare", flag);
    std::string kind;
    bool empty = false;
    std::string message;
    if (!Is_there_such_path(path, kind, empty, message)) {
        Make_dir(path);
    } else if (flag == "interactive") {
        Dir_prepare_interact(path, kind, empty);
    } else if (flag == "clear") {
        Remove_whatever(path, kind);
        Make_dir(path);
    } else if (kind != kind_dir) {
        Rename_auto(path);
        Make_dir(path);
    }
}

void Dir_prepare_interact(std::string const& path, std::string const& kind, bool empty) {
    std::cout << "Dir_prepare():\nThe " << path << " is already a " << kind << ", and it is"
              << (empty ? " empty." : " not empty.") << '\n';
    if (kind == kind_dir) {
        char const answer = Ask("Do you wish to \n keep the contents (k),\n clear it (c),\n"
                                " or stop (any other key)?");
        if (answer == 'c') {
            Delete_dir(path);
            Make_dir(path);
        } else if (answer != 'k') {
            Stop();
        }
        return;
    }
    char const answer = Ask("Do you wish to \n overwrite it (o),\n rename it (r),\n"
                            " or stop (any other key)?");
    if (answer == 'o') {
        Unlink_file(path);
    } else if (answer == 'r') {
        std::cout << "Please type in the new path:" << std::endl;
        std::string new_path;
        std::getline(std::cin >> std::ws, new_path);
        Rename_path(path, new_path, "interactive");
    } else {
        Stop();
    }
    Make_dir(path);
}

} // namespace cpm
