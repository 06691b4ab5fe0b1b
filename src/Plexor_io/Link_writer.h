// SPDX-License-Identifier: MIT
// Link_writer: the lines of text of the links that communities hold: both names, in the direction
// in which the links have the pair.
#ifndef PLEXOR_LINK_WRITER_H
#define PLEXOR_LINK_WRITER_H

#include "Coms_funcs/Edge_numbering.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Text_sink.h"
#include "graph/Types.h"
#include "support/Bits.h"

#include <mutex>
#include <span>

namespace cpm {

class Link_writer {
public:
    /// The edges and the labels must outlive this object. A line has the smaller index first if the
    /// links have both directions, the larger one first if they have none (two nodes of an
    /// approximated clique).
    Link_writer(Edge_numbering const& edges, Index_links const& links, Name_labels const& labels);

    /// The lines of the pairs of these numbers, in this order. Several threads may write at once.
    void Put(std::span<Link_number const> numbers, Text_sink& text) const;
    /// The lines of all pairs of these nodes, which are ascending; the table holds these pairs.
    void Put_all_pairs(Node_set nodes, Text_sink& text) const;

private:
    void List_firsts() const;
    void Put_line(Node first, Node second, Text_sink& text) const {
        labels_.Put(first, text);
        labels_.Put(second, text);
        text.Replace_last('\n'); // the blank after the name
    }

    Edge_numbering const& edges_;
    Name_labels const& labels_;
    mutable std::once_flag needs_firsts_;
    mutable Flat_array<Node> firsts_;    ///< by number: the smaller index; made when first needed
    Flat_array<std::uint64_t> reversed_; ///< a bit per number: the larger index first; empty if
                                         ///< it never does
};

/// Writes the links that it is handed as lines of text. Both must outlive it.
class Links_to_text : public Link_visitor {
public:
    Links_to_text(Link_writer const& lines, Text_sink& text) : lines_(lines), text_(text) {}
    void Numbers(std::span<Link_number const> numbers) override { lines_.Put(numbers, text_); }
    void All_pairs(Node_set nodes) override { lines_.Put_all_pairs(nodes, text_); }

private:
    Link_writer const& lines_;
    Text_sink& text_;
};

} // namespace cpm

#endif
