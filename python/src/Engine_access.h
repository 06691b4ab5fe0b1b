// SPDX-License-Identifier: MIT
// What the Python module wants of the engine: arrays in, arrays out. Everything that knows the
// engine's own types stands in Engine_access.cpp; nothing here or there knows Python.
//
// Nodes are numbered from 0 on this side, the way arrays are.
#ifndef PLEXOR_ENGINE_ACCESS_H
#define PLEXOR_ENGINE_ACCESS_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace plexor_access {

using Number = std::uint32_t;
using Integer = std::int64_t;

/// An array that keeps itself alive: a view of memory and whoever owns it.
template <class T> struct Array {
    std::shared_ptr<void const> owner;
    T* data = nullptr;
    std::size_t size = 0;

    Array() = default;
    explicit Array(std::vector<T> values) {
        auto const kept = std::make_shared<std::vector<T>>(std::move(values));
        data = kept->data();
        size = kept->size();
        owner = kept;
    }
    std::span<T const> View() const { return {data, size}; }
};

/// Lists one after the other: list i is members[offsets[i]] to members[offsets[i + 1]].
struct Lists {
    Array<Number> members;
    Array<Integer> offsets;
};

/// Links between nodes below n_nodes, in the order in which they were given. `weights` has one a
/// link, or is empty.
struct Links_in {
    std::span<Number const> source;
    std::span<Number const> target;
    std::span<double const> weight;
    std::size_t n_nodes = 0;
};

struct Question {
    bool directed = false;
    std::optional<double> lower; ///< weights not above it are left out
    std::optional<double> upper; ///< weights not below it are left out
    std::optional<double> intensity;
    std::optional<double> time_limit; ///< seconds of processor time an attempt at a node
    bool Weighted() const { return lower || upper || intensity; }
};

/// Told what happens, from the thread that computes. What a function throws ends the computation
/// and arrives at the caller.
class Watcher {
public:
    virtual ~Watcher() = default;
    /// Called every few milliseconds of work.
    virtual void Tick() {}
    /// The search has `to_do` of `total` nodes before it.
    virtual void Searching(std::uint64_t /*to_do*/, std::uint64_t /*total*/) {}
    /// A run comes to the communities of another k; so many of `total` are done.
    virtual void Level(std::uint64_t /*done*/, std::uint64_t /*total*/) {}
};

/// The engine cannot do what it is asked for, and says why.
class Engine_error : public std::runtime_error {
public:
    enum class Kind { refused, file_not_found, unreadable_file, wrong_line };
    Engine_error(Kind kind, std::string const& text) : std::runtime_error(text), kind_(kind) {}
    Kind What_kind() const { return kind_; }

private:
    Kind kind_;
};

/// The links of a search: ascending by (source, target) as the nodes were numbered on the way in,
/// each once with the sum of its weights; here by the search's own numbers.
struct Links_out {
    Array<Number> source;
    Array<Number> target;
    Array<double> weight; ///< empty when no weights were asked for
};

/// The links inside each community.
struct Level_links {
    Array<Number> source;
    Array<Number> target;
    Array<Integer> offsets;
};

/// Pairs of communities that share nodes, a < b, ascending.
struct Overlaps {
    Array<Integer> a;
    Array<Integer> b;
    Array<Integer> shared;
};

struct Counts {
    Array<Integer> values; ///< ascending
    Array<Integer> counts;
};

struct Distributions {
    Counts membership;
    Counts size;
    Counts overlap;
    Counts degree;
};

enum class Part { all, exact, approximated };

struct Search_data; // what a search has found
struct Level_data;  // what a level has to itself

/// The communities at one k, the exact ones first. A value that never changes.
class Level {
public:
    /// Ascending.
    Lists const& Nodes() const;
    /// Numbers of cliques, in the order in which they joined; without an intensity.
    Lists const& Cliques() const;
    /// With an intensity, instead of cliques.
    Lists const& K_cliques() const;
    std::size_t N_exact() const;
    /// Made when asked for, all of them.
    Level_links Links(Watcher& watcher) const;
    Overlaps Graph(Watcher& watcher) const;
    Distributions Count(Part part) const;

private:
    friend class Search;
    friend class Levels_ahead;
    explicit Level(std::shared_ptr<Level_data const> data) : data_(std::move(data)) {}

    std::shared_ptr<Level_data const> data_;
};

/// One search of one network, and the levels that follow from it. Calls from several threads are
/// taken one after the other. Memory that runs out is std::bad_alloc.
class Search {
public:
    /// Numbers the nodes that keep a link, in the order in which the links name them when sorted by
    /// (source, target), and finds all maximal cliques of three nodes or more.
    /// So many threads search, 0 as many as there are processors; within a time limit one.
    Search(Links_in const& links, Question const& question, unsigned n_threads, Watcher& watcher);

    /// Node of the search -> node on the way in.
    Array<Number> Nodes() const;
    Links_out Links() const;
    /// Ascending sets, the exact ones first.
    Lists Cliques() const;
    std::size_t N_exact_cliques() const;
    Number Largest() const;

    /// The communities at k, 2 or more. Going down from the largest clique is the cheapest way.
    Level At(Number k, Watcher& watcher) const;

private:
    friend class Levels_ahead;

    std::shared_ptr<Search_data> data_;
};

/// The levels of several k of a search, made by threads of their own, the next few of them before
/// they are asked for. The same levels as Search::At() gives.
class Levels_ahead {
public:
    /// The k are descending, each 2 or more. 0 threads are as many as there are processors.
    Levels_ahead(Search const& search, std::vector<Number> ks, unsigned n_threads,
                 Watcher& watcher);
    /// Gives up what has not been asked for.
    ~Levels_ahead();
    /// The level of the next k. The watcher is called on this thread. After an error there are no
    /// more levels.
    Level Next(Watcher& watcher);

private:
    struct Data;

    std::unique_ptr<Data> data_;
};

/// The links that are in no triangle, as positions into `links`, ascending: with links that are in
/// no clique of three nodes they are the maximal cliques of two. Links are without direction, each
/// given once, none of a node with itself.
std::vector<Integer> Links_outside_triangles(std::span<Number const> source,
                                             std::span<Number const> target, std::size_t n_nodes);

/// Nodes by arbitrary numbers become 0, 1, 2, ... in the order in which the links name them.
struct Numbered {
    Array<Integer> nodes; ///< the number that each had
    Array<Number> source;
    Array<Number> target;
};
/// Throws Engine_error for more nodes than can be numbered.
Numbered Number_nodes(std::span<Integer const> source, std::span<Integer const> target);

/// The lines of a link file as given, read as the program reads them.
struct File_links {
    std::vector<std::string> names; ///< in the order of their bytes
    Array<Number> source;
    Array<Number> target;
    Array<double> weight; ///< empty unless asked for
};
/// Throws Engine_error with the program's own message.
File_links Read_links(std::string const& path, bool weighted);

/// A whole run of the program, with its files.
struct Run_request {
    Question question;
    std::string input;                 ///< the link file; with `links` only its name
    std::optional<std::string> output; ///< as after -o
    std::optional<Number> k;
    unsigned digits = 6;
    unsigned n_threads = 1; ///< 0: one a processor
    int log = -1;           ///< the descriptor that gets what the program prints; -1: nobody does
};
/// Links in place of a link file, with the names of their nodes, ascending byte by byte.
struct Named_links {
    Links_in links;
    std::span<std::string const> names;
};
struct Run_report {
    std::string directory;                ///< of the results
    std::vector<std::string> not_written; ///< files that could not be written whole
};
/// Throws Engine_error with the program's text for what ends the run.
Run_report Run(Run_request const& request, std::optional<Named_links> const& links,
               Watcher& watcher);

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
/// A run up to its clique file. Throws as Run() does.
Run_report Run_to_cliques(Run_request const& request, std::optional<Named_links> const& links,
                          Watcher& watcher, Level_source& source);

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

/// The version of Plexor.
std::string_view Version();

} // namespace plexor_access

#endif
