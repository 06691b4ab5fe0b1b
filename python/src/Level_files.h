// SPDX-License-Identifier: MIT
// The files of some levels of a run, made in another process than that of the search.
#ifndef PLEXOR_PYTHON_LEVEL_FILES_H
#define PLEXOR_PYTHON_LEVEL_FILES_H

#include "Access.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace plexor_access {

/// What the levels of a run are made from, for processes that make some of them each. Links are by
/// the numbers of the nodes in the run, from 1 on, and names each end with a blank.
struct Level_source {
    Array<Number> first;
    Array<Number> second;
    Array<double> weight; ///< empty when all are 0
    Array<std::uint8_t> names;
    Array<Integer> name_offsets;
    Lists cliques;
    Lists before_merge; ///< no offsets when there is none
    std::size_t n_exact = 0;
    bool nested = false;
    Number largest = 0;
    std::string com_flag;
    std::string header;
};
struct Level_source_view {
    std::span<Number const> first;
    std::span<Number const> second;
    std::span<double const> weight;
    std::span<std::uint8_t const> names;
    std::span<Integer const> name_offsets;
    std::span<Number const> cliques;
    std::span<Integer const> clique_offsets;
    std::span<Number const> before_merge;
    std::span<Integer const> before_merge_offsets;
    std::size_t n_exact = 0;
    bool nested = false;
    Number largest = 0;
    std::string com_flag;
    std::string header;
    std::optional<double> intensity;
};

/// Writes the files of one k after the other, best from large to small, each k into a folder of its
/// own below the directory, which must be empty at first.
class Level_files {
public:
    Level_files(Level_source_view const& source, std::string const& directory);
    ~Level_files();
    /// Gives the files that could not be written whole. Throws Engine_error.
    std::vector<std::string> Write(Number k, Watcher& watcher);

private:
    struct Data;

    std::unique_ptr<Data> data_;
};

} // namespace plexor_access

#endif
