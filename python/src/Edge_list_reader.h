// SPDX-License-Identifier: MIT
// Reads tables with one link per line, for plexor.formats: fields between white space or a given
// character.
#ifndef PLEXOR_EDGE_LIST_READER_H
#define PLEXOR_EDGE_LIST_READER_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pybind11 {
class module_;
}

namespace plexor_formats {

/// How a table is written. Columns count from 0.
struct Dialect {
    char delimiter = 0;           ///< 0: any white space
    bool quotes = false;          ///< "..." encloses fields, "" in them is a mark
    std::string comment;          ///< a line that begins with one of these is a comment
    bool comment_decides = false; ///< the user named the comment signs
    bool header = false;          ///< the first line that is no comment names the columns
    std::size_t source = 0;
    std::size_t target = 1;
    std::optional<std::size_t> weight;
    std::optional<std::size_t> fields; ///< how many a line must have; none: enough of them
    bool decimal_comma = false;
    bool escaped = false; ///< names may begin with %
};

/// Why a line does not agree with the dialect; what is said about it is Python's.
enum class Fault {
    long_line,
    open_quotation,
    text_after_quotation,
    comment_or_link,
    percent_comment,
    n_fields,
    no_number,
    too_large
};

struct Failure {
    Fault fault;
    std::uint64_t line = 0;     ///< from 1
    std::uint64_t n_fields = 0; ///< how many there are
    std::string text;           ///< the weight that is none
};

/// The links in the order of the file. Node numbers are given as names first appear; the name of
/// node i is names[name_ends[i - 1] .. name_ends[i]).
struct Edge_table {
    std::string names;
    std::vector<std::int64_t> name_ends;
    std::vector<std::uint32_t> source;
    std::vector<std::uint32_t> target;
    std::vector<double> weight; ///< empty without weights
    std::uint64_t comments = 0;
    std::uint64_t blank_lines = 0;
    std::uint64_t single_characters = 0;
    std::uint64_t carriage_returns = 0;
    std::uint64_t passed_over_here_alone = 0; ///< lines at which the program's reading ends, or
                                              ///< that become links there
    std::optional<Failure>
        failure; ///< the first line that does not agree; then nothing else counts
};

/// Reads all lines. `data` has no zero byte. Time and memory are proportional to the data.
Edge_table Read_edge_list(std::string_view data, Dialect const& dialect);

/// Adds the function read_edge_list to the module.
void Register_edge_list_reader(pybind11::module_& module);

} // namespace plexor_formats

#endif
