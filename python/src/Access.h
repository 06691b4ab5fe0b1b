// SPDX-License-Identifier: MIT
// What the Python module and the engine say to each other in: arrays, a question, and who is told
// what happens. Access.h, Links.h, Search.h, Level_files.h and Run.h take arrays and give arrays.
// Their .cpp files know the engine's own types; none of them knows Python.
//
// Nodes are numbered from 0 on this side, the way arrays are.
#ifndef PLEXOR_PYTHON_ACCESS_H
#define PLEXOR_PYTHON_ACCESS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
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

/// The version of Plexor.
std::string_view Version();

} // namespace plexor_access

#endif
