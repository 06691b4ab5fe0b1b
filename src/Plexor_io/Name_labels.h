// SPDX-License-Identifier: MIT
// Name_labels: node names as the result files want them, each with a blank after it. Names are
// looked up at random and by the hundred million: most of them fit into 16 bytes together with
// their length, so that one look-up is one cache line and one copy.
#ifndef PLEXOR_NAME_LABELS_H
#define PLEXOR_NAME_LABELS_H

#include "Plexor_io/Text_sink.h"
#include "graph/Types.h"

#include <array>
#include <string_view>

namespace cpm {

class Name_labels {
public:
    explicit Name_labels(Names_map names);

    /// The name of the node and a blank after it.
    void Put(Node node, Text_sink& text) const {
        Label const& label = labels_[node];
        if (label.size != too_long) {
            text.Put_padded<sizeof(Label)>(label.bytes.data(), label.size);
        } else {
            text.Put(Long_name(label));
        }
    }
    /// The same for each of the nodes, in this order.
    void Put(Node_set nodes, Text_sink& text) const {
        for (Node const node : nodes) {
            Put(node, text);
        }
    }

    /// A record of a result file: the number, with a "-" before it when it is that of something
    /// approximated, ": ", the names, and an end of line.
    void Put_record(std::size_t number, bool approximated, Node_set nodes, Text_sink& text) const {
        text.Put_number(number, approximated);
        text.Put(": ");
        Put(nodes, text);
        text.Put('\n');
    }

private:
    struct Label {
        std::array<char, 15> bytes; ///< the name and the blank; or where a long name is
        unsigned char size;         ///< of both together, or too_long
    };
    static_assert(sizeof(Label) == 16);
    static constexpr unsigned char too_long = 0xFF;

    std::string_view Long_name(Label const& label) const;

    Flat_array<Label> labels_; ///< by node
    Name_table long_names_;
};

} // namespace cpm

#endif
