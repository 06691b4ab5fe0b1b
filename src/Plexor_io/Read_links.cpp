// SPDX-License-Identifier: MIT
// Reads a link file into the link map.
//
// Takes    a file of lines "source target [weight] ...".
// Leaves   the different names in byte order, and the links in the order of their names.
// Order    links by (source name, target name); of equal links the weights add up in file order.
// Cost     time and memory proportional to the file; about 16 bytes per line at the peak, 32 with
//          weights, and 30 per name.
// Tested   Read_links_test.cpp, the link reader's fuzzer, the runs against the plain model.
#include "Plexor_io/Read_links.h"

#include "Plexor_io/Line_reader.h"
#include "Plexor_io/Link_file_errors.h"
#include "graph/Link_collector.h"

#include <charconv>
#include <sstream>

namespace cpm {

bool Link_in_interval(double weight, Weight_interval const& interval) {
    return (!interval.lower_set || weight > interval.lower) &&
           (!interval.upper_set || weight < interval.upper);
}

std::string trim(std::string const& text, std::string const& characters) {
    // Deliberate: 32-bit positions. A text without anything to keep begins at 4294967295, which
    // substr() refuses; a blank line in a link file ends the run with that message.
    auto const first = static_cast<std::uint32_t>(text.find_first_not_of(characters));
    auto const last = static_cast<std::uint32_t>(text.find_last_not_of(characters));
    return text.substr(first, std::size_t{last} - first + 1);
}

namespace {

constexpr char trimmed_characters[] = " \t";

// The white space of the standard streams.
bool Is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The line without the blanks and tabs at its ends.
std::string_view Trimmed(std::string_view line) {
    auto const is_blank = [](char c) { return c == ' ' || c == '\t'; };
    if (!line.empty() && !is_blank(line.front()) && !is_blank(line.back())) {
        return line;
    }
    std::size_t const first = line.find_first_not_of(trimmed_characters);
    if (first == std::string_view::npos) {
        // Nothing to keep: trim() has the error for that.
        trim(std::string(line), trimmed_characters);
    }
    return line.substr(first, line.find_last_not_of(trimmed_characters) - first + 1);
}

// Cuts the next word off the front of the text; an empty word when there is none.
std::string_view Next_word(std::string_view& text) {
    std::size_t begin = 0;
    while (begin < text.size() && Is_space(text[begin])) {
        ++begin;
    }
    std::size_t end = begin;
    while (end < text.size() && !Is_space(text[end])) {
        ++end;
    }
    std::string_view const word = text.substr(begin, end - begin);
    text.remove_prefix(end);
    return word;
}

// Reads the weight at the front of the text (blanks may precede it) as a stream would: the number
// ends where it ends, and anything may follow. False when there is none.
bool Read_weight(std::string_view text, double& weight) {
    std::string_view rest = text;
    std::string_view const word = Next_word(rest);
    // Plain decimals, by far the most, need no stream. A word is one when it begins like one (which
    // leaves out "inf" and "nan") and from_chars takes all of it.
    std::size_t const sign = word.starts_with('-') ? 1 : 0;
    if (word.size() > sign && ((word[sign] >= '0' && word[sign] <= '9') || word[sign] == '.')) {
        auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), weight);
        if (error == std::errc() && end == word.data() + word.size()) {
            return true;
        }
    }
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    return static_cast<bool>(stream >> weight);
}

template <class Accept_weight>
void Collect_links(std::string const& file, Link_collector& collector, bool weighted,
                   Accept_weight accept) {
    Line_reader reader(file);
    auto const keyed = [&reader](std::string_view name) {
        return Link_collector::Keyed(name, reader.Readable(name.data()));
    };
    std::string_view line;
    while (reader.Next_block()) {
        while (reader.Next_line(line)) {
            std::string_view const trimmed = Trimmed(line);
            if (trimmed.front() == '#' || trimmed.size() == 1) {
                continue;
            }
            std::string_view rest = trimmed;
            std::string_view const source = Next_word(rest);
            std::string_view const target = Next_word(rest);
            double weight = 0;
            if (target.empty() || (weighted && !Read_weight(rest, weight))) {
                throw Xep_wrong_line(std::string(trimmed));
            }
            if (source != target && accept(weight)) {
                collector.Add(keyed(source), keyed(target), weight);
            }
        }
        collector.Close_batch(); // its names lie in the block, which goes now
    }
}

template <class Accept_weight>
void Read_links(std::string const& file, Link_map& links, bool weighted, Accept_weight accept) {
    Link_collector collector(weighted);
    Collect_links(file, collector, weighted, accept);
    collector.Finish(links);
}

bool Any_weight(double) {
    return true;
}

} // namespace

void Read_links_as_given(std::string const& file, Link_map& links, bool weighted) {
    Link_collector collector(weighted);
    Collect_links(file, collector, weighted, Any_weight);
    collector.Finish_unmerged(links);
}

void Read_unw_links(std::string const& file, Link_map& links) {
    Read_links(file, links, false, Any_weight);
}

void Read_weighted_links(std::string const& file, Link_map& links,
                         Weight_interval const& interval) {
    Read_links(file, links, true,
               [&](double weight) { return Link_in_interval(weight, interval); });
}

} // namespace cpm
