// SPDX-License-Identifier: MIT
// k-clique communities: the levels of k, from tight to loose.
#ifndef PLEXOR_API_COMMUNITIES_H
#define PLEXOR_API_COMMUNITIES_H

#include <plexor/Cliques.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace plexor {

/// How often a value occurs; distributions are ascending by value.
struct Value_count {
    std::uint32_t value = 0;
    std::uint64_t count = 0;
    friend bool operator==(Value_count const&, Value_count const&) = default;
};
using Distribution = std::vector<Value_count>;

struct Distributions {
    Distribution membership; ///< number of communities of a node -> nodes; begins with 0
    Distribution size;       ///< number of nodes -> communities
    Distribution overlap;    ///< number of shared nodes, 1 or more -> pairs of communities
    Distribution degree;     ///< number of communities that share nodes with it -> communities
};

/// Two communities that share nodes. `first` is the smaller number.
struct Overlap {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::uint32_t shared = 0; ///< how many nodes they share
    friend bool operator==(Overlap const&, Overlap const&) = default;
};

/// Which communities distributions are about.
enum class Part { all, exact, approximated };

namespace detail {
struct Level_data;
struct Levels_data;
} // namespace detail

/// The communities at one k: connected sets of cliques of k nodes or more, linked where they share
/// k-1 nodes or more. A value that never changes and needs nothing but itself; copies share it.
class PLEXOR_API Level {
public:
    std::uint32_t K() const;
    std::size_t size() const;
    /// The nodes of a community. Its position is its number, the one that `plexor` writes.
    Nodes operator[](std::size_t community) const;
    /// The first so many hold no approximated clique.
    std::size_t Number_of_exact() const;
    /// The numbers of a community's cliques, in the order in which they joined. Under an intensity,
    /// which goes by k-cliques, there are none.
    std::span<std::uint32_t const> Cliques_of(std::size_t community) const;
    /// The links inside a community, in the order in which `plexor` writes them.
    std::vector<Edge> Links_of(std::size_t community) const;
    /// The community graph, row by row: ascending by `first`, then by `second`. It can grow with
    /// the square of the number of communities, so it is made when asked for and held by nobody.
    void For_each_overlap(std::function<void(Overlap const&)> const& visit) const;
    /// Counted while the community graph is walked.
    Distributions Count(Part part = Part::all) const;

    /// The nodes of all communities, one after the other, and where each begins among them: one
    /// entry more than there are communities.
    std::span<Node const> Members() const;
    std::span<std::uint64_t const> Offsets() const;

private:
    friend class Levels;
    explicit Level(std::shared_ptr<detail::Level_data const> data);

    std::shared_ptr<detail::Level_data const> data_;
};

struct Level_options {
    /// Communities of k-cliques whose geometric mean of link weights is above this, which go on
    /// where the k-1 shared nodes are above it, too.
    std::optional<double> intensity = std::nullopt;
    /// Whom to tell; null for nobody.
    Progress* progress = nullptr;
    /// How many threads make levels for Next(), ahead of it; 0 for one a processor. The levels are
    /// the same whatever the number. Each thread keeps its own index of the cliques.
    unsigned threads = 1;
};

/// Walks the levels, from the largest clique down to 3, or gives any one of them. Going down one by
/// one is the cheapest way to all of them. An object of one thread; the levels that it gives are
/// free of it.
class PLEXOR_API Levels {
public:
    /// The cliques must be those of this graph. Throws Error: bad_argument (an intensity with a
    /// directed graph or with approximated cliques), too_large (2^32 pairs of nodes).
    Levels(Graph const& graph, Cliques const& cliques, Level_options const& options = {});
    Levels(Levels&&) noexcept;
    Levels& operator=(Levels&&) noexcept;
    ~Levels();

    /// The next level, from the largest clique's size on; nothing after k = 3. With more threads
    /// than one, they make the next few levels until these are asked for, and wait then; they end
    /// with this object. After an error the next call tries the same level again.
    /// Throws Error: too_large (2^32 k-cliques); Cancelled; std::system_error when the system has
    /// no thread to give.
    std::optional<Level> Next();
    /// The level at k, whatever came before, on the calling thread. Does not change what Next()
    /// gives.
    /// Throws Error: missing_link (k = 2 with an intensity, where k-cliques share a node),
    /// too_large (2^32 k-cliques); Cancelled.
    Level At(std::uint32_t k);

private:
    Level Next_made_ahead();

    std::unique_ptr<detail::Levels_data> data_;
};

} // namespace plexor

#endif
