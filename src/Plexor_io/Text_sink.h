// SPDX-License-Identifier: MIT
// Text_sink: where text goes. Numbers are turned into text in one place, with the formats of the
// result files, whether the text ends up in memory, in a file or on standard output.
//
// Result files are gigabytes of short pieces. A short piece is copied in one fixed size, longer
// than it is, and the next one overwrites what was too much: that is several times faster than
// copying each by its own length.
#ifndef PLEXOR_TEXT_SINK_H
#define PLEXOR_TEXT_SINK_H

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace cpm {

class Text_sink {
public:
    Text_sink(Text_sink const&) = delete;
    Text_sink& operator=(Text_sink const&) = delete;
    virtual ~Text_sink() = default;

    void Put(char c) {
        Need(1);
        *next_++ = c;
    }
    void Put(std::string_view text) {
        if (text.size() > Room()) {
            Put_large(text);
            return;
        }
        // (An empty text may have no address, which memcpy() does not allow.)
        std::char_traits<char>::copy(next_, text.data(), text.size());
        next_ += text.size();
    }
    /// The first `size` bytes, at most `padding`, of a text of which `padding` bytes can be read.
    template <std::size_t padding> void Put_padded(char const* text, std::size_t size) {
        static_assert(padding <= largest_request);
        assert(size <= padding);
        Need(padding);
        std::memcpy(next_, text, padding);
        next_ += size;
    }
    /// Writes over the last byte of what was put just before, which must not be empty.
    void Replace_last(char c) { next_[-1] = c; }
    /// A plain decimal number.
    void Put_number(std::uint64_t number) {
        if (number < ten_to_4) {
            Put_up_to_four_digits(number);
        } else if (number < ten_to_4 * ten_to_4) {
            Put_up_to_four_digits(number / ten_to_4);
            Put_four_digits(number % ten_to_4);
        } else {
            Put_number(number / ten_to_4);
            Put_four_digits(number % ten_to_4);
        }
    }
    /// The number, after a "-" when it is that of something approximated, 0 included.
    void Put_number(std::uint64_t number, bool approximated) {
        if (approximated) {
            Put('-');
        }
        Put_number(number);
    }
    /// `count` times the same character.
    void Put_repeated(char c, std::size_t count);
    /// Fixed notation with exactly `digits` decimals; 0 digits give no decimal point.
    void Put_fixed(double value, unsigned digits);
    /// Six significant digits, in fixed or scientific notation, whichever is shorter: the format of
    /// the link weights.
    void Put_general(double value);

protected:
    Text_sink() = default;
    /// The buffer to write into from now on; what was written before must have been dealt with.
    void Set_buffer(char* begin, char* end) {
        next_ = begin;
        end_ = end;
    }
    /// Makes room for at least `bytes` more bytes; asked for small numbers only.
    virtual void Make_room(std::size_t bytes) = 0;
    /// The end of what has been written into the buffer.
    char* Next() const { return next_; }

    /// No Make_room() call asks for more than this.
    static constexpr std::size_t largest_request = 64;

private:
    static constexpr std::uint64_t ten_to_4 = 10000;

    // The digits of 0 to 9999, four each with leading zeros.
    using Digit_table = std::array<char, 4 * ten_to_4>;
    static constexpr Digit_table Make_digits();
    static Digit_table const digits_;

    void Put_four_digits(std::uint64_t number) { Put_padded<4>(digits_.data() + 4 * number, 4); }
    void Put_up_to_four_digits(std::uint64_t number) {
        std::size_t const zeros =
            std::size_t{number < 10} + std::size_t{number < 100} + std::size_t{number < 1000};
        Put_padded<4>(digits_.data() + 4 * number + zeros, 4 - zeros);
    }

    std::size_t Room() const { return static_cast<std::size_t>(end_ - next_); }
    void Need(std::size_t bytes) {
        if (Room() < bytes) {
            Make_room(bytes);
        }
    }
    void Put_large(std::string_view text);

    char* next_ = nullptr;
    char* end_ = nullptr;
};

/// Text kept in memory.
class Text : public Text_sink {
public:
    Text() { Clear(); }
    std::string_view View() const {
        return {buffer_.data(), static_cast<std::size_t>(Next() - buffer_.data())};
    }
    void Clear() { Set_buffer(buffer_.data(), buffer_.data() + buffer_.size()); }

protected:
    void Make_room(std::size_t bytes) override;

private:
    std::string buffer_;
};

} // namespace cpm

#endif
