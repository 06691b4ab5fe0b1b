// SPDX-License-Identifier: MIT
// Line_reader: the lines of a file, as views into one block of it.
#ifndef PLEXOR_LINE_READER_H
#define PLEXOR_LINE_READER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cpm {

class Line_reader {
public:
    /// Opens the file. Throws Xep_file_not_found when that fails.
    explicit Line_reader(std::string const& file);
    Line_reader(Line_reader const&) = delete;
    Line_reader& operator=(Line_reader const&) = delete;
    ~Line_reader();

    /// Reads the next block; false at the end of the file. Views of earlier lines become invalid.
    /// Throws Xep_read_file when the file cannot be read.
    bool Next_block();
    /// The next line of the block, without its line feed; false when the block holds no more whole
    /// lines. A last line needs no line feed.
    bool Next_line(std::string_view& line);
    /// How many bytes may be read from this place of the block.
    std::size_t Readable(char const* place) const {
        return static_cast<std::size_t>(block_.data() + block_.size() - place);
    }

private:
    std::string file_;
    int descriptor_;
    std::vector<char> block_;
    std::size_t next_ = 0;   ///< where the next line begins
    std::size_t filled_ = 0; ///< the bytes of the block that come from the file
    bool at_end_ = false;
};

} // namespace cpm

#endif
