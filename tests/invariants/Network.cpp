// SPDX-License-Identifier: MIT
#include "Network.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace cpm::invariants {

namespace {

using Name_pairs = std::set<std::pair<std::string, std::string>>;

Name_pairs Read_links(std::string const& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    Name_pairs links;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::pair<std::string, std::string> link;
        fields >> link.first;
        if (link.first.starts_with('#')) {
            continue;
        }
        if (!(fields >> link.second)) {
            throw std::runtime_error("not a link: " + line);
        }
        if (link.first != link.second) {
            links.insert(link);
        }
    }
    return links;
}

} // namespace

// Nodes are numbered as they come up in the sorted links.
Network::Network(std::string const& link_file, bool directed) : directed_(directed) {
    std::vector<std::pair<Node, Node>> links;
    for (auto const& [from, to] : Read_links(link_file)) {
        lines_.push_back(from + " " + to);
        Node const a = Number_of_new(from);
        links.push_back({a, Number_of_new(to)});
    }
    neighbours_.resize(names_.size());
    arcs_.assign(names_.size() * names_.size(), false);
    for (auto const& [a, b] : links) {
        if (!Linked(a, b)) {
            neighbours_[a].push_back(b);
            neighbours_[b].push_back(a);
        }
        arcs_[a * names_.size() + b] = true;
        if (!directed) {
            arcs_[b * names_.size() + a] = true;
        }
    }
    for (Nodes& nodes : neighbours_) {
        std::ranges::sort(nodes);
    }
}

Node Network::Number_of_new(std::string const& name) {
    auto const [place, is_new] = numbers_.insert({name, static_cast<Node>(names_.size())});
    if (is_new) {
        names_.push_back(name);
    }
    return place->second;
}

Node Network::Number(std::string const& name) const {
    auto const place = numbers_.find(name);
    return place == numbers_.end() ? 0 : place->second;
}

bool Network::Is_clique(Nodes const& nodes) const {
    for (Node const a : nodes) {
        for (Node const b : nodes) {
            if (a != b && !Linked(a, b)) {
                return false;
            }
        }
    }
    return !directed_ || Can_be_lined_up(nodes);
}

// Takes away, again and again, a node that no one-way link of a remaining node leads to.
bool Network::Can_be_lined_up(Nodes const& nodes) const {
    auto const one_way = [this](Node from, Node to) { return Arc(from, to) && !Arc(to, from); };
    Nodes left = nodes;
    std::map<Node, std::ptrdiff_t> leading_to;
    for (Node const node : nodes) {
        leading_to[node] = std::ranges::count_if(left, [&](Node n) { return one_way(n, node); });
    }
    while (!left.empty()) {
        auto const first =
            std::ranges::find_if(left, [&](Node node) { return leading_to[node] == 0; });
        if (first == left.end()) {
            return false;
        }
        Node const taken = *first;
        left.erase(first);
        for (Node const node : left) {
            leading_to[node] -= one_way(taken, node) ? 1 : 0;
        }
    }
    return true;
}

Node Network::Extension(Nodes const& clique) const {
    auto const fewest =
        std::ranges::min_element(clique, {}, [this](Node node) { return Neighbours(node).size(); });
    for (Node const node : Neighbours(*fewest)) {
        bool const is_linked = std::ranges::all_of(
            clique, [&](Node member) { return member != node && Linked(node, member); });
        if (is_linked) {
            Nodes larger = clique;
            larger.push_back(node);
            if (!directed_ || Can_be_lined_up(larger)) {
                return node;
            }
        }
    }
    return 0;
}

} // namespace cpm::invariants
