// SPDX-License-Identifier: MIT
#include "Plexor_io/Reports.h"

#include <algorithm>

namespace cpm::Clique_find_report_sub_routines {

namespace {

void Put_underline(std::size_t width, Text_sink& sink) {
    sink.Put_repeated('_', std::max<std::size_t>(width, 1));
    sink.Put('\n');
}

void Put_line(std::string_view text, Text_sink& sink) {
    sink.Put(text);
    sink.Put('\n');
}

std::size_t Number_of_digits(std::uint32_t number) {
    std::size_t digits = 1;
    for (; number >= 10; number /= 10) {
        ++digits;
    }
    return digits;
}

// 100 * part / whole, computed as a double, with two decimals.
//
// Formatting a double costs more than the rest of a report, so the decimals are found in integers:
// n + r / whole hundredths, rounded by comparing 2 r with whole.
// Invariant: the text is that of the double.
// Relies on: away from a tie the exact quotient is at least 1 / (200 * 2^32) > 1e-12 away from
//            where the rounding changes, and up to 100 the double is within 1.5e-14 of the
//            quotient.
// Breaks if: a tie is decided here: there it depends on which side the double fell.
void Put_percentage(std::uint32_t part, std::uint32_t whole, Text_sink& sink) {
    std::uint64_t const numerator = std::uint64_t{10000} * part;
    std::uint64_t const twice_rest = whole == 0 ? 0 : 2 * (numerator % whole);
    if (part > whole || whole == 0 || twice_rest == whole) {
        sink.Put_fixed(100.0 * part / whole, 2);
        return;
    }
    std::uint64_t const hundredths = numerator / whole + (twice_rest > whole ? 1 : 0);
    std::uint64_t const decimals = hundredths % 100;
    sink.Put_number(hundredths / 100);
    sink.Put('.');
    sink.Put(static_cast<char>('0' + decimals / 10));
    sink.Put(static_cast<char>('0' + decimals % 10));
}

void Put_count_line(std::string_view what, std::uint32_t to_do, std::uint32_t total,
                    Text_sink& sink) {
    sink.Put(' ');
    sink.Put_number(to_do);
    sink.Put(" of ");
    sink.Put_number(total);
    sink.Put(' ');
    sink.Put(what);
    sink.Put(" to do (");
    Put_percentage(total - to_do, total, sink);
    sink.Put("% done)\n");
}

} // namespace

void Report_progress(std::string_view title, std::string_view what, std::uint32_t to_do,
                     std::uint32_t total, Text_sink& sink) {
    Put_underline(title.size(), sink);
    Put_line(title, sink);
    Put_count_line(what, to_do, total, sink);
}

void Report_progress(std::string_view title1, std::string_view title2, std::string_view what,
                     std::uint32_t to_do, std::uint32_t total, Text_sink& sink) {
    Put_underline(std::max(title1.size(), title2.size()), sink);
    Put_line(title1, sink);
    Put_line(title2, sink);
    Put_count_line(what, to_do, total, sink);
}

void Report_hard_node(std::uint32_t node, std::uint32_t skipped_in_row, std::uint32_t waiting,
                      Text_sink& sink) {
    sink.Put(" Exceeded allowed time at node no.");
    sink.Put_number(node);
    sink.Put(",\n skipping, ");
    sink.Put_number(skipped_in_row);
    sink.Put(" out of ");
    sink.Put_number(waiting);
    sink.Put(" skipped in a row, (");
    Put_percentage(skipped_in_row, waiting, sink);
    sink.Put("%)\n");
}

void Report_all_rem_nodes_to_hard(std::string_view what, Text_sink& sink) {
    constexpr std::size_t width_of_the_rest = 43;
    Put_underline(what.size() + width_of_the_rest, sink);
    sink.Put(" The extraction of ");
    sink.Put(what);
    sink.Put(" has been found too slow \n at all of the remaining nodes.\n");
}

void Report_clique_search_end(std::string_view what, std::uint32_t count, Text_sink& sink) {
    constexpr std::size_t width_of_the_rest = 20;
    Put_underline(Number_of_digits(count) + what.size() + width_of_the_rest, sink);
    sink.Put(" Altogether ");
    sink.Put_number(count);
    sink.Put(' ');
    sink.Put(what);
    sink.Put(" found.\n");
}

void Report_clique_search_end(std::string_view what, std::uint32_t count, std::string_view extra,
                              Text_sink& sink) {
    Report_clique_search_end(what, count, sink);
    Put_line(extra, sink);
}

} // namespace cpm::Clique_find_report_sub_routines
