// SPDX-License-Identifier: MIT
#include "Result_files.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace cpm::invariants {

namespace {

namespace fs = std::filesystem;

constexpr char const* negative = "# Negative indices indicate approximate ";

// Header lines and the others; empty lines are left out.
struct Text {
    std::vector<std::string> header;
    std::vector<std::string> lines;
};

Text Read_text(fs::path const& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    Text text;
    bool in_header = true;
    for (std::string line; std::getline(file, line);) {
        in_header = in_header && line.starts_with('#');
        if (in_header) {
            text.header.push_back(line);
        } else if (!line.empty()) {
            text.lines.push_back(line);
        }
    }
    return text;
}

bool Says_negative(Text const& text) {
    return std::ranges::any_of(text.header, [](auto const& l) { return l.starts_with(negative); });
}

// What stands between blanks.
std::vector<std::string> Fields(std::string const& line) {
    std::vector<std::string> fields;
    std::size_t end = 0;
    while (true) {
        std::size_t const begin = line.find_first_not_of(' ', end);
        if (begin == std::string::npos) {
            return fields;
        }
        end = std::min(line.find(' ', begin), line.size());
        fields.push_back(line.substr(begin, end - begin));
    }
}

std::size_t To_number(std::string_view text) {
    std::size_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::runtime_error("not a number: '" + std::string(text) + "'");
    }
    return number;
}

Marked_number To_marked(std::string_view text) {
    bool const minus = text.starts_with('-');
    return {minus, To_number(text.substr(minus ? 1 : 0))};
}

Node To_node(std::string const& name, Network const& network) {
    Node const node = network.Number(name);
    if (node == 0) {
        throw std::runtime_error("not a node: '" + name + "'");
    }
    return node;
}

// The number at the beginning of a record, and what follows its colon.
std::pair<Marked_number, std::string> Split_record(std::string const& line) {
    std::size_t const colon = line.find(':');
    if (colon == std::string::npos) {
        throw std::runtime_error("not a record: " + line);
    }
    return {To_marked(std::string_view(line).substr(0, colon)), line.substr(colon + 1)};
}

std::vector<Node_record> To_node_records(Text const& text, Network const& network) {
    std::vector<Node_record> records;
    for (std::string const& line : text.lines) {
        auto const& [number, rest] = Split_record(line);
        Node_record record{number, {}};
        for (std::string const& name : Fields(rest)) {
            record.nodes.push_back(To_node(name, network));
        }
        records.push_back(record);
    }
    return records;
}

std::vector<Clique_record> To_clique_records(Text const& text) {
    std::vector<Clique_record> records;
    for (std::string const& line : text.lines) {
        auto const& [number, rest] = Split_record(line);
        Clique_record record{number, {}};
        for (std::string const& field : Fields(rest)) {
            record.cliques.push_back(To_marked(field));
        }
        records.push_back(record);
    }
    return records;
}

// A line that ends with a colon begins a record; two names are a link. (No name of the networks
// that are checked ends so.)
std::vector<Link_record> To_link_records(Text const& text, Network const& network) {
    std::vector<Link_record> records;
    for (std::string const& line : text.lines) {
        std::vector<std::string> const fields = Fields(line);
        if (line.ends_with(':')) {
            records.push_back({Split_record(line).first, {}});
        } else if (fields.size() == 2 && !records.empty()) {
            records.back().links.push_back(
                {To_node(fields[0], network), To_node(fields[1], network)});
        } else {
            throw std::runtime_error("not a link of a community: " + line);
        }
    }
    return records;
}

std::vector<Graph_line> To_graph_lines(Text const& text) {
    std::vector<Graph_line> graph;
    for (std::string const& line : text.lines) {
        std::vector<std::string> const fields = Fields(line);
        if (fields.size() != 3) {
            throw std::runtime_error("not a pair of communities: " + line);
        }
        graph.push_back({To_marked(fields[0]), To_marked(fields[1]), To_number(fields[2])});
    }
    return graph;
}

Distribution To_distribution(Text const& text) {
    Distribution distribution;
    for (std::string const& line : text.lines) {
        std::vector<std::string> const fields = Fields(line);
        if (fields.size() != 2 || distribution.contains(To_number(fields[0]))) {
            throw std::runtime_error("not a line of a distribution: " + line);
        }
        distribution[To_number(fields[0])] = To_number(fields[1]);
    }
    return distribution;
}

Level Read_level(fs::path const& folder, std::size_t k, Network const& network) {
    std::string const flag = network.Is_directed() ? "directed_" : "";
    Level level;
    level.k = k;
    for (auto const& entry : fs::directory_iterator(folder)) {
        std::string const name = entry.path().filename().string();
        Text const text = Read_text(entry.path());
        if (name == flag + "communities") {
            level.communities = To_node_records(text, network);
            level.says_negative = Says_negative(text);
        } else if (name == flag + "communities_cliques") {
            level.cliques = To_clique_records(text);
        } else if (name == flag + "communities_links") {
            level.links = To_link_records(text, network);
        } else if (name == "graph_of_" + flag + "communities") {
            level.graph = To_graph_lines(text);
        } else if (name.starts_with(flag) && name.find("_distribution") != std::string::npos) {
            level.distributions[name.substr(flag.size())] = To_distribution(text);
        } else {
            level.unknown_files.insert(name);
        }
    }
    return level;
}

} // namespace

bool Is_directed_run(std::string const& directory) {
    return fs::exists(fs::path(directory) / "directed_cliques");
}

Results Read_results(std::string const& directory, Network const& network) {
    fs::path const folder(directory);
    std::string const flag = network.Is_directed() ? "directed_" : "";
    Results results;
    results.graph_lines = Read_text(folder / (flag + "graph")).lines;
    Text const cliques = Read_text(folder / (flag + "cliques"));
    results.says_negative = Says_negative(cliques);
    results.cliques = To_node_records(cliques, network);
    results.single_k = std::ranges::any_of(cliques.header, [](std::string const& line) {
        return line.starts_with("# The communities were extracted solely at k=");
    });
    for (auto const& entry : fs::directory_iterator(folder)) {
        std::string const name = entry.path().filename().string();
        if (name.starts_with("k=")) {
            results.levels.push_back(
                Read_level(entry.path(), To_number(std::string_view(name).substr(2)), network));
        }
    }
    std::ranges::sort(results.levels, std::ranges::greater(), &Level::k);
    return results;
}

// The last reports of overruns are those of the nodes given up: the search ends when all nodes that
// are left have overrun in a row.
Search_report Read_report(std::string const& file) {
    Search_report report;
    Nodes overrun;
    std::size_t in_a_row = 0;
    bool has_ended = false;
    for (std::string const& line : Read_text(file).lines) {
        std::vector<std::string> const fields = Fields(line);
        if (line.starts_with(" Exceeded allowed time at node no.")) {
            std::string_view const number = std::string_view(line).substr(34);
            overrun.push_back(static_cast<Node>(To_number(number.substr(0, number.size() - 1))));
        } else if (line.starts_with(" skipping, ")) {
            in_a_row = To_number(fields.at(1));
        } else if (line.starts_with(" at all of the remaining nodes.")) {
            report.core.assign(overrun.end() - static_cast<std::ptrdiff_t>(in_a_row),
                               overrun.end());
        } else if (line.starts_with(" Altogether ")) {
            report.n_found = report.n_exact = To_number(fields.at(1));
            has_ended = true;
        } else if (line.starts_with(" number of   exact cliques=")) {
            std::string_view const number = std::string_view(line).substr(27);
            report.n_exact = To_number(number.substr(0, number.size() - 1));
        } else if (line.starts_with(" number of approx. cliques=")) {
            report.n_approximated = To_number(std::string_view(line).substr(27));
        }
    }
    if (!has_ended) {
        throw std::runtime_error(file + " says nothing of a clique search");
    }
    std::ranges::sort(report.core);
    return report;
}

} // namespace cpm::invariants
