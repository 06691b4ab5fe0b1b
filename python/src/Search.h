// SPDX-License-Identifier: MIT
// A search, and the levels that follow from it.
#ifndef PLEXOR_PYTHON_SEARCH_H
#define PLEXOR_PYTHON_SEARCH_H

#include "Access.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace plexor_access {

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

} // namespace plexor_access

#endif
