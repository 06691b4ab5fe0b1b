// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_com_graph.h"

#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Text_file.h"

#include <array>

namespace cpm {

namespace {

// A community's number as it begins the lines of its row: the sign, the number, a blank.
struct Line_start {
    std::array<char, 16> bytes{};
    std::size_t size = 0;

    Line_start(std::uint32_t community, bool approximated) {
        std::string const text = (approximated ? "-" : "") + int2string(community) + ' ';
        size = text.copy(bytes.data(), bytes.size());
    }
};

} // namespace

void Kiir_com_graph_PX(Community_graph& graph, std::size_t n_exact_coms, Level_files const& files) {
    Text_file file(files.File("graph_of_" + files.run.Flag_before('_') + "communities"), files.run);
    // Deliberate: this header lacks the word "communities".
    file.Put("# The graph of " + files.run.Flag_before(' ') + "at k=" + int2string(files.k) +
             "\n#" + files.run.alap_szoveg + '\n');
    graph.Walk([&](std::uint32_t community, std::span<Overlap const> row) {
        Line_start const start(community, community >= n_exact_coms);
        for (Overlap const& overlap : row) {
            file.Put_padded<sizeof(start.bytes)>(start.bytes.data(), start.size);
            file.Put_number(overlap.community, overlap.community >= n_exact_coms);
            file.Put(' ');
            file.Put_number(overlap.shared);
            file.Put('\n');
        }
    });
}

} // namespace cpm
