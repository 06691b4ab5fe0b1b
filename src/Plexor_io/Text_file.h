// SPDX-License-Identifier: MIT
// Text_file: the one buffered writer that every result file goes through.
#ifndef PLEXOR_TEXT_FILE_H
#define PLEXOR_TEXT_FILE_H

#include "Plexor_io/Result_files.h"
#include "Plexor_io/Text_sink.h"

#include <memory>
#include <string>

namespace cpm {

class Text_file : public Text_sink {
public:
    /// Makes the file, once there is memory for its text. A file that cannot be made, as when
    /// something has its name, or later not be written whole, does not stop the run: closing it
    /// says " WARNING: could not write '<path>'." on the console, once,
    /// and notes it in `files`. Throws what New_file::Make() does.
    Text_file(New_file const& file, Run_files& files);
    ~Text_file() override;

protected:
    void Make_room(std::size_t bytes) override;

private:
    void Flush();

    std::string path_;
    Run_files& files_;
    // Before the descriptor: no file is made for which there is no memory.
    std::unique_ptr<char[]> buffer_;
    int descriptor_;
    bool failed_;
};

} // namespace cpm

#endif
