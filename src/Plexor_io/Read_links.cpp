// SPDX-License-Identifier: MIT
// Reads a link file into the link map.
//
// Takes    a file of lines "source target [weight] ...".
// Leaves   the different names in byte order, and the links in the order of their names.
// Order    links by (source name, target name); of equal links the weights add up in file order.
// Cost     time and memory proportional to the file; about 16 bytes a line at the peak, 32 with
//          weights, and 30 a name.
// Tested   Read_links_test.cpp, the link reader's fuzzer, the runs against the plain model.
#include "Plexor_io/Read_links.h"

#include "Link_order.h"
#include "Plexor_io/Line_reader.h"
#include "Plexor_io/Name_interner.h"
#include "support/Errors.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>
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

// Collects links in batches. The names of a whole batch are asked for before the first is looked
// up, so that the cache misses of the hash table overlap: this halves the time of reading.
class Link_collector {
public:
    Link_collector(Line_reader const& reader, bool weighted)
        : reader_(reader), weighted_(weighted) {}

    void Add(std::string_view source, std::string_view target, double weight) {
        Entry& entry = batch_[filled_++];
        entry = {source, target, Name_interner::Key(source, reader_.Readable(source.data())),
                 Name_interner::Key(target, reader_.Readable(target.data()))};
        names_.Prefetch(entry.source_key);
        names_.Prefetch(entry.target_key);
        if (weighted_) {
            weights_.push_back(weight);
        }
        if (filled_ == batch_.size()) {
            Close_batch();
        }
    }
    // The names of a batch lie in the reader's block: to be called before that changes.
    void Close_batch() {
        for (std::size_t i = 0; i < filled_; ++i) {
            Entry const& entry = batch_[i];
            Node const source = names_.Number(entry.source, entry.source_key);
            links_.push_back({source, names_.Number(entry.target, entry.target_key)});
        }
        filled_ = 0;
    }
    // Hands over the names in their order, and the links as they came.
    void Finish(Link_map& links);

private:
    struct Entry {
        std::string_view source;
        std::string_view target;
        std::uint64_t source_key = 0;
        std::uint64_t target_key = 0;
    };

    Line_reader const& reader_;
    bool weighted_;
    Name_interner names_;
    std::array<Entry, 32> batch_;
    std::size_t filled_ = 0;
    Flat_array<Node_pair> links_;
    Flat_array<double> weights_;
};

// The first eight bytes of a name as a number that orders as the bytes do.
std::uint64_t Order_prefix(std::string_view name) {
    std::uint64_t word = 0;
    std::memcpy(&word, name.data(), std::min(name.size(), sizeof(word)));
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

struct Ordered_name {
    std::uint64_t prefix = 0;
    Node number = 0;
};

void Link_collector::Finish(Link_map& links) {
    names_.Release_table();
    Name_table const& names = names_.Names();
    Node const n_names = static_cast<Node>(names.size());
    Flat_array<Ordered_name> order;
    order.Resize_uninitialised(n_names);
    for (Node number = 0; number < n_names; ++number) {
        order[number] = {Order_prefix(names[number]), number};
    }
    std::sort(order.begin(), order.end(), [&](Ordered_name const& a, Ordered_name const& b) {
        return a.prefix != b.prefix ? a.prefix < b.prefix : names[a.number] < names[b.number];
    });
    Flat_array<Node> rank;
    rank.Resize_uninitialised(n_names);
    links.names.Reserve(n_names, names.Bytes());
    for (Node place = 0; place < n_names; ++place) {
        rank[order[place].number] = place;
        links.names.Add(names[order[place].number]);
    }
    order.Release();
    for (Node_pair& link : links_) {
        link = {rank[link.first], rank[link.second]};
    }
    links.links = std::move(links_);
    links.weights = std::move(weights_);
}

template <class Accept_weight>
void Read_links(std::string const& file, Link_map& links, bool weighted, Accept_weight accept) {
    Line_reader reader(file);
    links = Link_map();
    Link_collector collector(reader, weighted);
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
                collector.Add(source, target, weight);
            }
        }
        collector.Close_batch();
    }
    collector.Finish(links);
}

void Merge(Link_map& links) {
    Sort_and_merge(links.links, links.weights, static_cast<Node>(links.names.size()));
}

} // namespace

void Read_links_as_given(std::string const& file, Link_map& links, bool weighted) {
    Read_links(file, links, weighted, [](double) { return true; });
}

void Read_unw_links(std::string const& file, Link_map& links) {
    Read_links_as_given(file, links, false);
    Merge(links);
}

void Read_weighted_links(std::string const& file, Link_map& links,
                         Weight_interval const& interval) {
    Read_links(file, links, true,
               [&](double weight) { return Link_in_interval(weight, interval); });
    Merge(links);
}

} // namespace cpm
