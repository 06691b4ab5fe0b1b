// SPDX-License-Identifier: MIT
#include "Links.h"

#include "Engine_values.h"
#include "Plexor_io/Link_file_errors.h"
#include "Plexor_io/Read_links.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

namespace plexor_access {

std::vector<Integer> Links_outside_triangles(std::span<Number const> source,
                                             std::span<Number const> target, std::size_t n_nodes) {
    // The neighbours of each node, ascending, flat.
    std::vector<std::uint64_t> starts(n_nodes + 1, 0);
    for (std::size_t i = 0; i < source.size(); ++i) {
        ++starts[source[i]];
        ++starts[target[i]];
    }
    std::uint64_t end = 0;
    for (std::uint64_t& start : starts) {
        end += start;
        start = end;
    }
    std::vector<Number> neighbours(end);
    for (std::size_t i = 0; i < source.size(); ++i) {
        neighbours[--starts[source[i]]] = target[i];
        neighbours[--starts[target[i]]] = source[i];
    }
    auto const row = [&](Number node) {
        return std::span(neighbours).subspan(starts[node], starts[node + 1] - starts[node]);
    };
    for (Number node = 0; node < n_nodes; ++node) {
        std::ranges::sort(row(node));
    }
    std::vector<Integer> outside;
    for (std::size_t i = 0; i < source.size(); ++i) {
        // The shorter row is walked: in all this is less than the links times the square root of
        // their number.
        auto shorter = row(source[i]);
        auto longer = row(target[i]);
        if (longer.size() < shorter.size()) {
            std::swap(shorter, longer);
        }
        if (std::ranges::none_of(
                shorter, [&](Number node) { return std::ranges::binary_search(longer, node); })) {
            outside.push_back(static_cast<Integer>(i));
        }
    }
    return outside;
}

namespace {

// Gives numbers to nodes as they come; `find(node)` leads to the place where its number stands.
template <class Find>
Numbered Number_all(std::span<Integer const> source, std::span<Integer const> target, Find find) {
    std::vector<Integer> nodes;
    std::vector<Number> from(source.size());
    std::vector<Number> to(source.size());
    auto const number_of = [&](Integer node) {
        Number& number = find(node); // plus 1; 0: none yet
        if (number == 0) {
            if (nodes.size() >= std::numeric_limits<Number>::max() - 1) {
                throw Engine_error(Engine_error::Kind::refused,
                                   "the links have more nodes than can be numbered");
            }
            nodes.push_back(node);
            number = static_cast<Number>(nodes.size());
        }
        return number - 1;
    };
    for (std::size_t i = 0; i < source.size(); ++i) {
        from[i] = number_of(source[i]);
        to[i] = number_of(target[i]);
    }
    return {Array(std::move(nodes)), Array(std::move(from)), Array(std::move(to))};
}

} // namespace

Numbered Number_nodes(std::span<Integer const> source, std::span<Integer const> target) {
    if (source.empty()) {
        return {};
    }
    auto const [low_source, high_source] = std::ranges::minmax(source);
    auto const [low_target, high_target] = std::ranges::minmax(target);
    Integer const low = std::min(low_source, low_target);
    // Unsigned, as the difference of two signed numbers may have no sign bit to spare.
    auto const range = static_cast<std::uint64_t>(std::max(high_source, high_target)) -
                       static_cast<std::uint64_t>(low);
    constexpr std::uint64_t small = std::uint64_t{1} << 20;
    if (range < small + 8 * source.size()) {
        std::vector<Number> numbers(range + 1, 0);
        return Number_all(source, target, [&](Integer node) -> Number& {
            return numbers[static_cast<std::size_t>(node - low)];
        });
    }
    std::unordered_map<Integer, Number> numbers;
    return Number_all(source, target, [&](Integer node) -> Number& { return numbers[node]; });
}

File_links Read_links(std::string const& path, bool weighted) {
    using Kind = Engine_error::Kind;
    cpm::Link_map links;
    try {
        cpm::Read_links_as_given(path, links, weighted);
    } catch (cpm::Xep_file_not_found const& error) {
        throw Engine_error(Kind::file_not_found, error.what());
    } catch (cpm::Xep_wrong_line const& error) {
        throw Engine_error(Kind::wrong_line, error.what());
    } catch (cpm::Xep_read_file const& error) {
        throw Engine_error(Kind::unreadable_file, error.what());
    } catch (cpm::Xerror_msg const& error) {
        Throw(error);
    } catch (std::out_of_range const&) {
        // The program ends with the standard library's own words here, which help nobody.
        throw Engine_error(Kind::wrong_line, "ERROR: Wrong line found in '" + path +
                                                 "' :\nan empty line, or one of blanks only");
    }
    File_links read;
    for (std::size_t i = 0; i < links.names.size(); ++i) {
        read.names.emplace_back(links.names[i]);
    }
    std::vector<Number> source;
    std::vector<Number> target;
    for (cpm::Node_pair const& link : links.links) {
        source.push_back(link.first);
        target.push_back(link.second);
    }
    read.source = Array(std::move(source));
    read.target = Array(std::move(target));
    read.weight = Array(std::vector<double>(links.weights.begin(), links.weights.end()));
    return read;
}

} // namespace plexor_access
