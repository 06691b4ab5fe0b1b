// SPDX-License-Identifier: MIT
// Link_lines: the line of text of each link that a community can hold. The same links are written
// again at every k, so their lines are made once; links with consecutive numbers, of which large
// communities are full, are one piece of text. The lines of a single clique lie scattered in this
// text: they are made anew from its few names where their direction needs no look at the links.
#ifndef PLEXOR_LINK_LINES_H
#define PLEXOR_LINK_LINES_H

#include "Coms_funcs/Pair_table.h"
#include "Types.h"
#include "support/Text_sink.h"

#include <array>
#include <span>
#include <vector>

namespace cpm {

class Link_lines {
public:
    /// All must outlive this object but the links. Makes the line of each pair: both names in the
    /// direction in which the links have the pair, the smaller index first if they have both
    /// directions, the larger one first if they have none (two nodes of an approximated clique).
    Link_lines(Pair_table const& pairs, Index_links const& links, Names_map const& names);

    /// The lines of the links, in this order.
    void Put(std::span<Link_number const> numbers, Text_sink& text) const;
    /// The lines of all pairs of these nodes, which are ascending; the table holds these pairs.
    void Put_all_pairs(Node_set nodes, Text_sink& text);

private:
    /// A name and what follows it in a line.
    struct Half_line {
        std::array<char, 31> bytes; ///< padded
        unsigned char size;
    };

    bool Take_names(Node_set nodes);

    /// So many bytes stand behind the last line, so that a short line can be copied in a fixed
    /// size.
    static constexpr std::size_t padding = 32;

    Pair_table const& pairs_;
    Names_map const& names_;
    Flat_array<char> bytes_;
    Flat_array<std::uint64_t> starts_; ///< by number; one more than there are lines
    bool smaller_first_ = true;        ///< in every line the name of the smaller index comes first
    std::vector<Half_line> halves_;    ///< of the clique whose pairs are put
    std::vector<Link_number> row_;     ///< likewise
};

} // namespace cpm

#endif
