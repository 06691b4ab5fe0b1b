// SPDX-License-Identifier: MIT
// Writes a link file with a core whose cliques are too many to be listed.
#include "support/Random_numbers.h"

#include <charconv>
#include <exception>
#include <fstream>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using cpm::test::Random_numbers;

constexpr char const* usage =
    "usage: make_core_network parts N FILE\n"
    "       make_core_network core N PERCENT OUTSIDE FILE\n"
    "  parts  N parts of three nodes; a link for each two nodes of different parts, every fourth\n"
    "         one also back: 3^N maximal cliques, directed or not\n"
    "  core   N nodes, each two of them linked with this chance, one way or both ways; OUTSIDE\n"
    "         nodes more, linked with near ones and now and then with one of the core\n";

constexpr std::uint32_t seed = 20;

std::uint32_t To_number(std::string_view text) {
    std::uint32_t number = 0;
    auto const [end, error] = std::from_chars(text.begin(), text.end(), number);
    if (error != std::errc() || end != text.end()) {
        throw std::invalid_argument("not a number: " + std::string(text));
    }
    return number;
}

class Link_file {
public:
    explicit Link_file(std::string const& path) : file_(path) {}

    void Link(std::uint32_t from, std::uint32_t to) { file_ << from << ' ' << to << '\n'; }
    void Link_both_ways(std::uint32_t a, std::uint32_t b) {
        Link(a, b);
        Link(b, a);
    }
    void Close() {
        file_.close();
        if (!file_) {
            throw std::runtime_error("the link file cannot be written");
        }
    }

private:
    std::ofstream file_;
};

// All forward links together have no circle: what is a clique without directions is one with them.
void Write_parts(std::uint32_t n_parts, Link_file& file) {
    Random_numbers random(seed);
    for (std::uint32_t a = 0; a < 3 * n_parts; ++a) {
        for (std::uint32_t b = (a / 3 + 1) * 3; b < 3 * n_parts; ++b) {
            if (random.Percent(25)) {
                file.Link_both_ways(a, b);
            } else {
                file.Link(a, b);
            }
        }
    }
}

void Link_some_way(std::uint32_t a, std::uint32_t b, Random_numbers& random, Link_file& file) {
    std::uint32_t const way = random.Below(3);
    if (way == 0) {
        file.Link(a, b);
    } else if (way == 1) {
        file.Link(b, a);
    } else {
        file.Link_both_ways(a, b);
    }
}

void Write_core(std::uint32_t n_core, std::uint32_t percent, std::uint32_t n_outside,
                Link_file& file) {
    constexpr std::uint32_t near = 3;
    Random_numbers random(seed);
    for (std::uint32_t a = 0; a < n_core; ++a) {
        for (std::uint32_t b = a + 1; b < n_core; ++b) {
            if (random.Percent(percent)) {
                Link_some_way(a, b, random, file);
            }
        }
    }
    for (std::uint32_t i = 0; i < n_outside; ++i) {
        std::uint32_t const a = n_core + i;
        for (std::uint32_t step = 1; step <= near && i + step < n_outside; ++step) {
            if (random.Percent(70)) {
                Link_some_way(a, a + step, random, file);
            }
        }
        if (random.Percent(40)) {
            Link_some_way(a, random.Below(n_core), random, file);
        }
    }
}

void Write(std::span<std::string_view const> arguments) {
    if (arguments.size() == 3 && arguments[0] == "parts") {
        Link_file file{std::string(arguments[2])};
        Write_parts(To_number(arguments[1]), file);
        file.Close();
    } else if (arguments.size() == 5 && arguments[0] == "core") {
        Link_file file{std::string(arguments[4])};
        Write_core(To_number(arguments[1]), To_number(arguments[2]), To_number(arguments[3]), file);
        file.Close();
    } else {
        throw std::invalid_argument(usage);
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        std::vector<std::string_view> const arguments(argv + 1, argv + argc);
        Write(arguments);
        return 0;
    } catch (std::exception const& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}
