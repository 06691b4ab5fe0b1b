// SPDX-License-Identifier: MIT
#include "records/Vtxd.h"

#include "support/Errors.h"

#include <ostream>

namespace cpm {

Vtxd::Vtxd() = default;

Vtxd::Vtxd(Node index) : Vtx(index) {}

Vtxd::Vtxd(Node index, Node_set oneighs, Node_set ineighs) : Vtx(index) {
    Vtxd::Set_oneighs(oneighs);
    Vtxd::Set_ineighs(ineighs);
}

Vtxd::Vtxd(Node index, Node_set oneighs, Node_set ineighs, std::string const& name)
    : Vtxd(index, oneighs, ineighs) {
    Vtxd::Set_name(name);
}

Vtxd::Vtxd(Vtxd const& other) : Vtx() {
    Vtxd::Copy(other);
}

Vtxd::Vtxd(Vtx const& other) : Vtx() {
    Vtxd::Copy(other);
}

void Vtxd::Remove_neigh(Node neigh) {
    if (!neighs_.Erase(neigh)) {
        throw Xerror_msg("ERROR: Vtxd::Remove_neigh() : attempt to remove a non-existing neigh.");
    }
    ineighs_.Erase(neigh);
    oneighs_.Erase(neigh);
    Remove_from_inc_neighs(neigh);
}

bool Vtxd::operator<(Vtx const& other) const {
    return index_ < other.Index();
}

Vtxd& Vtxd::operator=(Vtx const& other) {
    if (this != &other) {
        Copy(other);
    }
    return *this;
}

void Vtxd::Set_defaults() {
    ineighs_.clear();
    oneighs_.clear();
}

void Vtxd::Copy(Vtx const& other) {
    Set_defaults();
    Set_index(other.Index());
    Set_oneighs(other.Neighs_c());
    Set_ineighs(other.Neighs_c());
    Set_inc_neighs(other.Inc_neighs_c());
    Set_name(other.Name());
}

Ordered_nodes Vtxd::Oneighs() const {
    return oneighs_;
}

Node_set Vtxd::Oneighs_c() const {
    return oneighs_;
}

Ordered_nodes Vtxd::Ineighs() const {
    return ineighs_;
}

Node_set Vtxd::Ineighs_c() const {
    return ineighs_;
}

void Vtxd::Set_oneighs(Node_set oneighs) {
    oneighs_ = Ordered_nodes(oneighs);
    neighs_.Insert_all(oneighs_);
}

void Vtxd::Set_ineighs(Node_set ineighs) {
    ineighs_ = Ordered_nodes(ineighs);
    neighs_.Insert_all(ineighs_);
}

void Vtxd::Add_oneigh(Node neigh) {
    if (!oneighs_.Insert(neigh)) {
        throw Xerror_msg("ERROR: Vtxd::Add_oneigh() : attempt to add already exisiting neigh. ");
    }
    neighs_.Insert(neigh);
}

void Vtxd::Add_ineigh(Node neigh) {
    if (!ineighs_.Insert(neigh)) {
        throw Xerror_msg("ERROR: Vtxd::Add_ineigh() : attempt to add already exisiting neigh. ");
    }
    neighs_.Insert(neigh);
}

void Vtxd::Remove_oneigh(Node neigh) {
    if (!oneighs_.Erase(neigh)) {
        throw Xerror_msg("ERROR: Vtxd::Remove_oneigh() : attempt to remove a non-existing oneigh.");
    }
    if (!ineighs_.Contains(neigh)) {
        neighs_.Erase(neigh);
    }
}

void Vtxd::Remove_ineigh(Node neigh) {
    if (!ineighs_.Erase(neigh)) {
        throw Xerror_msg("ERROR: Vtxd::Remove_ineigh() : attempt to remove a non-existing ineigh.");
    }
    if (!oneighs_.Contains(neigh)) {
        neighs_.Erase(neigh);
    }
}

bool Vtxd::operator<(Vtxd const& other) const {
    return index_ < other.Index();
}

Vtxd& Vtxd::operator=(Vtxd const& other) {
    if (this != &other) {
        Copy(other);
    }
    return *this;
}

void Vtxd::Copy(Vtxd const& other) {
    Set_defaults();
    Set_index(other.Index());
    Set_neighs(other.Neighs_c());
    Set_oneighs(other.Oneighs_c());
    Set_ineighs(other.Ineighs_c());
    Set_inc_neighs(other.Inc_neighs_c());
    Set_name(other.Name());
}

namespace g_ver {

std::ostream& operator<<(std::ostream& stream, Vtxd const& vertex) {
    stream << vertex.Index() << " '" << vertex.Name() << "' :\n ineighs. :\n"
           << vertex.Ineighs_c() << " oneighs. :\n"
           << vertex.Oneighs_c();
    Vtx_text_sub::Put_inc_neighs_ver(stream, vertex);
    return stream;
}

} // namespace g_ver

namespace g_hor {

std::ostream& operator<<(std::ostream& stream, Vtxd const& vertex) {
    stream << '{' << vertex.Index() << " '" << vertex.Name()
           << "' : oneighs. :" << vertex.Oneighs_c() << "  ineighs. :" << vertex.Ineighs_c();
    Vtx_text_sub::Put_inc_neighs_hor(stream, vertex);
    return stream;
}

} // namespace g_hor

void export_data(std::ostream& stream, Vtxd const& vertex, char const* sep1, char const* sep2,
                 char const* sep3) {
    stream << vertex.Index() << " (" << vertex.Name() << ") : ineighs. :";
    export_data(stream, vertex.Ineighs_c(), sep1, sep2, sep3);
    stream << sep1 << " oneighs. :";
    export_data(stream, vertex.Oneighs_c(), sep1, sep2, sep3);
    Vtx_text_sub::Export_inc_neighs(stream, vertex, sep1, sep2, sep3);
}

} // namespace cpm
