// SPDX-License-Identifier: MIT
#include "Plexor_io/Result_place.h"

#include "Plexor_io/Direktoriz.h"
#include "Plexor_io/My_int2string.h"
#include "support/Errors.h"

#include <cerrno>
#include <climits>
#include <utility>

namespace cpm {

namespace {

[[noreturn]] void Refuse() {
    throw Xerror_msg("ERROR: the output directory already exists and it is non-empty.\n");
}

} // namespace

int New_file::Make() const {
    // Deliberate: a directory may have so long a path that its files cannot be opened by theirs.
    // Such a file is of no use to anybody, and counts as not writable.
    if (path_.size() >= PATH_MAX) {
        return -1;
    }
    bool const in_output_dir = &dir_ == &place_.dir_;
    int const descriptor = dir_.Make_file(name_);
    if (descriptor < 0 && errno == EEXIST && in_output_dir && place_.expects_first_file_) {
        Refuse();
    }
    if (descriptor >= 0 && in_output_dir) {
        place_.expects_first_file_ = false;
    }
    return descriptor;
}

Result_place::Result_place(std::string path) : path_(std::move(path)) {
    bool known_empty = false;
    std::string message;
    if (Is_there_such_dir(path_, known_empty, message)) {
        Take(known_empty);
    }
}

// Whatever is at the path by now: only what is seen in the directory that is held open counts.
void Result_place::Take(bool known_empty) {
    dir_ = Open_dir(path_);
    expects_first_file_ = dir_.Holds_nothing();
    if (dir_.Is_open() && !expects_first_file_ && !known_empty) {
        List_dir(path_); // one that cannot be listed is an error of its own
        Refuse();
    }
}

Prepared_dir Result_place::Prepare() {
    if (!dir_.Is_at(path_)) {
        bool known_empty = false;
        std::string message;
        if (dir_.Is_open() && Is_there_such_dir(path_, known_empty, message)) {
            throw Xerror_msg("ERROR: another directory has taken the place of the output "
                             "directory.\n");
        }
        Dir_prepare(path_, "keep");
        // A path that has gone again by now is said to be empty, too: what comes in its place
        // before it is opened must not profit from that.
        bool const is_there = Is_there_such_dir(path_, known_empty, message);
        Take(is_there && known_empty);
    }
    return {*this, dir_, path_};
}

Prepared_dir Result_place::Prepare(std::uint32_t k) {
    std::string const name = "k=" + int2string(k);
    std::string k_path = path_ + "/" + name;
    if (k_path != k_path_ || !k_dir_.Is_at(k_path)) {
        Prepare();
        k_path_ = std::move(k_path);
        // As a rule there is nothing in the way, and one call does it.
        if (k_path_.size() >= PATH_MAX || !dir_.Make_dir(name)) {
            Dir_prepare(k_path_, "keep");
        }
        k_dir_ = Open_dir(dir_, name);
    }
    return {*this, k_dir_, k_path_};
}

} // namespace cpm
