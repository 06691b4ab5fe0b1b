// SPDX-License-Identifier: MIT
// A node of an undirected network: its index, its neighbours, its name, and the subsets of its
// neighbours that a search may keep with it.
#ifndef PLEXOR_VTX_H
#define PLEXOR_VTX_H

#include "graph/Types.h"

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cpm {

/// A set of nodes that grows and shrinks: ascending, one after the other in memory. A node larger
/// than all others is appended, whatever the size of the set.
class Ordered_nodes {
public:
    Ordered_nodes() = default;
    /// A copy of the nodes, which are ascending without repeats.
    explicit Ordered_nodes(Node_set nodes);

    std::size_t size() const { return nodes_.size(); }
    Node const* data() const { return nodes_.data(); }
    Node const* begin() const { return nodes_.begin(); }
    Node const* end() const { return nodes_.end(); }
    bool Contains(Node node) const { return std::ranges::binary_search(nodes_, node); }

    /// False, and nothing is done, when the node is there already.
    bool Insert(Node node) {
        if (nodes_.empty() || nodes_.back() < node) {
            nodes_.push_back(node);
            return true;
        }
        return Insert_inside(node);
    }
    void Insert_all(Node_set nodes);
    /// False when the node is not there.
    bool Erase(Node node);
    void Reserve(std::size_t size) { nodes_.Reserve(size); }
    void clear() { nodes_.clear(); }

    friend bool operator==(Ordered_nodes const& a, Ordered_nodes const& b) {
        return std::ranges::equal(a, b);
    }

private:
    bool Insert_inside(Node node);

    Flat_array<Node, std::uint32_t> nodes_;
};

/// Networks have millions of these: what few records have is kept apart from them, in `Extras`.
/// Every set of nodes handed in is ascending without repeats; it may be one of the record's own.
/// A mutator that throws leaves the record as it was.
class Vtx {
public:
    /// Index 0, name "0", no neighbours.
    Vtx();
    /// Named by the decimal text of its index.
    explicit Vtx(Node index);
    Vtx(Node index, Node_set neighs);
    Vtx(Node index, Node_set neighs, std::string const& name);
    Vtx(Vtx const& other);
    virtual ~Vtx() = default;

    virtual Node Index() const;
    virtual Ordered_nodes Neighs() const;
    virtual Node_set Neighs_c() const;
    virtual std::vector<Ordered_nodes> Inc_neighs() const;
    virtual std::vector<Ordered_nodes> const& Inc_neighs_c() const;
    virtual std::string Name() const;

    virtual void Set_index(Node index);
    virtual void Set_neighs(Node_set neighs);
    virtual void Set_inc_neighs(std::vector<Ordered_nodes> const& inc_neighs);
    virtual void Set_name(std::string const& name);

    /// Throws Xerror_msg "ERROR: Vtx::Add_neigh() : attempt to add already exisiting neigh. ".
    virtual void Add_neigh(Node neigh);
    /// Adds a neighbour to the inc set at `vec_ind`; the position after the last one starts a new
    /// set. Throws Xerror_msg "ERROR: Vtx::Add_inc_neigh() : vec_ind too large", or "ERROR:
    /// Vtx::Add_inc_neigh() : new ind. neigh. is not a neigh.".
    virtual void Add_inc_neigh(std::uint32_t vec_ind, Node neigh);
    /// Removes the neighbour from the inc sets as well. Throws Xerror_msg "ERROR:
    /// Vtx::Remove_neigh() : attempt to remove a non-existing neigh.".
    virtual void Remove_neigh(Node neigh);
    /// Unlike for Add_inc_neigh() the set must exist. Throws Xerror_msg "ERROR:
    /// Vtx::Remove_inc_neigh() : vec_ind too large", or "ERROR: Vtx::Remove_inc_neigh() : attempt
    /// to remove a non-existing inc. neigh.".
    virtual void Remove_inc_neigh(std::uint32_t vec_ind, Node neigh);

    /// Compares the indices.
    virtual bool operator<(Vtx const& other) const;
    virtual Vtx& operator=(Vtx const& other);
    virtual void Set_defaults();
    /// Makes this record a copy of another one.
    virtual void Copy(Vtx const& other);

    /// Says how many neighbours the record will have; it takes memory for just these.
    void Reserve_neighs(std::size_t size) { neighs_.Reserve(size); }

protected:
    void Remove_from_inc_neighs(Node neigh);

    Node index_ = 0;

private:
    struct Extras {
        std::vector<Ordered_nodes> inc_neighs;
        std::optional<std::string> name; ///< none: the decimal text of named_after_
    };

    Extras& Made_extras();

    Node named_after_ = 0;

protected:
    Ordered_nodes neighs_;

private:
    std::unique_ptr<Extras> extras_; ///< null: no inc sets, no name of its own
};

// Text for debugging; no result file is written with these. A set is written by
//   g_ver        one node per line, two blanks before it
//   g_hor        in one line: {1, 2, 3}
//   export_data  sep2, then the nodes with sep3 between them; records put sep1 between sets

namespace g_ver {
std::ostream& operator<<(std::ostream& stream, Node_set nodes);
/// The record over several lines.
std::ostream& operator<<(std::ostream& stream, Vtx const& vertex);
} // namespace g_ver

namespace g_hor {
std::ostream& operator<<(std::ostream& stream, Node_set nodes);
/// The record in one line, without its end.
std::ostream& operator<<(std::ostream& stream, Vtx const& vertex);
} // namespace g_hor

void export_data(std::ostream& stream, Node_set nodes, char const* sep1, char const* sep2,
                 char const* sep3);
/// The record with the separators given.
void export_data(std::ostream& stream, Vtx const& vertex, char const* sep1, char const* sep2,
                 char const* sep3);

namespace Vtx_text_sub {
// What records of both kinds end with.
void Put_inc_neighs_ver(std::ostream& stream, Vtx const& vertex);
void Put_inc_neighs_hor(std::ostream& stream, Vtx const& vertex);
void Export_inc_neighs(std::ostream& stream, Vtx const& vertex, char const* sep1, char const* sep2,
                       char const* sep3);
} // namespace Vtx_text_sub

} // namespace cpm

#endif
