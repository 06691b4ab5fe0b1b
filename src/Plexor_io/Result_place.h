// SPDX-License-Identifier: MIT
// Result_place: the directory that the files of a run go into, looked at once and held open from
// then on; the directories of each k in it; and how the word for the kind of run enters the names.
//
// Invariant: no file that was there before a run is changed or lost by it, whatever the path of the
//            output directory is and whatever other programs do meanwhile.
// Relies on: a run changes the disk in three ways only. It makes directories; it moves what is in
//            the way of one aside, to a name that nothing has (Rename_auto()); and it makes new
//            files (Open_dir::Make_file()), the only ones that it writes into.
// Breaks if: anything on the way of a run opens a file for writing by another call, or prepares a
//            directory with another flag than "keep"; or a file system cannot rename without
//            replacing and somebody takes the free name at that very moment.
// Pinned by: fuzz/trees; faults/link_..., faults/pipe_..., faults/file..._in_the_way...
//
// Invariant: the files of one run lie together, with nothing else beside them.
// Relies on: they go into a directory that was found empty while it was held open. Of two runs that
//            find the same one empty, only one makes the first file; the other is refused. Before
//            each file the path is asked for again: when it leads to another directory by then,
//            through a link or not, the run ends; when it leads nowhere, a directory is made again
//            and looked at.
// Pinned by: faults/two_runs_at_once, faults/killed_run_and_another, faults/link_in_mid_run
#ifndef PLEXOR_RESULT_PLACE_H
#define PLEXOR_RESULT_PLACE_H

#include "Plexor_io/Open_dir.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace cpm {

class Result_place;

/// A result file that is yet to be made.
class New_file {
public:
    New_file(Result_place& place, Open_dir const& dir, std::string const& dir_path,
             std::string name)
        : place_(place), dir_(dir), name_(std::move(name)), path_(dir_path + "/" + name_) {}
    /// As messages show it.
    std::string const& Path() const { return path_; }
    /// Makes the file. The result is its descriptor, or -1 when that cannot be done or something
    /// has its name. Throws the refusal of a directory that holds something when another run has
    /// made the first file in it.
    int Make() const;

private:
    Result_place& place_;
    Open_dir const& dir_;
    std::string name_;
    std::string path_;
};

/// A directory that is ready for result files, until the next one is prepared.
class Prepared_dir {
public:
    Prepared_dir(Result_place& place, Open_dir const& dir, std::string const& path)
        : place_(place), dir_(dir), path_(path) {}
    New_file File(std::string const& name) const { return {place_, dir_, path_, name}; }

private:
    Result_place& place_;
    Open_dir const& dir_;
    std::string const& path_;
};

class Result_place {
public:
    /// Refuses a directory that holds something. One that is missing, and anything but a directory,
    /// is accepted for now. Throws Xerror_msg.
    explicit Result_place(std::string path);
    Result_place(Result_place&&) = default;
    /// The same place, for another thread: it has a directory of some k of its own.
    Result_place Another() const { return Result_place(shared_); }

    /// Makes the output directory unless it is there, and refuses it as the constructor does when
    /// it is another one than before. Throws Xerror_msg, also when it cannot be made.
    Prepared_dir Prepare();
    /// Makes the directory of this k in it unless it is there. A link in its place is not followed:
    /// then no file in it can be made. Throws as the other one does.
    Prepared_dir Prepare(std::uint32_t k);

private:
    friend New_file;

    // The output directory, one for all threads. They make directories in it one at a time; the
    // files in itself are made by one of them.
    struct Shared {
        std::string path;
        Open_dir dir;
        bool expects_first_file =
            false; ///< it was found empty, and no file has been made in it yet
        std::mutex mutex;

        void Take(bool known_empty);
        void Prepare();
    };

    explicit Result_place(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}

    std::shared_ptr<Shared> shared_;
    std::string k_path_; ///< of the directory of k prepared last; "" when there is none
    Open_dir k_dir_;
};

} // namespace cpm

#endif
