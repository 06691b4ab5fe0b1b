// SPDX-License-Identifier: MIT
// Text_sink: where text goes. Numbers are turned into text in one place, with the formats of the
// result files, whether the text ends up in memory, in a file or on standard output.
#ifndef PLEXOR_TEXT_SINK_H
#define PLEXOR_TEXT_SINK_H

#include <charconv>
#include <cstddef>
#include <cstdint>
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
    /// A plain decimal number.
    void Put_number(std::uint64_t number) {
        Need(longest_number);
        next_ = std::to_chars(next_, next_ + longest_number, number).ptr;
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
    static constexpr std::size_t longest_number = 20;

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
