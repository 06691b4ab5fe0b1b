// SPDX-License-Identifier: MIT
#include "Networks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace cpm::bench {

namespace {

// The standard distributions may differ from library to library; this does not.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Next() { // splitmix64
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }
    /// A number below `end`, which is less than 2^32.
    std::uint32_t Below(std::size_t end) {
        return static_cast<std::uint32_t>((Next() >> 32) * end >> 32);
    }
    /// True with this probability.
    bool Chance(double probability) {
        return static_cast<double>(Next() >> 11) < probability * 0x1p53;
    }
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

private:
    std::uint64_t state_;
};

// Pairs of nodes seen so far: open addressing, at most two thirds full.
class Pair_set {
public:
    explicit Pair_set(std::size_t n_pairs) {
        std::size_t size = 16;
        while (size < n_pairs + n_pairs / 2) {
            size *= 2;
        }
        slots_.resize(size, 0);
    }
    /// False when the pair is there already. No node is 0.
    bool Insert(std::uint32_t a, std::uint32_t b) {
        std::uint64_t const key = (std::uint64_t{std::min(a, b)} << 32) | std::max(a, b);
        std::size_t const mask = slots_.size() - 1;
        for (std::size_t place = (key * 0x9E3779B97F4A7C15U) >> 20 & mask;;
             place = (place + 1) & mask) {
            if (slots_[place] == key) {
                return false;
            }
            if (slots_[place] == 0) {
                slots_[place] = key;
                return true;
            }
        }
    }

private:
    std::vector<std::uint64_t> slots_;
};

// Draws a size from 2 to 60 in proportion to size^-2.6.
class Team_size {
public:
    Team_size() {
        constexpr double tail = 2.6;
        double total = 0;
        for (std::size_t i = 0; i < steps_.size(); ++i) {
            steps_[i] = total += std::pow(static_cast<double>(i + smallest), -tail);
        }
    }
    std::size_t Draw(Random& random) const {
        double const x = random.Unit() * steps_.back();
        auto const step = std::upper_bound(steps_.begin(), steps_.end() - 1, x);
        return smallest + static_cast<std::size_t>(step - steps_.begin());
    }

private:
    static constexpr std::size_t smallest = 2;
    std::array<double, 59> steps_{};
};

// The teams so far, and who was in them.
class Teams {
public:
    explicit Teams(std::uint64_t seed) : random_(seed) {}

    std::vector<std::uint32_t> const& Next() {
        constexpr double newcomer = 0.35;
        constexpr double colleague = 0.5;
        constexpr std::size_t tries_a_member = 20;
        std::size_t const size = size_.Draw(random_);
        team_.clear();
        for (std::size_t tries = 0; team_.size() < size; ++tries) {
            double const x = random_.Unit();
            std::uint32_t who = 0;
            if (members_.empty() || x < newcomer || tries > tries_a_member * size) {
                teams_of_.emplace_back();
                who = static_cast<std::uint32_t>(teams_of_.size());
            } else if (!team_.empty() && x < newcomer + colleague) {
                who = Colleague(team_[random_.Below(team_.size())]);
            } else {
                who = Anybody();
            }
            if (std::find(team_.begin(), team_.end(), who) == team_.end()) {
                team_.push_back(who);
            }
        }
        for (std::uint32_t const who : team_) {
            teams_of_[who - 1].push_back(static_cast<std::uint32_t>(begins_.size() - 1));
        }
        members_.insert(members_.end(), team_.begin(), team_.end());
        begins_.push_back(members_.size());
        return team_;
    }

private:
    // Careers end: with all past teams to pick from, the first nodes would be linked ever more
    // densely, and the number of cliques a link would grow with the network.
    std::uint32_t Anybody() {
        constexpr std::size_t recent = 3000;
        std::size_t const choice = std::min(members_.size(), recent);
        return members_[members_.size() - choice + random_.Below(choice)];
    }
    std::uint32_t Colleague(std::uint32_t who) {
        auto const& past = teams_of_[who - 1];
        if (past.empty()) {
            return Anybody();
        }
        std::size_t const team = past[random_.Below(past.size())];
        return members_[begins_[team] + random_.Below(begins_[team + 1] - begins_[team])];
    }

    Random random_;
    Team_size size_;
    std::vector<std::uint32_t> team_;
    std::vector<std::uint32_t> members_; // of all teams, one team after the other
    std::vector<std::size_t> begins_{0};
    std::vector<std::vector<std::uint32_t>> teams_of_; // by node - 1
};

void Link_all(Network& network, std::uint32_t begin, std::uint32_t end) {
    for (std::uint32_t a = begin; a < end; ++a) {
        for (std::uint32_t b = a + 1; b < end; ++b) {
            network.push_back({a, b});
        }
    }
}

} // namespace

Network Papers(std::size_t n_links, std::uint64_t seed) {
    Network network;
    network.reserve(n_links);
    Pair_set seen(n_links);
    Teams teams(seed);
    while (network.size() < n_links) {
        auto const& team = teams.Next();
        for (std::size_t i = 0; i < team.size(); ++i) {
            for (std::size_t j = 0; j < i && network.size() < n_links; ++j) {
                if (seen.Insert(team[i], team[j])) {
                    network.push_back({team[j], team[i]});
                }
            }
        }
    }
    return network;
}

Network Hub(std::uint32_t n_links) {
    Network network;
    std::uint32_t const hub = n_links + 1;
    for (std::uint32_t node = 1; node <= n_links; ++node) {
        network.push_back({hub, node});
        for (std::uint32_t next = node + 1; next <= std::min(node + 2, n_links); ++next) {
            network.push_back({node, next});
        }
    }
    return network;
}

Network Clique(std::uint32_t n_nodes) {
    Network network;
    Link_all(network, 1, n_nodes + 1);
    return network;
}

Network Chain(std::uint32_t n_cliques) {
    Network network;
    std::uint32_t const n_nodes = n_cliques + 3;
    for (std::uint32_t node = 1; node < n_nodes; ++node) {
        for (std::uint32_t next = node + 1; next <= std::min(node + 3, n_nodes); ++next) {
            network.push_back({node, next});
        }
    }
    return network;
}

Network Separate(std::uint32_t n_communities) {
    Network network;
    std::uint32_t begin = 1;
    for (std::uint32_t community = 0; community < n_communities; ++community) {
        std::uint32_t const end = begin + 3 + community % 2;
        Link_all(network, begin, end);
        begin = end;
    }
    return network;
}

Network Dense_groups(std::uint32_t n_nodes, std::size_t n_links, std::uint64_t seed) {
    constexpr std::size_t group_size = 60;
    constexpr double density = 0.7;
    Random random(seed);
    Pair_set seen(n_links);
    Network network;
    std::vector<std::uint32_t> group(group_size);
    while (network.size() < n_links) {
        for (std::uint32_t& node : group) {
            node = 1 + random.Below(n_nodes);
        }
        for (std::size_t i = 0; i < group_size; ++i) {
            for (std::size_t j = 0; j < i && network.size() < n_links; ++j) {
                if (group[i] != group[j] && random.Chance(density) &&
                    seen.Insert(group[i], group[j])) {
                    network.push_back({group[i], group[j]});
                }
            }
        }
    }
    return network;
}

Network Directed(std::uint32_t n_nodes, double density, std::uint64_t seed) {
    constexpr double both_directions = 0.5;
    Random random(seed);
    Network network;
    for (std::uint32_t a = 1; a <= n_nodes; ++a) {
        for (std::uint32_t b = a + 1; b <= n_nodes; ++b) {
            if (!random.Chance(density)) {
                continue;
            }
            bool const turned = random.Chance(0.5);
            network.push_back(turned ? Link{b, a} : Link{a, b});
            if (random.Chance(both_directions)) {
                network.push_back(turned ? Link{a, b} : Link{b, a});
            }
        }
    }
    return network;
}

Network Weighted_cliques(std::uint32_t n_cliques, std::uint64_t seed) {
    constexpr std::uint32_t size = 16;
    constexpr std::uint32_t step = 8;
    Random random(seed);
    Network network;
    for (std::uint32_t clique = 0; clique < n_cliques; ++clique) {
        std::uint32_t const begin = 1 + clique * step;
        std::uint32_t const first_new = clique == 0 ? begin : begin + size - step;
        for (std::uint32_t b = first_new; b < begin + size; ++b) {
            for (std::uint32_t a = begin; a < b; ++a) {
                network.push_back({a, b, 500 + random.Below(1000)});
            }
        }
    }
    return network;
}

Network Ring(std::uint32_t n_nodes, std::uint64_t seed) {
    constexpr std::uint32_t reach = 24;
    constexpr double density = 0.7;
    Random random(seed);
    Network network;
    for (std::uint32_t node = 0; node < n_nodes; ++node) {
        for (std::uint32_t step = 1; step <= reach; ++step) {
            if (random.Chance(density)) {
                network.push_back({node + 1, (node + step) % n_nodes + 1});
            }
        }
    }
    return network;
}

void Write_network(Network const& network, std::string const& path) {
    constexpr std::size_t block_size = std::size_t{1} << 16;
    std::ofstream file(path, std::ios::binary);
    std::string text;
    for (Link const& link : network) {
        text += std::to_string(link.source);
        text += ' ';
        text += std::to_string(link.target);
        if (link.thousandths != 0) {
            text += ' ';
            text += std::to_string(link.thousandths / 1000);
            text += '.';
            text += std::to_string(1000 + link.thousandths % 1000).substr(1);
        }
        text += '\n';
        if (text.size() >= block_size) {
            file << text;
            text.clear();
        }
    }
    if (!(file << text << std::flush)) {
        throw std::runtime_error("cannot write the network to '" + path + "'");
    }
}

} // namespace cpm::bench
