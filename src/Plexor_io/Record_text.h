// SPDX-License-Identifier: MIT
// Record_text: composes the records of result files, gigabytes of short pieces of text, in a block
// that stays in the cache, and passes them on by the block. A short piece is copied in one fixed
// size, longer than it is, and the next one overwrites what was too much: that is several times
// faster than copying each by its own length.
#ifndef PLEXOR_RECORD_TEXT_H
#define PLEXOR_RECORD_TEXT_H

#include "support/Text_sink.h"

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace cpm {

class Record_text {
public:
    /// Everything put here goes on to the sink, in this order; the last of it when this object
    /// ends. Nothing else may write to the sink until then.
    explicit Record_text(Text_sink& sink)
        : sink_(sink), block_(new char[block_size]), next_(block_.get()) {}
    Record_text(Record_text const&) = delete;
    Record_text& operator=(Record_text const&) = delete;
    ~Record_text() { Pass_on(); }

    void Put(char c) {
        Need(1);
        *next_++ = c;
    }
    void Put(std::string_view text) {
        if (text.size() > block_size) {
            Pass_on();
            sink_.Put(text);
            return;
        }
        Need(text.size());
        std::memcpy(next_, text.data(), text.size());
        next_ += text.size();
    }
    /// The first `size` bytes, at most `padding`, of a text of which `padding` bytes can be read.
    template <std::size_t padding> void Put_padded(char const* text, std::size_t size) {
        assert(size <= padding);
        Need(padding);
        std::memcpy(next_, text, padding);
        next_ += size;
    }
    /// A plain decimal number.
    void Put_number(std::uint32_t number) {
        constexpr std::uint32_t ten_to_4 = 10000;
        constexpr std::uint32_t ten_to_8 = ten_to_4 * ten_to_4;
        if (number < ten_to_4) {
            Put_up_to_four_digits(number);
        } else if (number < ten_to_8) {
            Put_up_to_four_digits(number / ten_to_4);
            Put_four_digits(number % ten_to_4);
        } else {
            Put_up_to_four_digits(number / ten_to_8);
            Put_four_digits(number % ten_to_8 / ten_to_4);
            Put_four_digits(number % ten_to_4);
        }
    }

    /// The number, after a "-" when it is that of something approximated, 0 included.
    void Put_number(std::uint32_t number, bool approximated) {
        if (approximated) {
            Put('-');
        }
        Put_number(number);
    }

private:
    static constexpr std::size_t block_size = std::size_t{1} << 14;

    // The digits of 0 to 9999, four each with leading zeros. The end can be read beyond by the
    // leading zeros that are left out.
    using Digit_table = std::array<char, std::size_t{4} * 10000 + 4>;
    static constexpr Digit_table Make_digits();
    static Digit_table const digits_;

    void Need(std::size_t bytes) {
        if (static_cast<std::size_t>(block_.get() + block_size - next_) < bytes) {
            Pass_on();
        }
    }
    void Pass_on();
    void Put_four_digits(std::uint32_t number) {
        Put_padded<4>(digits_.data() + std::size_t{4} * number, 4);
    }
    void Put_up_to_four_digits(std::uint32_t number) {
        std::size_t const zeros =
            std::size_t{number < 10} + std::size_t{number < 100} + std::size_t{number < 1000};
        Put_padded<4>(digits_.data() + std::size_t{4} * number + zeros, 4 - zeros);
    }

    Text_sink& sink_;
    std::unique_ptr<char[]> block_;
    char* next_;
};

} // namespace cpm

#endif
