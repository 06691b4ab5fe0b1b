// SPDX-License-Identifier: MIT
#include "records/Vtx.h"

#include "Plexor_io/My_int2string.h"
#include "support/Errors.h"

#include <cassert>
#include <ostream>

namespace cpm {

namespace {

[[maybe_unused]] bool Is_set(Node_set nodes) {
    return std::ranges::adjacent_find(nodes, std::ranges::greater_equal()) == nodes.end();
}

} // namespace

Ordered_nodes::Ordered_nodes(Node_set nodes) {
    assert(Is_set(nodes));
    nodes_.Reserve(nodes.size());
    nodes_.Append(nodes);
}

bool Ordered_nodes::Insert_inside(Node node) {
    Node* const place = std::lower_bound(nodes_.begin(), nodes_.end(), node);
    if (*place == node) {
        return false;
    }
    auto const position = place - nodes_.begin();
    nodes_.push_back(node);
    std::rotate(nodes_.begin() + position, nodes_.end() - 1, nodes_.end());
    return true;
}

void Ordered_nodes::Insert_all(Node_set nodes) {
    assert(Is_set(nodes));
    Flat_array<Node, std::uint32_t> united;
    united.Resize_uninitialised(nodes_.size() + nodes.size());
    Node const* const end = std::ranges::set_union(nodes_, nodes, united.begin()).out;
    united.Resize_uninitialised(static_cast<std::size_t>(end - united.begin()));
    united.Shrink_to_fit();
    nodes_.Swap(united);
}

bool Ordered_nodes::Erase(Node node) {
    Node* const place = std::lower_bound(nodes_.begin(), nodes_.end(), node);
    if (place == nodes_.end() || *place != node) {
        return false;
    }
    std::copy(place + 1, nodes_.end(), place);
    nodes_.pop_back();
    return true;
}

Vtx::Vtx() = default;

Vtx::Vtx(Node index) : index_(index), named_after_(index) {}

Vtx::Vtx(Node index, Node_set neighs) : index_(index), named_after_(index), neighs_(neighs) {}

Vtx::Vtx(Node index, Node_set neighs, std::string const& name) : Vtx(index, neighs) {
    Vtx::Set_name(name);
}

// A record under construction has the operations of its own class; these are the ones wanted.
Vtx::Vtx(Vtx const& other) {
    Vtx::Copy(other);
}

Node Vtx::Index() const {
    return index_;
}

Ordered_nodes Vtx::Neighs() const {
    return neighs_;
}

Node_set Vtx::Neighs_c() const {
    return neighs_;
}

std::vector<Ordered_nodes> Vtx::Inc_neighs() const {
    return Inc_neighs_c();
}

std::vector<Ordered_nodes> const& Vtx::Inc_neighs_c() const {
    static std::vector<Ordered_nodes> const none;
    return extras_ == nullptr ? none : extras_->inc_neighs;
}

std::string Vtx::Name() const {
    bool const own = extras_ != nullptr && extras_->name.has_value();
    return own ? *extras_->name : int2string(named_after_);
}

void Vtx::Set_index(Node index) {
    index_ = index;
}

void Vtx::Set_neighs(Node_set neighs) {
    neighs_ = Ordered_nodes(neighs);
}

void Vtx::Set_inc_neighs(std::vector<Ordered_nodes> const& inc_neighs) {
    if (!inc_neighs.empty() || extras_ != nullptr) {
        Made_extras().inc_neighs = inc_neighs;
    }
}

void Vtx::Set_name(std::string const& name) {
    if (name != Name()) {
        Made_extras().name = name;
    }
}

Vtx::Extras& Vtx::Made_extras() {
    if (extras_ == nullptr) {
        extras_ = std::make_unique<Extras>();
    }
    return *extras_;
}

void Vtx::Add_neigh(Node neigh) {
    if (!neighs_.Insert(neigh)) {
        throw Xerror_msg("ERROR: Vtx::Add_neigh() : attempt to add already exisiting neigh. ");
    }
}

void Vtx::Add_inc_neigh(std::uint32_t vec_ind, Node neigh) {
    if (vec_ind > Inc_neighs_c().size()) {
        throw Xerror_msg("ERROR: Vtx::Add_inc_neigh() : vec_ind too large");
    }
    if (!neighs_.Contains(neigh)) {
        throw Xerror_msg("ERROR: Vtx::Add_inc_neigh() : new ind. neigh. is not a neigh.");
    }
    std::vector<Ordered_nodes>& inc_neighs = Made_extras().inc_neighs;
    if (vec_ind == inc_neighs.size()) {
        inc_neighs.emplace_back();
    }
    inc_neighs[vec_ind].Insert(neigh);
}

void Vtx::Remove_neigh(Node neigh) {
    if (!neighs_.Erase(neigh)) {
        throw Xerror_msg("ERROR: Vtx::Remove_neigh() : attempt to remove a non-existing neigh.");
    }
    Remove_from_inc_neighs(neigh);
}

void Vtx::Remove_inc_neigh(std::uint32_t vec_ind, Node neigh) {
    if (vec_ind >= Inc_neighs_c().size()) {
        throw Xerror_msg("ERROR: Vtx::Remove_inc_neigh() : vec_ind too large");
    }
    if (!extras_->inc_neighs[vec_ind].Erase(neigh)) {
        throw Xerror_msg(
            "ERROR: Vtx::Remove_inc_neigh() : attempt to remove a non-existing inc. neigh.");
    }
}

bool Vtx::operator<(Vtx const& other) const {
    return index_ < other.Index();
}

Vtx& Vtx::operator=(Vtx const& other) {
    if (this != &other) {
        Copy(other);
    }
    return *this;
}

void Vtx::Set_defaults() {
    index_ = 0;
    named_after_ = 0;
    neighs_.clear();
    extras_.reset();
}

void Vtx::Copy(Vtx const& other) {
    Set_defaults();
    Set_index(other.Index());
    named_after_ = other.named_after_;
    Set_neighs(other.Neighs_c());
    Set_inc_neighs(other.Inc_neighs_c());
    Set_name(other.Name());
}

void Vtx::Remove_from_inc_neighs(Node neigh) {
    if (extras_ == nullptr) {
        return;
    }
    for (Ordered_nodes& inc_set : extras_->inc_neighs) {
        inc_set.Erase(neigh);
    }
}

namespace g_ver {

std::ostream& operator<<(std::ostream& stream, Node_set nodes) {
    for (Node const node : nodes) {
        stream << "  " << node << '\n';
    }
    return stream;
}

std::ostream& operator<<(std::ostream& stream, Vtx const& vertex) {
    stream << vertex.Index() << " '" << vertex.Name() << "' :\n neighs. :\n" << vertex.Neighs_c();
    Vtx_text_sub::Put_inc_neighs_ver(stream, vertex);
    return stream;
}

} // namespace g_ver

namespace g_hor {

std::ostream& operator<<(std::ostream& stream, Node_set nodes) {
    stream << '{';
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        stream << (i == 0 ? "" : ", ") << nodes[i];
    }
    return stream << '}';
}

std::ostream& operator<<(std::ostream& stream, Vtx const& vertex) {
    stream << '{' << vertex.Index() << " '" << vertex.Name()
           << "' : neighs. :" << vertex.Neighs_c();
    Vtx_text_sub::Put_inc_neighs_hor(stream, vertex);
    return stream;
}

} // namespace g_hor

void export_data(std::ostream& stream, Node_set nodes, char const* /*sep1*/, char const* sep2,
                 char const* sep3) {
    stream << sep2;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        stream << (i == 0 ? "" : sep3) << nodes[i];
    }
}

void export_data(std::ostream& stream, Vtx const& vertex, char const* sep1, char const* sep2,
                 char const* sep3) {
    stream << vertex.Index() << " (" << vertex.Name() << ") : neighs. :";
    export_data(stream, vertex.Neighs_c(), sep1, sep2, sep3);
    Vtx_text_sub::Export_inc_neighs(stream, vertex, sep1, sep2, sep3);
}

namespace Vtx_text_sub {

void Put_inc_neighs_ver(std::ostream& stream, Vtx const& vertex) {
    stream << "  inc_neighs. : \n";
    for (Ordered_nodes const& inc_set : vertex.Inc_neighs_c()) {
        g_ver::operator<<(stream, inc_set);
    }
}

void Put_inc_neighs_hor(std::ostream& stream, Vtx const& vertex) {
    stream << "  inc_neighs. : ";
    std::vector<Ordered_nodes> const& inc_sets = vertex.Inc_neighs_c();
    for (std::size_t i = 0; i < inc_sets.size(); ++i) {
        bool const last = i + 1 == inc_sets.size();
        stream << (last ? "" : "  ");
        g_hor::operator<<(stream, inc_sets[i]);
        stream << (last ? "" : " , ");
    }
    stream << '}';
}

void Export_inc_neighs(std::ostream& stream, Vtx const& vertex, char const* sep1, char const* sep2,
                       char const* sep3) {
    stream << sep1 << " inc_neighs. :";
    std::vector<Ordered_nodes> const& inc_sets = vertex.Inc_neighs_c();
    for (std::size_t i = 0; i < inc_sets.size(); ++i) {
        export_data(stream, inc_sets[i], sep1, sep2, sep3);
        stream << (i + 1 == inc_sets.size() ? "" : sep1);
    }
}

} // namespace Vtx_text_sub

} // namespace cpm
