// SPDX-License-Identifier: MIT
// Fuzzer of the reader of tables: two bytes choose a dialect, the rest is the table. What comes out
// must be whole: names that all differ and stand in the table, ends that are names, finite weights,
// in number what the lines allow; or a failure at a line that is there.
//
// Whether it is also right is shown by tests/tool, beside a plain reader.
#include "Edge_list_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

namespace {

using plexor_formats::Dialect;
using plexor_formats::Edge_table;

void Must(bool holds, char const* what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

Dialect Dialect_of(unsigned choice) {
    Dialect dialect;
    dialect.delimiter = std::string_view("\0\t,;", 4)[choice & 3];
    dialect.quotes = (choice & 4) != 0;
    dialect.comment = (choice & 8) != 0 ? "#%" : "#";
    if ((choice & 24) == 24) {
        dialect.comment.clear();
    }
    dialect.comment_decides = (choice & 16) != 0;
    dialect.header = (choice & 32) != 0;
    dialect.source = choice >> 6 & 1;
    dialect.target = 1 - dialect.source + (choice >> 7 & 1);
    if ((choice & 256) != 0) {
        dialect.weight = 2 + (choice >> 9 & 1);
    }
    if ((choice & 1024) != 0) {
        dialect.fields = 2 + (choice >> 11 & 3);
    }
    dialect.decimal_comma = (choice & 8192) != 0;
    dialect.escaped = (choice & 16384) != 0;
    return dialect;
}

void Judge(Edge_table const& table, std::string_view data, Dialect const& dialect) {
    auto const n_lines = static_cast<std::uint64_t>(std::count(data.begin(), data.end(), '\n')) + 1;
    if (table.failure) {
        Must(table.failure->line >= 1 && table.failure->line <= n_lines, "no such line");
        return;
    }
    Must(table.source.size() == table.target.size(), "ends without an other end");
    Must(table.source.size() <= n_lines, "more links than lines");
    Must(table.weight.size() == (dialect.weight ? table.source.size() : 0), "weights of no link");
    std::set<std::string_view> names;
    std::int64_t begin = 0;
    for (auto const end : table.name_ends) {
        Must(end >= begin && static_cast<std::size_t>(end) <= table.names.size(), "a cut name");
        auto const name =
            std::string_view(table.names)
                .substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
        Must(names.insert(name).second, "two nodes of one name");
        bool const as_it_is = data.find(name) != std::string_view::npos;
        // In a quoted field a mark stands twice, and a line may end in a carriage return.
        bool const quoted = dialect.quotes && name.find_first_of("\"\n") != std::string_view::npos;
        Must(as_it_is || quoted, "a name that is not in the data");
        begin = end;
    }
    auto const is_node = [&](std::uint32_t node) { return node < names.size(); };
    Must(std::all_of(table.source.begin(), table.source.end(), is_node) &&
             std::all_of(table.target.begin(), table.target.end(), is_node),
         "a link to nowhere");
    Must(std::all_of(table.weight.begin(), table.weight.end(),
                     [](double weight) { return std::isfinite(weight); }),
         "a weight that is none");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    auto const dialect = Dialect_of(bytes[0] + 256U * bytes[1]);
    std::string data(bytes + 2, bytes + size);
    std::replace(data.begin(), data.end(), '\0', '\n');
    Judge(plexor_formats::Read_edge_list(data, dialect), data, dialect);
    return 0;
}
