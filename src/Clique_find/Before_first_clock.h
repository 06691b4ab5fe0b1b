// SPDX-License-Identifier: MIT
// Before_first_clock: how far the undirected search of a node gets before it has to look at the
// clock.
#ifndef PLEXOR_BEFORE_FIRST_CLOCK_H
#define PLEXOR_BEFORE_FIRST_CLOCK_H

#include "Clique_find/Time_budget.h"
#include "graph/Graph.h"
#include "graph/Types.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <span>
#include <vector>

namespace cpm {

/// Some nodes of a network, ascending, each known by its place among them.
class Placed_nodes {
public:
    /// The network must outlive this.
    explicit Placed_nodes(Graph const& network)
        : network_(network), places_(network.size() + 1, 0) {}

    void clear();
    /// Takes a node larger than all before it.
    void Add(Node node) {
        assert(nodes_.empty() || nodes_.back() < node);
        nodes_.push_back(node);
        places_[node] = static_cast<std::uint32_t>(nodes_.size());
    }

    std::size_t size() const { return nodes_.size(); }
    Node operator[](std::size_t place) const { return nodes_[place]; }
    Node_set Nodes() const { return nodes_; }

    /// Hands out the places, ascending from `first` on, of those that are neighbours of `node`.
    /// Walks the shorter side: the neighbours, or the nodes at these places.
    template <class Take>
    void For_each_neighbour_of(Node node, std::size_t first, Take const& take) const;

private:
    Graph const& network_;
    std::vector<Node> nodes_;
    std::vector<std::uint32_t> places_; ///< node -> 1 + its place, or 0
};

template <class Take>
void Placed_nodes::For_each_neighbour_of(Node node, std::size_t first, Take const& take) const {
    constexpr std::size_t steps_of_a_search = 16;
    if (network_.Degree(node) / steps_of_a_search > nodes_.size() - first) {
        for (std::size_t place = first; place < nodes_.size(); ++place) {
            if (network_.Linked(node, nodes_[place])) {
                take(place);
            }
        }
        return;
    }
    network_.For_each_neighbour_above(node, first == 0 ? 0 : nodes_[first - 1],
                                      [&](Node neighbour) {
                                          if (places_[neighbour] != 0) {
                                              take(std::size_t{places_[neighbour]} - 1);
                                          }
                                      });
}

class Before_first_clock {
public:
    /// Two places among the candidates.
    struct Pair {
        std::uint32_t first = 0;
        std::uint32_t second = 0;
    };

    /// Walks the pairs of linked candidates in ascending order, up to the first one that candidates
    /// after it may join and that, with all that may, is not known. False when there is none.
    /// Known is what lies in a clique with a done node. Appends to `found` the sets of the centre
    /// and a pair met by then that no candidate after it may join and that are not known.
    /// The candidates are the neighbours of `centre` that are not done; `done` are those that are,
    /// at least all with three neighbours or more.
    bool Reads_clock(Node centre, Placed_nodes const& candidates, Placed_nodes const& done,
                     Pace& pace, Set_list& found);
    /// The pair at which the last walk ended.
    Pair Reached_at() const { return reached_at_; }

private:
    using Place = std::uint32_t;
    using Places = std::span<Place const>;

    // A list for each candidate, made when it is first asked for. Making one moves the others.
    class Lists {
    public:
        void Start(std::size_t n_candidates);
        bool Has(Place candidate) const { return numbers_[candidate] != 0; }
        void Append(std::size_t place) { lists_.Append(static_cast<Place>(place)); }
        void Close_list(Place candidate);
        Places operator[](Place candidate) const { return lists_[numbers_[candidate] - 1]; }

    private:
        List_of_lists<Place> lists_;
        std::vector<std::uint32_t> numbers_; ///< candidate -> 1 + its list's number, or 0
    };

    bool Try_first(Place first, Pace& pace, Set_list& found);
    void Look_behind(Place candidate);
    void Look_at_done(Place candidate);
    bool Any_behind(Place candidate, Places places);
    void Tighten(Place first, std::size_t i);
    bool Mehet_tovabb(Place first, Place second);
    bool Inside_last_known(Place second) const;
    bool Known(Place first, Place second);
    void Iktatjuk_az_uj_math_cliquet(Place first, Place second, Set_list& found) const;

    Node centre_ = 0;
    Pair reached_at_;
    Placed_nodes const* candidates_ = nullptr;
    Placed_nodes const* done_ = nullptr;
    Lists later_;     ///< a candidate's neighbours among the candidates after it
    Lists done_with_; ///< a candidate's neighbours among the done nodes

    // Known sets are numbered from 1 on, in the order in which they are found.
    std::vector<std::uint32_t> known_with_; ///< the last with a candidate (not its first), or 0
    std::uint32_t n_known_ = 0;
    std::uint32_t first_known_ = 0;    ///< known_with_ of the first candidate when its turn came
    std::uint32_t known_before_ = 0;   ///< n_known_ at that time: all sets since hold it as well
    std::vector<Place> outside_known_; ///< after the first candidate and not in set first_known_
    std::vector<Place> joining_;       ///< candidates after a pair that may join it
    std::vector<Place> done_of_all_;   ///< done nodes linked with the whole set in question
    std::vector<Place> done_of_more_;  ///< the same with one more candidate
};

} // namespace cpm

#endif
