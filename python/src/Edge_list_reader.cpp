// SPDX-License-Identifier: MIT
// Reads tables with one link per line.
//
// Takes    the bytes of a file, without a zero byte, and how its lines are written.
// Leaves   numbered names, links and weights; or the first line that does not fit.
// Order    links as in the file, nodes as they first appear.
// Cost     time and memory proportional to the file.
// Tested   tests/tool/test_edge_list.py, against a plain reader of a few lines; fuzzed by
//          tests/fuzz/Fuzz_edge_list.cpp.
#include "Edge_list_reader.h"

#include "graph/Name_interner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <functional>

namespace plexor_formats {

namespace {

constexpr std::size_t longest_line = std::size_t{1} << 20;

// What bytes.strip() of Python takes for white space, too.
bool Is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

template <class Is_blank> std::string_view Trimmed(std::string_view text, Is_blank is_blank) {
    while (!text.empty() && is_blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && is_blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::size_t Digits(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9') {
        ++end;
    }
    return end - at;
}

// A decimal number and nothing else: sign, digits with or without a point, exponent. Words such as
// inf and nan, and hexadecimal numbers, are none.
bool Is_number(std::string_view text, char point) {
    std::size_t at = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    std::size_t const before = Digits(text, at);
    at += before;
    std::size_t after = 0;
    if (at < text.size() && text[at] == point) {
        ++at;
        after = Digits(text, at);
        at += after;
    }
    if (before + after == 0) {
        return false;
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
            ++at;
        }
        std::size_t const exponent = Digits(text, at);
        if (exponent == 0) {
            return false;
        }
        at += exponent;
    }
    return at == text.size();
}

// The value of what Is_number() accepts; infinite when it is too large for a double.
double Value(std::string_view text, char point) {
    std::string copy;
    if (point != '.' && text.find(point) != std::string_view::npos) {
        copy = text;
        copy[copy.find(point)] = '.';
        text = copy;
    }
    if (text.front() == '+') {
        text.remove_prefix(1);
    }
    double value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        // Too large, or so small that it is 0: from_chars does not tell.
        return std::strtod(std::string(text).c_str(), nullptr);
    }
    return value;
}

class Reader {
public:
    Reader(std::string_view data, Dialect const& dialect)
        : data_(data), dialect_(dialect), point_(dialect.decimal_comma ? ',' : '.') {
        n_needed_ = std::max(dialect.source, dialect.target);
        if (dialect.weight) {
            n_needed_ = std::max(n_needed_, *dialect.weight);
        }
        ++n_needed_;
        header_pending_ = dialect.header;
    }

    Edge_table Read() {
        while (!table_.failure && next_ < data_.size()) {
            Read_line();
        }
        if (!table_.failure && !pending_.empty()) {
            Fail(Fault::open_quotation, pending_line_);
        }
        if (!table_.failure) {
            Close_batch();
            cpm::Name_table const& names = names_.Names();
            table_.name_ends.reserve(names.size());
            table_.names.reserve(names.Bytes());
            for (std::size_t i = 0; i < names.size(); ++i) {
                // See Add().
                if (names[i] != std::string_view("\0", 1)) {
                    table_.names += names[i];
                }
                table_.name_ends.push_back(static_cast<std::int64_t>(table_.names.size()));
            }
        }
        return std::move(table_);
    }

private:
    void Fail(Fault fault, std::uint64_t line, std::string_view text = {}) {
        table_.failure = Failure{fault, line, fields_.size(), std::string(text)};
    }

    bool Is_comment_sign(char c) const { return dialect_.comment.find(c) != std::string::npos; }

    void Read_line() {
        std::size_t const found = data_.find('\n', next_);
        std::size_t const end = found == std::string_view::npos ? data_.size() : found;
        std::string_view const whole_line = data_.substr(next_, end - next_);
        std::string_view line = whole_line;
        next_ = end + 1;
        ++line_number_;
        if (!line.empty() && line.back() == '\r') {
            ++table_.carriage_returns;
            line.remove_suffix(1);
        }
        if (line.size() > longest_line) {
            Fail(Fault::long_line, line_number_);
            return;
        }
        std::uint64_t at = line_number_;
        if (!pending_.empty()) {
            at = pending_line_;
            pending_ += '\n';
            pending_ += line;
            if (pending_.size() > longest_line) {
                Fail(Fault::open_quotation, at);
                return;
            }
            if (line.find('"') == std::string_view::npos) {
                return;
            }
            kept_.push_back(std::move(pending_));
            pending_.clear();
            line = kept_.back();
        } else if (Is_passed_over(line)) {
            table_.passed_over_here_alone += !Program_passes_over(whole_line);
            return;
        }
        if (Split(line, at) && !table_.failure) {
            Take(at);
        }
    }

    // The program knows comments that begin with # and lines of one character, and for it a
    // carriage return is one.
    static bool Program_passes_over(std::string_view line) {
        std::string_view const rest = Trimmed(line, [](char c) { return c == ' ' || c == '\t'; });
        return rest.size() == 1 || (!rest.empty() && rest.front() == '#');
    }

    // Comments, blank lines and fillers; refuses what may or may not be a comment.
    bool Is_passed_over(std::string_view line) {
        std::string_view const stripped = Trimmed(line, Is_space);
        if (stripped.empty()) {
            ++table_.blank_lines;
            return true;
        }
        // A tab at the beginning ends an empty field, where tabs separate fields.
        char const first =
            dialect_.delimiter == '\t'
                ? Trimmed(line, [](char c) { return c != '\t' && Is_space(c); }).front()
                : stripped.front();
        if (Is_comment_sign(first)) {
            if (dialect_.delimiter != 0 && any_link_ && !dialect_.comment_decides &&
                dialect_.fields &&
                static_cast<std::size_t>(std::count(line.begin(), line.end(), dialect_.delimiter)) +
                        1 ==
                    *dialect_.fields) {
                Fail(Fault::comment_or_link, line_number_, std::string_view(&first, 1));
            } else {
                ++table_.comments;
            }
            return true;
        }
        if (first == '%' && !dialect_.comment_decides && !dialect_.escaped) {
            Fail(Fault::percent_comment, line_number_);
            return true;
        }
        if (dialect_.delimiter == 0 && stripped.size() == 1) {
            ++table_.single_characters;
            return true;
        }
        return false;
    }

    // Fills fields_. False when a quoted field goes on in the next line, or at a failure.
    bool Split(std::string_view line, std::uint64_t at) {
        fields_.clear();
        if (dialect_.quotes && line.find('"') != std::string_view::npos) {
            return Split_quoted(line, at);
        }
        std::size_t place = 0;
        if (dialect_.delimiter == 0) {
            for (;;) {
                while (place < line.size() && Is_space(line[place])) {
                    ++place;
                }
                if (place == line.size()) {
                    return true;
                }
                std::size_t const begin = place;
                while (place < line.size() && !Is_space(line[place])) {
                    ++place;
                }
                fields_.push_back(line.substr(begin, place - begin));
            }
        }
        for (;;) {
            std::size_t const end = std::min(line.find(dialect_.delimiter, place), line.size());
            fields_.push_back(Trimmed(line.substr(place, end - place), Is_space));
            if (end == line.size()) {
                return true;
            }
            place = end + 1;
        }
    }

    bool Is_separator(char c) const {
        return dialect_.delimiter == 0 ? c == ' ' || c == '\t' : c == dialect_.delimiter;
    }

    // Blanks around a quoted field belong to none.
    std::size_t Skip_around(std::string_view line, std::size_t place) const {
        while (place < line.size() && dialect_.delimiter != 0 && !Is_separator(line[place]) &&
               (line[place] == ' ' || line[place] == '\t')) {
            ++place;
        }
        return place;
    }

    bool Split_quoted(std::string_view line, std::uint64_t at) {
        std::string_view const whole = line;
        if (dialect_.delimiter == 0) {
            line = Trimmed(line, Is_space);
        }
        std::size_t place = 0;
        for (;;) {
            std::size_t const begin = Skip_around(line, place);
            if (begin < line.size() && line[begin] == '"') {
                std::string text;
                place = begin + 1;
                for (;;) {
                    std::size_t const close = line.find('"', place);
                    if (close == std::string_view::npos) {
                        pending_ = whole;
                        pending_line_ = at;
                        return false;
                    }
                    text += line.substr(place, close - place);
                    place = close + 1;
                    if (place == line.size() || line[place] != '"') {
                        break;
                    }
                    text += '"';
                    ++place;
                }
                place = Skip_around(line, place);
                if (place < line.size() && !Is_separator(line[place])) {
                    Fail(Fault::text_after_quotation, at);
                    return false;
                }
                // Invariant: views into strings of a deque stay valid while others are added.
                kept_.push_back(std::move(text));
                fields_.push_back(kept_.back());
            } else {
                std::size_t const from = place;
                while (place < line.size() && !Is_separator(line[place])) {
                    ++place;
                }
                fields_.push_back(Trimmed(line.substr(from, place - from), Is_space));
            }
            if (place == line.size()) {
                return true;
            }
            ++place;
            while (dialect_.delimiter == 0 && Is_separator(line[place])) {
                ++place;
            }
        }
    }

    void Take(std::uint64_t at) {
        if (header_pending_) {
            header_pending_ = false;
            return;
        }
        if (fields_.size() < n_needed_ || (dialect_.fields && fields_.size() != *dialect_.fields)) {
            Fail(Fault::n_fields, at);
            return;
        }
        if (dialect_.weight) {
            std::string_view const text = fields_[*dialect_.weight];
            if (!Is_number(text, point_)) {
                Fail(Fault::no_number, at, text);
                return;
            }
            double const value = Value(text, point_);
            if (!std::isfinite(value)) {
                Fail(Fault::too_large, at, text);
                return;
            }
            table_.weight.push_back(value);
        }
        Add(fields_[dialect_.source], fields_[dialect_.target]);
    }

    // Collects links in batches, so that the cache misses of the look-ups overlap.
    void Add(std::string_view source, std::string_view target) {
        any_link_ = true;
        Entry& entry = batch_[n_filled_++];
        entry = {Name(source), Name(target), 0, 0};
        entry.source_key = cpm::Name_interner::Key(entry.source, Readable(entry.source));
        entry.target_key = cpm::Name_interner::Key(entry.target, Readable(entry.target));
        names_.Prefetch(entry.source_key);
        names_.Prefetch(entry.target_key);
        if (n_filled_ == batch_.size()) {
            Close_batch();
        }
    }

    // How many bytes from the name's first one may be read.
    std::size_t Readable(std::string_view name) const {
        bool const in_data = std::less_equal<>()(data_.data(), name.data()) &&
                             std::less<>()(name.data(), data_.data() + data_.size());
        return in_data ? static_cast<std::size_t>(data_.data() + data_.size() - name.data())
                       : name.size();
    }

    // The interner knows no empty name; a zero byte is in no other.
    static std::string_view Name(std::string_view name) {
        return name.empty() ? std::string_view("\0", 1) : name;
    }

    void Close_batch() {
        for (std::size_t i = 0; i < n_filled_; ++i) {
            Entry const& entry = batch_[i];
            table_.source.push_back(names_.Number(entry.source, entry.source_key));
            table_.target.push_back(names_.Number(entry.target, entry.target_key));
        }
        n_filled_ = 0;
        kept_.clear();
    }

    struct Entry {
        std::string_view source;
        std::string_view target;
        std::uint64_t source_key = 0;
        std::uint64_t target_key = 0;
    };

    std::string_view data_;
    Dialect const& dialect_;
    char point_;
    std::size_t n_needed_ = 0;
    bool header_pending_ = false;
    bool any_link_ = false;
    std::size_t next_ = 0;
    std::uint64_t line_number_ = 0;
    std::string pending_; ///< lines that begin with a quoted field that has not ended
    std::uint64_t pending_line_ = 0;
    std::vector<std::string_view> fields_;
    std::deque<std::string> kept_; ///< what fields and the batch view and the data does not hold
    cpm::Name_interner names_;
    std::array<Entry, 32> batch_;
    std::size_t n_filled_ = 0;
    Edge_table table_;
};

} // namespace

Edge_table Read_edge_list(std::string_view data, Dialect const& dialect) {
    return Reader(data, dialect).Read();
}

} // namespace plexor_formats
