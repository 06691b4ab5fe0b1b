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
    bool const in_output_dir = &dir_ == &place_.shared_->dir;
    int const descriptor = dir_.Make_file(name_);
    if (descriptor < 0 && errno == EEXIST && in_output_dir && place_.shared_->expects_first_file) {
        Refuse();
    }
    if (descriptor >= 0 && in_output_dir) {
        place_.shared_->expects_first_file = false;
    }
    return descriptor;
}

Result_place::Result_place(std::string path) : shared_(std::make_shared<Shared>()) {
    shared_->path = std::move(path);
    bool known_empty = false;
    std::string message;
    if (Is_there_such_dir(shared_->path, known_empty, message)) {
        shared_->Take(known_empty);
    }
}

// Whatever is at the path by now: only what is seen in the directory that is held open counts.
void Result_place::Shared::Take(bool known_empty) {
    dir = Open_dir(path);
    expects_first_file = dir.Holds_nothing();
    if (dir.Is_open() && !expects_first_file && !known_empty) {
        List_dir(path); // one that cannot be listed is an error of its own
        Refuse();
    }
}

void Result_place::Shared::Prepare() {
    if (!dir.Is_at(path)) {
        bool known_empty = false;
        std::string message;
        if (dir.Is_open() && Is_there_such_dir(path, known_empty, message)) {
            throw Xerror_msg("ERROR: another directory has taken the place of the output "
                             "directory.\n");
        }
        Dir_prepare(path, "keep");
        // A path that has gone again by now is said to be empty, too: what comes in its place
        // before it is opened must not profit from that.
        bool const is_there = Is_there_such_dir(path, known_empty, message);
        Take(is_there && known_empty);
    }
}

Prepared_dir Result_place::Prepare() {
    std::lock_guard const lock(shared_->mutex);
    shared_->Prepare();
    return {*this, shared_->dir, shared_->path};
}

Prepared_dir Result_place::Prepare(std::uint32_t k) {
    std::string const name = "k=" + int2string(k);
    std::string k_path = shared_->path + "/" + name;
    if (k_path != k_path_ || !k_dir_.Is_at(k_path)) {
        std::lock_guard const lock(shared_->mutex);
        shared_->Prepare();
        k_path_ = std::move(k_path);
        // As a rule there is nothing in the way, and one call does it.
        if (k_path_.size() >= PATH_MAX || !shared_->dir.Make_dir(name)) {
            Dir_prepare(k_path_, "keep");
        }
        k_dir_ = Open_dir(shared_->dir, name);
    }
    return {*this, k_dir_, k_path_};
}

} // namespace cpm
