// SPDX-License-Identifier: MIT
// Link_lines: the line of text of each link that a community can hold. The same links are written
// again at every k, so their lines are made once; links with consecutive numbers, of which large
// communities are full, are one piece of text.
#ifndef PLEXOR_LINK_LINES_H
#define PLEXOR_LINK_LINES_H

#include "Coms_funcs/Pair_table.h"
#include "Plexor_io/Record_text.h"
#include "Types.h"

#include <span>

namespace cpm {

class Link_lines {
public:
    /// Makes the line of each pair: both names in the direction in which the links have the pair,
    /// the smaller index first if they have both directions, the larger one first if they have
    /// none (two nodes of an approximated clique).
    Link_lines(Pair_table const& pairs, Index_links const& links, Names_map const& names);

    /// The lines of the links, in this order.
    void Put(std::span<Link_number const> numbers, Record_text& text) const;

private:
    /// So many bytes stand behind the last line, so that a short line can be copied in a fixed
    /// size.
    static constexpr std::size_t padding = 32;

    Flat_array<char> bytes_;
    Flat_array<std::uint64_t> starts_; ///< by number; one more than there are lines
};

} // namespace cpm

#endif
