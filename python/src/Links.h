// SPDX-License-Identifier: MIT
// Links before there is a search: from a file, their nodes numbered, those outside of triangles.
#ifndef PLEXOR_PYTHON_LINKS_H
#define PLEXOR_PYTHON_LINKS_H

#include "Access.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace plexor_access {

/// The links that are in no triangle, as positions into `links`, ascending: with links that are in
/// no clique of three nodes they are the maximal cliques of two. Links are without direction, each
/// given once, none of a node with itself.
std::vector<Integer> Links_outside_triangles(std::span<Number const> source,
                                             std::span<Number const> target, std::size_t n_nodes);

/// Nodes by arbitrary numbers become 0, 1, 2, ... in the order in which the links name them.
struct Numbered {
    Array<Integer> nodes; ///< the number that each had
    Array<Number> source;
    Array<Number> target;
};
/// Throws Engine_error for more nodes than can be numbered.
Numbered Number_nodes(std::span<Integer const> source, std::span<Integer const> target);

/// The lines of a link file as given, read as the program reads them.
struct File_links {
    std::vector<std::string> names; ///< in the order of their bytes
    Array<Number> source;
    Array<Number> target;
    Array<double> weight; ///< empty unless asked for
};
/// Throws Engine_error with the program's own message.
File_links Read_links(std::string const& path, bool weighted);

} // namespace plexor_access

#endif
