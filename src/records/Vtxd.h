// SPDX-License-Identifier: MIT
// A node of a directed network: a Vtx that also knows which of its neighbours it links to and which
// link to it. Its neighbours are both together: a node may be in both directions, and is then one
// neighbour.
#ifndef PLEXOR_VTXD_H
#define PLEXOR_VTXD_H

#include "records/Vtx.h"

namespace cpm {

class Vtxd : public Vtx {
public:
    Vtxd();
    explicit Vtxd(Node index);
    Vtxd(Node index, Node_set oneighs, Node_set ineighs);
    Vtxd(Node index, Node_set oneighs, Node_set ineighs, std::string const& name);
    Vtxd(Vtxd const& other);
    /// A record whose links all run both ways.
    Vtxd(Vtx const& other);
    ~Vtxd() override = default;

    /// Removes the neighbour from both directions and from the inc sets as well. Throws Xerror_msg
    /// "ERROR: Vtxd::Remove_neigh() : attempt to remove a non-existing neigh.".
    void Remove_neigh(Node neigh) override;

    bool operator<(Vtx const& other) const override;
    Vtxd& operator=(Vtx const& other) override;
    /// Clears the two directions, nothing else.
    void Set_defaults() override;
    /// Makes every link of the other record one of both directions. The neighbours that this record
    /// had stay among its neighbours.
    void Copy(Vtx const& other) override;

    virtual Ordered_nodes Oneighs() const;
    virtual Node_set Oneighs_c() const;
    virtual Ordered_nodes Ineighs() const;
    virtual Node_set Ineighs_c() const;

    /// Replaces a direction; its old members stay neighbours.
    virtual void Set_oneighs(Node_set oneighs);
    virtual void Set_ineighs(Node_set ineighs);

    /// Throws Xerror_msg "ERROR: Vtxd::Add_oneigh() : attempt to add already exisiting neigh. ".
    virtual void Add_oneigh(Node neigh);
    /// Throws Xerror_msg "ERROR: Vtxd::Add_ineigh() : attempt to add already exisiting neigh. ".
    virtual void Add_ineigh(Node neigh);
    /// The node stays a neighbour when it is one in the other direction. Throws Xerror_msg "ERROR:
    /// Vtxd::Remove_oneigh() : attempt to remove a non-existing oneigh.".
    virtual void Remove_oneigh(Node neigh);
    /// As Remove_oneigh(); throws Xerror_msg "ERROR: Vtxd::Remove_ineigh() : attempt to remove a
    /// non-existing ineigh.".
    virtual void Remove_ineigh(Node neigh);

    virtual bool operator<(Vtxd const& other) const;
    virtual Vtxd& operator=(Vtxd const& other);
    virtual void Copy(Vtxd const& other);

private:
    Ordered_nodes ineighs_;
    Ordered_nodes oneighs_;
};

// As for a Vtx, with both directions in the place of the neighbours.

namespace g_ver {
std::ostream& operator<<(std::ostream& stream, Vtxd const& vertex);
} // namespace g_ver

namespace g_hor {
std::ostream& operator<<(std::ostream& stream, Vtxd const& vertex);
} // namespace g_hor

void export_data(std::ostream& stream, Vtxd const& vertex, char const* sep1, char const* sep2,
                 char const* sep3);

} // namespace cpm

#endif
